#!/usr/bin/env python3
"""Runs the program and the examples on a folder of published instances, and verifies every answer.

usage: run_instances.py INSTANCES BUILD [--seconds S] [--families F,F] [--csv FILE] [--markdown FILE]

INSTANCES holds one folder per family and best_known.csv (columns file, family, sense, best_known,
optimal); BUILD is a build folder of this project. Each solution is checked by the checkers of tests/tools,
which share no code with the engine. Prints one line per instance: what is best known, what was found, the
gap in percent, attempted moves per second, and the status.
"""
import argparse
import csv
import os
import re
import subprocess
import sys
import tempfile
import time

TOOLS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "tools")
EXAMPLES = {
    "mkp": "knapsack",
    "scp": "setcovering",
    "scp_rail": "setcovering",
    "scp_sts": "setcovering",
    "qap": "quadraticassignment",
    "coloring": "graphcolouring",
    "ufl": "facilitylocation",
}
PROGRAM_FAMILIES = ("pb", "pb_miplib")
COLUMNS = ("family", "instance", "best known", "ours", "gap %", "moves/s", "status")


def run(command, limit):
    """Exit status and output of a command, ended when it takes far longer than it was told to."""
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              timeout=limit)
        return done.returncode, done.stdout, done.stderr.strip()
    except subprocess.TimeoutExpired as ended:
        return None, (ended.stdout or b"").decode(), "took longer than %d s" % limit


def check(tool, arguments):
    """The objective that an independent checker computes, or None and what it found wrong."""
    status, out, err = run([sys.executable, "-B", os.path.join(TOOLS, tool)] + arguments, 600)
    match = re.search(r"objective (\S+)", out)
    if status == 0 and match:
        return match.group(1), ""
    return None, (out + err).strip().splitlines()[-1:] or ["checker failed"]


def moves_per_second(output):
    match = re.search(r"(\d+) moves performed in (\d+) seconds", output)
    if not match or int(match.group(2)) == 0:
        return ""
    return str(round(int(match.group(1)) / int(match.group(2))))


def solve_with_program(build, path, seconds, solution):
    command = [os.path.join(build, "cli", "ombrix"), "solve", path, "--time", str(seconds),
               "--threads", "2", "--solution", solution]
    status, out, err = run(command, 10 * seconds + 600)
    if status in (0, 2, 3):
        word = {0: "feasible", 2: "none found", 3: "inconsistent"}[status]
        if "Optimal solution" in out:
            word = "optimal"
        return word, out
    return "error: " + (err.splitlines()[-1:] or ["status %s" % status])[0], out


def solve_with_example(build, program, path, seconds, solution):
    command = [os.path.join(build, "examples", program), path, str(seconds), "-", solution]
    status, out, err = run(command, 10 * seconds + 600)
    if status != 0:
        return "error: " + (err.splitlines()[-1:] or ["status %s" % status])[0], out
    if "no feasible solution found" in out:
        return "none found", out
    return ("optimal" if "Optimal solution" in out else "feasible"), out


def gap(ours, best, sense):
    if best == "" or ours is None:
        return ""
    ours, best = float(ours), float(best)
    worse = ours - best if sense == "min" else best - ours
    if worse == 0:
        return "0.00"
    return "%.2f" % (100.0 * worse / abs(best)) if best else "inf"


def measure(row, instances, build, seconds):
    path = os.path.join(instances, row["file"])
    with tempfile.TemporaryDirectory() as folder:
        solution = os.path.join(folder, "solution")
        if row["family"] in PROGRAM_FAMILIES:
            status, out = solve_with_program(build, path, seconds, solution)
            tool, arguments = "check_opb.py", [path, solution]
        else:
            program = EXAMPLES[row["family"]]
            status, out = solve_with_example(build, program, path, seconds, solution)
            tool, arguments = "check_example.py", [program, path, solution]
        ours = None
        if status in ("feasible", "optimal"):
            ours, wrong = check(tool, arguments)
            if ours is None:
                status = "WRONG: " + wrong[0]
    return (row["family"], os.path.basename(row["file"]), row["best_known"], ours or "",
            gap(ours, row["best_known"], row["sense"]), moves_per_second(out), status)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("instances")
    parser.add_argument("build")
    parser.add_argument("--seconds", type=int, default=20)
    parser.add_argument("--families", default=",".join(PROGRAM_FAMILIES + tuple(EXAMPLES)))
    parser.add_argument("--csv")
    parser.add_argument("--markdown")
    options = parser.parse_args()
    families = options.families.split(",")
    with open(os.path.join(options.instances, "best_known.csv"), newline="") as stream:
        rows = [row for row in csv.DictReader(stream) if row["family"] in families]
    rows.sort(key=lambda row: (families.index(row["family"]), row["file"]))
    results = []
    for row in rows:
        start = time.monotonic()
        results.append(measure(row, options.instances, options.build, options.seconds))
        print(" | ".join(results[-1]) + " | %.0f s" % (time.monotonic() - start), flush=True)
    if options.csv:
        with open(options.csv, "w", newline="") as stream:
            csv.writer(stream).writerows([COLUMNS] + results)
    if options.markdown:
        with open(options.markdown, "w") as stream:
            for line in [COLUMNS, ["---"] * len(COLUMNS)] + results:
                stream.write("| " + " | ".join(line) + " |\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
