"""Questions about batches of many small pictures."""

import functools
import json

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
        cost = {}
        for name, words in (("plain", []), ("converted", ["-set", "gamma", "0.55556"])):
            folder = programs.folder(name)
            first = folder / "small-000.png"
            run(["convert", programs.photos[0], "-resize", "64x64!", "-strip", *words, first])
            for number in range(1, count):
                (folder / f"small-{number:03}.png").write_bytes(first.read_bytes())
            cost[name] = [programs.convert([folder]).cpu for _ in range(self.repetitions)]
        return Row("200 pictures of 64 x 64, CPU a file for colours of their own",
                   [(converted - plain) * 1000 / count
                    for plain, converted in zip(cost["plain"], cost["converted"])], None, "ms")

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
