"""Questions about the other formats, and a task that the makers of such programs publish."""

import re
import subprocess

from measure import Row, compared, run
from programs import size


class Formats:
    def __init__(self, programs, repetitions):
        self.programs = programs
        self.repetitions = repetitions

    def rows(self):
        yield from self.png()
        yield from self.heic()
        yield from self.published_tasks()

    def png(self):
        """Screenshots, photos and palettes, compressed once more by optipng."""
        programs = self.programs
        samples = sorted((programs.samples / "png").rglob("*.png")) or programs.photos
        ours = programs.convert(samples, "png", outputFormat="png", maximumPixels=1024)
        outputs = programs.outputs("png")
        theirs = [programs.scratch / f"optipng-{output.name}" for output in outputs]
        costs = [programs.optipng(output, target) for output, target in zip(outputs, theirs)]
        ratio = [size(output) / size(target) for output, target in zip(outputs, theirs)]
        yield Row("PNG, size, against optipng -o2 on it", ratio, 0.98)
        yield Row("The same, the worst file", [max(ratio)], 1.0)
        yield Row("PNG, CPU of the whole conversion, against optipng -o2 alone",
                  [ours.cpu / sum(cost.cpu for cost in costs)], 0.15)

    def heic(self):
        """A batch, against heif-enc on the very pixels of our files, one after another since it takes
        all processors for each, at the quality that gives the same size."""
        programs = self.programs
        photos = programs.photos[:4]
        batches = [programs.convert(photos, "heic", outputFormat="heic").wall
                   for _ in range(self.repetitions)]
        theirs_wall, differences = 0, []
        for photo in photos:
            output = programs.scratch / f"heic/{photo.stem}.heic"
            picture = programs.scratch / "heic.png"
            run(["convert", programs.pictures[photo], "-alpha", "off", picture])
            target = programs.scratch / "heif-enc.heic"
            quality = nearest(lambda q: heif_enc(picture, q, target) and size(target), size(output))
            theirs_wall += heif_enc(picture, quality, target).wall
            differences.append(ssim(picture, output) - ssim(picture, target))
        yield Row("HEIC, wall time of a batch, against heif-enc at equal size",
                  [wall / theirs_wall for wall in batches], 0.5)
        yield Row("The same, what it has more of structural similarity",
                  [-difference for difference in differences], 0.002)

    def published_tasks(self):
        """Lanczos 3 to a fixed size; starting the program is part of it."""
        programs = self.programs
        photo = programs.scratch / "task.jpg"
        drawing = programs.scratch / "task.png"
        run(["convert", programs.photos[0], "-resize", "2725x2225!", "-quality", 92, photo])
        run(["convert", programs.photos[0], "-resize", "2048x1536!", "-alpha", "set",
             "-channel", "A", "-evaluate", "multiply", 0.9, "+channel", f"PNG32:{drawing}"])
        for name, source, width, arguments in (
                ("JPEG 2725 x 2225 to 720 x 588", photo, 720, {"outputFormat": "jpeg", "quality": 80}),
                ("RGBA PNG 2048 x 1536 to 720 x 540", drawing, 720, {"outputFormat": "png"})):
            ending = "jpg[Q=80]" if source == photo else "png"
            output = programs.folder("theirs")
            commands = {
                "vipsthumbnail": ["vipsthumbnail", "--size", f"{width}x", "--output",
                                  f"{output}/%s.{ending}", source],
                "ImageMagick": ["convert", source, "-filter", "Lanczos", "-resize", f"{width}x",
                                "-quality", 80, output / f"task.{ending[:3]}"],
            }
            for program, command in commands.items():
                yield compared(
                    f"{name}, CPU, against {program}",
                    lambda: programs.convert([source], maximumPixels=width, **arguments),
                    lambda: run(command), self.repetitions, "cpu")


def heif_enc(picture, quality, target):
    return run(["heif-enc", "-q", quality, picture, "-o", target])


def nearest(measure, wanted):
    """The number from 1 to 100 whose measure, which grows, comes nearest."""
    low, high = 1, 100
    while high - low > 1:
        middle = (low + high) // 2
        if measure(middle) < wanted:
            low = middle
        else:
            high = middle
    return high


def ssim(reference, path):
    """Structural similarity by ImageMagick, 1 for equal pictures."""
    text = subprocess.run(["compare", "-metric", "SSIM", reference, path, "null:"],
                          stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, check=False,
                          text=True).stderr
    return float(re.search(r"[\d.]+(?:e-?\d+)?", text)[0])
