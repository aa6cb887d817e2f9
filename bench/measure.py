"""Runs commands and measures them; keeps ratios of what was measured side by side."""

import dataclasses
import os
import statistics
import subprocess
import time


@dataclasses.dataclass
class Cost:
    """What a command and its children took."""

    cpu: float  # seconds in user and system mode
    wall: float  # seconds
    memory: float  # resident megabytes of the largest process at its peak

    def __add__(self, other):
        return Cost(self.cpu + other.cpu, self.wall + other.wall, max(self.memory, other.memory))


def run(command, environment=None, accepted=(0,)):
    """Runs a command to its end and gives its cost. One that fails ends the whole benchmark."""
    start = time.monotonic()
    process = subprocess.Popen([str(word) for word in command], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                               env={**os.environ, **(environment or {})})
    errors = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    process.stderr.close()
    if process.returncode not in accepted:
        raise SystemExit(f"{command[0]} ended with {process.returncode}: {errors.decode()}")
    return Cost(usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss * 1024 / 1e6)


def run_all(commands):
    total = Cost(0, 0, 0)
    for command in commands:
        total += run(command)
    return total


@dataclasses.dataclass
class Row:
    """One line of the report: a value per repetition or per file, and the goal it is held to."""

    name: str
    values: list
    goal: float | None = None  # the median may be this much
    unit: str = ""
    least: float | None = None  # for ratios: our least disturbed run by theirs

    @property
    def median(self):
        return statistics.median(self.values)

    @property
    def verdict(self):
        if self.goal is None:
            return ""
        return "met" if self.median <= self.goal else "missed"

    def as_json(self):
        return {"name": self.name, "unit": self.unit, "median": self.median,
                "min": min(self.values), "max": max(self.values), "least": self.least,
                "goal": self.goal, "verdict": self.verdict, "values": self.values}

    def as_markdown(self):
        digits = {"": 3, "ms": 1}.get(self.unit, 0)
        numbers = [f"{value:.{digits}f} {self.unit}".strip()
                   for value in (self.median, min(self.values), max(self.values))]
        least = "" if self.least is None else f"{self.least:.3f}"
        goal = "" if self.goal is None else f"≤ {self.goal:g} {self.unit}".strip()
        return "| " + " | ".join([self.name, *numbers, least, goal, self.verdict]) + " |"


HEADER = "| ours against theirs | median | min | max | least by least | goal | |\n" + "|---" * 7 + "|"


def compared(name, ours, theirs, repetitions, quantity, goal=None):
    """Measures the two in turn, as often as asked. Each pair gives a ratio; other work on the machine
    only ever adds to a run, so that the least of all runs are compared as well."""
    pairs = [(getattr(ours(), quantity), getattr(theirs(), quantity)) for _ in range(repetitions)]
    least = min(mine for mine, _ in pairs) / min(other for _, other in pairs)
    return Row(name, [mine / other for mine, other in pairs], goal, least=least)
