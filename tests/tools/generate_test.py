#!/usr/bin/env python3
"""The committed instances are what their generator gives.

usage: generate_test.py GENERATORS DATA
"""
import os
import sys

sys.path.insert(0, sys.argv[1])
import generate  # noqa: E402

for name, text in generate.generate().items():
    with open(os.path.join(sys.argv[2], name), encoding="ascii", newline="") as stream:
        if stream.read() != text:
            sys.exit("%s differs from what the generator gives" % name)
