#!/usr/bin/env bash
# Smoke check of a kalvo .deb without installing it: unpacks it into a read-only temporary root
# and, as a user who may not write there (nobody when run as root), runs the unpacked kalvo-cli
# from a read-only current folder against the unpacked kalvo-sim. log.tmp and proto.txt must land
# in the user's data folder, and the output must say so.
#   packaging/linux/check-deb.sh kalvo_VERSION_ARCH.deb
set -euo pipefail
deb=$(realpath "$1")
tmp=$(mktemp -d)
sim=""
cleanup() {
    [ -n "$sim" ] && kill "$sim" 2>/dev/null
    chmod -R u+w "$tmp"
    rm -rf "$tmp"
}
trap cleanup EXIT
fail() { echo "check-deb: $*" >&2; exit 1; }

root=$tmp/root
dpkg-deb -x "$deb" "$root"
for f in usr/bin/kalvo usr/bin/kalvo-cli usr/bin/kalvo-sim usr/lib/kalvo/kalvo usr/lib/kalvo/kalvo-cli \
         usr/lib/kalvo/sprachen.TXT usr/lib/kalvo/Q417G.html usr/lib/kalvo/variable.mas usr/lib/kalvo/ueber.csv \
         usr/share/applications/kalvo.desktop usr/share/icons/hicolor/scalable/apps/kalvo.svg \
         usr/share/metainfo/io.github.kalvo.kalvo.metainfo.xml usr/share/man/man1/kalvo.1.gz \
         usr/share/man/man1/kalvo-cli.1.gz usr/share/bash-completion/completions/kalvo-cli \
         usr/share/doc/kalvo/copyright; do
    [ -e "$root/$f" ] || fail "$f is missing from the package"
done
depends=$(dpkg-deb -f "$deb" Depends)
for d in libqt6core6 libqt6serialport6 libqt6widgets6 libqt6sql6-sqlite libqt6sql6-psql fonts-dejavu-core libqrencode4; do
    [[ $depends == *"$d"* ]] || fail "Depends lacks $d: $depends"
done
command -v desktop-file-validate >/dev/null && desktop-file-validate "$root/usr/share/applications/kalvo.desktop"
bash -n "$root/usr/share/bash-completion/completions/kalvo-cli"

# The user: nobody when root (root writes into read-only folders), else oneself.
as_user=()
[ "$(id -u)" -eq 0 ] && as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
data=$tmp/data work=$tmp/work
mkdir -p "$data" "$work"
chmod 777 "$data"
chmod -R a-w "$root" "$work"
chmod 755 "$tmp"
run() { (cd "$work" && env XDG_DATA_HOME="$data" XDG_CONFIG_HOME="$data" "${as_user[@]}" "$root/usr/bin/kalvo-cli" "$@"); }

out=$(run --simulate identify 2>&1) || fail "kalvo-cli --simulate identify failed: $out"
echo "$out" | head -3

# kalvo-sim prints its terminal's path first.
"$root/usr/bin/kalvo-sim" --kym >"$tmp/sim.out" 2>&1 &
sim=$!
for _ in $(seq 50); do [ -s "$tmp/sim.out" ] && break; sleep 0.1; done
pty=$(head -1 "$tmp/sim.out")
[ -e "$pty" ] || fail "kalvo-sim gave no terminal: $(cat "$tmp/sim.out")"
chmod 666 "$pty"
out=$(run --port "$pty" kym read "$data/kym.txt" 2>&1) || fail "kalvo-cli kym read failed: $out"
[ -s "$data/kalvo/log.tmp" ] || fail "log.tmp is not in the data folder: $out"
[ -s "$data/kym.txt" ] || fail "kym.txt was not written: $out"
[[ $out == *"log.tmp: $root/usr/lib/kalvo ist nicht beschreibbar, die Datei liegt in $data/kalvo"* ]] ||
    fail "kym read does not say where log.tmp went: $out"
echo "kym read: $(grep -c . "$data/kym.txt") records, log.tmp in the data folder"
echo "check-deb: $(basename "$deb") is fine"
