#!/usr/bin/env bash
# Cross-builds kalvo.exe, kalvo-cli.exe and the unit tests for Windows into BUILD_DIR with the
# MinGW-w64 Qt of the toolchain folder, unpacked once into BUILD_DIR/toolchain.
#   packaging/windows/build.sh TOOLCHAIN_DIR BUILD_DIR
set -euo pipefail
toolchains=$(realpath "$1")
build=$(mkdir -p "$2" && realpath "$2")
source_dir=$(realpath "$(dirname "$0")/../..")
tc=$build/toolchain
jobs=$(nproc 2>/dev/null || echo 2)

# The archives are unpacked again only when they change.
stamp=$tc/.unpacked
sums=$(cat "$toolchains/SHA256SUMS")
if [ ! -f "$stamp" ] || [ "$(cat "$stamp")" != "$sums" ]; then
    echo "Unpacking the toolchain into $tc"
    (cd "$toolchains" && sha256sum --quiet -c SHA256SUMS)
    rm -rf "$tc" && mkdir -p "$tc"
    tar -I zstd -xf "$toolchains/qt6.8-host-linux.tar.zst" -C "$tc"
    tar -I zstd -xf "$toolchains/qt6.8-mingw-w64.tar.zst" -C "$tc"
    echo "$sums" >"$stamp"
fi
chain=$toolchains/mingw-w64-x86_64-posix.cmake

# GoogleTest from Debian's sources, built once with the same compiler.
gtest=$tc/gtest
if [ ! -f "$gtest/lib/cmake/GTest/GTestConfig.cmake" ]; then
    echo "Building GoogleTest for MinGW"
    cmake -S /usr/src/googletest -B "$tc/gtest-build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$chain" -DCMAKE_INSTALL_PREFIX="$gtest" -Dgtest_disable_pthreads=OFF >/dev/null
    cmake --build "$tc/gtest-build" -j "$jobs" >/dev/null
    cmake --install "$tc/gtest-build" >/dev/null
fi

cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$tc/qt6-mingw/lib/cmake/Qt6/qt.toolchain.cmake" \
    -DQT_CHAINLOAD_TOOLCHAIN_FILE="$chain" \
    -DQT_HOST_PATH="$tc/qt-host" -DQT_HOST_PATH_CMAKE_DIR="$tc/qt-host/lib/cmake" \
    -DCMAKE_PREFIX_PATH="$tc/qt6-mingw;$gtest" -DCMAKE_FIND_ROOT_PATH="$tc/qt6-mingw;$gtest" \
    -DGTest_DIR="$gtest/lib/cmake/GTest" -DKALVO_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$jobs"
