#!/usr/bin/env bash
# Installs what is missing, builds, and starts kalvo or runs its tests.
#   ./kalvo.sh run       start on the built-in virtual tester
#   ./kalvo.sh test      build and run every test
#   ./kalvo.sh sanitize  build with AddressSanitizer and UBSan and run the unit tests, leaks included
#   ./kalvo.sh bench     build and run the benchmarks
#   ./kalvo.sh fuzz [SECONDS]  build the libFuzzer harnesses with clang and run each for SECONDS (60)
#   ./kalvo.sh package   build the Debian package into packages/ and check it (and the Windows
#                        installer when the toolchain is there)
#   ./kalvo.sh windows   cross-build for Windows into build-windows/ and check it under wine
#                        (the toolchain folder: $KALVO_TOOLCHAINS, else ../shared/toolchains)
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-serialport-dev qt6-translations-l10n libgtest-dev libgmock-dev
          fonts-dejavu-core poppler-utils libqt6sql6-sqlite libqt6sql6-psql postgresql libpq-dev
          libqrencode-dev zbar-tools)
# Only the fuzz command needs clang and its libFuzzer runtime; the metapackage names follow the
# distribution's default clang (Debian 12: clang-14 and libclang-rt-14-dev).
FUZZ_PACKAGES=(clang libclang-rt-dev)
# The Windows build: MinGW-w64, wine to run it, Xvfb and ImageMagick for its window's picture.
WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix wine wine64 zstd xvfb xauth imagemagick poppler-utils nsis zip)
JOBS=$(nproc 2>/dev/null || echo 2)
# The Qt for MinGW and its tools (see shared/toolchains/README.md).
TOOLCHAINS=${KALVO_TOOLCHAINS:-$(dirname "$PWD")/shared/toolchains}

# Cross-builds the Windows programs and tests into build-windows/ with what they need beside them.
windows_build() {
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
    cmake --build build -j "$JOBS" --target kalvo-cli kalvo-sim
    packaging/windows/build.sh "$TOOLCHAINS" build-windows
    packaging/windows/deploy.sh build-windows
}

install_missing() { # install_missing PACKAGE...
    local missing=()
    for p in "$@"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
}

build() { # build DIR [cmake options...]
    local dir=$1; shift
    cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
    cmake --build "$dir" -j "$JOBS"
}

# Which dictionary each harness uses (fuzz/NAME.dict); the others have their own name.
fuzz_dict() {
    case $1 in
    record_file | record_streams | report_csv) echo records ;;
    link_framing | operations) echo link ;;
    *) echo "$1" ;;
    esac
}

# Runs every harness for $1 seconds, one after the other, on a copy of its seeds in build-fuzz/corpus.
# A crash, a sanitizer report, a leak or a hang leaves its input in build-fuzz/findings/HARNESS/.
run_fuzzers() {
    local seconds=$1 found=0
    for exe in build-fuzz/bin/fuzz_*; do
        local name=${exe#build-fuzz/bin/fuzz_}
        local corpus=build-fuzz/corpus/$name findings=build-fuzz/findings/$name log=build-fuzz/logs/$name.log
        mkdir -p "$corpus" "$findings" build-fuzz/logs
        # The copy grows with what the fuzzer finds; the seeds in fuzz/corpus are never written to.
        cp -n fuzz/corpus/"$name"/* "$corpus"/ 2>/dev/null || true
        local before after rc=0
        before=$(ls "$findings" | wc -l)
        UBSAN_OPTIONS=print_stacktrace=1 ASAN_OPTIONS=detect_leaks=1 \
            "$exe" "$corpus" -dict=fuzz/"$(fuzz_dict "$name")".dict -max_total_time="$seconds" -timeout=10 \
            -print_final_stats=1 -artifact_prefix="$findings"/ >"$log" 2>&1 || rc=$?
        local runs
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
        after=$(ls "$findings" | wc -l)
        if [ "$rc" -ne 0 ] || [ "$after" -gt "$before" ]; then
            found=1
            printf '%-16s %10s runs  FINDING (exit %s), log %s\n' "$name" "${runs:-?}" "$rc" "$log"
            grep -E 'ERROR: |runtime error|SUMMARY|expectation failed|Test unit written' "$log" | head -8 | sed 's/^/    /' || true
            ls -t "$findings" | head -3 | sed "s|^|    input: $findings/|"
        else
            printf '%-16s %10s runs  nothing found\n' "$name" "${runs:-?}"
        fi
    done
    return $found
}

cmd=${1:-run}
if [ "$cmd" = fuzz ]; then
    install_missing "${PACKAGES[@]}" "${FUZZ_PACKAGES[@]}"
elif [ "$cmd" = windows ] || { [ "$cmd" = package ] && [ -f "$TOOLCHAINS/qt6.8-mingw-w64.tar.zst" ]; }; then
    install_missing "${PACKAGES[@]}" "${WINDOWS_PACKAGES[@]}"
else
    install_missing "${PACKAGES[@]}"
fi
case "$cmd" in
run)
    build build
    if [ -x build/bin/kalvo ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then
        exec build/bin/kalvo --simulate
    fi
    if [ -x build/bin/kalvo ]; then
        echo "No display here: doing the same job through kalvo-cli on the virtual tester."
    else
        echo "Running kalvo-cli on the virtual tester."
    fi
    exec build/bin/kalvo-cli --simulate identify
    ;;
test)
    build build
    ctest --test-dir build --output-on-failure -j "$JOBS"
    ;;
sanitize)
    build build-asan -DKALVO_SANITIZE=ON -DKALVO_BUILD_BENCH=OFF
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        ctest --test-dir build-asan --output-on-failure -j "$JOBS" -L unit
    ;;
bench)
    build build
    for b in build/bin/bench_*; do "$b"; done
    ;;
screenshots)
    # The window tests that take pictures, on a real X server of 1024x768 (Xvfb): what a user sees.
    install_missing xvfb xauth
    build build
    QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1024x768x24" \
        build/bin/shellui_tests
    echo "Pictures in build/bin/screenshots/; each window in German, English and French:"
    ls build/bin/screenshots | sed -n 's/^lang-\(.*\)-de\.png$/  \1/p' | tr '\n' ' '
    echo
    ;;
package)
    # The programs of the one build folder (the tests are not built for this), installed under /usr.
    install_missing dpkg-dev
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
    cmake --build build -j "$JOBS" --target kalvo kalvo-cli kalvo-sim kalvo-manpages
    mkdir -p packages
    rm -rf packages/kalvo_*.deb build/cpack
    cpack --config build/CPackConfig.cmake -B build/cpack >/dev/null
    cp build/cpack/kalvo_*.deb packages/
    deb=$(ls packages/kalvo_*.deb)
    packaging/linux/check-deb.sh "$deb"
    echo "Debian package: $deb ($(du -k "$deb" | cut -f1) KiB)"
    # The Windows installer and zip, when the cross toolchain is there (built first if need be).
    if [ -f "$TOOLCHAINS/qt6.8-mingw-w64.tar.zst" ]; then
        windows_build
        packaging/windows/package.sh build-windows packages
    else
        echo "No Windows installer: no toolchain in $TOOLCHAINS (set KALVO_TOOLCHAINS)."
    fi
    ;;
fuzz)
    seconds=${2:-60}
    build build-fuzz -DKALVO_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++
    run_fuzzers "$seconds"
    ;;
windows)
    # The Linux kalvo-sim and kalvo-cli are the other end of the COM link and the reference file.
    if [ ! -f "$TOOLCHAINS/qt6.8-mingw-w64.tar.zst" ]; then
        echo "No Windows toolchain in $TOOLCHAINS (set KALVO_TOOLCHAINS): nothing built for Windows." >&2
        exit 3
    fi
    windows_build
    xvfb-run -a -s "-screen 0 1024x768x24" packaging/windows/check.sh build-windows build/bin
    ;;
*)
    echo "usage: $0 run|test|sanitize|bench|screenshots|fuzz [SECONDS]|package|windows" >&2
    exit 2
    ;;
esac
