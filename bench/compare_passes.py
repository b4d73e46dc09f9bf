#!/usr/bin/env python3
"""What do the passes of closing gain on published instances? Closes and searches each file with the
passes on and off.

usage: compare_passes.py BUILD [--seconds S] [--seed N] FILE...

BUILD is a build folder of this project, a FILE anything that the program reads. Prints one markdown row
per file: the nodes of both graphs, the time that the passes take and the whole of closing, and the moves
per second of one thread. The clock runs from the first line of the search to its last, so that reading and
closing do not count.
"""
import argparse
import os
import re
import subprocess
import time

HEAD = ("| instance | nodes off | nodes on | passes s | closing s on | closing s off | moves/s off "
        "| moves/s on | ratio |")


def command(build, name, path, is_on, *options):
    program = os.path.join(build, "cli", "ombrix")
    return [program, name, "--set", "preprocessingEnabled=%d" % is_on, *options, path]


def find(pattern, text):
    match = re.search(pattern, text, re.MULTILINE)
    return match.group(1) if match else None


def closed(build, path, is_on):
    """Nodes, seconds of the passes without the creation of the nodes, and seconds of closing."""
    text = subprocess.run(command(build, "info", path, is_on), stdout=subprocess.PIPE, text=True,
                          check=True).stdout
    passes = re.findall(r"^  (\w+): .*time = (\S+) sec$", text, re.MULTILINE)
    seconds = sum(float(s) for name, s in passes if name != "createNodes")
    return (int(find(r"^  nodes = (\d+)$", text) or 0), seconds,
            float(find(r"closing time = (\S+) sec", text)))


def moves_per_second(build, path, is_on, options):
    """None if the search ended before it moved."""
    run = command(build, "solve", path, is_on, "--threads", "1", "--time", str(options.seconds),
                  "--seed", str(options.seed))
    start = end = moves = None
    with subprocess.Popen(run, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as search:
        for line in search.stdout:
            if line.startswith("[0 sec") and start is None:
                start = time.monotonic()
            found = find(r"(\d+) moves performed in", line)
            if found:
                end, moves = time.monotonic(), int(found)
    return None if start is None or not moves else moves / (end - start)


def row(build, path, options):
    on = closed(build, path, 1)
    off = closed(build, path, 0)
    speed_off = moves_per_second(build, path, 0, options)
    speed_on = moves_per_second(build, path, 1, options)
    ratio = "%.2f" % (speed_on / speed_off) if speed_on and speed_off else ""
    speeds = ["%.0f" % speed if speed else "" for speed in (speed_off, speed_on)]
    name = os.path.basename(path)
    name = name if len(name) < 50 else name[:47] + "..."
    print("| %s | %d | %d | %.3f | %.3f | %.3f | %s | %s | %s |" %
          (name, off[0], on[0], on[1], on[2], off[2], *speeds, ratio), flush=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("build")
    parser.add_argument("files", nargs="+")
    parser.add_argument("--seconds", type=int, default=3)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    print(HEAD)
    print("|---" * HEAD.count(" | ") + "|---|")
    for path in options.files:
        row(options.build, path, options)


if __name__ == "__main__":
    main()
