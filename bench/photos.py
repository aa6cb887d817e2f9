"""Questions about large photographs: time and memory to WebP and to JPEG."""

from measure import Row, compared, run
from programs import AS_WINDOW, JPEG_OPTIONS, NOT_RESIZED, QUALITY, size


class Photos:
    def __init__(self, programs, repetitions):
        self.programs = programs
        self.repetitions = repetitions

    def rows(self):
        yield from self.webp()
        yield from self.jpeg()
        yield from self.memory()

    def against(self, name, ours, theirs, quantity, goal):
        return compared(name, ours, theirs, self.repetitions, quantity, goal)

    def webp(self):
        programs = self.programs
        programs.pictures  # made before anything is measured
        yield self.against("WebP, CPU, against decoding and cwebp alone", programs.convert,
                           programs.webp_floor, "cpu", 1.07)
        yield self.against(AS_WINDOW, programs.convert_as_window, programs.webp_floor, "cpu", 1.07)
        command = programs.parallel_cwebp()
        yield self.against("WebP, wall time, against cwebp in parallel", programs.convert,
                           lambda: run(command), "wall", 0.94)
        yield self.against(AS_WINDOW, programs.convert_as_window, lambda: run(command), "wall",
                           0.94)
        yield self.against("WebP, CPU, against vipsthumbnail", programs.convert,
                           lambda: programs.vips(f"webp[Q={QUALITY},strip]"), "cpu", 0.8)
        yield self.against("WebP, CPU, against ImageMagick", programs.convert,
                           programs.image_magick_to_webp, "cpu", 0.5)

    def jpeg(self):
        programs = self.programs
        yield self.against("JPEG, CPU, against vipsthumbnail with the same options",
                           programs.convert_to_jpeg, lambda: programs.vips(f"jpg[{JPEG_OPTIONS}]"),
                           "cpu", 0.6)
        parallel = programs.in_parallel("vipsthumbnail", [
            " ".join(map(str, [*programs.vips_words(f"jpg[{JPEG_OPTIONS}]"), photo])) + "\n"
            for photo in programs.photos])
        yield self.against("JPEG, wall time, against vipsthumbnail in parallel",
                           programs.convert_to_jpeg, lambda: run(parallel), "wall", 0.6)
        yield self.against("JPEG, CPU, against vipsthumbnail's defaults (baseline, Q 75)",
                           programs.convert_to_jpeg, lambda: programs.vips("jpg"), "cpu", None)
        yield self.against("JPEG without resizing, CPU, against decoding and encoding alone",
                           lambda: programs.convert(outputFormat="jpeg", **NOT_RESIZED),
                           programs.jpeg_floor_again, "cpu", 1.10)
        yield self.against(
            AS_WINDOW,
            lambda: programs.convert_as_window(outputFormat="jpeg", **NOT_RESIZED),
            programs.jpeg_floor_again, "cpu", 1.10)
        yield self.jpeg_sizes()

    def jpeg_sizes(self):
        """ImageMagick encodes the very pixels that our JPEG files were made of."""
        programs = self.programs
        programs.convert(output="jpeg", outputFormat="jpeg")
        return Row("JPEG, size, against ImageMagick on the same pixels",
                   [size(programs.scratch / f"jpeg/{photo.stem}.jpg")
                    / size(programs.image_magick_to_jpeg(picture))
                    for photo, picture in programs.pictures.items()], 1.0)

    def memory(self):
        full, halved = "colour at full size", "colour at half the size"
        for megapixels, dimensions, colour, goal in ((24, "6000x4000!", full, 120),
                                                     (100, "12240x8160!", halved, 200),
                                                     (100, "12240x8160!", full, 200)):
            photo = self.programs.scratch / f"{megapixels}-megapixels.jpg"
            mode = "off" if colour is full else "on"
            run(["vipsthumbnail", "--size", dimensions, self.programs.photos[0], "-o",
                 f"{photo}[Q=90,subsample_mode={mode}]"])
            yield Row(f"Peak memory, one photo of {megapixels} megapixels ({colour}) to WebP",
                      [self.programs.convert([photo]).memory for _ in range(self.repetitions)],
                      goal, "MB")
            photo.unlink()
