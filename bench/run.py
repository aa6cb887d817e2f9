#!/usr/bin/env python3
"""Compares vellumine-batch with other programs on large photos, in one run on one machine.

Prints a Markdown table of ratios, ours divided by theirs, and writes results.json. Times are measured
in turn, ours and theirs, and repeated; sizes are compared file by file. README.md tells more.
"""

import argparse
import json
import os
import pathlib
import platform
import shutil
import sys
import tempfile

from batches import Batches
from formats import Formats
from measure import HEADER
from photos import Photos
from programs import Programs
from windows import Windows

ROOT = pathlib.Path(__file__).resolve().parent.parent


def copied(photos, folder):
    """Copies with names that need no quoting, and that are in the page cache."""
    folder.mkdir()
    return [pathlib.Path(shutil.copy(photo, folder / f"photo-{number:03}.jpg"))
            for number, photo in enumerate(photos)]


def report(rows, output, photos):
    results = {"machine": platform.machine(), "processors": os.cpu_count(),
               "photos": [photo.name for photo in photos], "rows": [row.as_json() for row in rows]}
    output.mkdir(parents=True, exist_ok=True)
    (output / "results.json").write_text(json.dumps(results, indent=2) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="a finished build")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="for results.json")
    parser.add_argument("--repetitions", type=int, default=3)
    parser.add_argument("--only", choices=("photos", "formats", "batches", "windows"),
                        help="one group of rows")
    parser.add_argument("folder", type=pathlib.Path, nargs="?", help="with JPEG photos")
    arguments = parser.parse_args()

    samples = pathlib.Path(os.environ.get("VELLUMINE_SAMPLES", ROOT / "../shared/samples"))
    folder = arguments.folder or samples / "photos"
    photos = sorted(folder.glob("*.jpg"))
    if not photos:
        print(f"There are no photos in {folder}. Name a folder with some.", file=sys.stderr)
        return 2

    rows = []
    with tempfile.TemporaryDirectory(prefix="vellumine-bench-") as name:
        scratch = pathlib.Path(name)
        programs = Programs(arguments.build, copied(photos, scratch / "photos"), samples, scratch)
        groups = {
            "photos": Photos(programs, arguments.repetitions),
            "formats": Formats(programs, arguments.repetitions),
            "batches": Batches(programs, arguments.build, arguments.repetitions),
        }
        if (arguments.build / "bin/vellumine").exists():
            groups["windows"] = Windows(arguments.build, scratch, arguments.repetitions)
        print(HEADER)
        for title, group in groups.items():
            if arguments.only in (None, title):
                for row in group.rows():
                    rows.append(row)
                    print(row.as_markdown(), flush=True)
    report(rows, arguments.output, photos)
    return 0


if __name__ == "__main__":
    sys.exit(main())
