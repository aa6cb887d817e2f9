#!/usr/bin/env python3
"""Counts the instructions of the hot paths with callgrind, and compares them with those on record.

Instructions do not depend on what else a machine does. Only those of our own code count: another
version of a library is nobody's regression. The record is instructions.json; --record writes it.
Ends with 1 where a path takes more than was recorded, and with 77 where nothing can be compared:
without valgrind, and with another compiler or processor than the record's.
"""

import argparse
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

RECORD = pathlib.Path(__file__).resolve().parent / "instructions.json"
# A little more is no regression.
TOLERANCE = 1.03
NOT_COMPARABLE = 77


def own_instructions(report, program):
    """The self cost of all functions of the program, from a callgrind file."""
    names, total, is_own, is_inclusive = {}, 0, False, False
    for line in report.read_text(errors="replace").splitlines():
        if match := re.fullmatch(r"ob=\((\d+)\)(?: (.*))?", line):
            names.setdefault(match[1], match[2])
            is_own = names[match[1]] == str(program)
        elif match := re.fullmatch(r"cob=\((\d+)\)(?: (.*))?", line):
            names.setdefault(match[1], match[2])
        elif line.startswith("calls="):
            is_inclusive = True  # the next line is what the callee took
        elif re.match(r"[+\-*\d]", line):
            if is_own and not is_inclusive:
                total += int(line.split()[1])
            is_inclusive = False
    return total


def measured(program, name):
    with tempfile.TemporaryDirectory(prefix="vellumine-instructions-") as folder:
        report = pathlib.Path(folder) / "callgrind"
        subprocess.run(["valgrind", "--tool=callgrind", "--quiet", "--collect-atstart=no",
                        "--toggle-collect=runHotPath", f"--callgrind-out-file={report}",
                        str(program), name],
                       check=True, stdout=subprocess.DEVNULL)
        return own_instructions(report, program)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", type=pathlib.Path, required=True, help="hot_paths")
    parser.add_argument("--record", action="store_true", help="write the record anew")
    arguments = parser.parse_args()
    if shutil.which("valgrind") is None:
        print("There is no valgrind to count with.")
        return NOT_COMPARABLE

    program = arguments.program.resolve()
    names = subprocess.run([str(program)], check=True, stdout=subprocess.PIPE,
                           text=True).stdout.splitlines()
    made_with = subprocess.run([str(program), "--made-with"], check=True, stdout=subprocess.PIPE,
                               text=True).stdout.strip()
    recorded = {} if arguments.record else json.loads(RECORD.read_text())
    if not arguments.record and recorded["made with"] != made_with:
        print(f"The record is of {recorded['made with']}, this is {made_with}.")
        return NOT_COMPARABLE
    counts = {name: measured(program, name) for name in names}
    if arguments.record:
        RECORD.write_text(json.dumps({"made with": made_with, "paths": counts}, indent=2) + "\n")
        return 0

    record = recorded["paths"]
    print("| path | instructions | of those on record | |\n|---|---|---|---|")
    grown = set(record) ^ set(counts)
    for name, count in counts.items():
        share = count / record.get(name, count)
        if share > TOLERANCE:
            grown.add(name)
        print(f"| {name} | {count:,} | {share:.3f} | {'more' if name in grown else ''} |")
    for name in sorted(grown):
        print(f"{name}: see whether that is worth it, then --record")
    return 1 if grown else 0


if __name__ == "__main__":
    sys.exit(main())
