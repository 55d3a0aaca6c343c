#!/usr/bin/env bash
# Puts beside the cross-built programs in BUILD_DIR/bin what they need to run on Windows (what
# windeployqt would put there): the Qt DLLs, the plugin folders, Qt's own translations of the
# program's seven languages and the MinGW runtime, stripped.
#   packaging/windows/deploy.sh BUILD_DIR
set -euo pipefail
build=$(realpath "$1")
bin=$build/bin
qt=$build/toolchain/qt6-mingw
triple=x86_64-w64-mingw32

cp -u "$qt"/bin/Qt6*.dll "$bin"/
# Qt's print support needs no plugin of its own on Windows; these four folders are all there is.
for plugins in platforms styles sqldrivers imageformats; do
    mkdir -p "$bin/$plugins"
    cp -u "$qt/plugins/$plugins"/*.dll "$bin/$plugins"/
done
# Qt's dialogs (file, print, message buttons) in the program's language: the toolchain has no
# translations, the files are the same on every system, Qt looks for them in translations/.
mkdir -p "$bin/translations"
for code in de en fr it cs nl es; do
    cp -u "/usr/share/qt6/translations/qtbase_$code.qm" "$bin/translations"/
done
gcc_dir=$(dirname "$($triple-g++-posix -print-libgcc-file-name)")
for dll in "$gcc_dir/libstdc++-6.dll" "$gcc_dir/libgcc_s_seh-1.dll" "/usr/$triple/lib/libwinpthread-1.dll"; do
    # Stripped, libstdc++ is 2 MB instead of 24.
    [ "$bin/$(basename "$dll")" -nt "$dll" ] || $triple-strip --strip-unneeded -o "$bin/$(basename "$dll")" "$dll"
done
