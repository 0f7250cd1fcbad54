# Completion of tolmex in bash.
_tolmex() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} call=${COMP_WORDS[1]:-}
  local pictures='--width --dpi --paper --scale --window --all --background --layout --layers --handles --sheet --field --legend --worldfile --crs --real-text --lineweights --grayscale --monochrome'
  local words=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'run shell picture info import sun desktop --help --version' -- "$current")
    return
  fi
  case $previous in
    --format) words='png svg pdf tif html' ;;
    --paper) words='A0 A1 A2 A3 A4 A5 A0-landscape A1-landscape A2-landscape A3-landscape A4-landscape A5-landscape' ;;
    --sheet) words='A4-kaava A3-kaava A2-kaava A1-kaava A0-kaava' ;;
    --background) words='white black transparent' ;;
    --lineweights) words='off' ;;
    --language) words='fi en' ;;
    --rules) words='osm mtk kanta rekisteri' ;;
    --out-dir | --support)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return
      ;;
    --command | --set | --jobs | --width | --dpi | --scale | --window | --layout | --layers | --handles | --field | --geometry | \
      --crs | --direction | --date | --times | --time-zone | --place) return ;;
  esac
  if [[ -z $words && $current == -* ]]; then
    case $call in
      run) words="--script --command --out --out-dir --picture --format --jobs --set --support --strict --resume --report --quiet --help $pictures" ;;
      shell) words='--out --picture --set --support --quiet --help' ;;
      picture) words="--out-dir --format --jobs --set --support --quiet --help $pictures" ;;
      info) words='--json --repair --jobs --quiet --help' ;;
      import) words='--rules --crs --window --direction --date --symbols --illustrate --script-out --picture --sheet --field --legend --scale --set --support --quiet --help' ;;
      sun) words='--date --times --time-zone --crs --place --out-dir --width --window --set --support --quiet --help' ;;
      desktop) words='--script --language --geometry --set --support --help' ;;
      *) words='--help' ;;
    esac
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _tolmex tolmex
