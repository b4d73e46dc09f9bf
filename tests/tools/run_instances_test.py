#!/usr/bin/env python3
"""Solves tiny instances of every family for a second, and verifies the answers.

usage: run_instances_test.py BENCH_FOLDER BUILD_FOLDER

The instances are made here, with a fixed seed. This proves that every model is what its problem says (a
checker that shares no code with it agrees), that the runner goes on where it stopped, and that the report
can be made of what it wrote. Nothing is said about quality or speed.
"""
import csv
import importlib
import os
import random
import subprocess
import sys
import tempfile
import time
import unittest
from types import SimpleNamespace
from unittest import mock

BENCH, BUILD = "", ""


def text_of(rows):
    return "\n".join(" ".join(str(x) for x in row) for row in rows) + "\n"


def matrix(rng, nb_rows, nb_columns, low=1, high=20):
    return [[rng.randint(low, high) for _ in range(nb_columns)] for _ in range(nb_rows)]


def pairs(rng, n, share):
    return [(i, j) for i in range(1, n + 1) for j in range(i + 1, n + 1) if rng.random() < share]


def gap(rng):
    return text_of([[3, 10]] + matrix(rng, 3, 10) + matrix(rng, 3, 10, 1, 5) + [[20, 20, 20]])


def sscfl(rng):
    return text_of([[4, 8], [15, 15, 15, 15], [30.5, 40, 20, 35]] + matrix(rng, 1, 8, 1, 5) +
                   matrix(rng, 8, 4))


def pmed(rng):
    edges = [[v, v + 1, rng.randint(1, 9)] for v in range(1, 12)]
    edges += [[u, v, rng.randint(1, 9)] for u, v in pairs(rng, 12, 0.2)]
    return text_of([[12, len(edges), 3]] + edges)


def mip01(rng):
    lines = ["NAME TINY", "ROWS", " N COST", " G R1", " E R2", " L R3", "COLUMNS",
             "    MARKER 'MARKER' 'INTORG'"]
    for i in range(8):
        row = "R%d" % (1 + i % 3)
        lines.append("    X%d COST %d %s %s" % (i, rng.randint(1, 9), row, 1 if row == "R2" else 1.5))
        lines.append("    X%d R3 %d" % (i, 1 + i % 2) if row != "R3" else "    X%d R1 1" % i)
    lines += ["    MARKER 'MARKER' 'INTEND'", "RHS", "    B R1 2 R2 1", "    B R3 7", "RANGES",
              "    B R3 5", "BOUNDS"] + [" UP B X%d 1" % i for i in range(8)]
    return "\n".join(lines + ["ENDATA", ""])


def graph(rng):
    edges = pairs(rng, 12, 0.5)
    return text_of([["c", "tiny"], ["p", "edge", 12, len(edges)]] + [["e", u, v] for u, v in edges])


def maxcut(rng):
    edges = [[u, v, rng.randint(-3, 5)] for u, v in pairs(rng, 12, 0.4)]
    return text_of([[12, len(edges)]] + edges)


def qubo(rng):
    entries = [[i, j, rng.randint(-9, 9)] for i, j in pairs(rng, 12, 0.4)]
    entries += [[i, i, rng.randint(-9, 9)] for i in range(1, 13)]
    return text_of([[12, len(entries)]] + entries)


def qkp(rng):
    return text_of([["tiny"], [8]] + matrix(rng, 1, 8) + [matrix(rng, 1, 7 - i)[0] for i in range(7)] +
                   [[], [0], [15]] + matrix(rng, 1, 8, 1, 6) + [["Comments"]])


def maxsat(rng):
    choice = [["h", 1, 2, 3, 0], ["h", -1, -2, 0], ["h", -1, -3, 0], ["h", -2, -3, 0]]
    other = [["h", 4, 5, 0], ["h", -4, 6, 0], ["h", -5, -6, -7, 0], ["h", -6, -8, 0]]
    soft = [[rng.randint(1, 9), rng.choice((1, -1)) * v, 0] for v in range(1, 9)]
    soft += [[5, -1, 6, 8, 0], [3, 7, -2, 0]]
    return text_of([["c", "tiny"]] + choice + other + soft)


def steelmill(rng):
    return text_of([[3, 5, 8, 12], [4], [10]] +
                   [[rng.randint(1, 6), rng.randint(1, 4)] for _ in range(10)])


def golfers(rng):
    return "n_groups = 3;\nn_per_group = 2;\nn_rounds = 4;\n"


def nurse(rng):
    lines = ["SECTION_HORIZON", "14", "SECTION_SHIFTS", "# comment", "E,480,", "L,480,E", "SECTION_STAFF"]
    lines += ["%s,E=10|L=10,4800,2400,5,1,1,2" % name for name in "ABCDE"]
    lines += ["SECTION_DAYS_OFF", "A,3", "B,5,6", "SECTION_SHIFT_ON_REQUESTS"]
    lines += ["C,%d,%s,%d" % (d, rng.choice("EL"), rng.randint(1, 3)) for d in (2, 6, 9)]
    lines += ["SECTION_SHIFT_OFF_REQUESTS", "D,4,E,2", "SECTION_COVER"]
    lines += ["%d,%s,%d,100,1" % (d, s, rng.randint(1, 2)) for d in range(14) for s in "EL"]
    return "\n".join(lines) + "\n"


def mkp(rng):
    return text_of([[1], [10, 2, 0]] + matrix(rng, 1, 10) + matrix(rng, 2, 10, 1, 9) + [[20, 25]])


def scp(rng):
    rows = [sorted(rng.sample(range(1, 13), rng.randint(2, 4))) for _ in range(8)]
    return text_of([[8, 12]] + matrix(rng, 1, 12) + [[len(row)] + row for row in rows])


def scp_rail(rng):
    columns = [sorted(rng.sample(range(1, 6), 2)) for _ in range(10)] + [[1, 2, 3, 4, 5]]
    return text_of([[5, 11]] + [[rng.randint(1, 9), len(rows)] + rows for rows in columns])


def scp_sts(rng):
    return text_of([[7, 7]] + [sorted({i % 7 + 1, (i + 1) % 7 + 1, (i + 3) % 7 + 1}) for i in range(7)])


def qap(rng):
    return text_of([[6]] + matrix(rng, 6, 6, 0) + matrix(rng, 6, 6, 0))


def ufl(rng):
    return text_of([[4, 6]] + [[0, rng.randint(10, 30) + 0.25] for _ in range(4)] +
                   [[1] + row for row in matrix(rng, 6, 4)])


def tsp(rng):
    return "NAME : tiny\nTYPE : TSP\nDIMENSION : 8\nEDGE_WEIGHT_TYPE : EUC_2D\nNODE_COORD_SECTION\n" + \
        text_of([i + 1, rng.randint(0, 50), rng.randint(0, 50)] for i in range(8)) + "EOF\n"


def carseq(rng):
    return text_of([[8, 2, 3], [1, 2], [2, 3], [0, 3, 1, 0], [1, 3, 0, 1], [2, 2, 1, 1]])


def binpacking(rng):
    return text_of([[10], [12]] + [[rng.randint(2, 9)] for _ in range(10)])


def pb(rng):
    return "* #variable= 3 #constraint= 1\nmin: 2 x1 3 x2 4 x3 ;\n1 x1 1 x2 1 x3 >= 2 ;\n"


MAKERS = {"gap": gap, "sscfl": sscfl, "pmed": pmed, "mip01": mip01, "clique": graph, "coloring": graph,
          "maxcut": maxcut, "qubo": qubo, "qkp": qkp, "maxsat": maxsat, "steelmill": steelmill,
          "golfers": golfers, "nurse": nurse, "mkp": mkp, "scp": scp, "scp_rail": scp_rail, "scp_sts": scp_sts,
          "qap": qap, "ufl": ufl, "tsp": tsp, "carseq": carseq, "binpacking": binpacking, "pb": pb,
          "pb_miplib": pb}
NAMES = {"maxsat": "tiny.wcnf", "mip01": "tiny.mps", "pb": "tiny.opb", "pb_miplib": "tiny.opb"}


def make_instances(folder):
    rng = random.Random(7)
    with open(os.path.join(folder, "best_known.csv"), "w", newline="") as stream:
        table = csv.writer(stream)
        table.writerow(("file", "family", "sense", "best_known", "optimal", "source"))
        for family, make in sorted(MAKERS.items()):
            os.mkdir(os.path.join(folder, family))
            name = "%s/%s" % (family, NAMES.get(family, "tiny.txt"))
            with open(os.path.join(folder, name), "w") as instance:
                instance.write(make(rng))
            sense = "max" if family in ("mkp", "clique", "maxcut", "qkp") else "min"
            table.writerow((name, family, sense, "1", "unknown", ""))


class RunInstances(unittest.TestCase):
    def call(self, program, *arguments):
        return subprocess.run([sys.executable, "-B", os.path.join(BENCH, program)] + list(arguments),
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def lines(self, runs):
        with open(runs, newline="") as stream:
            return list(csv.DictReader(stream))

    def test_every_family(self):
        with tempfile.TemporaryDirectory() as folder:
            make_instances(folder)
            runs = os.path.join(folder, "runs.csv")
            arguments = (folder, BUILD, runs, "--seconds", "1", "--seeds", "1")
            first = self.call("run_instances.py", *arguments)
            self.assertEqual(first.returncode, 0, first.stdout)
            for line in self.lines(runs):
                self.assertIn(line["status"], ("feasible", "optimal"), line["file"])
                self.assertNotEqual(line["objective"], "", line["file"])
            self.assertEqual({line["family"] for line in self.lines(runs)}, set(MAKERS))
            again = self.call("run_instances.py", *arguments)
            self.assertEqual(again.stdout, "")
            self.assertEqual(len(self.lines(runs)), len(MAKERS))
            report = self.call("report_instances.py", runs)
            self.assertEqual(report.returncode, 0, report.stdout)
            for family in MAKERS:
                self.assertIn("| %s | tiny." % family, report.stdout)

    def test_a_run_ends_where_a_proved_best_known_value_is_reached(self):
        with tempfile.TemporaryDirectory() as folder:
            for family in ("maxcut", "coloring"):
                os.makedirs(os.path.join(folder, family))
            # A path of three vertices: both its edges are cut, and two colours are enough.
            with open(os.path.join(folder, "maxcut", "path.txt"), "w") as stream:
                stream.write("3 2\n1 2 1\n2 3 1\n")
            with open(os.path.join(folder, "coloring", "path.col"), "w") as stream:
                stream.write("p edge 3 2\ne 1 2\ne 2 3\n")
            with open(os.path.join(folder, "best_known.csv"), "w") as stream:
                stream.write("file,family,sense,best_known,optimal,source\n"
                             "maxcut/path.txt,maxcut,max,2,yes,\n"
                             "coloring/path.col,coloring,min,2,yes,\n")
            runs = os.path.join(folder, "runs.csv")
            start = time.monotonic()
            done = self.call("run_instances.py", folder, BUILD, runs, "--seconds", "120", "--seeds",
                             "1", "--stop-at-best")
            self.assertEqual(done.returncode, 0, done.stdout)
            self.assertLess(time.monotonic() - start, 100)
            self.assertEqual([line["gap"] for line in self.lines(runs)], ["0.0000", "0.0000"])


class Figures(unittest.TestCase):
    """What is computed from a run, without one."""

    def test_a_gap_is_above_0_where_the_answer_is_worse(self):
        gap = importlib.import_module("run_instances").gap
        self.assertEqual(gap("110", "100", "min"), "10.0000")
        self.assertEqual(gap("90", "100", "max"), "10.0000")
        self.assertEqual(gap("-90", "-100", "min"), "10.0000")
        self.assertEqual(gap("99", "100", "min"), "-1.0000")
        self.assertEqual(gap("3", "0", "min"), "300.0000")
        self.assertEqual(gap("3", "", "min"), "")

    def test_the_time_of_a_program_begins_with_its_output(self):
        runner = importlib.import_module("run_instances")
        script = "sleep 1; echo looking for 5 colours; sleep 0.2; echo looking for 4 colours"
        status, out, points, elapsed = runner.follow(["sh", "-c", script], runner.LOOPS["coloring"][0], 60)
        self.assertEqual(status, 0)
        self.assertEqual(len(out.splitlines()), 2)
        self.assertEqual([number for _, number in points], [5, 4])
        self.assertLess(points[0][0], 0.1)
        self.assertGreater(points[1][0], 0.1)
        self.assertLess(elapsed, 0.9)

    def verified(self, told, found, best, status):
        """The status of the line of a run that maximises and may end at the best known value."""
        runner = importlib.import_module("run_instances")
        row = {"family": "mkp", "file": "f", "sense": "max", "best_known": best, "optimal": "yes"}
        options = SimpleNamespace(instances="", stop_at_best=True, threads=2)
        point = {"time": 0.5, "objectives": [told], "feasible": True}
        counted = {"final": {"objectives": [told], "status": status}, "improvements": [point]}
        with mock.patch.object(runner, "check", lambda *_: (found, "")):
            return runner.verify(row, runner.new_line(row, 1, 10, options), counted, "s", options)[0]["status"]

    def test_a_run_that_scaled_numbers_ended_too_early_is_an_error(self):
        self.assertIn("too early", self.verified(45, "4.5", "20", "optimal"))
        self.assertEqual(self.verified(200, "20", "20", "optimal"), "optimal")
        self.assertEqual(self.verified(45, "4.5", "20", "feasible"), "feasible")
        self.assertEqual(self.verified(20, "20", "20", "optimal"), "optimal")

    def report(self, *runs):
        """The cells of the table of families for runs of instances with one seed each."""
        reporter = importlib.import_module("report_instances")
        names = ("objective", "best_known", "gap", "moves_per_second")
        instances = [reporter.Instance([dict(zip(names, run), sense="min")]) for run in runs]
        return dict(zip(reporter.FAMILY_COLUMNS, reporter.family_cells("f", instances)))

    def test_a_gap_that_is_rounded_to_0_is_not_at_the_best_known_value(self):
        cells = self.report(("100000001", "100000000", "0.0000", "5"), ("7", "7", "0.0000", "5"),
                            ("6", "7", "-14.2857", "5"))
        self.assertEqual(cells["at best known"], "2")

    def test_of_two_middle_ones_the_worse_is_the_median(self):
        cells = self.report(("11", "10", "10.0000", "300"), ("12", "10", "20.0000", "500"))
        self.assertEqual((cells["median gap %"], cells["moves/s"]), ("20.00", "300"))

    def test_a_run_without_a_speed_counts_for_none(self):
        cells = self.report(("11", "10", "10.0000", "300"), ("10", "10", "0.0000", ""), ("", "10", "", ""))
        self.assertEqual((cells["moves/s"], cells["worst gap %"]), ("300", "-"))

    def test_an_instance_without_a_best_known_value_has_no_gap(self):
        cells = self.report(("11", "10", "10.0000", "300"), ("", "", "", "300"), ("5", "", "", "300"))
        self.assertEqual((cells["median gap %"], cells["worst gap %"]), ("10.00", "10.00"))


if __name__ == "__main__":
    BENCH, BUILD = sys.argv[1:3]
    sys.path.insert(0, BENCH)
    unittest.main(argv=sys.argv[:1])
