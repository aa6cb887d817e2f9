"""Measures the windows: their start, their memory, and the frames of a long list of results."""

import contextlib
import os
import re
import select
import shutil
import subprocess
import time

from measure import Row

FRAME = b"Frame rendered with 'software' renderloop"
# a start, then nothing to do
REST = 2.0  # seconds
PATIENCE = 60  # seconds


class Windows:
    def __init__(self, build, scratch, repetitions):
        self.program = build / "bin/vellumine"
        self.empty_window = build / "bin/empty_window"
        self.list_bench = build / "bin/ui_bench"
        self.scratch = scratch
        self.repetitions = repetitions

    def rows(self):
        with screen() as display:
            self.start(self.program, display)  # so that the files are in the page cache
            self.start(self.empty_window, display)
            pairs = [(self.start(self.program, display), self.start(self.empty_window, display))
                     for _ in range(2 * self.repetitions)]
        starts = [ours for ours, _ in pairs]
        yield Row("First frame of the main window after the start", [s[0] for s in starts], 150, "ms")
        yield Row("The same, against an empty Qt Quick window",
                  [ours[0] / empty[0] for ours, empty in pairs], 1.3)
        yield Row("Memory of the main window at rest", [s[1] for s in starts], 80, "MB")
        yield from self.list_rows()

    def start(self, program, display):
        """Milliseconds to the first frame, and resident megabytes a while later."""
        home = self.scratch / "home"
        shutil.rmtree(home, ignore_errors=True)
        for name in ("run", "temporary"):
            (home / name).mkdir(parents=True, mode=0o700)
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith(("XDG_", "QT_", "QSG_", "WAYLAND_", "DBUS_"))}
        environment |= {**display, "HOME": str(home), "XDG_RUNTIME_DIR": str(home / "run"),
                        "TMPDIR": str(home / "temporary"),
                        "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent",
                        "QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true"}
        begin = time.monotonic()
        with subprocess.Popen([str(program)], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              env=environment) as process:
            try:
                wait_for(process, FRAME)
                first_frame = (time.monotonic() - begin) * 1000
                time.sleep(REST)
                memory = resident_memory(process.pid)
            finally:
                process.terminate()
        return first_frame, memory

    def list_rows(self):
        """The 99th percentiles that ui_bench finds for each thing that it does, run by run."""
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen"}
        values = {}
        for _ in range(self.repetitions):
            output = subprocess.run([str(self.list_bench)], stdout=subprocess.PIPE,
                                    stderr=subprocess.DEVNULL, text=True, check=True,
                                    env=environment).stdout
            for name, milliseconds in re.findall(r"^(.+?) {2,}.*p99 +([\d.]+) ms", output, re.M):
                values.setdefault(name, []).append(float(milliseconds))
            for name, milliseconds in re.findall(r"^(opening.+?) {2,}([\d.]+) ms", output, re.M):
                values.setdefault(name, []).append(float(milliseconds))
        for name, measured in values.items():
            goal = None if name.startswith("opening") else 16
            yield Row(f"10,000 results: {name}", measured, goal, "ms")


@contextlib.contextmanager
def screen():
    """The environment of a screen: one without a display where there is Xvfb, else none at all."""
    server = shutil.which("Xvfb")
    if server is None:
        yield {"QT_QPA_PLATFORM": "offscreen"}
        return
    reader, writer = os.pipe()
    with subprocess.Popen([server, "-displayfd", str(writer), "-screen", "0", "1920x1200x24"],
                          pass_fds=[writer], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL) as process:
        os.close(writer)
        try:
            with os.fdopen(reader) as numbers:
                yield {"QT_QPA_PLATFORM": "xcb", "DISPLAY": ":" + numbers.readline().strip()}
        finally:
            process.terminate()


def wait_for(process, words):
    """Reads what the process says until the words are among it."""
    said = b""
    deadline = time.monotonic() + PATIENCE
    while words not in said:
        left = deadline - time.monotonic()
        if left <= 0 or not select.select([process.stderr], [], [], left)[0]:
            raise SystemExit(f"{process.args[0]} shows nothing: {said.decode()}")
        piece = os.read(process.stderr.fileno(), 65536)
        if not piece:
            raise SystemExit(f"{process.args[0]} ended: {said.decode()}")
        said += piece


def resident_memory(pid):
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        kilobytes = re.search(r"VmRSS:\s+(\d+) kB", status.read()).group(1)
    return int(kilobytes) * 1024 / 1e6
