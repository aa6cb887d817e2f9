#!/usr/bin/env python3
"""Compares vellumine-batch with other programs on large photos, in one run on one machine.

Prints a Markdown table of ratios, ours divided by theirs, and writes results.json. Times are measured
in turn, ours and theirs, and repeated; sizes are compared file by file.
"""

import argparse
import functools
import json
import os
import pathlib
import platform
import shutil
import subprocess
import sys
import tempfile

from measure import Row, ratios, run, run_all
from windows import Windows

ROOT = pathlib.Path(__file__).resolve().parent.parent
WIDTH = 2560
QUALITY = 82

# Stands in for cwebp and keeps the picture that it is handed.
KEEPING_ENCODER = """#!/bin/sh
for word; do
    case "$word" in *.pam) cp "$word" "$KEPT_PICTURE" ;; esac
done
exec cwebp "$@"
"""


class Bench:
    """Our program, the others, the photos and a scratch folder. One method a question."""

    def __init__(self, build, photos, samples, scratch, repetitions):
        self.program = build / "bin/vellumine-batch"
        self.jpeg_floor = build / "bin/jpeg_floor"
        self.batch_bench = build / "bin/batch_bench"
        self.photos = photos
        self.samples = samples
        self.scratch = scratch
        self.repetitions = repetitions

    def folder(self, name):
        """An empty folder of that name."""
        path = self.scratch / name
        shutil.rmtree(path, ignore_errors=True)
        path.mkdir()
        return path

    # Ours

    def convert(self, files=None, output="output", environment=None, **settings):
        """Runs vellumine-batch into an empty folder. A file may fail, which ends it with 1."""
        settings = {"destinationMode": "selectedFolder",
                    "destinationFolderBookmark": self.folder(output), **settings}
        words = [word for key, value in settings.items() for word in ("--set", f"{key}={value}")]
        return run([self.program, *words, *(files or self.photos)],
                   {"HOME": str(self.scratch), **(environment or {})}, accepted=(0, 1))

    def convert_to_jpeg(self):
        return self.convert(outputFormat="jpeg")

    # Theirs

    @functools.cached_property
    def pictures(self):
        """By photo: the picture that our program hands to cwebp, resized and in its colours."""
        encoder = self.scratch / "keeping-encoder"
        encoder.write_text(KEEPING_ENCODER)
        encoder.chmod(0o755)
        pictures = {}
        for photo in self.photos:
            pictures[photo] = self.scratch / f"{photo.stem}.pam"
            self.convert([photo], environment={"VELLUMINE_CWEBP_PATH": str(encoder),
                                               "KEPT_PICTURE": str(pictures[photo])})
        return pictures

    def floor(self):
        encoded = self.scratch / "floor.webp"
        return run([self.jpeg_floor, *self.photos]) + run_all(
            ["cwebp", "-quiet", "-q", QUALITY, picture, "-o", encoded]
            for picture in self.pictures.values())

    def cwebp_arguments(self):
        """A line for xargs per photo. cwebp does not turn, so the side to shrink is named for it."""
        output = self.folder("output")
        lines = []
        for photo in self.photos:
            width, turned = upright_width(photo)
            resize = ["-resize", *(("0", WIDTH) if turned else (WIDTH, "0"))] if width > WIDTH else []
            words = ["-quiet", "-q", QUALITY, *resize, photo, "-o", output / f"{photo.stem}.webp"]
            lines.append(" ".join(map(str, words)) + "\n")
        path = self.scratch / "arguments"
        path.write_text("".join(lines))
        return path

    def vips(self, name):
        """vipsthumbnail over all photos; `name` is an ending with options."""
        return run(["vipsthumbnail", "--size", f"{WIDTH}x>", "--export-profile", "srgb",
                    "--output", f"{self.folder('output')}/%s.{name}", *self.photos])

    def optipng(self, path):
        target = self.scratch / "optipng.png"
        target.unlink(missing_ok=True)
        run(["optipng", "-quiet", "-force", "-o2", path, "-out", target])
        return target

    def image_magick(self, path):
        target = self.scratch / "image-magick.jpg"
        run(["convert", path, "-alpha", "off", "-strip", "-interlace", "JPEG", "-quality", QUALITY,
             target])
        return target

    # Questions

    def webp_against_floor(self):
        self.pictures  # made before anything is measured
        return Row("WebP, CPU, against decoding and cwebp alone",
                   ratios(self.convert, self.floor, self.repetitions, "cpu"), 1.20)

    def webp_against_cwebp(self):
        command = ["xargs", "-a", self.cwebp_arguments(), "-P", os.cpu_count(), "-L", 1, "cwebp"]
        return Row("WebP, wall time, against cwebp in parallel",
                   ratios(lambda: self.convert(output="ours"), lambda: run(command),
                          self.repetitions, "wall"), 1.0)

    def webp_against_vips(self):
        return Row("WebP, CPU, against vipsthumbnail",
                   ratios(self.convert, lambda: self.vips(f"webp[Q={QUALITY},strip]"),
                          self.repetitions, "cpu"), 0.9)

    def jpeg_against_vips(self):
        options = f"Q={QUALITY},optimize_coding,interlace,strip"
        return Row("JPEG, CPU, against vipsthumbnail with the same options",
                   ratios(self.convert_to_jpeg, lambda: self.vips(f"jpg[{options}]"),
                          self.repetitions, "cpu"), 0.8)

    def jpeg_against_vips_defaults(self):
        return Row("JPEG, CPU, against vipsthumbnail's defaults (baseline, Q 75)",
                   ratios(self.convert_to_jpeg, lambda: self.vips("jpg"), self.repetitions, "cpu"))

    def peak_memory(self):
        photo = self.scratch / "24-megapixels.jpg"
        run(["convert", self.photos[0], "-resize", "6000x4000!", "-quality", 92, photo])
        return Row("Peak memory, one photo of 24 megapixels to WebP",
                   [self.convert([photo]).memory for _ in range(self.repetitions)], 220, "MB")

    def png_sizes(self):
        samples = sorted((self.samples / "png").rglob("*.png"))
        self.convert(samples or self.photos, "png", outputFormat="png", maximumPixels=1024)
        return Row("PNG, size, against optipng -o2 on it",
                   [size(path) / size(self.optipng(path)) for path in self.outputs("png")], 1.0)

    def jpeg_sizes(self):
        """ImageMagick encodes the very pixels that our JPEG files were made of."""
        self.convert(output="jpeg", outputFormat="jpeg")
        return Row("JPEG, size, against ImageMagick on the same pixels",
                   [size(self.scratch / f"jpeg/{photo.stem}.jpg") / size(self.image_magick(picture))
                    for photo, picture in self.pictures.items()], 1.0)

    def batches(self, name):
        """The figures of a batch of small pictures, of each repetition."""
        output = self.scratch / "batch.json"
        figures = []
        for _ in range(self.repetitions):
            run([self.batch_bench, f"--benchmark_filter=^{name}", f"--benchmark_out={output}"])
            figures += json.loads(output.read_text())["benchmarks"]
        return figures

    @functools.cached_property
    def webp_batches(self):
        return self.batches("convertManyPictures/webp/2000")

    def main_thread_at_worst(self):
        return Row("Main thread, longest wait in a batch of 2,000 small pictures",
                   [batch["blocked_max_ms"] for batch in self.webp_batches], 16, "ms")

    def main_thread_mostly(self):
        return Row("The same, 99th percentile of the waits",
                   [batch["blocked_p99_ms"] for batch in self.webp_batches], 16, "ms")

    def model(self):
        return Row("CPU a file beyond its conversion",
                   [batch["model_ms"] for batch in self.webp_batches], 2, "ms")

    def growth(self):
        """Beyond the results, which are kept on purpose."""
        return Row("Memory, growth over 9,000 of 10,000 small pictures",
                   [batch["grown_mb"] - batch["live_mb"]
                    for batch in self.batches("convertManyPictures/jpeg/10000")], 20, "MB")

    def scan(self):
        return Row("Finding 100,000 pictures among 200,000 entries",
                   [batch["real_time"] for batch in self.batches("resolveLargeTree")], None, "ms")

    def outputs(self, folder):
        return sorted((self.scratch / folder).iterdir())


def size(path):
    return path.stat().st_size


def upright_width(photo):
    """The width after the EXIF orientation, and whether that swaps the sides."""
    text = subprocess.run(["identify", "-format", "%w %h %[EXIF:Orientation]", photo],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                          text=True).stdout.split()
    turned = len(text) > 2 and int(text[2]) >= 5
    return int(text[1] if turned else text[0]), turned


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
        bench = Bench(arguments.build, copied(photos, scratch / "photos"), samples, scratch,
                      arguments.repetitions)
        print("| ours against theirs | median | min | max | goal | |\n|---|---|---|---|---|---|")
        for question in (bench.webp_against_floor, bench.webp_against_cwebp, bench.webp_against_vips,
                         bench.jpeg_against_vips, bench.jpeg_against_vips_defaults,
                         bench.peak_memory, bench.png_sizes, bench.jpeg_sizes, bench.main_thread_at_worst,
                         bench.main_thread_mostly, bench.model, bench.growth, bench.scan):
            rows.append(question())
            print(rows[-1].as_markdown(), flush=True)
        if (arguments.build / "bin/vellumine").exists():
            print("\n| windows | median | min | max | goal | |\n|---|---|---|---|---|---|")
            for row in Windows(arguments.build, scratch, arguments.repetitions).rows():
                rows.append(row)
                print(row.as_markdown(), flush=True)
    report(rows, arguments.output, photos)
    return 0


if __name__ == "__main__":
    sys.exit(main())
