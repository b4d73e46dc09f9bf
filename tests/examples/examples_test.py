#!/usr/bin/env python3
"""Runs every example for a second and has an independent checker look at its answer.

usage: examples_test.py --data FOLDER --tools FOLDER [--ombrix PROGRAM]
                        (--programs FOLDER | --java JAVA --classpath PATH)
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile
import time
import unittest

ENVIRONMENT = ".oxb.gz"
# Program, name of the twin in Java, instance.
EXAMPLES = (
    ("knapsack", "Knapsack", "mkp5x100.txt"),
    ("setcovering", "SetCovering", "scp200x1000.txt"),
    ("quadraticassignment", "QuadraticAssignment", "qap30.txt"),
    ("graphcolouring", "GraphColouring", "graph125.col"),
    ("facilitylocation", "FacilityLocation", "ufl100.txt"),
    ("planelocation", "PlaneLocation", "plane60x200.txt"),
    ("portfolio", "Portfolio", "portfolio150.txt"),
    ("antennas", "Antennas", "antennas8x120.txt"),
    ("travellingsalesman", "TravellingSalesman", "cities60.tsp"),
    ("carsequencing", "CarSequencing", "cars100.txt"),
    ("binpacking", "BinPacking", "bins120.txt"),
    ("timetable", "Timetable", "timetable8.txt"),
)
options = argparse.Namespace()


def run(command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def command_of(name, twin):
    if options.programs:
        return [os.path.join(options.programs, name)]
    return [options.java, "-cp", options.classpath, twin]


def objective_in(text):
    match = re.search(r"^objective (\S+?),?( best known .*)?$", text, re.MULTILINE)
    return float(match.group(1)) if match else None


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.solution = os.path.join(folder.name, "solution")

    def solve(self, name, twin, instance, best="-"):
        """The objective that the example prints, or None if it found no feasible solution."""
        done = run(command_of(name, twin) + [instance, "1", best, self.solution])
        self.assertEqual((0, ""), (done.returncode, done.stderr), done.stdout)
        objective = objective_in(done.stdout)
        if objective is None:
            self.assertIn("no feasible solution found", done.stdout)
        return objective

    def checked(self, name, instance):
        """The objective that the checker computes from the solution file."""
        tool = os.path.join(options.tools, "check_example.py")
        done = run([sys.executable, "-B", tool, name, instance, self.solution])
        self.assertEqual(0, done.returncode, done.stdout + done.stderr)
        return objective_in(done.stdout)

    def solve_timetable(self, instance):
        """As solve, but a slow machine goes on from the environment until a timetable stands."""
        for _ in range(20):
            objective = self.solve("timetable", "Timetable", instance)
            if objective is not None:
                return objective
            instance = self.solution + ENVIRONMENT
        self.fail("no timetable after 20 seconds of search")

    def test_answers_are_what_the_checker_says(self):
        for name, twin, instance in EXAMPLES:
            path = os.path.join(options.data, instance)
            with self.subTest(name):
                if name == "timetable":
                    objective = self.solve_timetable(path)
                else:
                    objective = self.solve(name, twin, path, best="1")
                expected = self.checked(name, path)
                self.assertAlmostEqual(expected, objective, delta=1e-6 * max(1.0, abs(expected)))

    def test_timetable_goes_on_from_its_environment(self):
        instance = os.path.join(options.data, "timetable8.txt")
        first = self.solve_timetable(instance)
        self.assertLessEqual(self.solve_timetable(self.solution + ENVIRONMENT), first)
        self.checked("timetable", instance)

    def test_the_program_goes_on_from_the_environment_of_an_example(self):
        if not options.ombrix:
            self.skipTest("the program is not built")
        instance = os.path.join(options.data, "timetable8.txt")
        first = self.solve_timetable(instance)
        saved = self.solution + ENVIRONMENT
        done = run([options.ombrix, "solve", saved, "--time", "1", "--save", saved])
        self.assertEqual(0, done.returncode, done.stdout + done.stderr)
        self.assertLessEqual(self.solve_timetable(saved), first)
        self.checked("timetable", instance)

    def test_failures_are_one_line(self):
        command = command_of("timetable", "Timetable")
        for arguments, expected in (
            ([], "usage: PROGRAM INSTANCE [SECONDS [BEST_KNOWN [SOLUTION_FILE]]]\n"),
            ([os.path.join(options.data, "bins120.txt")], "expected"),
            ([os.path.join(options.data, "absent.txt")], "absent.txt"),
            ([os.path.join(options.data, "absent.oxb.gz")], "absent.oxb.gz"),
            ([os.path.join(options.data, "timetable8.txt"), "60", "-", "/no/such/file"],
             "/no/such/file"),
        ):
            with self.subTest(arguments):
                done = run(command + arguments)
                self.assertEqual(1, done.returncode)
                self.assertIn(expected, done.stderr)
                self.assertEqual(1, done.stderr.count("\n"), done.stderr)

    def test_a_solution_file_that_cannot_be_written_is_told_before_the_search(self):
        command = command_of("knapsack", "Knapsack")
        instance = os.path.join(options.data, "mkp5x100.txt")
        began = time.monotonic()
        done = run(command + [instance, "60", "-", os.path.dirname(self.solution)])
        self.assertEqual((1, ""), (done.returncode, done.stdout))
        self.assertIn(os.path.dirname(self.solution), done.stderr)
        self.assertLess(time.monotonic() - began, 30)

    def test_help(self):
        for wanted in ("-h", "--help"):
            done = run(command_of("knapsack", "Knapsack") + [wanted])
            self.assertEqual(
                (0, "usage: PROGRAM INSTANCE [SECONDS [BEST_KNOWN [SOLUTION_FILE]]]\n", ""),
                (done.returncode, done.stdout, done.stderr))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for option in ("data", "tools", "ombrix", "programs", "java", "classpath"):
        parser.add_argument("--" + option)
    _, rest = parser.parse_known_args(namespace=options)
    unittest.main(argv=sys.argv[:1] + rest)
