#!/usr/bin/env python3
"""Makes tables and plots of what run_instances.py measured.

usage: report_instances.py RUNS.csv [--seconds S] [--markdown FILE] [--plots FOLDER]

The table of families gives medians over instances, each instance standing for the median of its seeds; the
table of instances gives the best, the median and the worst of the seeds. A gap is in percent of the best
known value, taken as at least 1. A run without a feasible answer is worse than any with one. Of two middle ones
the median is the worse one: the larger gap, the smaller speed.

--plots writes FAMILY.svg with gnuplot: the median gap over time of all runs of the family, and the quarters
of them that lie below and above.
"""
import argparse
import csv
import math
import os
import subprocess
import sys
from decimal import Decimal

INFINITE = float("inf")
FAMILY_COLUMNS = ("family", "instances", "always feasible", "median gap %", "worst gap %",
                  "at best known", "moves/s")
COLUMNS = ("family", "instance", "best known", "our best", "median", "worst", "gap %", "time to best s",
           "moves/s", "feasible")
PLOT_POINTS = 40
FIRST_TIME = 0.05


def median_gap(values):
    """The middle one; of two middle ones the larger, so that it is a value that was met."""
    values = sorted(values)
    return values[len(values) // 2]


def median_speed(speeds):
    """Of those that were measured; of two middle ones the smaller. Not a number if there is none."""
    speeds = sorted(speed for speed in speeds if math.isfinite(speed))
    return speeds[(len(speeds) - 1) // 2] if speeds else math.nan


def shown(value, form="%.2f"):
    return form % value if math.isfinite(value) else "-"


class Instance:
    """The runs of one instance with different seeds."""

    def __init__(self, lines):
        self.lines = sorted(lines, key=lambda line: self.loss(line))
        self.first = lines[0]

    @staticmethod
    def loss(line):
        if line["objective"] == "":
            return INFINITE
        value = float(line["objective"])
        return value if line["sense"] == "min" else -value

    def gap(self):
        """Of the median run; None where no best value is known."""
        line = median_line(self.lines)
        if line["best_known"] == "":
            return None
        return float(line["gap"]) if line["objective"] != "" else INFINITE

    def is_at_best(self):
        """Of the median run, to the last digit: a small gap is rounded to 0."""
        line = median_line(self.lines)
        if line["best_known"] == "" or line["objective"] == "":
            return False
        value, best = Decimal(line["objective"]), Decimal(line["best_known"])
        return value <= best if line["sense"] == "min" else value >= best

    def nb_feasible(self):
        return sum(line["objective"] != "" for line in self.lines)

    def speed(self):
        return median_speed([float(line["moves_per_second"] or "nan") for line in self.lines])

    def cells(self):
        middle = median_line(self.lines)
        values = [line["objective"] or "-" for line in (self.lines[0], middle, self.lines[-1])]
        gap = self.gap()
        return [self.first["family"], os.path.basename(self.first["file"]),
                self.first["best_known"] or "-"] + values + [
                    "-" if gap is None else shown(gap), middle["time_to_best"] or "-",
                    shown(self.speed(), "%.0f"), "%d of %d" % (self.nb_feasible(), len(self.lines))]


def median_line(lines):
    return lines[len(lines) // 2]


def family_cells(family, instances):
    gaps = [gap for gap in (instance.gap() for instance in instances) if gap is not None]
    always = sum(instance.nb_feasible() == len(instance.lines) for instance in instances)
    return [family, str(len(instances)), str(always), shown(median_gap(gaps)) if gaps else "-",
            shown(max(gaps)) if gaps else "-", str(sum(instance.is_at_best() for instance in instances)),
            shown(median_speed([instance.speed() for instance in instances]), "%.0f")]


def markdown(columns, rows):
    lines = [columns, ["---"] * len(columns)] + rows
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def tables(lines, seconds):
    groups = {}
    for line in lines:
        if int(line["seconds"]) == seconds:
            groups.setdefault((line["family"], line["file"]), []).append(line)
    instances = [Instance(groups[key]) for key in sorted(groups)]
    families = {}
    for instance in instances:
        families.setdefault(instance.first["family"], []).append(instance)
    cut = any(line["run_seconds"] != line["seconds"] for group in groups.values() for line in group)
    note = "\nTaken from the improvements of longer runs.\n" if cut else ""
    return "### After %d s\n%s\n%s\n%s" % (
        seconds, note,
        markdown(FAMILY_COLUMNS, [family_cells(name, members) for name, members in families.items()]),
        markdown(COLUMNS, [instance.cells() for instance in instances]))


def gap_over_time(line, times):
    """The gap of one run at each of the times."""
    best, sign = float(line["best_known"]), 1 if line["sense"] == "min" else -1
    points = [tuple(map(float, point.split(":"))) for point in line["trajectory"].split(";") if point]
    gaps, current, i = [], INFINITE, 0
    for now in times:
        while i < len(points) and points[i][0] <= now:
            current = 100 * sign * (points[i][1] - best) / max(abs(best), 1)
            i += 1
        gaps.append(current)
    return gaps


def plot(family, lines, folder):
    lines = [line for line in lines if line["best_known"] != "" and
             line["seconds"] == line["run_seconds"]]
    if not lines:
        return
    last = max(int(line["seconds"]) for line in lines)
    lines = [line for line in lines if int(line["seconds"]) == last]
    ratio = (last / FIRST_TIME) ** (1 / (PLOT_POINTS - 1))
    times = [FIRST_TIME * ratio ** i for i in range(PLOT_POINTS)]
    curves = list(zip(*(gap_over_time(line, times) for line in lines)))
    data = []
    for now, gaps in zip(times, curves):
        gaps = sorted(gaps)
        cells = [gaps[len(gaps) // 4], gaps[len(gaps) // 2], gaps[3 * len(gaps) // 4]]
        data.append("%.3f %s" % (now, " ".join(
            "%.4f" % gap if math.isfinite(gap) else "NaN" for gap in cells)))
    script = """set terminal svg size 560,340 font "sans,12" background "#ffffff"
set title "%s: gap to the best known over time (%d runs)" noenhanced
set xlabel "seconds"
set ylabel "gap in %%"
set logscale x
set xrange [%g:%g]
set yrange [*<0:]
set grid
$data << END
%s
END
plot $data using 1:4 with steps lw 1 lc "#bbbbbb" title "worst quarter begins", \\
     $data using 1:3 with steps lw 2 lc "#c03020" title "median", \\
     $data using 1:2 with steps lw 1 lc "#305090" title "best quarter ends"
""" % (family, len(lines), FIRST_TIME, last, "\n".join(data))
    drawn = subprocess.run(["gnuplot"], input=script, text=True, check=True, stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL).stdout
    # gnuplot leaves blanks at the ends of lines, which version control shows as faults.
    with open(os.path.join(folder, family + ".svg"), "w", encoding="utf-8") as stream:
        stream.writelines(line.rstrip() + "\n" for line in drawn.splitlines())


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("runs")
    parser.add_argument("--seconds", type=int, help="only this time; all by default")
    parser.add_argument("--markdown")
    parser.add_argument("--plots")
    options = parser.parse_args(arguments)
    with open(options.runs, newline="") as stream:
        lines = list(csv.DictReader(stream))
    times = sorted({int(line["seconds"]) for line in lines})
    text = "\n".join(tables(lines, seconds) for seconds in times
                     if options.seconds in (None, seconds))
    if options.markdown:
        with open(options.markdown, "w") as stream:
            stream.write(text)
    else:
        print(text)
    wrong = [line for line in lines if line["status"].startswith("WRONG")]
    for line in wrong:
        print("WRONG: %s seed %s: %s" % (line["file"], line["seed"], line["status"]), file=sys.stderr)
    if options.plots:
        os.makedirs(options.plots, exist_ok=True)
        for family in sorted({line["family"] for line in lines}):
            plot(family, [line for line in lines if line["family"] == family], options.plots)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
