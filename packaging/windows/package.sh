#!/usr/bin/env bash
# Makes the Windows installer (NSIS) and a zip of the program folder from a cross-built and
# deployed Windows build (./kalvo.sh windows, or packaging/windows/{build,deploy}.sh).
#   packaging/windows/package.sh BUILD_DIR OUT_DIR
# Writes OUT_DIR/kalvo-VERSION-setup.exe and OUT_DIR/kalvo-VERSION-windows-x64.zip and prints
# their paths; exits non-zero when BUILD_DIR holds no deployed kalvo.exe.
set -euo pipefail
build=$(realpath "$1")
out=$(mkdir -p "$2" && realpath "$2")
here=$(realpath "$(dirname "$0")")
bin=$build/bin
[ -f "$bin/kalvo.exe" ] && [ -f "$bin/Qt6Core.dll" ] || {
    echo "No deployed Windows build in $build (run ./kalvo.sh windows first)" >&2
    exit 1
}
version=$(sed -n 's/^project(kalvo VERSION \([0-9.]*\).*/\1/p' "$here/../../CMakeLists.txt")

# The program folder: the two programs, the data files beside them, the Qt and MinGW DLLs (not
# Qt's test library), the plugin folders, Qt's translations and the libraries' licences; no test
# or benchmark.
stage=$build/package/kalvo
rm -rf "$stage" && mkdir -p "$stage"
cp "$bin/kalvo.exe" "$bin/kalvo-cli.exe" "$stage"/
for dll in "$bin"/*.dll; do
    [ "$(basename "$dll")" = Qt6Test.dll ] || cp "$dll" "$stage"/
done
for plugins in platforms styles sqldrivers imageformats translations; do
    cp -r "$bin/$plugins" "$stage"/
done
for data in "$here"/../../data/*; do
    cp "$bin/$(basename "$data")" "$stage"/
done
# What the shipped libraries' licences ask: their notices and licence texts (README.txt names
# which is whose). A missing text stops the packaging rather than ship without it.
licenses=$stage/licenses
mkdir -p "$licenses"
cp "$here/THIRD-PARTY.txt" "$licenses/README.txt"
cp "$here/../../third_party/qrencode/COPYING" "$licenses/libqrencode-LGPL-2.1.txt"
cp /usr/share/common-licenses/LGPL-3 "$licenses/LGPL-3.0.txt"
cp /usr/share/common-licenses/GPL-3 "$licenses/GPL-3.0.txt"
cp /usr/share/doc/gcc-mingw-w64-base/copyright "$licenses/gcc-runtime-copyright.txt"
cp /usr/share/doc/mingw-w64-common/copyright "$licenses/mingw-w64-copyright.txt"

installer=$out/kalvo-$version-setup.exe
makensis -V2 -DVERSION="$version" -DSTAGE="$stage" -DOUTFILE="$installer" "$here/kalvo.nsi"
zipfile=$out/kalvo-$version-windows-x64.zip
rm -f "$zipfile"
(cd "$(dirname "$stage")" && zip -qr9 "$zipfile" kalvo)
echo "$installer"
echo "$zipfile"
