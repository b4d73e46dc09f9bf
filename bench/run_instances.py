#!/usr/bin/env python3
"""Solves published instances with the program ombrix and verifies every answer.

usage: run_instances.py INSTANCES BUILD RUNS.csv [options]

INSTANCES holds one folder per family and best_known.csv (columns file, family, sense, best_known,
optimal); BUILD is a build folder of this project. Each instance becomes an environment (bench_models; an
OPB file is read as it is), is solved once for each seed, and the decisions found are checked by
tests/tools/check_instance.py, which shares no code with the engine. Families of LOOPS are solved by their
example program, which makes one model after the other; its lines of output tell what it reached when. A wrong answer is told in capitals and
makes the exit status 1.

RUNS.csv gets one line for each run and each time of --seconds. Only the longest time is searched: what a
shorter one reached is read from the improvements of the same run, and its column "run_seconds" says so
(--separate searches each time on its own). Runs that stand in the file already are passed over, so hours of
runs can be cut into sessions; --budget ends a session. report_instances.py makes tables and plots of it.

--stop-at-best ends a run where it reaches a best known value that is proved: searching on cannot change its
line but for the counters. Models that scale the decimal numbers of their files search on, or, where scaled
numbers seem better than the value, end too early and become a line of status error.
"""
import argparse
import csv
import json
import os
import re
import subprocess
import sys
import tempfile
import threading
import time
from decimal import Decimal

TOOLS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "tools")
PROGRAM_FAMILIES = ("pb", "pb_miplib")
COLUMNS = ("family", "file", "sense", "best_known", "seed", "threads", "seconds", "run_seconds", "status",
           "objective", "gap", "time_to_best", "iterations", "moves", "moves_per_second", "trajectory")
# Family: the line of the example program that tells how far it is, and what to add to its number.
LOOPS = {"coloring": (re.compile(r"^looking for (\d+) colours"), 1)}
# The told objective of these prices what the answer repairs: it is an upper bound.
UPPER_BOUNDS = ("scp", "scp_rail", "scp_sts")
# Here the second objective only leads the search on: any value of it will do.
GUIDED = {"binpacking": "1=0", "steelmill": "1=0"}
STATUS = {0: "feasible", 2: "none found", 3: "inconsistent"}
POINTS_PER_FACTOR_TEN = 12


def run(command, limit):
    """Exit status and output of a command, ended when it takes far longer than it was told to."""
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              timeout=limit)
        return done.returncode, done.stdout, done.stderr.strip()
    except subprocess.TimeoutExpired:
        return None, "", "took longer than %d s" % limit


def last_line(text, otherwise):
    return (text.strip().splitlines() or [otherwise])[-1]


def build_model(row, options, folder):
    """The file to solve, or None and what went wrong."""
    path = os.path.join(options.instances, row["file"])
    if row["family"] in PROGRAM_FAMILIES or row["family"] in LOOPS:
        return path, ""
    model = os.path.join(folder, "model.oxb")
    command = [os.path.join(options.build, "bench", "bench_models"), row["family"], path, model]
    status, _, err = run(command, 600)
    return (model, "") if status == 0 else (None, last_line(err, "status %s" % status))


def check(family, path, solution):
    """The objective that the independent checker computes, or None and what it found wrong."""
    command = [sys.executable, "-B", os.path.join(TOOLS, "check_instance.py"), family, path, solution]
    status, out, err = run(command, 1200)
    match = re.search(r"objective (\S+)", out)
    if status == 0 and match:
        return match.group(1), ""
    return None, last_line(out + err, "the checker failed")


def scale_between(told, verified):
    """The power of ten by which a model multiplies the numbers of its file, or None if the objective that
    the search told is not the verified one up to such a power."""
    told, verified = Decimal(told), Decimal(verified)
    for exponent in range(8):
        if told == verified * 10 ** exponent:
            return 10 ** exponent
    return None


def gap(value, best, sense):
    """In percent of the best known value, taken as at least 1; less than 0 where it is beaten."""
    if best == "" or value is None:
        return ""
    value, best = Decimal(value), Decimal(best)
    worse = value - best if sense == "min" else best - value
    return "%.4f" % (100 * worse / max(abs(best), Decimal(1)))


def trajectory(improvements):
    """Feasible improvements as (time, objective), the last one of each step of a geometric clock."""
    kept = []
    for point in improvements:
        step = 0.01
        while step < point[0]:
            step *= 10 ** (1 / POINTS_PER_FACTOR_TEN)
        if kept and kept[-1][0] == step:
            kept.pop()
        kept.append((step, point))
    return [point for _, point in kept]


def goal(row, options):
    """The value at which a run may end, or nothing."""
    return row["best_known"] if options.stop_at_best and row["optimal"] == "yes" else ""


def bounds(row, options):
    """The same as arguments of ombrix solve, where its objective is the integer of the file."""
    value = goal(row, options)
    if not re.fullmatch(r"-?\d+", value):
        return []
    second = GUIDED.get(row["family"])
    return ["--bound", "0=" + value] + (["--bound", second] if second else [])


def new_line(row, seed, seconds, options):
    line = dict.fromkeys(COLUMNS, "")
    line.update({key: row[key] for key in ("family", "file", "sense", "best_known")})
    line.update(seed=seed, threads=options.threads, seconds=seconds, run_seconds=seconds)
    return line


def follow(command, pattern, limit):
    """Exit status and output of a command, (time, number) of each line of output that matches, and the
    seconds it took. Time begins at the first line: a process that has to wait for its turn, or for its file,
    searches nothing yet."""
    start, points, lines = None, [], []
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as process:
        ender = threading.Timer(limit, process.kill)
        ender.start()
        for text in process.stdout:
            start = time.monotonic() if start is None else start
            lines.append(text)
            match = pattern.match(text)
            if match:
                points.append((time.monotonic() - start, int(match.group(1))))
        ender.cancel()
    elapsed = 0 if start is None else time.monotonic() - start
    return process.returncode, "".join(lines), points, elapsed


def solve_in_loop(row, seed, seconds, options, folder):
    """As solve, by the example program of the family."""
    line, (pattern, offset) = new_line(row, seed, seconds, options), LOOPS[row["family"]]
    path, solution = os.path.join(options.instances, row["file"]), os.path.join(folder, "solution")
    status, out, points, elapsed = follow(
        [os.path.join(options.build, "bench", "bench_models"), "solve", row["family"], path, str(seconds),
         str(seed), str(options.threads), solution] + [goal(row, options) or "-"], pattern, 5 * seconds + 900)
    if status != 0:
        line["status"] = "error: " + last_line(out, "status %s" % status)
        return line, []
    searches = re.findall(r"(\d+) iterations, (\d+) moves performed", out)
    line.update(iterations=sum(int(n) for n, _ in searches), moves=sum(int(n) for _, n in searches))
    if line["moves"] > 0:
        line["moves_per_second"] = round(line["moves"] / elapsed)
    found, wrong = check(row["family"], path, solution)
    points = [(t, Decimal(x + offset)) for t, x in points]
    told = re.search(r"^objective (\d+)", out, re.MULTILINE)
    if found is None or not told or Decimal(found) != Decimal(told.group(1)):
        line["status"] = "WRONG: " + (wrong or "the program tells another objective")
        return line, []
    if not points or points[-1][1] != Decimal(found):
        points.append((min(elapsed, seconds), Decimal(found)))
    return finish(line, found, "feasible", points), points


def solve(row, model, seed, seconds, options, folder):
    """The line of this run for its whole time, and its feasible improvements."""
    if row["family"] in LOOPS:
        return solve_in_loop(row, seed, seconds, options, folder)
    solution, statistics = os.path.join(folder, "solution"), os.path.join(folder, "statistics")
    for name in (solution, statistics):
        if os.path.exists(name):
            os.remove(name)
    command = [os.path.join(options.build, "cli", "ombrix"), "solve", model, "--time", str(seconds),
               "--threads", str(options.threads), "--seed", str(seed), "--solution", solution,
               "--stats", statistics] + bounds(row, options) + options.arguments
    status, _, err = run(command, 5 * seconds + 900)
    line = new_line(row, seed, seconds, options)
    if status not in STATUS:
        line["status"] = "error: " + last_line(err, "status %s" % status)
        return line, []
    line["status"] = STATUS[status]
    with open(statistics) as stream:
        counted = json.load(stream)
    final = counted["final"]
    line.update(iterations=final["iterations"], moves=final["moves"])
    if final["time"] > 0:
        line["moves_per_second"] = round(final["moves"] / final["time"])
    if status != 0:
        return line, []
    return verify(row, line, counted, solution, options)


def verify(row, line, counted, solution, options):
    found, wrong = check(row["family"], os.path.join(options.instances, row["file"]), solution)
    if found is None:
        line["status"] = "WRONG: " + wrong
        return line, []
    if found == "none":
        found = "0"
    told = counted["final"]["objectives"][0] if counted["final"]["objectives"] else 0
    scale = scale_between(told, found)
    if row["family"] in UPPER_BOUNDS and Decimal(found) <= Decimal(told):
        scale = 1
    if scale is None:
        line["status"] = "WRONG: the search tells %s, the decisions give %s" % (told, found)
        return line, []
    if scale > 1 and bounds(row, options) and counted["final"]["status"] == "optimal" and \
            Decimal(gap(found, row["best_known"], row["sense"])) > 0:
        line["status"] = "error: the scaled numbers of the model met the bound too early; --stop-at-best is not for it"
        return line, []
    points = [(i["time"], Decimal(i["objectives"][0]) / scale if i["objectives"] else Decimal(0))
              for i in counted["improvements"] if i["feasible"]]
    return finish(line, found, counted["final"]["status"], points), points


def finish(line, found, status, points):
    line.update(status=status, objective=found, gap=gap(found, line["best_known"], line["sense"]))
    if points:
        line["time_to_best"] = "%.2f" % next(t for t, x in points if x == points[-1][1])
    line["trajectory"] = ";".join("%.3f:%s" % point for point in trajectory(points))
    return line


def cut(line, points, seconds):
    """The line of the same run as it stood after fewer seconds."""
    early = dict(line, seconds=seconds, trajectory="", iterations="", moves="", time_to_best="",
                 objective="", gap="")
    before = [point for point in points if point[0] <= seconds]
    if line["status"].startswith(("WRONG", "error", "inconsistent")):
        return early
    early["status"] = "none found"
    if before:
        value = before[-1][1]
        early.update(status="feasible", objective=str(value),
                     time_to_best="%.2f" % next(t for t, x in before if x == value),
                     gap=gap(value, line["best_known"], line["sense"]))
    return early


def measure(row, seed, options):
    with tempfile.TemporaryDirectory() as folder:
        model, wrong = build_model(row, options, folder)
        lines = []
        times = options.seconds if options.separate else options.seconds[-1:]
        for seconds in times:
            if model is None:
                line, points = dict(new_line(row, seed, seconds, options), status="error: " + wrong), []
            else:
                line, points = solve(row, model, seed, seconds, options, folder)
            if not options.separate:
                lines += [cut(line, points, early) for early in options.seconds[:-1]]
            lines.append(line)
        return lines


def key_of(line):
    return line["file"], int(line["seed"]), int(line["threads"]), int(line["run_seconds"])


def is_done(row, seed, options, done):
    times = options.seconds if options.separate else options.seconds[-1:]
    return all((row["file"], seed, options.threads, seconds) in done for seconds in times)


def append(path, lines):
    is_new = not os.path.exists(path) or os.path.getsize(path) == 0
    with open(path, "a", newline="") as stream:
        writer = csv.DictWriter(stream, COLUMNS)
        if is_new:
            writer.writeheader()
        writer.writerows(lines)


def read_rows(options):
    """The instances asked for, family by family."""
    with open(os.path.join(options.instances, "best_known.csv"), newline="") as stream:
        rows = list(csv.DictReader(stream))
    families = options.families or sorted({row["family"] for row in rows})
    chosen = []
    for family in families:
        members = sorted((row for row in rows if row["family"] == family), key=lambda row: row["file"])
        chosen += members[:options.limit]
    return chosen


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)

    def numbers(text):
        return sorted(int(word) for word in text.split(","))
    parser.add_argument("instances")
    parser.add_argument("build")
    parser.add_argument("runs")
    parser.add_argument("--seconds", type=numbers, default=[10, 60], help="times, as in 10,60")
    parser.add_argument("--separate", action="store_true", help="search each time on its own")
    parser.add_argument("--seeds", type=numbers, default=[1, 2, 3])
    parser.add_argument("--threads", type=int, default=2)
    parser.add_argument("--families", type=lambda text: text.split(","), help="all by default")
    parser.add_argument("--limit", type=int, help="instances per family")
    parser.add_argument("--stop-at-best", action="store_true", help="end runs at a proved best known value")
    parser.add_argument("--budget", type=float, help="minutes after which no run is begun")
    parser.add_argument("arguments", nargs="*", help="behind --: further arguments of ombrix solve")
    return parser.parse_args(arguments)


def main(arguments):
    options = parse_arguments(arguments)
    done = set()
    if os.path.exists(options.runs):
        with open(options.runs, newline="") as stream:
            done = {key_of(line) for line in csv.DictReader(stream)}
    start, nb_wrong = time.monotonic(), 0
    for seed in options.seeds:
        for row in read_rows(options):
            if is_done(row, seed, options, done):
                continue
            if options.budget and time.monotonic() - start > 60 * options.budget:
                print("the budget is used up")
                return 1 if nb_wrong else 0
            lines = measure(row, seed, options)
            append(options.runs, lines)
            line = lines[-1]
            nb_wrong += line["status"].startswith("WRONG")
            print("%s seed %s: %s %s, best known %s, gap %s %%, %s moves/s" % (
                line["file"], seed, line["status"], line["objective"], line["best_known"] or "unknown",
                line["gap"] or "-", line["moves_per_second"]), flush=True)
    return 1 if nb_wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
