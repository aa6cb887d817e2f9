"""Questions about batches of many small pictures."""

import functools
import json
import struct
import zlib

from measure import Row, run
from programs import AS_WINDOW


class Batches:
    def __init__(self, programs, build, repetitions):
        self.programs = programs
        self.batch_bench = build / "bin/batch_bench"
        self.repetitions = repetitions

    def rows(self):
        yield from self.overhead()
        yield self.colours()
        yield Row("Main thread, longest wait in a batch of 2,000 small pictures",
                  [batch["blocked_max_ms"] for batch in self.webp], 16, "ms")
        yield Row("The same, 99th percentile of the waits",
                  [batch["blocked_p99_ms"] for batch in self.webp], 16, "ms")
        yield Row("CPU a file beyond its conversion", [batch["model_ms"] for batch in self.webp],
                  2, "ms")
        yield self.growth()
        yield from self.linearity()
        yield Row("Finding 100,000 pictures among 200,000 entries",
                  [batch["real_time"] for batch in self.batches("resolveLargeTree")], None, "ms")

    def overhead(self):
        """What a picture of 200 x 200 pixels costs beside the encoder that is started for it."""
        programs = self.programs
        count = 1000
        folder = programs.folder("small")
        first = folder / "small-0000.jpg"
        run(["convert", programs.photos[0], "-resize", "200x200!", "-quality", 90, first])
        content = first.read_bytes()
        for number in range(1, count):
            (folder / f"small-{number:04}.jpg").write_bytes(content)
        picture = programs.kept_picture(first)
        for name, comparisons in (("1,000 pictures of 200 x 200, CPU a file beside cwebp", False),
                                  (AS_WINDOW, True)):
            values = []
            for _ in range(self.repetitions):
                ours = programs.convert([folder], comparisons=comparisons)
                theirs = programs.encode([picture] * count)
                values.append((ours.cpu - theirs.cpu) * 1000 / count)
            yield Row(name, values, 3, "ms")

    def colours(self):
        """What colours that have to be converted add, in pictures that all have the same ones."""
        programs = self.programs
        count = 200
        picture = programs.scratch / "small.png"
        run(["convert", programs.photos[0], "-resize", "64x64!", "-strip", picture])
        plain = picture.read_bytes()
        folders = {}
        for name, content in (("plain", plain), ("linear", with_gamma(plain, 1.0))):
            folders[name] = programs.folder(name)
            for number in range(count):
                (folders[name] / f"small-{number:03}.png").write_bytes(content)
        return Row("200 pictures of 64 x 64, CPU a file for colours of their own",
                   [(programs.convert([folders["linear"]]).cpu
                     - programs.convert([folders["plain"]]).cpu) * 1000 / count
                    for _ in range(self.repetitions)], None, "ms")

    def batches(self, name):
        """The figures of a batch of small pictures, of each repetition."""
        output = self.programs.scratch / "batch.json"
        figures = []
        for _ in range(self.repetitions):
            run([self.batch_bench, f"--benchmark_filter=^{name}(/|$)", f"--benchmark_out={output}"])
            figures += json.loads(output.read_text())["benchmarks"]
        return figures

    @functools.cached_property
    def webp(self):
        return self.batches("convertManyPictures/webp/2000")

    @functools.cached_property
    def ten_thousand(self):
        return self.batches("convertManyPictures/jpeg/10000")

    def growth(self):
        """Beyond the results, which are kept on purpose."""
        return Row("Memory, growth over 9,000 of 10,000 small pictures",
                   [batch["grown_mb"] - batch["live_mb"] for batch in self.ten_thousand], 20, "MB")

    def linearity(self):
        for count in (1_000, 100, 10):
            yield Row(f"Time a file in a batch of 10,000, against one of {count:,}",
                      [many["real_time"] / 10_000 / (few["real_time"] / count)
                       for many, few in zip(self.ten_thousand,
                                            self.batches(f"convertManyPictures/jpeg/{count}"))],
                      1.03)


def with_gamma(png, exponent):
    """The file with a chunk that says how its numbers were encoded."""
    chunk = b"gAMA" + struct.pack(">I", round(exponent * 100_000))
    behind_header = 8 + 25
    return (png[:behind_header] + struct.pack(">I", 4) + chunk
            + struct.pack(">I", zlib.crc32(chunk)) + png[behind_header:])
