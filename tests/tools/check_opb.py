#!/usr/bin/env python3
"""Checks a solution of a pseudo-Boolean model, without any code of the engine.

usage: check_opb.py MODEL [SOLUTION]

MODEL is an OPB file, plain or gzip. SOLUTION (or the standard input) holds "v" lines, alone or among
the other lines of a competition output; their literals give the value of every variable of the model.
Prints "objective N" (or "objective none" for a model without objective) and exits with 0 when each
constraint holds and the last "o" line, if there is one, tells that same objective. Otherwise says
what is wrong, and exits with 1. Integers are exact whatever their size.
"""
import gzip
import re
import sys

TOKEN = re.compile(r"[+-]?\d+|~?\s*[A-Za-z_][\w\[\].#]*:?|>=|<=|=|;")


class Wrong(Exception):
    """The model or the solution cannot stand; the text says why."""


def read_text(name):
    with open(name, "rb") as stream:
        raw = stream.read()
    if raw[:2] == b"\x1f\x8b":
        raw = gzip.decompress(raw)
    return raw.decode("latin-1")


def statements(text):
    """The statements between semicolons, as lists of tokens."""
    lines = (line for line in text.splitlines() if not line.lstrip().startswith("*"))
    body = "\n".join(lines)
    leftover = TOKEN.sub("", body).strip()
    if leftover:
        raise Wrong("the model holds %r, which is no token" % leftover[:20])
    tokens = []
    for match in TOKEN.finditer(body):
        if match.group() == ";":
            yield tokens
            tokens = []
        else:
            tokens.append(match.group())
    if tokens:
        raise Wrong("the model ends within a statement")


def is_number(token):
    return token[0] in "+-0123456789"


def parse_sum(tokens):
    """Terms (coefficient, [(variable, negated), ...])."""
    terms = []
    for token in tokens:
        if is_number(token):
            terms.append((int(token), []))
        elif not terms:
            raise Wrong("a sum begins with %r" % token)
        else:
            negated = token.startswith("~")
            terms[-1][1].append((token.lstrip("~").strip(), negated))
    if any(not literals for _, literals in terms):
        raise Wrong("a coefficient stands without a literal")
    return terms


def read_model(name):
    """(objective terms or None, [(terms, relation, bound)])."""
    objective = None
    constraints = []
    for tokens in statements(read_text(name)):
        if tokens and tokens[0] in ("min:", "max:"):
            if objective is not None or constraints:
                raise Wrong("an objective stands behind another statement")
            objective = parse_sum(tokens[1:])
        elif len(tokens) < 4 or tokens[-2] not in (">=", "<=", "=") or not is_number(tokens[-1]):
            raise Wrong("statement %r is no constraint" % " ".join(tokens[:8]))
        else:
            constraints.append((parse_sum(tokens[:-2]), tokens[-2], int(tokens[-1])))
    return objective, constraints


def read_solution(stream):
    """(value by variable, objective of the last "o" line or None)."""
    values = {}
    claimed = None
    for line in stream:
        words = line.split()
        if words[:1] == ["o"]:
            claimed = int(words[1])
        if words[:1] != ["v"]:
            continue
        for word in words[1:]:
            negated = word[0] in "-~"
            variable = word[1:] if negated else word
            if values.setdefault(variable, 1 - negated) != 1 - negated:
                raise Wrong("variable %s is given twice, with different values" % variable)
    return values, claimed


def evaluate(terms, values):
    total = 0
    for coefficient, literals in terms:
        product = 1
        for variable, negated in literals:
            if variable not in values:
                raise Wrong("variable %s has no value" % variable)
            product &= values[variable] ^ negated
        total += coefficient * product
    return total


def holds(value, relation, bound):
    return {">=": value >= bound, "<=": value <= bound, "=": value == bound}[relation]


def check(model_name, stream):
    objective, constraints = read_model(model_name)
    values, claimed = read_solution(stream)
    for number, (terms, relation, bound) in enumerate(constraints, 1):
        value = evaluate(terms, values)
        if not holds(value, relation, bound):
            raise Wrong("constraint %d is violated: %d %s %d" % (number, value, relation, bound))
    if objective is None:
        return "objective none"
    value = evaluate(objective, values)
    if claimed is not None and claimed != value:
        raise Wrong("the objective is %d, the last o line tells %d" % (value, claimed))
    return "objective %d" % value


def main(arguments):
    if len(arguments) not in (2, 3):
        print(__doc__, file=sys.stderr)
        return 1
    try:
        if len(arguments) == 3:
            with open(arguments[2], encoding="latin-1") as stream:
                print(check(arguments[1], stream))
        else:
            print(check(arguments[1], sys.stdin))
    except (Wrong, OSError, ValueError) as error:
        print("wrong: %s" % error)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
