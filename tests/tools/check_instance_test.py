#!/usr/bin/env python3
"""Tests of check_instance: for each family it computes the objective and notices broken rules."""
import os
import tempfile
import unittest

import check_instance
from check_instance import FAMILIES, Wrong

GRAPH = "c a path of three\np edge 3 2\ne 1 2\ne 3 2\n"


def table(*columns):
    """Values of a table of decisions x_row_column with these columns chosen, three columns wide."""
    return {"x_%d_%d" % (row, c): c == column for row, column in enumerate(columns) for c in range(3)}


def flags(*values):
    return {"x_%d" % i: bool(value) for i, value in enumerate(values)}


class CheckInstance(unittest.TestCase):
    def objective(self, family, text, values, expected):
        self.assertEqual(FAMILIES[family](text, values), expected)

    def refused(self, family, text, values, reason):
        with self.assertRaises(Wrong) as caught:
            FAMILIES[family](text, values)
        self.assertIn(reason, str(caught.exception))

    def test_assignment(self):
        text = "2 3  1 2 3  4 5 6  2 2 2  3 3 3  4 5"
        self.objective("gap", text, table(0, 0, 1), 1 + 2 + 6)
        self.refused("gap", text, table(0, 0, 0), "agent 0 holds 6 of 4")
        self.refused("gap", text, table(0, 0, 2), "which does not exist")
        self.refused("gap", text, dict(table(0, 0, 1), x_0_1=True), "assigned twice")
        self.refused("gap", text, dict(table(0, 0, 1), x_0_0=False), "job 0 is not assigned")

    def test_facilities_with_capacities(self):
        text = "2 3  5 5  10.5 20  2 2 2  1 2  3 4  5 6.25"
        self.assertEqual(str(FAMILIES["sscfl"](text, table(0, 0, 1))), "40.75")
        self.refused("sscfl", text, table(0, 0, 0), "facility 0 holds 6 of 5")

    def test_medians_count_the_last_of_repeated_edges(self):
        text = "3 3 1  1 2 9  2 3 4  2 1 5"
        self.objective("pmed", text, flags(0, 1, 0), 9)
        self.objective("pmed", text, flags(1, 0, 0), 14)
        self.refused("pmed", text, flags(1, 1, 0), "2 medians are chosen, not 1")

    def test_rows_of_linear_models(self):
        text = """NAME          T
ROWS
 N  COST
 G  A
 E  B
 L  C
COLUMNS
    X         COST         2.5   A            1
    X         B            1     C            2
    Y         COST         1.0   A            1
    Z         B            1     C            2
RHS
    S         A            1     B            1
    S         C            4     COST        -7
RANGES
    S         C            2
BOUNDS
 UP S         X            1
ENDATA
"""
        good = {"X": True, "Y": False, "Z": False}
        self.assertEqual(str(FAMILIES["mip01"](text, good)), "9.5")
        self.refused("mip01", text, dict(good, Z=True), "row B is 2")
        self.refused("mip01", text, {"X": False, "Y": False, "Z": True}, "row A is 0")
        self.refused("mip01", text.replace("C            2\nBOUNDS", "C            1\nBOUNDS"), good,
                     "row C is 2")
        self.refused("mip01", text, {"X": True, "Y": False}, "not the columns")

    def test_clique(self):
        self.objective("clique", GRAPH, flags(0, 1, 1), 2)
        self.refused("clique", GRAPH, flags(1, 0, 1), "vertices 0 and 2 are not adjacent")

    def test_cut(self):
        self.objective("maxcut", "3 3  1 2 5  2 3 -1  1 3 2", flags(1, 0, 0), 7)

    def test_quadratic(self):
        self.objective("qubo", "2 3  1 1 -3  1 2 4  2 2 -5", flags(1, 1), 0)
        self.objective("qubo", "2 3  1 1 -3  1 2 4  2 2 -5", flags(0, 1), -5)

    def test_quadratic_knapsack(self):
        text = "name\n3\n1 2 3\n10 20\n30\n\n0\n5\n2 3 4\nComments"
        self.objective("qkp", text, flags(1, 1, 0), 13)
        self.refused("qkp", text, flags(1, 0, 1), "the knapsack holds 6 of 5")

    def test_clauses_of_each_layout(self):
        values = {"x_1": True, "x_2": False}
        self.objective("maxsat", "c new\nh 1 2 0\n3 -1 0\n4 2 0\n", values, 7)
        self.objective("maxsat", "p wcnf 2 3 9\n9 1 2 0\n3 -1 0\n8 -2\n0\n", values, 3)
        self.objective("maxsat", "p wcnf 2 2\n9 2 0\n3 1 0\n", values, 9)
        self.objective("maxsat", "p cnf 2 2\n2 0\n-1 2 0\n", values, 2)
        self.refused("maxsat", "h 1 0\nh -1 2 0\n", values, "hard clause 2 is falsified")

    def test_slabs(self):
        text = "2 7 4  3  3  3 1  2 2  4 3"
        self.objective("steelmill", text, table(0, 0, 1), 2)
        self.refused("steelmill", text, table(0, 0, 0), "slab 0 holds 9 of 7")
        self.refused("steelmill", text.replace("4 3", "1 3"), table(0, 0, 0), "holds 3 of 2")

    def test_golfers(self):
        text = "n_groups = 2;\nn_per_group = 2;\nn_rounds = 2;\n"
        rounds = {"x_%d_%d_%d" % (r, p, g): False for r in (0, 1) for p in range(4) for g in (0, 1)}
        rounds.update(x_0_0_0=True, x_0_1_0=True, x_0_2_1=True, x_0_3_1=True)
        again = dict(rounds, x_1_0_0=True, x_1_1_0=True, x_1_2_1=True, x_1_3_1=True)
        other = dict(rounds, x_1_0_0=True, x_1_2_0=True, x_1_1_1=True, x_1_3_1=True)
        self.objective("golfers", text, again, 2)
        self.objective("golfers", text, other, 0)
        self.refused("golfers", text, dict(other, x_1_0_0=False), "has 1 golfers")

    def test_nurses(self):
        text = """SECTION_HORIZON
# days
7
SECTION_SHIFTS
E,480,
L,400,E
SECTION_STAFF
A,E=2|L=3,1800,1200,3,2,2,0
SECTION_DAYS_OFF
A,6
SECTION_SHIFT_ON_REQUESTS
A,0,E,3
A,5,L,4
SECTION_SHIFT_OFF_REQUESTS
A,1,L,5
SECTION_COVER
0,E,2,100,1
1,L,0,100,7
"""
        def week(shifts):
            return {"x_0_%d_%d" % (d, s): "ELo"[s] == shift
                    for d, shift in enumerate(shifts) for s in range(3)}
        self.objective("nurse", text, week("ELLoooo"), 4 + 5 + 100 + 7)
        self.refused("nurse", text, week("EEEoooo"), "in shifts E, holds 3 of 2")
        self.refused("nurse", text, week("Eoooooo"), "works 480 minutes")
        self.refused("nurse", text, week("LELoooo"), "works E after L")
        self.refused("nurse", text.replace("800,1200,3", "999,1200,2"), week("ELLoooo"), "3 days in a row")
        self.refused("nurse", text, week("ELooLoo"), "1 days of work in a row")
        self.refused("nurse", text, week("ELoLLoo"), "1 days of rest in a row")
        self.refused("nurse", text, week("EoooLLo"), "weekends, holds 1 of 0")
        self.refused("nurse", text, week("ELooooL"), "weekends, holds 1 of 0")
        self.refused("nurse", text.replace("A,6", "A,2"), week("ELLoooo"), "fixed day off")
        double = dict(week("ELLoooo"), x_0_0_1=True)
        self.refused("nurse", text, double, "two shifts on day 0")

    def test_tables_of_examples(self):
        self.objective("coloring", GRAPH, table(0, 1, 0), 2)
        with self.assertRaises(check_instance.check_example.Wrong):
            FAMILIES["coloring"](GRAPH, table(0, 0, 1))
        self.objective("scp", "2 3  5 6 7  2 1 2  1 3", flags(1, 0, 1), 12)
        self.objective("binpacking", "3 5  2 3 4", table(0, 0, 1), 2)

    def test_value_lines(self):
        with tempfile.TemporaryDirectory() as folder:
            name = os.path.join(folder, "solution")
            with open(name, "w") as stream:
                stream.write("o 3\nv x_0_1 -x_0_2\nv x_1_0\n")
            values = check_instance.read_decisions(name)
            self.assertEqual(values, {"x_0_1": True, "x_0_2": False, "x_1_0": True})
            with open(name, "a") as stream:
                stream.write("v -x_0_1\n")
            with self.assertRaises(Wrong):
                check_instance.read_decisions(name)


if __name__ == "__main__":
    unittest.main()
