#!/usr/bin/env python3
"""Runs the program ombrix as a user does: exit status, forms of output, files, signals.

usage: program_test.py PROGRAM TOOLS DATA [unittest arguments]
"""
import gzip
import io
import json
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

PROGRAM, TOOLS, DATA = (os.path.abspath(argument) for argument in sys.argv[1:4])
sys.path.insert(0, TOOLS)
import check_opb  # noqa: E402

COVER = "min: +3 x1 +2 x2 +2 x3 ;\n+1 x1 +1 x2 >= 1 ;\n+1 x1 +1 x3 >= 1 ;\n"
PRODUCTS = "max: +3 x1 x2 +2 ~x1 x3 -1 x2 x3 ;\n+1 x1 +1 x2 +1 x3 <= 2 ;\n"
FEASIBILITY = "+1 x1 +1 x2 = 1 ;\n+1 ~x1 >= 1 ;\n"
CONTRADICTION = "min: +1 x1 ;\n+1 x1 +1 x2 >= 3 ;\n"
# Five pigeons in four holes: no solution, but not seen by looking at one constraint.
PIGEONS = "".join(
    " ".join("+1 x%d" % (4 * pigeon + hole + 1) for hole in range(4)) + " >= 1 ;\n"
    for pigeon in range(5)
) + "".join(
    " ".join("+1 x%d" % (4 * pigeon + hole + 1) for pigeon in range(5)) + " <= 1 ;\n"
    for hole in range(4)
)


class ProgramTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = holder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def model(self, text, name="model.opb"):
        raw = text.encode("ascii")
        with open(self.path(name), "wb") as stream:
            stream.write(gzip.compress(raw) if name.endswith(".gz") else raw)
        return self.path(name)

    def run_program(self, *arguments):
        return subprocess.run(
            [PROGRAM, *arguments],
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=120,
            cwd=self.folder,
            check=False,
        )

    def solve(self, text, *arguments, name="model.opb"):
        limits = () if "--phase" in arguments else ("--iterations", "20000")
        return self.run_program("solve", self.model(text, name), *limits, *arguments)

    def assert_failure(self, result, *texts):
        self.assertEqual(result.returncode, 1, result)
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("ombrix: "), result.stderr)
        for text in texts:
            self.assertIn(text, result.stderr)

    def check(self, name, lines):
        return check_opb.check(name, io.StringIO(lines))


class Competition(ProgramTest):
    def test_lines_in_their_order(self):
        result = self.solve(COVER, "--output", "pb")
        self.assertEqual(result.returncode, 0, result)
        kinds = re.sub(r"(.)\1+", r"\1", "".join(line[0] for line in result.stdout.splitlines()))
        self.assertEqual(kinds, "cosv")
        self.assertIn("\ns SATISFIABLE\n", result.stdout)
        self.assertEqual(result.stdout.splitlines()[-1].split()[0], "v")
        self.assertEqual(self.check(self.path("model.opb"), result.stdout), "objective 3")
        self.assertEqual(result.stderr, "")

    def test_improvements_only_improve(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        result = self.run_program("solve", name, "--iterations", "200000", "--output", "pb")
        self.assertEqual(result.returncode, 0, result.stderr)
        values = [int(line[2:]) for line in result.stdout.splitlines() if line.startswith("o ")]
        self.assertGreater(len(values), 0)
        self.assertEqual(values, sorted(set(values), reverse=True))
        self.assertEqual(self.check(name, result.stdout), "objective %d" % values[-1])

    def test_the_best_of_all_phases_comes_out(self):
        name = os.path.join(DATA, "mkp5x100.opb")
        phases = ("--phase", "iterations=60000", "--phase", "iterations=200")
        for seed in range(4):
            result = self.run_program("solve", name, *phases, "--threads", "1", "--seed", str(seed),
                                      "--annealing-level", "9", "--output", "pb")
            lines = [line for line in result.stdout.splitlines() if line.startswith("o ")]
            self.assertEqual(self.check(name, result.stdout), "objective " + lines[-1][2:])

    def test_maximisation_with_products(self):
        result = self.solve(PRODUCTS, "--output", "pb")
        self.assertEqual(result.returncode, 0, result)
        self.assertEqual(self.check(self.path("model.opb"), result.stdout), "objective 3")

    def test_a_model_without_objective_has_no_o_line(self):
        result = self.solve(FEASIBILITY, "--output", "pb")
        self.assertEqual(result.returncode, 0, result)
        self.assertNotIn("\no ", result.stdout)
        self.assertIn("\ns SATISFIABLE\n", result.stdout)
        self.assertEqual(self.check(self.path("model.opb"), result.stdout), "objective none")

    def test_an_objective_that_cannot_be_better_is_optimal(self):
        result = self.solve("min: +1 x1 +1 x2 ;\n+1 x2 +1 x3 >= 1 ;\n", "--output", "pb")
        self.assertEqual(result.returncode, 0, result)
        self.assertIn("\no 0\ns OPTIMUM FOUND\n", result.stdout)

    def test_contradiction(self):
        result = self.solve(CONTRADICTION, "--output", "pb", "--solution", self.path("best.txt"))
        self.assertEqual(result.returncode, 3, result)
        self.assertTrue(result.stdout.endswith("\ns UNSATISFIABLE\n"), result.stdout)
        self.assertEqual(os.listdir(self.folder), ["model.opb"])

    def test_nothing_found(self):
        result = self.solve(PIGEONS, "--output", "pb", "--solution", self.path("best.txt"))
        self.assertEqual(result.returncode, 2, result)
        self.assertTrue(result.stdout.endswith("\ns UNKNOWN\n"), result.stdout)
        self.assertEqual(os.listdir(self.folder), ["model.opb"])

    def test_the_display_stands_in_comments(self):
        result = self.solve(COVER, "--output", "pb", "--verbosity", "1")
        self.assertIn("c Phase 0:", result.stdout)
        for line in result.stdout.splitlines():
            self.assertRegex(line, r"^[cosv] ?")

    def test_every_variable_has_a_value(self):
        result = self.solve("min: +1 x9 ;\n+1 x1 +0 x7 +1 x3 ~x3 x4 >= 1 ;\n", "--output", "pb")
        values, _ = check_opb.read_solution(io.StringIO(result.stdout))
        self.assertEqual(set(values), {"x1", "x3", "x4", "x7", "x9"})


class Plain(ProgramTest):
    def test_display_then_decisions(self):
        result = self.solve(COVER)
        self.assertEqual(result.returncode, 0, result)
        self.assertIn("Phase 0:", result.stdout)
        self.assertIn("\nStatus: feasible\nObjective: 3\nDecisions:\n", result.stdout)
        self.assertTrue(result.stdout.endswith("  x1 = 1\n  x2 = 0\n  x3 = 0\n"), result.stdout)

    def test_verbosity_0_shows_the_result_only(self):
        result = self.solve(FEASIBILITY, "--verbosity", "0")
        self.assertEqual(
            result.stdout, "Status: optimal\nDecisions:\n  x1 = 0\n  x2 = 1\n", result
        )

    def test_contradiction(self):
        result = self.solve(CONTRADICTION)
        self.assertEqual(result.returncode, 3, result)
        self.assertTrue(
            result.stdout.endswith("Status: inconsistent, the model has no solution\n")
        )

    def test_nothing_found(self):
        result = self.solve(PIGEONS)
        self.assertEqual(result.returncode, 2, result)
        self.assertTrue(result.stdout.endswith("Status: infeasible, no solution was found\n"))

    def test_gzip(self):
        result = self.solve(COVER, "--verbosity", "0", name="model.opb.gz")
        self.assertEqual(result.returncode, 0, result)
        self.assertIn("Objective: 3\n", result.stdout)

    def test_phases(self):
        result = self.solve(
            COVER, "--phase", "iterations=1000,objective=0", "--phase", "iterations=500"
        )
        self.assertEqual(result.returncode, 0, result)
        self.assertIn("Phase 0:", result.stdout)
        self.assertIn("Phase 1:", result.stdout)
        self.assertIn("iteration limit = 1000, optimized objective = 0", result.stdout)

    def test_options_reach_the_engine(self):
        result = self.solve(
            COVER, "--threads", "1", "--seed", "5", "--annealing-level", "3", "--set", "someKey=4"
        )
        self.assertIn("seed = 5, nb threads = 1, annealing level = 3", result.stdout)
        self.assertIn("someKey = 4", result.stdout)

    def test_a_bound_ends_the_search_where_it_is_reached(self):
        result = self.solve(COVER, "--time", "60", "--bound", "0=4")
        self.assertIn("Status: optimal", result.stdout)
        self.assertEqual(result.returncode, 0, result)
        result = self.solve(COVER, "--bound", "0=4", "--output", "pb")
        self.assertIn("s SATISFIABLE\n", result.stdout)

    def test_a_bound_that_the_objective_cannot_take_is_refused(self):
        self.assert_failure(
            self.solve(COVER, "--bound", "1=4"),
            "--bound: found objective 1, expected an index from 0 to 0",
        )
        for wrong in ("1.5", "", "x", "99999999999999999999"):
            self.assert_failure(
                self.solve(COVER, "--bound", "0=" + wrong),
                '--bound: found "%s", expected an integer of 64 bits' % wrong,
            )

    def test_display_every_spaces_the_lines_of_the_display(self):
        lines = {}
        for seconds in ("1", "1000"):
            name = os.path.join(DATA, "scp200x1000.opb")
            result = self.run_program("solve", name, "--time", "3", "--display-every", seconds)
            self.assertEqual(result.returncode, 0, result)
            lines[seconds] = len(re.findall(r"^\[.* sec, .* itr\]", result.stdout, re.MULTILINE))
        self.assertGreater(lines["1"], lines["1000"])

    def test_the_same_seed_gives_the_same_run(self):
        name = os.path.join(DATA, "mkp5x100.opb")
        options = ("solve", name, "--iterations", "50000", "--verbosity", "0", "--seed", "3")
        first = self.run_program(*options)
        self.assertEqual(first.returncode, 0, first)
        self.assertEqual(first.stdout, self.run_program(*options).stdout)


class Statistics(ProgramTest):
    def statistics(self, name="run.json"):
        with open(self.path(name), encoding="utf-8") as stream:
            return json.load(stream)

    def assert_improving(self, improvements, sign=1):
        for former, present in zip(improvements, improvements[1:]):
            self.assertGreaterEqual(present["time"], former["time"])
            if former["feasible"]:
                self.assertTrue(present["feasible"])
                self.assertLess(sign * present["objectives"][0], sign * former["objectives"][0])
            elif not present["feasible"]:
                self.assertLessEqual(present["infeasibility"][0], former["infeasibility"][0])

    def test_tell_the_whole_search(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        result = self.run_program("solve", name, "--phase", "iterations=50000", "--phase",
                                  "iterations=30000", "--seed", "4", "--threads", "3",
                                  "--output", "pb", "--stats", "run.json")
        self.assertEqual(result.returncode, 0, result)
        told = self.statistics()
        self.assertEqual(list(told)[:4], ["version", "model", "seed", "threads"])
        self.assertEqual((told["model"], told["seed"], told["threads"]), (name, 4, 3))
        self.assert_improving(told["improvements"])
        self.assertEqual(told["nbImprovements"], len(told["improvements"]))
        self.assertEqual(told["resolution"], 0)
        self.assertEqual(told["improvements"][0]["iteration"], 0)
        lines = [int(line[2:]) for line in result.stdout.splitlines() if line.startswith("o ")]
        feasible = [i["objectives"][0] for i in told["improvements"] if i["feasible"]]
        self.assertEqual(feasible, lines)
        final = told["final"]
        self.assertEqual(final["status"], "feasible")
        self.assertEqual(final["objectives"], lines[-1:])
        self.assertEqual((final["iterations"], final["moves"]), (80000, 240000))
        self.assertGreaterEqual(final["time"], told["improvements"][-1]["time"])
        self.assertEqual(len(told["workers"]), 3)
        for worker in told["workers"]:
            self.assertEqual(worker["iterations"], 80000)
            self.assertEqual(sum(move["attempted"] for move in worker["moves"]), 80000)
            names = [strategy["name"] for strategy in worker["strategies"]]
            self.assertEqual(names, ["restart", "annealing"])
            for move in worker["moves"]:
                fates = move["infeasible"] + move["rejected"] + move["accepted"]
                self.assertEqual(fates, move["attempted"])

    def test_of_a_search_that_finds_nothing(self):
        self.assertEqual(self.solve(PIGEONS, "--stats", "run.json").returncode, 2)
        told = self.statistics()
        self.assertEqual(told["final"]["status"], "infeasible")
        self.assertFalse(told["improvements"][-1]["feasible"])
        self.assertEqual(len(told["improvements"][-1]["infeasibility"]), 3)

    def test_of_a_contradiction(self):
        self.assertEqual(self.solve(CONTRADICTION, "--stats", "run.json").returncode, 3)
        told = self.statistics()
        self.assertEqual((told["improvements"], told["workers"]), ([], []))
        self.assertEqual(
            told["final"],
            {"status": "inconsistent", "objectives": [], "time": 0, "iterations": 0, "moves": 0},
        )

    def test_of_an_environment_with_a_double_objective(self):
        with open(self.path("half.oxm"), "w", encoding="ascii", newline="") as stream:
            stream.write(
                '<OXM01>\r\n{"expressions"={{"type"="bool"},{"type"="const","value"=0.5},'
                '{"type"="prod"}},"operands"={{},{},{0,1}},'
                '"objectives"={{"idx"=2,"dir"="maximize"}}}')
        result = self.run_program("solve", "half.oxm", "--iterations", "100", "--stats", "run.json")
        self.assertEqual(result.returncode, 0, result)
        told = self.statistics()
        self.assertEqual([i["objectives"] for i in told["improvements"]], [[0], [0.5]])
        self.assertEqual(told["final"]["objectives"], [0.5])

    def test_a_strange_file_name(self):
        name = os.fsencode(self.folder) + b'/a"b\\c\n\xff.opb'
        with open(name, "wb") as stream:
            stream.write(COVER.encode("ascii"))
        result = subprocess.run(
            [PROGRAM, "solve", name, "--iterations", "100", "--verbosity", "0", "--stats", "run.json"],
            capture_output=True, cwd=self.folder, check=False)
        self.assertEqual(result.returncode, 0, result)
        self.assertTrue(self.statistics()["model"].endswith('/a"b\\c\n\ufffd.opb'))

    def test_a_place_that_cannot_be_written_is_told_before_the_search(self):
        began = time.monotonic()
        result = self.run_program("solve", self.model(COVER), "--time", "20", "--stats", "/no/s.json")
        self.assert_failure(result, "/no/s.json: cannot be written: No such file or directory")
        self.assertLess(time.monotonic() - began, 10)

    def test_two_options_cannot_write_the_same_file(self):
        name = self.model(COVER)
        with open(self.path("old.txt"), "w", encoding="ascii") as stream:
            stream.write("old")
        for first, second in (("--solution", "--stats"), ("--save", "--stats"),
                              ("--solution", "--save")):
            for file in ("new.txt", "old.txt"):
                result = self.run_program(
                    "solve", name, first, file, second, os.path.join(self.folder, file))
                self.assert_failure(result, second + ": ", file + " is the file of " + first)
        self.assertEqual(sorted(os.listdir(self.folder)), ["model.opb", "old.txt"])

    def test_nothing_is_left_when_the_command_fails(self):
        result = self.solve(COVER, "--objective", "1", "--stats", "run.json")
        self.assertEqual(result.returncode, 1, result)
        self.assertEqual(os.listdir(self.folder), ["model.opb"])


class Trace(ProgramTest):
    def test_shows_the_tables_of_every_thread_with_each_display(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        limits = ("--time", "2", "--threads", "3", "--display-every", "1")
        result = self.run_program("solve", name, *limits, "--trace")
        self.assertEqual(result.returncode, 0, result)
        self.assertGreaterEqual(result.stdout.count("Heur. stats"), 3)
        self.assertEqual(result.stdout.count("Heur. stats") % 3, 0)
        for text in ("Restarting ratio: ", "annealing window size: ", "move filter period: "):
            self.assertEqual(result.stdout.count(text), result.stdout.count("Heur. stats"))
        self.assertNotIn("Heur. stats", self.run_program("solve", name, *limits).stdout)


class SolutionFile(ProgramTest):
    def test_holds_the_v_lines(self):
        result = self.solve(COVER, "--output", "pb", "--solution", self.path("best.txt"))
        with open(self.path("best.txt"), encoding="ascii") as stream:
            text = stream.read()
        lines = [line for line in result.stdout.splitlines(True) if line.startswith("v")]
        self.assertEqual(text, "".join(lines))
        self.assertEqual(sorted(os.listdir(self.folder)), ["best.txt", "model.opb"])

    def test_the_standard_output_goes_on_behind_it(self):
        with open(self.path("out.txt"), "w+", encoding="ascii") as out:
            subprocess.run(
                [PROGRAM, "solve", self.model(COVER), "--iterations", "1000", "--output", "pb"]
                + ["--solution", "/dev/stdout"],
                stdout=out,
                check=True,
            )
        with open(self.path("out.txt"), encoding="ascii") as out:
            kinds = [line[0] for line in out]
        self.assertEqual(kinds[0], "c")
        self.assertEqual(kinds[-3:], ["v", "s", "v"])

    def test_an_empty_name_is_told_before_the_search(self):
        name = self.model(COVER)
        for option in ("--solution", "--stats", "--save"):
            result = self.run_program("solve", name, option, "")
            self.assert_failure(result, option + ": the name of the file is empty")

    def test_a_place_that_cannot_be_written_is_told_before_the_search(self):
        name = self.model(COVER)
        result = self.run_program("solve", name, "--solution", "/no/such/folder/best.txt")
        self.assert_failure(result, "/no/such/folder/best.txt: cannot be written: ")


class Environments(ProgramTest):
    FORMS = ("m.oxm", "m.oxm.gz", "m.oxb", "m.oxb.gz")

    def read(self, name):
        with open(self.path(name), "rb") as stream:
            return stream.read()

    def assert_good(self, result):
        self.assertEqual(result.returncode, 0, result)
        self.assertEqual(result.stderr, "")
        return result.stdout

    def test_a_search_goes_on_from_the_file(self):
        for form in self.FORMS:
            saved = self.solve(COVER, "--verbosity", "0", "--seed", "9", "--save", form)
            first = self.assert_good(saved)
            again = self.run_program("solve", form, "--iterations", "1", "--verbosity", "0")
            self.assertEqual(self.assert_good(again), first)
            shown = self.assert_good(self.run_program("show", form))
            self.assertIn("\n  x1 = 1\n  x2 = 0\n  x3 = 0\n", shown)
            self.assertIn("seed = 9", shown)

    def test_the_phases_of_the_file_hold_until_limits_are_given(self):
        self.assert_good(self.solve(COVER, "--phase", "iterations=1000", "--phase",
                                    "iterations=500", "--save", "m.oxb"))
        kept = self.assert_good(self.run_program("solve", "m.oxb"))
        self.assertIn("iteration limit = 1000", kept)
        self.assertIn("Phase 1:", kept)
        replaced = self.assert_good(self.run_program("solve", "m.oxb", "--iterations", "77"))
        self.assertIn("iteration limit = 77", replaced)
        self.assertNotIn("Phase 1:", replaced)

    def test_every_form_into_every_other(self):
        source = self.model(PRODUCTS)
        for form in self.FORMS:
            self.assert_good(self.run_program("convert", source, form))
            for other in self.FORMS:
                self.assert_good(self.run_program("convert", form, "to" + other))
                self.assert_good(self.run_program("convert", "to" + other, "back" + form))
                back, there = self.read("back" + form), self.read(form)
                if form.endswith(".gz"):
                    self.assertEqual(there[:2], b"\x1f\x8b")
                    back, there = gzip.decompress(back), gzip.decompress(there)
                self.assertEqual(back, there)
        self.assertEqual(self.read("m.oxm")[:9], b"<OXM01>\r\n")
        self.assertEqual(self.read("m.oxb")[:7], b"<OXB01>")

    def test_the_content_tells_the_form(self):
        self.assert_good(self.run_program("convert", self.model(COVER), "m.oxb.gz"))
        os.rename(self.path("m.oxb.gz"), self.path("m.opb"))
        self.assertIn("minimize", self.assert_good(self.run_program("show", "m.opb")))
        self.assertIn("bool = 3", self.assert_good(self.run_program("info", "m.opb")))

    def test_a_file_may_be_converted_into_itself_through_a_link(self):
        self.assert_good(self.run_program("convert", self.model(COVER), "m.oxb"))
        os.symlink("m.oxb", self.path("link.oxb"))
        before = self.read("m.oxb")
        self.assert_good(self.run_program("convert", "link.oxb", "link.oxb"))
        self.assertTrue(os.path.islink(self.path("link.oxb")))
        self.assertEqual(self.read("m.oxb"), before)

    def test_info_is_that_of_the_model(self):
        self.assert_good(self.run_program("convert", self.model(COVER), "m.oxm"))
        texts = [
            re.sub(r"time = \S+", "time = T", self.assert_good(self.run_program("info", name)))
            for name in ("model.opb", "m.oxm")
        ]
        lines = [[line for line in text.splitlines() if "closing" not in line] for text in texts]
        self.assertEqual(*lines)

    def test_show(self):
        shown = self.assert_good(self.run_program("show", self.model(COVER)))
        self.assertIn("Constraints:\n  #5 = x1 + x2 >= 1\n  #7 = x1 + x3 >= 1\n", shown)
        self.assertIn("Objectives:\n  minimize #13 = 3 * x1 + 2 * x2 + 2 * x3\n", shown)
        self.assertIn("Solution:\n  status = infeasible\n  objective 0 = 0\n", shown)
        self.assertTrue(shown.endswith("Decisions:\n  x1 = 0\n  x2 = 0\n  x3 = 0\n"))

    def test_doubles_are_printed_with_all_their_digits(self):
        with open(self.path("d.oxm"), "w", encoding="ascii") as stream:
            stream.write('<OXM01>{"expressions"={{"type"="bool"},'
                         '{"type"="const","value"=1234567.891},{"type"="prod"}},'
                         '"operands"={{},{},{0,1}},"objectives"={{"idx"=2,"dir"="maximize"}}}')
        solved = self.run_program("solve", "d.oxm", "--iterations", "100", "--save", "m.oxb")
        self.assertIn("\nObjective: 1234567.891\n", self.assert_good(solved))
        shown = self.assert_good(self.run_program("show", "m.oxb"))
        self.assertIn("\n  objective 0 = 1234567.891\n", shown)
        self.assertIn(" * 1234567.891\n", shown)

    def test_show_cuts_lists_at_the_limit(self):
        shown = self.assert_good(self.run_program("show", self.model(COVER), "--limit", "1"))
        self.assertIn("Constraints:\n  #5 = x1 + ... 1 more >= ... 1 more\n  ... 1 more\n", shown)
        self.assertTrue(shown.endswith("Decisions:\n  x1 = 0\n  ... 2 more\n"), shown)

    def test_show_cuts_the_bounds_of_objectives_at_the_limit(self):
        with open(self.path("three.oxm"), "w", encoding="ascii") as stream:
            stream.write('<OXM01>{"expressions"={{"type"="bool"},{"type"="bool"},{"type"="bool"}},'
                         '"objectives"={{"idx"=0},{"idx"=1},{"idx"=2}}}')
        whole = self.assert_good(self.run_program("show", "three.oxm"))
        self.assertIn("  Obj 1: minimize, no bound\n  Obj 2: minimize, no bound\n", whole)
        cut = self.assert_good(self.run_program("show", "three.oxm", "--limit", "1"))
        self.assertIn("\nObjectives:\n  Obj 0: minimize, no bound\n  ... 2 more\nSolution:\n", cut)

    def test_a_text_file_that_cannot_be_read_back_is_warned_of(self):
        # Two infinite bounds in a row, of which the first gets no comma.
        with open(self.path("two.oxm"), "w", encoding="ascii", newline="") as stream:
            stream.write(
                '<OXM01>\r\n{"expressions"={{"type"="bool"},{"type"="const","value"=0.5},'
                '{"type"="sum"}},"operands"={{},{},{0,1}},'
                '"objectives"={{"idx"=2},{"idx"=2}}}')
        for target in ("out.oxm", "out.oxm.gz"):
            result = self.run_program("convert", "two.oxm", target)
            self.assertEqual(result.returncode, 0)
            self.assertRegex(
                result.stderr,
                "^ombrix: warning: %s cannot be read back .* .oxb or .oxb.gz\n$" % target)
            self.assert_failure(self.run_program("show", target), target + ": At line ")
        self.assert_good(self.run_program("convert", "two.oxm", "out.oxb"))
        result = self.run_program("solve", "two.oxm", "--iterations", "9", "--verbosity", "0",
                                  "--save", "saved.oxm")
        self.assertEqual(result.returncode, 0)
        self.assertIn("ombrix: warning: saved.oxm cannot be read back", result.stderr)

    def test_a_full_disk_never_replaces_a_file(self):
        self.assert_good(self.run_program("convert", self.model(COVER), "m.oxb"))
        before = self.read("m.oxb")
        limited = 'trap "" XFSZ; ulimit -f 0; exec "$0" convert model.opb "$1"'
        for form in self.FORMS:
            with open(self.path(form), "wb") as stream:
                stream.write(before)
            result = subprocess.run(
                ["bash", "-c", limited, PROGRAM, form], capture_output=True, text=True,
                cwd=self.folder, check=False)
            self.assert_failure(result, form + ": cannot be written: only part of it arrived")
            self.assertEqual(self.read(form), before)
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(self.FORMS + ("model.opb",)))

    def test_a_kill_never_replaces_a_file_by_half_of_another(self):
        terms = " ".join("+1 x%d" % i for i in range(1, 6001))
        wide = self.model("min: %s ;\n%s >= 1 ;\n" % (terms, terms), "wide.opb")
        whole = {}
        for form in self.FORMS:
            started = time.monotonic()
            self.assert_good(self.run_program("convert", wide, form))
            whole[form] = self.read(form), time.monotonic() - started
        draw = random.Random(1)
        for turn in range(16):
            form = self.FORMS[turn % len(self.FORMS)]
            new, seconds = whole[form]
            with open(self.path(form), "wb") as stream:
                stream.write(b"old")
            converting = subprocess.Popen([PROGRAM, "convert", wide, form], cwd=self.folder)
            time.sleep(draw.uniform(0, 1.2 * seconds))
            converting.kill()
            converting.wait()
            # The date in a gzip header is 0: the bytes of a form are always the same.
            self.assertIn(self.read(form), (b"old", new))

    def run_with_memory(self, megabytes, *arguments):
        return subprocess.run(
            [PROGRAM, *arguments], capture_output=True, text=True, cwd=self.folder, check=False,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (megabytes << 20,) * 2))

    def test_too_little_memory_is_told_and_leaves_the_old_file(self):
        if self.run_with_memory(200, "--version").returncode != 0:
            self.skipTest("this build needs address space for its own checks")
        # Scalar products that share their arrays: a small file, a large graph.
        n = 1500
        kinds = ['"bool"'] * n + ['"const","value"=%d' % i for i in range(2, n + 2)]
        kinds += ['"array"'] * 2 + ['"scalar"'] * n + ['"sum"']
        operands = [[]] * (2 * n) + [range(n), range(n, 2 * n)]
        operands += [(2 * n, 2 * n + 1)] * n + [range(2 * n + 2, 3 * n + 2)]
        with open(self.path("dense.oxm"), "w", encoding="ascii") as stream:
            stream.write('<OXM01>{"expressions"={%s},"operands"={%s},"objectives"={{"idx"=%d}}}' % (
                ",".join('{"type"=%s}' % kind for kind in kinds),
                ",".join("{%s}" % ",".join(map(str, items)) for items in operands), 3 * n + 2))
        with open(self.path("m.oxb"), "w", encoding="ascii") as stream:
            stream.write("old")
        for megabytes in (16, 24, 32, 48, 64):
            for command in (("info", "dense.oxm"), ("show", "dense.oxm"),
                            ("convert", "dense.oxm", "m.oxb"),
                            ("solve", "dense.oxm", "--iterations", "9", "--save", "m.oxb")):
                result = self.run_with_memory(megabytes, *command)
                self.assert_failure(result, "dense.oxm: out of memory: the model needs more")
        self.assertEqual(self.read("m.oxb"), b"old")
        self.assertEqual(sorted(os.listdir(self.folder)), ["dense.oxm", "m.oxb"])

    def test_too_little_memory_for_the_search_is_told(self):
        if self.run_with_memory(200, "--version").returncode != 0:
            self.skipTest("this build needs address space for its own checks")
        name = self.model(COVER)
        self.assert_good(self.run_program("convert", name, "m.oxb"))
        for megabytes in range(14, 60, 2):
            for source in (name, "m.oxb"):
                result = self.run_with_memory(
                    megabytes, "solve", source, "--iterations", "9", "--threads", "4")
                if result.returncode != 0:
                    self.assert_failure(result)
                    self.assertRegex(result.stderr, "out of memory|annot start ")

    def test_places_that_cannot_be_written_are_told_before_the_work(self):
        name = self.model(COVER)
        for target, reason in (("/no/such/folder/m.oxb", "No such file or directory"),
                               ("/dev/null", "not a regular file"),
                               (self.folder, "not a regular file")):
            told = target + ": cannot be written: " + reason
            self.assert_failure(self.run_program("convert", name, target), told)
            self.assert_failure(self.run_program("solve", name, "--save", target), told)

    def test_a_failure_leaves_the_old_file_and_nothing_else(self):
        with open(self.path("m.oxb"), "w", encoding="ascii") as stream:
            stream.write("old")
        self.assert_failure(self.run_program("convert", self.model("min: x", "bad.opb"), "m.oxb"))
        self.assertEqual(self.read("m.oxb"), b"old")
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.opb", "m.oxb"])

    def test_bad_files_are_named(self):
        with open(self.path("bad.oxm"), "w", encoding="ascii") as stream:
            stream.write("<OXM01>\n{?")
        for command in (("solve",), ("info",), ("show",)):
            result = self.run_program(*command, "bad.oxm")
            self.assert_failure(result, "bad.oxm: At line 2: unexpected character '?'")
        self.assert_failure(self.run_program("convert", "bad.oxm", "out.oxm"), "bad.oxm: At line")

    def test_the_lines_of_competitions_are_those_of_opb_files(self):
        self.assert_good(self.run_program("convert", self.model(COVER), "m.oxm"))
        self.assert_failure(self.run_program("solve", "m.oxm", "--output", "pb"),
                            "--output pb: m.oxm is no file in the OPB format")

    def test_the_solution_file_has_the_names_of_the_decisions(self):
        self.assert_good(self.solve(COVER, "--save", "m.oxb"))
        self.assert_good(self.run_program("solve", "m.oxb", "--solution", "best.txt"))
        self.assertEqual(self.read("best.txt"), b"v x1 -x2 -x3\n")

    def test_a_contradiction_keeps_its_status(self):
        result = self.solve(CONTRADICTION, "--save", "m.oxb")
        self.assertEqual(result.returncode, 3, result)
        result = self.run_program("solve", "m.oxb")
        self.assertEqual(result.returncode, 3, result)
        self.assertIn("Status: inconsistent", result.stdout)


class Failures(ProgramTest):
    def test_usage(self):
        self.assert_failure(self.run_program())
        self.assert_failure(self.run_program("solve"))
        self.assert_failure(self.run_program("solve", "m.opb", "--time", "0"), "--time")
        self.assert_failure(self.run_program("dance"))

    def test_missing_file(self):
        result = self.run_program("solve", "missing.opb")
        self.assert_failure(result, "missing.opb: cannot be opened: No such file or directory")

    def test_malformed_file(self):
        name = self.model("min: +1 x1 ;\n+1 x1 > 1 ;\n")
        for command in ("solve", "info"):
            result = self.run_program(command, name)
            self.assert_failure(result, name + ':2:7: found ">", expected')

    def test_an_objective_that_is_not_there(self):
        result = self.solve(COVER, "--objective", "1")
        self.assert_failure(
            result,
            "--objective: Objective with index 1 does not exist. Only indices from 0 to 0 are currently allowed.",
        )

    def test_a_closed_standard_output(self):
        with open("/dev/full", "w", encoding="ascii") as full:
            result = subprocess.run(
                [PROGRAM, "solve", self.model(COVER), "--iterations", "1000", "--verbosity", "0"],
                stdout=full,
                stderr=subprocess.PIPE,
                text=True,
                check=False,
            )
        self.assert_failure(result, "the standard output cannot be written")


class Information(ProgramTest):
    def test_version_and_help(self):
        version = self.run_program("--version")
        self.assertEqual(version.returncode, 0)
        self.assertTrue(version.stdout.startswith("Ombrix 3.1 "), version.stdout)
        for arguments in (
            ("--help",),
            ("solve", "--help"),
            ("info", "--help"),
            ("convert", "--help"),
            ("show", "--help"),
        ):
            result = self.run_program(*arguments)
            self.assertEqual(result.returncode, 0)
            self.assertRegex(result.stdout, "Examples?:\n  ombrix ")

    def test_info(self):
        result = self.run_program("info", self.model(COVER))
        self.assertEqual(result.returncode, 0, result)
        for text in (
            "Model:\n  expressions = 14\n",
            "\n    bool = 3\n",
            "\n  operands = 17\n",
            "\n  expressions fixed = ",
            "\n  nodes = ",
            "\n    geq = 2\n",
            "\n  decisions = 3\n",
            "\n  constraints = 2\n",
            "\n  objectives = 1\n",
            "\n  inconsistent = no\n",
            "\n    boolean = 3\n",
            "\n  ranks = ",
            "\n  closing time = ",
            "\n  closing memory = ",
        ):
            self.assertIn(text, result.stdout)

    def test_info_of_a_contradiction(self):
        result = self.run_program("info", self.model(CONTRADICTION))
        self.assertEqual(result.returncode, 0, result)
        self.assertIn("\n  inconsistent = yes\n", result.stdout)
        self.assertRegex(
            result.stdout,
            r"\n  first contradiction = Expression \d+ \(type = geq\), constraint 0, met by inferBounds\n",
        )
        self.assertNotIn("createNodes", result.stdout)

    def test_info_tells_what_each_pass_did(self):
        # x1 is forced by the constraint, so that the product of it and x2 is x2.
        text = "min: +1 x1 x2 +1 x3 ;\n+1 x1 >= 1 ;\n+1 x2 +1 x3 >= 1 ;\n"
        result = self.run_program("info", self.model(text))
        self.assertEqual(result.returncode, 0, result)
        report = re.search(r"\nPasses:\n((?:  .*\n)*)", result.stdout).group(1).splitlines()
        names = ["computeBounds", "inferBounds", "findConstants", "findUnaries", "createNodes"]
        self.assertEqual([line.split(":")[0].strip() for line in report], names)
        for line in report:
            self.assertRegex(line, r", time = [0-9.e-]+ sec$")
        self.assertRegex(report[0], "bounds narrowed = [1-9]")
        self.assertRegex(report[1], "bounds narrowed = [1-9][0-9]*, constants proved = 1,")
        self.assertRegex(report[3], "expressions replaced = [1-9]")
        self.assertRegex(report[4], "nodes saved = [1-9]")

    def test_info_tells_nodes_added_where_expressions_need_several(self):
        # Each product of the two arrays has a node of its own.
        with open(self.path("s.oxm"), "w", encoding="ascii") as stream:
            stream.write(
                '<OXM01>{"expressions"={%s,{"type"="array"},{"type"="array"},{"type"="scalar"}},'
                '"operands"={%s,{0,1,2,3,4,5},{6,7,8,9,10,11},{12,13}},"objectives"={{"idx"=14}}}'
                % (",".join(['{"type"="bool"}'] * 12), ",".join(["{}"] * 12)))
        result = self.run_program("info", "s.oxm")
        self.assertEqual(result.returncode, 0, result)
        nodes = int(re.search(r"\n  nodes = (\d+)\n", result.stdout).group(1))
        self.assertGreater(nodes, 15)
        self.assertIn(": nodes added = %d, " % (nodes - 15), result.stdout)

    def test_info_leaves_out_a_pass_that_is_off(self):
        result = self.run_program("info", self.model(COVER), "--set", "findUnariesEnabled=0")
        self.assertEqual(result.returncode, 0, result)
        self.assertNotIn("findUnaries:", result.stdout)
        self.assertIn("findConstants:", result.stdout)


class Signals(ProgramTest):
    def interrupted(self, number, *arguments):
        """Starts an endless solve, sends the signal once moves have improved the first solution."""
        name = os.path.join(DATA, "scp200x1000.opb")
        with subprocess.Popen(
            [PROGRAM, "solve", name, "--output", "pb", *arguments],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_DFL),
        ) as process:
            lines = []
            for line in process.stdout:
                lines.append(line)
                if sum(told.startswith("o ") for told in lines) == 3:
                    break
            process.send_signal(number)
            began = time.monotonic()
            # Not communicate, which would lose the lines that were read ahead.
            watchdog = threading.Timer(60, process.kill)
            watchdog.start()
            rest, errors = process.stdout.read(), process.stderr.read()
            process.wait()
            watchdog.cancel()
        self.assertLess(time.monotonic() - began, 20)
        self.assertEqual(process.returncode, 0, errors)
        output = "".join(lines) + rest
        self.assertIn("\ns SATISFIABLE\n", output)
        objective = self.check(name, output)
        improvements = [line for line in output.splitlines() if line.startswith("o ")]
        self.assertEqual(objective, "objective " + improvements[-1][2:])

    def test_ctrl_c(self):
        self.interrupted(signal.SIGINT)

    def test_statistics_are_written_after_ctrl_c(self):
        self.interrupted(signal.SIGINT, "--stats", self.path("run.json"))
        with open(self.path("run.json"), encoding="utf-8") as stream:
            told = json.load(stream)
        self.assertEqual(told["final"]["objectives"], told["improvements"][-1]["objectives"])
        self.assertGreater(told["final"]["moves"], 0)

    def test_an_improvement_is_told_before_the_first_display(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        arguments = ("--output", "pb", "--display-every", "1000", "--set", "syncIterations=0")
        with subprocess.Popen(
            [PROGRAM, "solve", name, *arguments], stdout=subprocess.PIPE, text=True
        ) as process:
            found = next(line for line in process.stdout if line.startswith("o "))
            better = next(line for line in process.stdout if line.startswith("o "))
            self.assertLess(int(better[2:]), int(found[2:]))
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=60)

    def test_terminate(self):
        self.interrupted(signal.SIGTERM)

    def test_the_end_of_the_terminal(self):
        self.interrupted(signal.SIGHUP)

    def test_an_ignored_end_of_the_terminal_is_ignored(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        with subprocess.Popen(
            [PROGRAM, "solve", name, "--output", "pb"], stdout=subprocess.PIPE, text=True,
            preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN),
        ) as process:
            self.addCleanup(process.kill)
            next(line for line in process.stdout if line.startswith("o "))
            process.send_signal(signal.SIGHUP)
            with self.assertRaises(subprocess.TimeoutExpired):
                process.wait(0.5)
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=60)

    def test_ctrl_c_again_and_again_loses_nothing(self):
        name = os.path.join(DATA, "scp200x1000.opb")
        with subprocess.Popen(
            [PROGRAM, "solve", name, "--solution", "best.txt", "--save", "m.oxb"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, cwd=self.folder,
        ) as process:
            self.addCleanup(process.kill)
            lines = []
            for line in process.stdout:
                lines.append(line)
                if line.startswith("[") and "obj" in line:
                    break
            began = time.monotonic()
            while process.poll() is None and time.monotonic() - began < 60:
                process.send_signal(signal.SIGINT)
                time.sleep(0.001)
            output = "".join(lines) + process.stdout.read()
        # Behind the last line of output the signal may end the process as it does any other.
        self.assertIn(process.returncode, (0, -signal.SIGINT))
        told = re.search(r"\nStatus: feasible\nObjective: (\d+)\nDecisions:\n", output)
        self.assertEqual(len(output[told.end():].splitlines()), 1000)
        with open(self.path("best.txt"), encoding="ascii") as stream:
            self.assertEqual(self.check(name, stream.read()), "objective " + told.group(1))
        shown = self.run_program("show", "m.oxb", "--limit", "2")
        self.assertIn("  objective 0 = %s\n" % told.group(1), shown.stdout)

    def test_one_signal_ends_all_phases(self):
        phases = []
        for _ in range(20):
            phases += ["--phase", "time=1000"]
        self.interrupted(signal.SIGINT, *phases)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
