#!/usr/bin/env python3
"""Runs clang-tidy over source files in parallel and prints what it finds.

A file that passed is not looked at again until it, a header of ours that it includes, the checks or
the way it is compiled changes: the hash of all of these names an empty file in the cache folder,
which checkouts may share.

With clang-tidy's headers installed, a plugin keeps it out of the system's headers: the findings are
the same, in a fifth of the time.
"""

import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PLUGIN = pathlib.Path(__file__).resolve().parent / "OwnCodeOnly.cpp"
INCLUDE_FOLDERS = [ROOT / "src", ROOT / "tests"]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
COUNTS = re.compile(r"^(\d+ warnings? (and \d+ errors? )?generated|\d+ warnings? treated as errors?|"
                    r"Suppressed \d+ warnings|Use -header-filter).*\n?", re.MULTILINE)


@functools.cache
def read(path):
    return path.read_bytes()


@functools.cache
def included(path):
    """Our own headers that the file names itself."""
    found = []
    for name in INCLUDE.findall(read(path).decode()):
        for folder in [path.parent, *INCLUDE_FOLDERS]:
            if (folder / name).is_file():
                found.append((folder / name).resolve())
                break
    return found


def with_headers(path):
    """The file and every header of ours that it reaches, in a fixed order."""
    reached = {path}
    waiting = [path]
    while waiting:
        for header in included(waiting.pop()):
            if header not in reached:
                reached.add(header)
                waiting.append(header)
    return sorted(reached)


def compile_commands(build):
    entries = json.loads((build / "compile_commands.json").read_text())
    return {pathlib.Path(entry["file"]).resolve(): entry.get("command", "").replace(str(ROOT), ".")
            for entry in entries}


def key(path, common, commands):
    digest = hashlib.sha256(common)
    digest.update(commands.get(path, "").encode())
    for file in with_headers(path):
        digest.update(str(file.relative_to(ROOT)).encode() + b"\0" + read(file) + b"\0")
    return digest.hexdigest()


def plugin_options(version, cache):
    """What makes clang-tidy look at our own code alone; nothing where the plugin cannot be built."""
    number = re.search(r"LLVM version (\d+)", version.decode())
    headers = pathlib.Path(f"/usr/lib/llvm-{number[1] if number else 0}/include")
    if not (headers / "clang-tidy" / "ClangTidyModule.h").exists():
        print("clang-tidy's headers are not installed: it takes five times as long without them")
        return []
    name = hashlib.sha256(version + read(PLUGIN)).hexdigest()
    plugin = cache / f"OwnCodeOnly-{name}.so"
    if not plugin.exists():
        unfinished = plugin.with_suffix(f".{os.getpid()}")
        subprocess.run(["g++", "-std=c++17", "-O1", "-shared", "-fPIC", "-fno-rtti", "-isystem",
                        headers, PLUGIN, "-o", unfinished], check=True)
        if not finds_what_is_there(options_with(unfinished)):
            raise SystemExit("with its plugin clang-tidy does not find what is there")
        unfinished.rename(plugin)
    return options_with(plugin)


def options_with(plugin):
    return [f"--load={plugin}", "--checks=vellumine-own-code-only"]


def finds_what_is_there(options):
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "finding.cpp"
        file.write_text("#include <vector>\nnamespace n { int* nowhere() { return 0; } }\n")
        result = subprocess.run(["clang-tidy", "--config-file", ROOT / ".clang-tidy", *options, file,
                                 "--", "-std=c++20"], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, text=True)
        return "modernize-use-nullptr" in result.stdout and result.returncode != 0


def check(path, build, options, passed):
    """What clang-tidy says about the file, or an empty text."""
    if passed.exists():
        return ""
    result = subprocess.run(["clang-tidy", *options, "-p", build, "--quiet", path], cwd=ROOT,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    output = COUNTS.sub("", result.stdout).strip()
    if result.returncode == 0:
        passed.touch()
        return ""
    return output or f"clang-tidy ended with {result.returncode} on {path}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="has the compile database")
    parser.add_argument("--cache", type=pathlib.Path, required=True)
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("files", type=pathlib.Path, nargs="*")
    arguments = parser.parse_args()

    arguments.cache.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], stdout=subprocess.PIPE, check=True).stdout
    common = version + read(ROOT / ".clang-tidy") + read(ROOT / "tests" / ".clang-tidy")
    commands = compile_commands(arguments.build)
    options = plugin_options(version, arguments.cache.resolve())
    files = [file.resolve() for file in arguments.files]
    passed = {file: arguments.cache / key(file, common, commands) for file in files}
    known = sum(mark.exists() for mark in passed.values())

    findings = 0

    def outcome(file):
        return check(file, arguments.build, options, passed[file])

    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for output in pool.map(outcome, files):
            if output:
                findings += 1
                print(output, flush=True)
    print(f"{len(files)} files, {known} unchanged since they passed, {findings} with findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
