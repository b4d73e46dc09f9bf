#!/usr/bin/env python3
"""The checker of the examples accepts what is right and refuses what is not."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import check_example as checker  # noqa: E402


class Knapsack(unittest.TestCase):
    TEXT = "1\n3 1 0\n5 6 7\n2 3 4\n6\n"

    def test_profit_of_a_choice_that_fits(self):
        self.assertEqual(12, checker.knapsack(self.TEXT, [0, 2]))

    def test_overload_is_wrong(self):
        with self.assertRaisesRegex(checker.Wrong, "constraint 0 holds 7 of 6"):
            checker.knapsack(self.TEXT, [1, 2])

    def test_item_named_twice_is_wrong(self):
        with self.assertRaisesRegex(checker.Wrong, "named twice"):
            checker.knapsack(self.TEXT, [0, 0])


class SetCovering(unittest.TestCase):
    ROWS = "2 3  4 5 6  2 1 2  1 3"
    COLUMNS = "2 3  4 1 1  5 1 1  6 1 2"

    def test_both_layouts_say_the_same(self):
        self.assertEqual(10, checker.setcovering(self.ROWS, [1, 3]))
        self.assertEqual(10, checker.setcovering(self.COLUMNS, [1, 3]))

    def test_uncovered_row_is_wrong(self):
        with self.assertRaisesRegex(checker.Wrong, "row 2 is not covered"):
            checker.setcovering(self.ROWS, [1, 2])

    def test_triples_cost_one_a_point(self):
        self.assertEqual(1, checker.setcovering("4 2  1 2 3  1 3 4", [3]))


class Others(unittest.TestCase):
    def test_assignment_cost(self):
        self.assertEqual(2 * 3 * 5, checker.quadraticassignment("2 0 3 3 0 0 5 5 0", [1, 0]))
        with self.assertRaisesRegex(checker.Wrong, "named twice"):
            checker.quadraticassignment("2 0 3 3 0 0 5 5 0", [1, 1])

    def test_colouring(self):
        text = "c a path\np edge 3 2\ne 1 2\ne 2 3\n"
        self.assertEqual(2, checker.graphcolouring(text, [0, 1, 0]))
        with self.assertRaisesRegex(checker.Wrong, "vertices 2 and 3 have one colour"):
            checker.graphcolouring(text, [0, 1, 1])

    def test_location_cost(self):
        text = "2 2  capacity 10.5 capacity 20  0 1 2.25  0 3 4"
        self.assertEqual(checker.Decimal("14.5"), checker.facilitylocation(text, [0]))
        with self.assertRaisesRegex(checker.Wrong, "no facility is open"):
            checker.facilitylocation(text, [])

    def test_plane_location_takes_the_nearest_open_site(self):
        text = "2 2  0 0 10.5  6 8 1.25  3 4 2  6 9 0.5"
        self.assertAlmostEqual(10.5 + 1.25 + 2 * 5 + 0.5, checker.planelocation(text, [0, 1]))
        self.assertAlmostEqual(1.25 + 2 * 5 + 0.5, checker.planelocation(text, [1]))
        with self.assertRaisesRegex(checker.Wrong, "no facility is open"):
            checker.planelocation(text, [])

    def test_plane_location_of_a_short_file_is_refused(self):
        with self.assertRaises(IndexError):
            checker.planelocation("1 2  0 0 10  3 4 2", [0])

    def test_portfolio_risk_less_rewarded_return(self):
        # Two of three assets, one factor: exposure (4 - 2) / 2, own variance (8 + 12) / 4.
        text = "3 1 2 3.0  5 8 4  7 12 -2  100 0 0"
        self.assertAlmostEqual(1 + 5 - 3 * 6, checker.portfolio(text, [0, 1]))
        with self.assertRaisesRegex(checker.Wrong, "1 assets are held, not 2"):
            checker.portfolio(text, [0])
        with self.assertRaisesRegex(checker.Wrong, "named twice"):
            checker.portfolio(text, [0, 0])

    def test_antennas_reach_each_user_from_the_nearest(self):
        # At the angles 0 and a quarter turn; one user beside each antenna, one at the centre.
        text = "2 3 10  9 0 2  0 8 3  0 0 1"
        self.assertAlmostEqual(2 * 1 + 3 * 4 + 100, checker.antennas(text, [0, 64]))
        with self.assertRaisesRegex(checker.Wrong, "1 positions for 2 antennas"):
            checker.antennas(text, [0])
        with self.assertRaisesRegex(checker.Wrong, "outside 0 to 255"):
            checker.antennas(text, [0, 256])

    def test_tour_by_matrix_and_by_coordinates(self):
        head = "NAME : x\nDIMENSION: 3\nEDGE_WEIGHT_TYPE : EXPLICIT\nEDGE_WEIGHT_FORMAT: %s\n"
        section = "EDGE_WEIGHT_SECTION\n"
        for form, numbers in (("UPPER_ROW", "5 7\n9"), ("LOWER_DIAG_ROW", "0 5 0 7 9 0"),
                              ("FULL_MATRIX", "0 5 7 5 0 9 7 9 0")):
            text = head % form + section + numbers + "\nEOF\n"
            self.assertEqual(21, checker.travellingsalesman(text, [0, 2, 1]))
        text = "DIMENSION : 3\nEDGE_WEIGHT_TYPE : %s\nNODE_COORD_SECTION\n1 0 0\n2 3 4\n3 0 4.6\n"
        self.assertEqual(5 + 3 + 5, checker.travellingsalesman(text % "EUC_2D", [0, 1, 2]))
        self.assertEqual(2 + 1 + 2, checker.travellingsalesman(text % "ATT", [0, 1, 2]))
        with self.assertRaisesRegex(checker.Wrong, "2 visits for 3 cities"):
            checker.travellingsalesman(text % "EUC_2D", [0, 1])
        with self.assertRaisesRegex(checker.Wrong, "named twice"):
            checker.travellingsalesman(text % "EUC_2D", [0, 1, 1])

    def test_cars_count_the_stretches_above_a_limit(self):
        # One of two, two of three; the first class takes both options, the second the first one.
        text = "% a comment\n4 2 3\n1 2\n2 3\n0 2 1 1\n1 1 1 0\n2 1 0 0\n"
        self.assertEqual(2, checker.carsequencing(text, [0, 0, 1, 2]))
        self.assertEqual(1, checker.carsequencing(text, [0, 2, 0, 1]))
        with self.assertRaisesRegex(checker.Wrong, "class 0 has 1 cars, not 2"):
            checker.carsequencing(text, [0, 1, 1, 2])
        with self.assertRaisesRegex(checker.Wrong, "5 cars on the line, not 4"):
            checker.carsequencing(text, [0, 0, 1, 2, 3])

    def test_bins(self):
        self.assertEqual(2, checker.binpacking("3 10 6 5 4", [7, 1, 7]))
        with self.assertRaisesRegex(checker.Wrong, "bin 0 holds 11 of 10"):
            checker.binpacking("3 10 6 5 4", [0, 0, 1])
        with self.assertRaisesRegex(checker.Wrong, "2 bins told for 3 items"):
            checker.binpacking("3 10 6 5 4", [0, 1])

    def test_timetable_counts_the_periods_between_lessons(self):
        # Two days of three periods, two rooms; teacher 0 refuses the first period of the second day.
        text = "2 3 2  2 2 3  0 0 2  0 1 1  1 1 1  1  0 3"
        self.assertEqual(0 + 1 + 0 + 0, checker.timetable(text, [0, 4, 2, 1]))
        for wrong, solution in (
            ("3 lessons are held", [0, 4, 2]),
            ("outside the week", [0, 6, 2, 1]),
            ("course 0 meets twice a day", [0, 1, 2, 1]),
            ("teacher 0 refuses period 3", [0, 3, 2, 1]),
            ("class 0 has two lessons in period 0", [0, 4, 0, 1]),
            ("teacher 1 has two lessons in period 2", [0, 4, 2, 2]),
        ):
            with self.assertRaisesRegex(checker.Wrong, wrong):
                checker.timetable(text, solution)
        with self.assertRaisesRegex(checker.Wrong, "2 lessons in period 4"):
            checker.timetable(text.replace("2 3 2", "2 3 1", 1), [0, 4, 2, 4])

    def test_exit_status(self):
        with tempfile.TemporaryDirectory() as folder:
            instance, solution = (os.path.join(folder, name) for name in ("instance", "solution"))
            with open(instance, "w") as stream:
                stream.write(Knapsack.TEXT)
            with open(solution, "w") as stream:
                stream.write("1\n2\n")
            self.assertEqual(1, checker.main(["knapsack", instance, solution]))
            with open(solution, "w") as stream:
                stream.write("2\n")
            self.assertEqual(0, checker.main(["knapsack", instance, solution]))


if __name__ == "__main__":
    unittest.main()
