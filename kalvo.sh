#!/usr/bin/env bash
# Installs what is missing, builds, and starts kalvo or runs its tests.
#   ./kalvo.sh run       start on the built-in virtual tester
#   ./kalvo.sh test      build and run every test
#   ./kalvo.sh sanitize  build with AddressSanitizer and UBSan and run the unit tests, leaks included
#   ./kalvo.sh bench     build and run the benchmarks
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-serialport-dev libgtest-dev libgmock-dev
          fonts-dejavu-core poppler-utils)
JOBS=$(nproc 2>/dev/null || echo 2)

install_missing() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
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

cmd=${1:-run}
install_missing
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
*)
    echo "usage: $0 run|test|sanitize|bench" >&2
    exit 2
    ;;
esac
