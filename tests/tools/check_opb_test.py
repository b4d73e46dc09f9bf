#!/usr/bin/env python3
"""Tests of check_opb: it accepts what is right and notices each way of being wrong."""
import gzip
import io
import os
import tempfile
import unittest

import check_opb

MODEL = """* #variable= 3 #constraint= 3
min: +1 x1 -2 x2 ~x3 ;
+1 x1 +1 x2 >= 1 ;
+2 x1 +3 ~x3 <= 4 ;
+1 x1 x2 = 0 ;
"""


class CheckOpb(unittest.TestCase):
    def check(self, solution, model=MODEL, pack=False):
        raw = model.encode("ascii")
        with tempfile.TemporaryDirectory() as folder:
            name = os.path.join(folder, "model.opb")
            with open(name, "wb") as stream:
                stream.write(gzip.compress(raw) if pack else raw)
            return check_opb.check(name, io.StringIO(solution))

    def refused(self, text, solution, model=MODEL):
        with self.assertRaises(check_opb.Wrong) as caught:
            self.check(solution, model)
        self.assertIn(text, str(caught.exception))

    def test_right_solution(self):
        self.assertEqual(self.check("v -x1 x2 -x3\n"), "objective -2")

    def test_gzip_and_the_lines_of_a_whole_output(self):
        output = "c text\no 5\no -2\ns SATISFIABLE\nv -x1\nv x2 -x3\n"
        self.assertEqual(self.check(output, pack=True), "objective -2")

    def test_each_violated_relation(self):
        self.refused("constraint 1 is violated: 0 >= 1", "v -x1 -x2 x3\n")
        self.refused("constraint 2 is violated: 5 <= 4", "v x1 -x2 -x3\n")
        self.refused("constraint 3 is violated: 1 = 0", "v x1 x2 x3\n")

    def test_wrong_objective(self):
        self.refused("the objective is -2, the last o line tells -1", "o -1\nv -x1 x2 -x3\n")

    def test_missing_variable(self):
        self.refused("variable x3 has no value", "v -x1 x2\n")

    def test_variable_with_two_values(self):
        self.refused("variable x1 is given twice", "v x1 -x1 x2 x3\n")

    def test_no_objective(self):
        self.assertEqual(self.check("v x1\n", "+1 x1 >= 1 ;\n"), "objective none")

    def test_integers_of_any_size(self):
        model = "min: +99999999999999999999 x1 ;\n+99999999999999999999 x1 >= 99999999999999999999 ;"
        self.assertEqual(self.check("v x1\n", model), "objective 99999999999999999999")

    def test_malformed_models(self):
        self.refused("no token", "v x1\n", "+1 x1 ? >= 1 ;")
        self.refused("ends within", "v x1\n", "+1 x1 >= 1")
        self.refused("is no constraint", "v x1\n", "+1 x1 ;")
        self.refused("without a literal", "v x1\n", "+1 +1 x1 >= 1 ;")


if __name__ == "__main__":
    unittest.main()
