#!/usr/bin/env bash
# Makes Tolmex.bundle, the folder from which the commercial host loads the plug-in: its description, menu and tool bars with
# icons, all from the table of commands, the guide, colours and linetypes. The module itself comes out of the project
# Projects/Tolmex/tolmex.vcxproj, for which a Windows machine with the host's SDK is needed; the script says where it goes.
#
#   tools/make-bundle.sh [--module tolmex.arx] [FOLDER]      FOLDER: out
set -euo pipefail
cd "$(dirname "$0")/.."

module='' folder=out
while [ $# -gt 0 ]; do
  case $1 in
    --module)
      [ $# -gt 1 ] || { echo "make-bundle: --module wants the file" >&2 && exit 2; }
      module=$2
      shift
      ;;
    -*)
      sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0" >&2
      exit 2
      ;;
    *) folder=$1 ;;
  esac
  shift
done
if [ -n "$module" ] && [ "$(head -c 2 "$module" 2>/dev/null)" != MZ ]; then
  echo "make-bundle: $module is no module for Windows" >&2
  exit 2
fi

tools/install-deps.sh librsvg2-bin imagemagick
bundle=$folder/Tolmex.bundle
rm -rf "$bundle"
mkdir -p "$bundle/Contents/Support/icons" "$bundle/Contents/Help"
version=$(sed -n 's/^project(Tolmex VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
python3 tools/bundle-files.py "$version" "$bundle"

# Pictures of buttons: light grey is what old menus show as nothing.
for icon in Projects/Tolmex/icons/*.svg; do
  name=$(basename "$icon" .svg)
  for size in 16 32; do
    sed 's/currentColor/#202428/g' "$icon" | rsvg-convert -w $size -h $size -b '#C0C0C0' |
      convert png:- -type TrueColor "bmp3:$bundle/Contents/Support/icons/${name}_$size.bmp"
  done
done
rsvg-convert -w 64 -h 64 Projects/Tolmex/icons/rakennus.svg -o "$bundle/Contents/tolmex.png"

cp examples/tolm.ini "$bundle/Contents/Support/tolm.ini"
cp Host/Hatching/support/acadiso.lin "$bundle/Contents/Support/tolmex.lin"
cp docs/kayttoohje.md "$bundle/Contents/Help/"
cp -r docs/pictures "$bundle/Contents/Help/"
if [ -n "$module" ]; then
  cp "$module" "$bundle/Contents/tolmex.arx"
  echo "$bundle is whole. Copy it to %APPDATA%\\Autodesk\\ApplicationPlugins and start the host."
else
  echo "$bundle is made, without the module: build Projects/Tolmex/tolmex.vcxproj and put tolmex.arx into $bundle/Contents."
  echo "Then copy the folder to %APPDATA%\\Autodesk\\ApplicationPlugins and start the host."
fi
