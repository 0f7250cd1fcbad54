#!/usr/bin/env bash
# Builds the program for 64-bit Windows on a Debian machine: build/tolmex-windows.zip and an installer.
# Usage: tools/windows.sh [--no-window] [--no-package] [--jobs N] [TARGET...]
# --no-window    without the window, dialogs to be seen, and pictures in PNG: Qt is not built then
# --no-package   the program only, in build/windows*/bin
# Libraries that Debian has not built for Windows come from its source packages and are kept under build/: those of fonts
# take two minutes, Qt the better part of an hour, once. docs/windows.md tells more.
set -euo pipefail
cd "$(dirname "$0")/.."
here=$PWD

window=ON
package=yes
jobs=$(nproc)
targets=()
while (($#)); do
  case $1 in
    --no-window) window=OFF ;;
    --no-package) package=no ;;
    --jobs) jobs=$2; shift ;;
    --help) sed -n '2,7s/^# //p' "$0"; exit ;;
    -*) echo "tools/windows.sh: no such option: $1" >&2; exit 2 ;;
    *) targets+=("$1") ;;
  esac
  shift
done

packages=(g++-mingw-w64-x86-64-posix googletest dpkg-dev xz-utils meson gperf pkg-config)
[[ $package == no ]] || packages+=(nsis zip)
[[ $window == OFF ]] || packages+=(qt6-base-dev qt6-base-dev-tools qt6-l10n-tools qt6-tools-dev-tools librsvg2-bin)
tools/install-deps.sh "${packages[@]}" || { echo "tools/windows.sh: the packages that it needs cannot be had here" >&2; exit 3; }

# The upstream versions that all this was tried with; Debian's own changes to them may come and go.
freetype_version=2.12.1
expat_version=2.5.0
fontconfig_version=2.14.1
harfbuzz_version=6.0.0
fribidi_version=1.0.8
qt_version=6.4.2

# fetch <package> <upstream version> <folder>: unpacks Debian's source package. Its places are the machine's own, read
# from a copy, so nothing of the machine changes; apt checks the signatures.
fetch() {
  local package=$1 wanted=$2 folder=$3 sources=$here/build/sources
  [[ -e $folder/.unpacked ]] && return
  mkdir -p "$sources"/{parts,lists/partial,files}
  cp /etc/apt/sources.list.d/*.sources "$sources/parts/" 2> /dev/null || true
  sed -i 's/^Types:.*/Types: deb-src/' "$sources"/parts/*.sources 2> /dev/null || true
  { cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2> /dev/null || true; } |
    sed -n 's/^deb /deb-src /p' > "$sources/parts/all.list"
  local apt=(-o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$sources/parts" -o "Dir::State::Lists=$sources/lists")
  [[ -n ${updated:-} ]] || apt-get "${apt[@]}" -qq update > /dev/null 2>&1 || true
  updated=yes
  # The newest first; a mirror may name one that it no longer has.
  local version dsc=
  for version in $(apt-cache "${apt[@]}" showsrc "$package" 2> /dev/null | sed -n 's/^Version: //p' | grep -F "$wanted" | sort -Vru); do
    (cd "$sources/files" && apt-get "${apt[@]}" -qq source --download-only "$package=$version" > ../log 2>&1) || continue
    dsc=${package}_${version#*:}.dsc
    break
  done
  if [[ -z $dsc ]]; then
    echo "tools/windows.sh: the source package $package $wanted cannot be had from this machine's Debian mirror" >&2
    exit 3
  fi
  rm -rf "$folder"
  mkdir -p "$(dirname "$folder")"
  (cd "$sources/files" && dpkg-source --no-check -x "$dsc" "$folder" > ../log 2>&1)
  touch "$folder/.unpacked"
}

cross=(-G Ninja -DCMAKE_BUILD_TYPE=Release "-DCMAKE_TOOLCHAIN_FILE=$here/cmake/mingw.cmake"
  -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
libraries=$here/build/windows-libraries
# Their sources are Debian's; what they say while they are built lies in build/sources/<name>.log.
# quietly <name> <command...>: shows what was said only when it fails.
quietly() {
  local log=$here/build/sources/$1.log
  shift
  "$@" >> "$log" 2>&1 || { tail -n 30 "$log" >&2; echo "tools/windows.sh: $* failed" >&2; exit 1; }
}
# licence <name>: keeps it for those who get the library; it is there once the library is.
licence() {
  mkdir -p "$libraries/licences"
  cp "$here/build/sources/$1/debian/copyright" "$libraries/licences/$1.txt"
}
# with_cmake <name> <version> <folder in the source> <option...>, with_meson <name> <version> <option...>
with_cmake() {
  local name=$1 source=$here/build/sources/$1 version=$2 inner=$3
  shift 3
  [[ -e $libraries/licences/$name.txt ]] && return
  fetch "$name" "$version" "$source"
  quietly "$name" cmake -S "$source/$inner" -B "$source-build" "${cross[@]}" "-DCMAKE_INSTALL_PREFIX=$libraries" \
    -DBUILD_SHARED_LIBS=OFF "$@"
  quietly "$name" cmake --build "$source-build" --target install -j "$jobs"
  licence "$name"
}
with_meson() {
  local name=$1 source=$here/build/sources/$1 version=$2
  shift 2
  [[ -e $libraries/licences/$name.txt ]] && return
  fetch "$name" "$version" "$source"
  printf '%s\n' '[binaries]' "c = ['ccache', 'x86_64-w64-mingw32-gcc-posix']" "ar = 'x86_64-w64-mingw32-ar'" \
    "strip = 'x86_64-w64-mingw32-strip'" "pkgconfig = 'pkg-config'" '[properties]' \
    "pkg_config_libdir = '$libraries/lib/pkgconfig'" '[host_machine]' "system = 'windows'" "cpu_family = 'x86_64'" \
    "cpu = 'x86_64'" "endian = 'little'" > "$here/build/sources/mingw.meson"
  rm -rf "$source-build"
  quietly "$name" meson setup "$source-build" "$source" --cross-file "$here/build/sources/mingw.meson" --prefix "$libraries" \
    --libdir lib --buildtype release --default-library static --wrap-mode nofallback "$@"
  quietly "$name" meson install -C "$source-build"
  licence "$name"
}

with_cmake freetype "$freetype_version" . \
  -DFT_DISABLE_ZLIB=ON -DFT_DISABLE_BZIP2=ON -DFT_DISABLE_PNG=ON -DFT_DISABLE_HARFBUZZ=ON -DFT_DISABLE_BROTLI=ON
# Debian's changes ask for the value of XML_DTD, which expat's own file for CMake defines without one.
with_cmake expat "$expat_version" expat -DEXPAT_DTD=OFF -DCMAKE_C_FLAGS=-DXML_DTD=1 \
  -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF
with_cmake harfbuzz "$harfbuzz_version" . -DHB_BUILD_SUBSET=OFF
with_meson fribidi "$fribidi_version" -Ddocs=false
with_meson fontconfig "$fontconfig_version" \
  -Ddoc=disabled -Dnls=disabled -Dtests=disabled -Dtools=disabled -Dcache-build=disabled

qt=$here/build/windows-qt/installed
if [[ $window == ON && ! -e $qt/.built ]]; then
  fetch qt6-base "$qt_version" "$here/build/windows-qt/source"
  # Of what may be left out, what the program does not use; never anything of the screen.
  off=(network sql dbus testlib xml concurrent vulkan icu glib zstd brotli tuiotouch tabletevent undocommand wizard
    mdiarea lcdnumber dial graphicsview columnview vnc gif opengl
    system_zlib system_png system_jpeg system_pcre2 system_freetype system_harfbuzz)
  off=("${off[@]/#/-DFEATURE_}")
  cmake -S build/windows-qt/source -B build/windows-qt/build "${cross[@]}" "-DCMAKE_INSTALL_PREFIX=$qt" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake -DINPUT_opengl=no \
    -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_TOOLS_WHEN_CROSSCOMPILING=OFF -DBUILD_WITH_PCH=OFF \
    "${off[@]/%/=OFF}" > build/windows-qt/log 2>&1
  cmake --build build/windows-qt/build -j "$jobs"
  cmake --install build/windows-qt/build --strip > build/windows-qt/log
  touch "$qt/.built"
fi

out=$here/build/windows
[[ $window == ON ]] || out=$here/build/windows-plain
options=(-DTOLMEX_QT=$window -DTOLMEX_BUILD_TESTS=ON -DTOLMEX_BUILD_BENCHMARKS=OFF "-DCMAKE_PREFIX_PATH=$libraries"
  "-DCMAKE_FIND_ROOT_PATH=/usr/x86_64-w64-mingw32;$libraries;$qt")
if [[ $window == ON ]]; then
  icon=$here/build/tolmex.ico
  if [[ ! $icon -nt Host/Window/tolmex.svg ]]; then
    for size in 16 24 32 48 256; do
      rsvg-convert -w $size -h $size Host/Window/tolmex.svg -o "$here/build/tolmex-$size.png"
    done
    tools/make-icon.py "$icon" "$here"/build/tolmex-{16,24,32,48,256}.png
    rm "$here"/build/tolmex-{16,24,32,48,256}.png
  fi
  options+=(-DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake "-DTOLMEX_ICON=$icon")
fi
cmake -S . -B "$out" "${cross[@]}" "${options[@]}" > "$out.log" || { cat "$out.log" >&2; exit 1; }
cmake --build "$out" -j "$jobs" ${targets[@]:+--target "${targets[@]}"}

# What the compiler's own code needs lies beside the program.
compiler=$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)
cp -u "$(dirname "$compiler")"/{libstdc++-6,libgcc_s_seh-1}.dll /usr/x86_64-w64-mingw32/lib/libwinpthread-1.dll "$out/bin/"
mkdir -p "$out/bin/fonts"
cp -u /usr/share/fonts/truetype/dejavu/DejaVuSans{,-Bold}.ttf "$out/bin/fonts/"
if [[ $window == ON ]]; then
  cp -u "$qt"/bin/Qt6{Core,Gui,Widgets,PrintSupport}.dll "$out/bin/"
  mkdir -p "$out/bin/plugins"
  (cd "$qt/plugins" && cp -u --parents platforms/q{windows,offscreen}.dll styles/*.dll imageformats/*.dll "$out/bin/plugins/")
  printf '[Paths]\nPlugins = plugins\n' > "$out/bin/qt.conf"
fi
[[ $package == yes ]] || exit 0

# ---- the folder that users get ----
name=Tolmex
made=$here/build/package/$name
rm -rf "$here/build/package"
mkdir -p "$made"
cp -r "$out"/bin/*.dll "$out"/bin/tolmex.exe "$out"/bin/tolmex.arx "$out"/bin/{support,sheets,fonts,tolmex.menu} "$made/"
if [[ $window == ON ]]; then
  cp -r "$out"/bin/{tolmex-desktop.exe,window,plugins,qt.conf} "$made/"
fi
find "$made" -name '*.dll' -o -name '*.exe' -o -name '*.arx' | xargs x86_64-w64-mingw32-strip --strip-unneeded
cp -rL Host/Dwg/reader "$made/dwg-reader"
cp -r examples docs README.md "$made/"
cp -r "$libraries/licences" "$made/"
[[ $window == OFF ]] || cp build/windows-qt/source/debian/copyright "$made/licences/qt6-base.txt"
for package in gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev fonts-dejavu-core; do
  cp "/usr/share/doc/$package/copyright" "$made/licences/$package.txt"
done
find "$made" -name '.stamp' -delete
find "$made/examples" "$made/docs" -name '*.py' -delete
(cd "$here/build/package" && zip -qr9 ../tolmex-windows.zip.part "$name" && mv ../tolmex-windows.zip.part ../tolmex-windows.zip)
makensis -V2 -NOCD "-DSOURCE=$made" "-DOUTPUT=$here/build/tolmex-setup.exe" ${icon:+"-DICON=$icon"} Programs/tolmex/share/tolmex.nsi
ls -l "$here"/build/tolmex-windows.zip "$here"/build/tolmex-setup.exe
