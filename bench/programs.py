"""What is measured: our program on photos, and the programs and floors that it is held against."""

import functools
import os
import shutil
import subprocess

from measure import run, run_all

WIDTH = 2560
QUALITY = 82
# The options with which we write JPEG files, as vipsthumbnail says them.
JPEG_OPTIONS = f"Q={QUALITY},optimize_coding,interlace,strip"
NOT_RESIZED = {"resizeMode": "none"}
# What of a row tells that it was measured with convert_as_window().
AS_WINDOW = "The same, with the comparisons that the window makes"

# Stands in for cwebp and keeps the picture that it is handed.
KEEPING_ENCODER = """#!/bin/sh
for word; do
    case "$word" in *.pam) cp "$word" "$KEPT_PICTURE" ;; esac
done
exec cwebp "$@"
"""


class Programs:
    """Our program, the others, the photos and a scratch folder."""

    def __init__(self, build, photos, samples, scratch):
        self.program = build / "bin/vellumine-batch"
        self.jpeg_floor = build / "bin/jpeg_floor"
        self.photos = photos
        self.samples = samples
        self.scratch = scratch
        # Not what years of other programs have left behind: a folder that is long is slow.
        self.temporary = scratch / "temporary"
        self.temporary.mkdir()

    def folder(self, name):
        """An empty folder of that name."""
        path = self.scratch / name
        shutil.rmtree(path, ignore_errors=True)
        path.mkdir()
        return path

    def outputs(self, folder):
        return sorted((self.scratch / folder).iterdir())

    # Ours

    def convert(self, files=None, output="output", environment=None, comparisons=False,
                **settings):
        """Runs vellumine-batch into an empty folder, with the samples for comparisons that the
        window makes as well, or without. A file may fail, which ends it with 1."""
        settings = {"destinationMode": "selectedFolder",
                    "destinationFolderBookmark": self.folder(output), **settings}
        words = [word for key, value in settings.items() for word in ("--set", f"{key}={value}")]
        if comparisons:
            words.append("--json")
        cost = run([self.program, *words, *(files or self.photos)],
                   {"HOME": str(self.scratch), "TMPDIR": str(self.temporary),
                    **(environment or {})}, accepted=(0, 1))
        for sample in self.temporary.glob("vellumine-preview-*.png"):
            sample.unlink()
        return cost

    def convert_as_window(self, **settings):
        return self.convert(comparisons=True, **settings)

    def convert_to_jpeg(self):
        return self.convert(outputFormat="jpeg")

    # Theirs

    def kept_picture(self, photo):
        """The picture that our program hands to cwebp, resized and in its colours."""
        encoder = self.scratch / "keeping-encoder"
        encoder.write_text(KEEPING_ENCODER)
        encoder.chmod(0o755)
        picture = self.scratch / f"{photo.stem}.pam"
        self.convert([photo], environment={"VELLUMINE_CWEBP_PATH": str(encoder),
                                           "KEPT_PICTURE": str(picture)})
        return picture

    @functools.cached_property
    def pictures(self):
        return {photo: self.kept_picture(photo) for photo in self.photos}

    def encode(self, pictures):
        encoded = self.scratch / "floor.webp"
        return run_all(["cwebp", "-quiet", "-q", QUALITY, picture, "-o", encoded]
                       for picture in pictures)

    def webp_floor(self):
        return run([self.jpeg_floor, *self.photos]) + self.encode(self.pictures.values())

    def jpeg_floor_again(self):
        """Decodes and encodes, and does nothing in between."""
        return run([self.jpeg_floor, "--encode", QUALITY, *self.photos])

    def parallel_cwebp(self):
        """cwebp on all processors, which does less: no upright pictures, no colours, no previews."""
        output = self.folder("theirs")
        lines = []
        for photo in self.photos:
            width, turned = upright_width(photo)
            resize = ["-resize", *(("0", WIDTH) if turned else (WIDTH, "0"))] if width > WIDTH else []
            words = ["-quiet", "-q", QUALITY, *resize, photo, "-o", output / f"{photo.stem}.webp"]
            lines.append(" ".join(map(str, words)) + "\n")
        return self.in_parallel("cwebp", lines)

    def in_parallel(self, program, lines):
        path = self.scratch / "arguments"
        path.write_text("".join(lines))
        return ["xargs", "-a", path, "-P", os.cpu_count(), "-L", 1, program]

    def vips(self, name):
        """vipsthumbnail over all photos; `name` is an ending with options."""
        return run(["vipsthumbnail", *self.vips_words(name), *self.photos])

    def vips_words(self, name):
        return ["--size", f"{WIDTH}x>", "--export-profile", "srgb",
                "--output", f"{self.folder('theirs')}/%s.{name}"]

    def image_magick_to_webp(self):
        output = self.folder("theirs")
        return run_all(["convert", photo, "-auto-orient", "-resize", f"{WIDTH}x>", "-strip",
                        "-quality", QUALITY, output / f"{photo.stem}.webp"]
                       for photo in self.photos)

    def image_magick_to_jpeg(self, picture):
        target = self.scratch / "image-magick.jpg"
        run(["convert", picture, "-alpha", "off", "-strip", "-interlace", "JPEG", "-quality",
             QUALITY, target])
        return target

    def optipng(self, path, target=None):
        target = target or self.scratch / "optipng.png"
        target.unlink(missing_ok=True)
        return run(["optipng", "-quiet", "-force", "-o2", path, "-out", target])


def size(path):
    return path.stat().st_size


def upright_width(photo):
    """The width after the EXIF orientation, and whether that swaps the sides."""
    text = subprocess.run(["identify", "-format", "%w %h %[EXIF:Orientation]", photo],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                          text=True).stdout.split()
    turned = len(text) > 2 and int(text[2]) >= 5
    return int(text[1] if turned else text[0]), turned
