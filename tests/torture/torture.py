#!/usr/bin/env python3
"""Does to the built program what the world may do, and prints what became of it: malformed pictures,
ends at any moment, full disks, pictures that are too large for the machine. Ends with 1 when anything
was lost, stuck or crashed."""

import argparse
import collections
import hashlib
import json
import os
import pathlib
import random
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import urllib.parse
import zlib

import hostile

EXTENSIONS = (".jpg", ".jpeg", ".png", ".gif", ".tif", ".tiff", ".bmp", ".heic", ".heif", ".webp")
PATIENCE = 900  # seconds for a batch, far more than any takes


class Table:
    """The lines of the report, and whether one of them is a failure."""

    def __init__(self):
        self.has_failed = False

    def add(self, what, found, wanted=None):
        verdict = ""
        if wanted is not None:
            verdict = "ok" if found == wanted else f"FAILED, wanted {wanted}"
            self.has_failed |= found != wanted
        print(f"| {what} | {found} | {verdict} |", flush=True)


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def path_of(url):
    return pathlib.Path(os.fsdecode(urllib.parse.unquote_to_bytes(urllib.parse.urlparse(url).path)))


def made_folders(scratch, *names):
    folders = [scratch / name for name in names]
    for folder in folders:
        folder.mkdir(exist_ok=True)
    return folders


def environment(scratch):
    home, temporary = made_folders(scratch, "home", "temporary")
    return {"PATH": os.environ["PATH"], "HOME": str(home), "XDG_DATA_HOME": str(home / "data"),
            "TMPDIR": str(temporary)}


def start(program, scratch, paths, settings, **how):
    """A process of the program; how: as Popen is told."""
    words = [word for key, value in settings.items() for word in ("--set", f"{key}={value}")]
    return subprocess.Popen([str(program), "--json", *words, *map(str, paths)],
                            stdin=subprocess.DEVNULL, env=environment(scratch), **how)


def results_in(said):
    """What the program has said of every source, in the order in which it did."""
    said.seek(0)
    return [json.loads(line) for line in said.read().splitlines()]


def smaller_copies(folder, output_format, pixels):
    """The settings for them."""
    return {"outputFormat": output_format, "resizeMode": "longestEdge", "maximumPixels": pixels,
            "destinationMode": "selectedFolder", "destinationFolderBookmark": folder}


def run_batch(program, scratch, paths, **settings):
    """The results by source, the errors' text and the exit status; None when it got stuck."""
    # What the children say counts too, and a child that stays must not keep us waiting.
    with open(scratch / "said", "w+b") as said, open(scratch / "errors", "w+b") as errors:
        process = start(program, scratch, paths, settings, stdout=said, stderr=errors)
        try:
            status = process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            status = None
        results = {path_of(result["sourceURL"]): result for result in results_in(said)}
        errors.seek(0)
        return results, errors.read().decode(errors="replace"), status


def torture_with_hostile_inputs(table, program, samples, count, seed):
    kinds = collections.Counter()
    crashes = stuck = changed = missing = left = converted = deaths = 0
    made = hostile.inputs(samples, count, seed)
    while True:
        with tempfile.TemporaryDirectory(prefix="vellumine-torture-") as folder:
            scratch = pathlib.Path(folder)
            sources, outputs = made_folders(scratch, "sources", "outputs")
            expected = {}
            for number, (kind, extension, content) in zip(range(500), made):
                path = sources / f"{number:04}{extension}"
                path.write_bytes(content)
                expected[path] = hashlib.sha256(content).hexdigest()
                kinds[kind] += 1
            if not expected:
                break
            results, errors, status = run_batch(
                program, scratch, [sources], **smaller_copies(outputs, "jpeg", 256),
                warnBeforeOverwrite="true")
            stuck += status is None
            crashes += status not in (0, 1, None) or "Sanitizer" in errors
            missing += len(expected.keys() - results.keys())
            changed += sum(not path.exists() or digest(path) != before
                           for path, before in expected.items())
            converted += sum(result["isSuccess"] for result in results.values())
            left += sum(1 for path in outputs.iterdir() if path.name.startswith("."))
            left += sum(1 for path in (scratch / "temporary").iterdir()
                        if not path.name.startswith("vellumine-preview-"))
            replaced = re.search(r"replaced (\d+) time", errors)
            deaths += int(replaced.group(1)) if replaced else 0
            print(f"{sum(kinds.values())} of {count} hostile inputs", file=sys.stderr, flush=True)
    for kind, number in kinds.items():
        table.add(f"hostile inputs, {kind}", number)
    table.add("hostile inputs in all", sum(kinds.values()), count)
    table.add("of these converted all the same", converted)
    table.add("deaths of helpers", deaths)
    table.add("crashes of the program", crashes, 0)
    table.add("batches that got stuck", stuck, 0)
    table.add("files without a result", missing, 0)
    table.add("originals lost or changed", changed, 0)
    table.add("files left behind", left, 0)


def png(width, height, color_type, depth, row):
    """A PNG file of equal rows but for the first byte."""
    def chunk(name, content):
        return (struct.pack(">I", len(content)) + name + content
                + struct.pack(">I", zlib.crc32(name + content)))
    packer = zlib.compressobj(1)
    data = b"".join(packer.compress(b"\0" + bytes([y % 251]) + row[1:]) for y in range(height))
    data += packer.flush()
    head = struct.pack(">IIBBBBB", width, height, depth, color_type, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", data) + chunk(b"IEND", b"")


def photo(chance, width=900, height=600):
    row = bytes((x * 7 + chance.randrange(24)) % 256 for x in range(3 * width))
    return png(width, height, 2, 8, row)


class Workplace:
    """Sources beside older outputs, as a user has them."""

    def __init__(self, scratch, pictures, old):
        self.scratch = scratch
        self.folder = scratch / "pictures"
        self.trash = scratch / "home/data/Trash/files"
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.rmtree(scratch / "home", ignore_errors=True)
        shutil.rmtree(scratch / "temporary", ignore_errors=True)
        self.folder.mkdir()
        # The old outputs are none of them: what is given and cannot be read is never written over.
        self.sources = [self.folder / name for name in pictures]
        for name, content in pictures.items():
            (self.folder / name).write_bytes(content)
        for name, content in old.items():
            (self.folder / name).write_bytes(content)

    def outputs(self):
        return {path.name: path.read_bytes() for path in self.folder.iterdir()
                if path.suffix in (".webp", ".jpg") and not path.name.startswith(".")}

    def strays(self):
        found = [path for path in self.folder.iterdir() if path.name.startswith(".")]
        if (self.scratch / "temporary").exists():
            found += [path for path in (self.scratch / "temporary").iterdir()
                      if path.suffix in (".pam", ".webp", ".part")]
        return found


def torture_with_ends(table, program, count, seed):
    """Kills the program at random moments of a batch that replaces outputs and trashes originals."""
    chance = random.Random(seed)
    pictures = {f"{number}.png": photo(chance) for number in range(8)}
    lost = halves = early = strays = unended = 0
    for extension, output_format in ((".webp", "webp"), (".jpg", "jpeg")):
        with tempfile.TemporaryDirectory(prefix="vellumine-torture-") as folder:
            scratch = pathlib.Path(folder)
            old = {name.replace(".png", extension): b"the old output of " + name.encode()
                   for name in pictures}
            settings = {"outputFormat": output_format, "moveOriginalToTrash": "true",
                        "warnBeforeOverwrite": "false", "resizeMode": "none"}
            place = Workplace(scratch, pictures, old)
            begin = time.monotonic()
            run_batch(program, scratch, place.sources, **settings)
            duration = time.monotonic() - begin
            new = place.outputs()
            if any(new[name] == old[name] for name in old) or list(place.folder.glob("*.png")):
                raise SystemExit("the batch that nobody disturbs does not do its work")
            killed = 0
            while killed < count // 2:
                place = Workplace(scratch, pictures, old)
                process = start(program, scratch, place.sources, settings,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                begin = time.monotonic()
                try:
                    process.wait(chance.uniform(0, 1.2 * duration))
                    # No kill, but a measure of how long a batch takes as busy as the machine is now.
                    duration = time.monotonic() - begin
                    unended += 1
                except subprocess.TimeoutExpired:
                    process.send_signal(signal.SIGKILL)
                    process.wait()
                    killed += 1
                outputs = place.outputs()
                for name, content in pictures.items():
                    output = name.replace(".png", extension)
                    source = place.folder / name
                    trashed = place.trash / name
                    halves += outputs.get(output) not in (old[output], new[output])
                    if source.exists():
                        lost += source.read_bytes() != content
                    elif not trashed.exists() or trashed.read_bytes() != content:
                        lost += 1
                    else:
                        early += outputs.get(output) != new[output]
                if killed % 10 == 1:
                    # The next batch clears up.
                    run_batch(program, scratch, [place.folder], **settings)
                    strays += len(place.strays())
    table.add("ends of the program by kill -9", count)
    table.add("batches that came to their own end before", unended)
    table.add("sources lost or changed", lost, 0)
    table.add("outputs that are neither the old nor the new one", halves, 0)
    table.add("originals in the Trash without their output", early, 0)
    table.add("partial files left after the next batch", strays, 0)


def torture_with_faults(table, tests):
    """The faults that the tests stage, one line each."""
    for program, pattern in (("pipeline_test", "Faults.*:CWebP.*"), ("stats_test", "StatsOnAFullDisk.*"),
                             ("core_test", "SettingsOnAFullDisk.*")):
        ended = subprocess.run([tests / program, f"--gtest_filter={pattern}"], check=False,
                               capture_output=True, text=True)
        for verdict, suite, name in re.findall(
                r"^\[ +(OK|FAILED|SKIPPED) +\] (\w+)\.(\w+) \(", ended.stdout, re.MULTILINE):
            words = re.sub(r"([A-Z])", lambda letter: " " + letter.group(1).lower(), name)
            table.add(f"{suite}: {words}", verdict, verdict if verdict == "SKIPPED" else "OK")


class MemoryLimit:
    """A control group with little memory where one can be made, else a limit of addresses."""

    def __init__(self, limit):
        self.limit = limit
        self.group = None
        for root, file in (("/sys/fs/cgroup/memory", "memory.limit_in_bytes"),
                           ("/sys/fs/cgroup", "memory.max")):
            group = pathlib.Path(root) / f"vellumine-torture-{os.getpid()}"
            try:
                group.mkdir()
            except OSError:
                continue
            try:
                (group / file).write_text(str(limit))
                self.group = group
                return
            except OSError:
                group.rmdir()

    @property
    def name(self):
        return "a control group" if self.group else "a limit of addresses"

    def enter(self):
        """In the child, before it becomes the program."""
        if self.group:
            (self.group / "cgroup.procs").write_text(str(os.getpid()))
        else:
            import resource
            resource.setrlimit(resource.RLIMIT_AS, (self.limit, self.limit))

    def kills(self):
        """What the kernel ended for want of memory."""
        if not self.group:
            return 0
        for file in ("memory.oom_control", "memory.events"):
            path = self.group / file
            if path.exists():
                found = re.search(r"^oom_kill (\d+)", path.read_text(), re.MULTILINE)
                return int(found.group(1)) if found else 0
        return 0

    def peak(self):
        for file in ("memory.max_usage_in_bytes", "memory.peak"):
            if self.group and (self.group / file).exists():
                return f"{int((self.group / file).read_text()) // 1000000} MB"
        return "unknown"

    def remove(self):
        if self.group:
            for _ in range(50):
                try:
                    self.group.rmdir()
                    return
                except OSError:
                    time.sleep(0.1)


def torture_with_large_pictures(table, program):
    """Ten pictures of 200 megapixels on a machine of 2 GiB."""
    side = 14142
    grey = bytes(x % 253 for x in range(side))
    color = bytes(x % 253 for x in range(3 * side))
    with tempfile.TemporaryDirectory(prefix="vellumine-torture-") as folder:
        scratch = pathlib.Path(folder)
        sources, outputs = made_folders(scratch, "sources", "outputs")
        (sources / "grey.png").write_bytes(png(side, side, 0, 8, grey))
        (sources / "colour.png").write_bytes(png(side, side, 2, 8, color))
        (sources / "bits.png").write_bytes(png(side, side, 0, 1, grey[:(side + 7) // 8]))
        # The formats that Python cannot write.
        run_batch(program, scratch, [sources / "grey.png", sources / "colour.png"],
                  outputFormat="jpeg", resizeMode="none", warnBeforeOverwrite="true",
                  optimizeColorForSharing="false", removeColorManagement="false")
        for name in ("grey", "bits", "colour"):
            shutil.copy(sources / f"{name}.png", sources / f"{name}-again.png")
        for name in ("grey", "colour"):
            shutil.copy(sources / f"{name}.jpg", sources / f"{name}-again.jpg")
        names = sorted(path.name for path in sources.iterdir())
        limit = MemoryLimit(2 << 30)
        with open(scratch / "said", "w+b") as said:
            process = start(
                program, scratch, [sources], smaller_copies(outputs, "webp", 2560),
                stdout=said, preexec_fn=limit.enter)  # one thread: nothing else runs in between
            status = process.wait(PATIENCE)
            results = results_in(said)
        table.add("pictures of 200 megapixels within 2 GiB", len(names), 10)
        table.add("the memory is bounded by", limit.name)
        table.add("results", len(results), 10)
        table.add("of these converted", sum(result["isSuccess"] for result in results))
        for message in sorted({r["message"] for r in results if not r["isSuccess"]}):
            table.add("of these refused: " + message,
                      sum(r["message"] == message for r in results))
        table.add("the program ended by itself", status in (0, 1), True)
        table.add("processes that the kernel ended for want of memory", limit.kills(), 0)
        table.add("memory at the peak", limit.peak())
        limit.remove()


def sample_files(folder):
    return sorted(path for path in folder.rglob("*")
                  if path.is_file() and path.suffix.lower() in EXTENSIONS)


def generated_samples(program, scratch):
    """Where there are no samples: a picture in every format that the program writes."""
    (scratch / "made").mkdir()
    source = scratch / "made/a.png"
    source.write_bytes(photo(random.Random(1), 90, 60))
    for output_format in ("jpeg", "heic", "webp", "webpLossless"):
        run_batch(program, scratch, [source], outputFormat=output_format, filenameSuffix=output_format)
    return sample_files(scratch / "made")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="a finished build")
    parser.add_argument("--samples", type=pathlib.Path,
                        help="with sound and unsound pictures; VELLUMINE_SAMPLES comes first")
    parser.add_argument("--inputs", type=int, default=20000)
    parser.add_argument("--kills", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("parts", nargs="*",
                        help="of: hostile, kill, faults, memory; all of them without one")
    arguments = parser.parse_args()
    parts = arguments.parts or ["hostile", "kill", "faults", "memory"]
    program = (arguments.build / "bin/vellumine-batch").resolve()
    table = Table()
    print("| what | found | verdict |\n|---|---|---|")
    with tempfile.TemporaryDirectory(prefix="vellumine-torture-") as folder:
        folder_of_samples = os.environ.get("VELLUMINE_SAMPLES") or arguments.samples
        if folder_of_samples and pathlib.Path(folder_of_samples).is_dir():
            samples = sample_files(pathlib.Path(folder_of_samples))
        else:
            samples = generated_samples(program, pathlib.Path(folder))
        if "hostile" in parts:
            torture_with_hostile_inputs(table, program, samples, arguments.inputs, arguments.seed)
        if "kill" in parts:
            torture_with_ends(table, program, arguments.kills, arguments.seed)
        if "faults" in parts:
            torture_with_faults(table, (arguments.build / "bin").resolve())
        if "memory" in parts:
            torture_with_large_pictures(table, program)
    sys.exit(1 if table.has_failed else 0)


if __name__ == "__main__":
    main()
