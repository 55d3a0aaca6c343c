#!/bin/sh
# Makes archive-schema1.sqlite: an archive of schema version 1, written by kalvo-cli of commit
# ace91dd (the last one before customers). Run from a build of that commit:
#   tests/archive/data/make-archive-schema1.sh build/bin/kalvo-cli
# The file is committed; running this again with a newer kalvo-cli makes a newer schema.
set -eu
cli=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One record: tester, code (result at 7, regulation at 13), ID-Nr, type, date, time, and the
# accessory's customer, street, post code and town (fields 61..64) when given.
record() {
    code=$(printf '000000%s00000%s000000000000000501' "$2" "$3")
    fields="KALVO-1;$code;$1;$4;$5;$6"
    i=7
    while [ $i -le 60 ]; do fields="$fields;"; i=$((i + 1)); done
    fields="$fields;$7;$8;$9;${10}"
    i=65
    while [ $i -le 74 ]; do fields="$fields;"; i=$((i + 1)); done
    printf 'P%s;$FF\r\n' "$fields"
}

{
    # E-0815 at two customers, one of them tested twice
    record E-0815 0 5 Bohrmaschine 10.01.23 08:00 "Mueller GmbH" "Hauptstr. 1" 12345 Berlin
    record E-0815 0 5 Bohrmaschine 12.01.24 09:15 "Mueller GmbH" "Hauptstr. 1" 12345 Berlin
    record E-0815 0 5 Winkelschleifer 03.06.24 10:30 "Schmidt KG" "Am Markt 7" 54321 Hamburg
    # the same customer written with a trailing blank
    record S-5 7 5 Kabeltrommel 04.06.24 11:00 "Schmidt KG " "Am Markt 7" 54321 Hamburg
    # without the accessory's customer fields
    record M-1 0 6 Infusionspumpe 15.02.24 07:45 "" "" "" ""
    record D-7 7 5 Staubsauger 01.03.24 13:20 "" "" "" ""
    record D-9 0 5 Leiter 20.04.24 14:00 "" "" "" ""
    # no readable date: kept, but no next test
    record R-0 0 5 Verlaengerung "" "" "" "" "" ""
} > "$work/records.txt"

rm -f "$here/archive-schema1.sqlite"
"$cli" --archive "$here/archive-schema1.sqlite" archive import "$work/records.txt"
"$cli" --archive "$here/archive-schema1.sqlite" archive interval --device D-9 36
"$cli" --archive "$here/archive-schema1.sqlite" archive interval --regulation "DIN VDE 0702" 6
"$cli" --archive "$here/archive-schema1.sqlite" archive due --before 2030-01-01
