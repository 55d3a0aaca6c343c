#!/usr/bin/env python3
# Writes the seed corpora in fuzz/corpus/ from data/ and from what the virtual tester answers.
#   fuzz/make_corpus.py [BIN_DIR]    BIN_DIR holds kalvo-cli and kalvo-sim (default: build/bin)
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
CORPUS = ROOT / "fuzz" / "corpus"
DATA = ROOT / "data"
DC1 = b"\x11"

# The scenario and operation numbers of fuzz_link_framing.cpp and fuzz_operations.cpp.
FRAMING = {"wake": 0, "listing": 1, "accessory": 2, "record_position": 3, "record_literal": 4, "backup": 5}
TRACE_BIT = 0x80
OPERATIONS = {
    "identify": (0, ["dis?", "ver?", "idn?"]),
    "modem": (2, ["str?122", "str?123", "str?125"]),
    "kuschl": (3, ["wer?bgwkuschl_ea"]),
    "ubez": (4, ["wer?bgw601_UBEZ"]),
    "pzhv": (5, ["var?D2"]),
    "variables": (6, ["var?D3", "bit?04"]),
    "count": (8, ["prx?n"]),
    "current": (9, ["prx?", "prx?x", "prx?y", "prx?z"]),
    "listing": (10, ["prx?nx"]),
    "render": (12, ["tas!ron", "prn!1,1", "rst!0"]),
    "clock": (13, ["dat?"]),
    "store": (15, ["kal!pgm"]),
}


def capture(cli, work, name, args, port=None):
    """The bytes the tester sent while kalvo-cli ran `args`."""
    trace = work / (name + ".trace")
    where = ["--port", port] if port else ["--simulate"]
    subprocess.run([str(cli), *where, "--yes", "--trace", str(trace), *args], cwd=work,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120)
    return trace.read_bytes()


def answers(trace):
    """A trace cut into single answers, each with its DC1."""
    parts = trace.split(DC1)
    return [p + DC1 for p in parts[:-1]]


def script(trace, sizes=(64,), silences=0, vanish=False):
    """A FuzzTransport script that delivers `trace` in chunks of the given sizes, in turn."""
    out = bytearray(b"\x00" * silences)
    i, k = 0, 0
    while i < len(trace):
        n = min(sizes[k % len(sizes)], 254, len(trace) - i)
        out += bytes([n]) + trace[i:i + n]
        i, k = i + n, k + 1
    if vanish:
        out += b"\xff"
    return bytes(out)


def write(harness, name, data):
    folder = CORPUS / harness
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data)


def accessory_trace(bin_dir, work):
    sim = subprocess.Popen([str(bin_dir / "kalvo-sim"), "--kym"], stdout=subprocess.PIPE, text=True)
    try:
        port = sim.stdout.readline().strip()
        time.sleep(0.2)
        return capture(bin_dir / "kalvo-cli", work, "kym", ["kym", "read", "kym.txt"], port=port)
    finally:
        sim.terminate()
        sim.wait()


def specdb_seeds():
    """Test specifications: a set file of two records, a store record in three parts (both ends of an
    answer), a test record, and limits as typed."""
    codes = b"0000000000001000200000000000050200001F02"
    set_record = (b"01 Werkstatt; ;" + codes + b";04.03.09;9:5:7\r\n" + b";" * 24 + b"\r\n" + b";" * 18
                  + b";;>1.50kV\r\n")
    spec_x = b"prx?1x:;DATABASE  Nr=1;" + codes + b";01 Werkstatt;04.03.09;9:5:7;;<0.300\xea" + b";" * 14
    return {
        "set-and-record": set_record + set_record.replace(b"01 W", b"02 W") + b"\0" + spec_x + b".\r\n\x11\0"
        + b"prx?1y:XXXXXXXX;;;<0.500mA" + b";" * 14 + b"\r\n>\x11\0prx?1z:XXXXXXXX;" + b";" * 10
        + b";;>1.50kV.\r\n\x11\0>2.000MOhm",
        "test-record": b"a\r\nb\r\n\0prx?2x:P;05.03.09;10:00;GER\x8eT-7;SK I;.\r\n\x11\0"
        + b"prx?2y:XXXXXXXX0.12;<0.300\xea;.\r\n\x11\0prx?2z:XXXXXXXX;;$FF.\r\n\x11\0<0.1;0mA",
    }


def main():
    bin_dir = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build" / "bin").resolve()
    cli = bin_dir / "kalvo-cli"
    # The seeds are written anew; the inputs that once found a fault stay.
    for seed in CORPUS.glob("*/*"):
        if not seed.name.startswith("regress-"):
            seed.unlink()
    with tempfile.TemporaryDirectory() as tmp:
        work = Path(tmp)
        records_trace = capture(cli, work, "records", ["records", "read-all", "alle.txt"])
        record_file = (work / "alle.txt").read_bytes()
        capture(cli, work, "backup", ["cal", "backup", "a.cal"])
        cal = (work / "a.cal").read_bytes()
        listing = capture(cli, work, "listing", ["send", "prx?nx"])
        identify = capture(cli, work, "identify", ["identify"])
        report = subprocess.run([str(cli), "report", "alle.txt", "--record", "2"], cwd=work,
                                capture_output=True, timeout=60).stdout
        kym = accessory_trace(bin_dir, work)
        kym_file = (work / "kym.txt").read_bytes() if (work / "kym.txt").exists() else b""
        ops = {name: capture(cli, work, name, ["send", *commands]) for name, (_, commands) in OPERATIONS.items()}
        record1 = capture(cli, work, "record1", ["send", "prx?1x", "prx?1y", "prx?1z"])
        lines = record_file.split(b"\r\n")

        # Record files and record texts.
        write("record_file", "alle.txt", record_file)
        write("record_file", "kym.txt", kym_file)
        write("record_file", "one-record", lines[1] + b"\r\n")
        write("record_file", "lf-only", b"\n".join(lines[2:5]))
        # The listing and the accessory stream as the tester sends them.
        write("record_streams", "listing", answers(listing)[0])
        write("record_streams", "empty-listing", b"No Protokol;\x11")
        kym_answers = answers(kym)
        accessory_stream = max(kym_answers, key=len)
        write("record_streams", "accessory", accessory_stream)
        # Header file, entries, report text.
        write("report_csv", "export", (DATA / "ueber.csv").read_bytes() + b"\0" + b"\n".join(lines[:3]) + b"\0"
              + report)
        write("report_csv", "print-text", answers(ops["render"])[1])
        # Calibration backups: the same file, and one with drifted and missing entries.
        drifted = cal.replace(b"29:0,3042.6", b"29:0,3100").replace(b"3:8,", b"3:9,")
        write("calibration", "same", cal + b"\0" + cal)
        write("calibration", "drifted", cal + b"\0" + b"Kalvomer KALVO-01\r\n" + drifted[: len(drifted) // 2])
        write("calibration", "answer", b"kal? 29;29:0,3042.6.Y\r\n\x11")
        write("variable_mas", "variable.mas", (DATA / "variable.mas").read_bytes())
        for name, data in specdb_seeds().items():
            write("specdb", name, data)
        write("sprachen", "sprachen.TXT", (DATA / "sprachen.TXT").read_bytes())
        write("settings", "port-language", b"COM 2;Schnittstelle\r\n2;Nummer\r\nenglisch;Sprache\r\n\r\n1\r\n"
              + b"\0/Service\n--timeout\n5")
        write("settings", "device-path", b"/dev/ttyUSB0\n0\ndeutsch\n\0--simulate\n/K\n/Entw")
        # Single answers, one a file; the marks of the clock answer for FieldBetween.
        everything = [a for name in ("identify", "modem", "kuschl", "ubez", "pzhv", "variables", "count",
                                     "current", "clock", "store") for a in answers(ops[name])]
        for n, answer in enumerate(everything):
            write("answers", "answer-%02d" % n, answer)
        write("answers", "clock-marks", answers(ops["clock"])[0] + b"\0=\0;")
        write("answers", "display", b"\x05KEY OFF\r\nMessung l\x84uft\r\nR-ISO >19.9M\xea PRX")
        # The link's framing: whole sessions in chunks of many sizes, with silences and a vanished line.
        write("link_framing", "wake", bytes([FRAMING["wake"]]) + script(answers(identify)[0] + answers(ops["identify"])[0], (3, 64)))
        write("link_framing", "listing", bytes([FRAMING["listing"]]) + script(answers(listing)[0], (200, 17, 1)))
        write("link_framing", "accessory", bytes([FRAMING["accessory"] | TRACE_BIT])
              + script(accessory_stream, (254, 100), silences=2))
        write("link_framing", "record-position", bytes([FRAMING["record_position"]]) + script(records_trace[:2000], (64, 5)))
        write("link_framing", "record-literal", bytes([FRAMING["record_literal"]]) + script(record1, (30,), vanish=True))
        write("link_framing", "backup", bytes([FRAMING["backup"]]) + script(capture(cli, work, "backup2", ["cal", "backup", "b.cal"]), (254,)))
        # Operations, each with the answers it reads.
        for name, (number, _) in OPERATIONS.items():
            write("operations", name, bytes([number]) + script(ops[name], (254,)))
        write("operations", "connect", bytes([14]) + script(identify[: identify.index(b"dis?")], (254,)))
        registers = capture(cli, work, "registers", ["send", *["bit?%d" % b for b in range(8)],
                                                     *["var?%X" % a for a in range(0xCF, 0x100)]])
        write("operations", "registers", bytes([1]) + script(registers, (254,)))
        dump = capture(cli, work, "dump", ["send", *["var?%X" % a for a in range(0xD0, 0x100)]])
        write("operations", "dump", bytes([7]) + script(dump, (254,)))
        write("operations", "accessory", bytes([11]) + script(kym, (254,)))
    total = sum(f.stat().st_size for f in CORPUS.rglob("*") if f.is_file())
    print("corpus: %d files, %d bytes" % (sum(1 for f in CORPUS.rglob("*") if f.is_file()), total))


if __name__ == "__main__":
    main()
