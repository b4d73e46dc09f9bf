#!/usr/bin/env python3
"""The models in the README are the files that the consumer tests compile and run.

usage: readme_test.py SOURCE_FOLDER
"""
import os
import sys

os.chdir(sys.argv[1])
with open("README.md", encoding="utf-8") as stream:
    readme = stream.read()
for name in ("tests/consumer/project/knapsack.cpp", "tests/consumer/java/Knapsack.java"):
    with open(name, encoding="utf-8") as stream:
        if "\n" + stream.read() + "```\n" not in readme:
            sys.exit("README.md does not show %s as it is" % name)
