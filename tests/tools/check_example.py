#!/usr/bin/env python3
"""Checks the solution of an example program, without any code of the engine.

usage: check_example.py PROBLEM INSTANCE SOLUTION

PROBLEM is knapsack, setcovering, quadraticassignment, graphcolouring, facilitylocation, planelocation,
portfolio, antennas, travellingsalesman, carsequencing, binpacking or timetable; INSTANCE is the file that
the program read, SOLUTION the file of numbers that it wrote. Prints "objective N" and exits with
0 when the solution is feasible; otherwise says what is wrong and exits with 1.
"""
import math
import sys
from decimal import Decimal

from check_opb import read_text


class Wrong(Exception):
    """The solution cannot stand; the text says why."""


def distinct(solution, low, high, what):
    """The numbers as a set, each within its limits and named once."""
    if any(x < low or x > high for x in solution):
        raise Wrong("a %s lies outside %d to %d" % (what, low, high))
    if len(set(solution)) != len(solution):
        raise Wrong("a %s is named twice" % what)
    return set(solution)


def knapsack(text, solution):
    numbers = [Decimal(word) for word in text.split()]
    n, m = int(numbers[1]), int(numbers[2])
    profits, rest = numbers[4:4 + n], numbers[4 + n:]
    chosen = distinct(solution, 0, n - 1, "item")
    for c in range(m):
        load = sum(rest[c * n + i] for i in chosen)
        if load > rest[m * n + c]:
            raise Wrong("constraint %d holds %s of %s" % (c, load, rest[m * n + c]))
    return sum((profits[i] for i in chosen), Decimal(0))


def covering_rows(numbers):
    """Costs and, for each row, its columns, from the file with the columns of each row."""
    m, n = numbers[0], numbers[1]
    costs, position, rows = numbers[2:2 + n], 2 + n, []
    for _ in range(m):
        count = numbers[position]
        rows.append(set(numbers[position + 1:position + 1 + count]))
        position += 1 + count
    if position != len(numbers):
        raise IndexError
    return costs, rows


def covering_columns(numbers):
    m, n = numbers[0], numbers[1]
    costs, position, rows = [], 2, [set() for _ in range(m)]
    for column in range(1, n + 1):
        costs.append(numbers[position])
        count = numbers[position + 1]
        for row in numbers[position + 2:position + 2 + count]:
            rows[row - 1].add(column)
        position += 2 + count
    return costs, rows


def setcovering(text, solution):
    numbers = [int(word) for word in text.split()]
    if len(numbers) == 2 + 3 * numbers[1] and max(numbers[2:]) <= numbers[0]:
        costs = [1] * numbers[0]
        rows = [set(numbers[2 + 3 * i:5 + 3 * i]) for i in range(numbers[1])]
    else:
        try:
            costs, rows = covering_rows(numbers)
        except IndexError:
            costs, rows = covering_columns(numbers)
    chosen = distinct(solution, 1, len(costs), "column")
    for i, row in enumerate(rows):
        if not row & chosen:
            raise Wrong("row %d is not covered" % (i + 1))
    return sum(costs[column - 1] for column in chosen)


def quadraticassignment(text, solution):
    numbers = [int(word) for word in text.split()]
    n = numbers[0]
    if len(solution) != n:
        raise Wrong("%d places for %d facilities" % (len(solution), n))
    distinct(solution, 0, n - 1, "location")
    return sum(numbers[1 + i * n + j] * numbers[1 + n * n + solution[i] * n + solution[j]]
               for i in range(n) for j in range(n))


def graphcolouring(text, solution):
    for line in text.splitlines():
        fields = line.split()
        if fields[:1] == ["p"] and len(solution) != int(fields[2]):
            raise Wrong("%d colours for %s vertices" % (len(solution), fields[2]))
        if fields[:1] == ["e"] and fields[1] != fields[2]:
            if solution[int(fields[1]) - 1] == solution[int(fields[2]) - 1]:
                raise Wrong("vertices %s and %s have one colour" % (fields[1], fields[2]))
    return len(set(solution))


def facilitylocation(text, solution):
    fields = text.split()
    m, n = int(fields[0]), int(fields[1])
    opening = [Decimal(fields[3 + 2 * i]) for i in range(m)]
    chosen = distinct(solution, 0, m - 1, "facility")
    if not chosen:
        raise Wrong("no facility is open")
    total, position = sum(opening[i] for i in chosen), 2 + 2 * m
    for _ in range(n):
        total += min(Decimal(fields[position + 1 + i]) for i in chosen)
        position += 1 + m
    return total


def rows(numbers, start, count, width):
    """The table of the given size in the list of numbers."""
    if start + count * width > len(numbers):
        raise IndexError("the instance ends too soon")
    return [numbers[start + i * width:start + (i + 1) * width] for i in range(count)]


def planelocation(text, solution):
    numbers = [float(word) for word in text.split()]
    m, n = int(numbers[0]), int(numbers[1])
    sites, customers = rows(numbers, 2, m, 3), rows(numbers, 2 + 3 * m, n, 3)
    chosen = distinct(solution, 0, m - 1, "facility")
    if not chosen:
        raise Wrong("no facility is open")
    return math.fsum(sites[i][2] for i in chosen) + math.fsum(
        demand * min(math.hypot(x - sites[i][0], y - sites[i][1]) for i in chosen)
        for x, y, demand in customers)


def portfolio(text, solution):
    numbers = [float(word) for word in text.split()]
    n, nb_factors, nb_held, reward = int(numbers[0]), int(numbers[1]), int(numbers[2]), numbers[3]
    assets = rows(numbers, 4, n, 2 + nb_factors)
    chosen = distinct(solution, 0, n - 1, "asset")
    if len(chosen) != nb_held:
        raise Wrong("%d assets are held, not %d" % (len(chosen), nb_held))
    mean, variance, *exposures = [
        math.fsum(assets[i][c] for i in chosen) / nb_held for c in range(2 + nb_factors)]
    return math.fsum(x * x for x in exposures) + variance / nb_held - reward * mean


def antennas(text, solution):
    numbers = [float(word) for word in text.split()]
    nb_antennas, n, radius = int(numbers[0]), int(numbers[1]), numbers[2]
    if len(solution) != nb_antennas:
        raise Wrong("%d positions for %d antennas" % (len(solution), nb_antennas))
    if any(p < 0 or p > 255 for p in solution):
        raise Wrong("a position lies outside 0 to 255")
    angles = [2 * math.pi * p / 256 for p in solution]
    places = [(radius * math.cos(a), radius * math.sin(a)) for a in angles]
    return math.fsum(demand * min((x - px) ** 2 + (y - py) ** 2 for px, py in places)
                     for x, y, demand in rows(numbers, 3, n, 3))


def header(line):
    """The key and the value of a line of a TSPLIB file, with the colon wherever it stands."""
    key, _, value = line.partition(":")
    return key.strip(), value.strip()


def explicit_weights(form, n, numbers):
    """The weight of each pair of cities from 0, smaller city first, from the numbers in a file."""
    numbers = iter(numbers)
    columns = {"FULL_MATRIX": lambda i: range(n), "LOWER_DIAG_ROW": lambda i: range(i + 1),
               "UPPER_ROW": lambda i: range(i + 1, n)}[form]
    return {(min(i, j), max(i, j)): int(next(numbers)) for i in range(n) for j in columns(i)}


def radians(coordinate):
    degrees = math.trunc(coordinate)
    return 3.141592 * (degrees + 5.0 * (coordinate - degrees) / 3.0) / 180.0


def coordinate_weight(kind, a, b):
    if kind == "EUC_2D":
        return math.floor(math.hypot(a[0] - b[0], a[1] - b[1]) + 0.5)
    if kind == "ATT":
        exact = math.sqrt(((a[0] - b[0]) ** 2 + (a[1] - b[1]) ** 2) / 10.0)
        nearest = math.floor(exact + 0.5)
        return nearest + 1 if nearest < exact else nearest
    if kind != "GEO":
        raise ValueError("unknown weights %s" % kind)
    latitudes, longitudes = zip(*((radians(x), radians(y)) for x, y in (a, b)))
    q1 = math.cos(longitudes[0] - longitudes[1])
    q2 = math.cos(latitudes[0] - latitudes[1])
    q3 = math.cos(latitudes[0] + latitudes[1])
    return math.floor(6378.388 * math.acos(0.5 * ((1 + q1) * q2 - (1 - q1) * q3)) + 1)


def travellingsalesman(text, solution):
    lines = text.splitlines()
    section = next(i for i, line in enumerate(lines) if header(line)[0].endswith("_SECTION"))
    keys = dict(map(header, lines[:section]))
    n, numbers = int(keys["DIMENSION"]), " ".join(lines[section + 1:]).split()
    if len(solution) != n:
        raise Wrong("%d visits for %d cities" % (len(solution), n))
    distinct(solution, 0, n - 1, "city")
    legs = list(zip(solution, solution[1:] + solution[:1]))
    if keys["EDGE_WEIGHT_TYPE"] == "EXPLICIT":
        weights = explicit_weights(keys["EDGE_WEIGHT_FORMAT"], n, numbers)
        return sum(weights[min(leg), max(leg)] for leg in legs)
    places = [(float(x), float(y)) for _, x, y in rows(numbers, 0, n, 3)]
    return sum(coordinate_weight(keys["EDGE_WEIGHT_TYPE"], places[i], places[j]) for i, j in legs)


def carsequencing(text, solution):
    numbers = [int(word) for line in text.splitlines() if not line.startswith("%")
               for word in line.split()]
    nb_cars, nb_options, nb_classes = numbers[:3]
    most, row = rows(numbers, 3, 2, nb_options)
    classes = rows(numbers, 3 + 2 * nb_options, nb_classes, 2 + nb_options)
    for c, (_, count, *_) in enumerate(classes):
        if solution.count(c) != count:
            raise Wrong("class %d has %d cars, not %d" % (c, solution.count(c), count))
    if len(solution) != nb_cars:
        raise Wrong("%d cars on the line, not %d" % (len(solution), nb_cars))
    return sum(sum(classes[c][2 + o] for c in solution[first:first + row[o]]) > most[o]
               for o in range(nb_options) for first in range(nb_cars - row[o] + 1))


def binpacking(text, solution):
    n, capacity, *sizes = [int(word) for word in text.split()]
    if len(solution) != n or len(sizes) != n:
        raise Wrong("%d bins told for %d items" % (len(solution), n))
    loads = {}
    for size, name in zip(sizes, solution):
        loads[name] = loads.get(name, 0) + size
    for name, load in loads.items():
        if load > capacity:
            raise Wrong("bin %d holds %d of %d" % (name, load, capacity))
    return len(loads)


def timetable(text, solution):
    numbers = [int(word) for word in text.split()]
    nb_days, nb_periods, nb_rooms, nb_classes, nb_teachers, nb_courses = numbers[:6]
    courses = rows(numbers, 6, nb_courses, 3)
    nb_refusals = numbers[6 + 3 * nb_courses]
    refusals = {tuple(pair) for pair in rows(numbers, 7 + 3 * nb_courses, nb_refusals, 2)}
    if len(solution) != sum(nb_lessons for _, _, nb_lessons in courses):
        raise Wrong("%d lessons are held" % len(solution))
    if any(slot < 0 or slot >= nb_days * nb_periods for slot in solution):
        raise Wrong("a lesson lies outside the week")
    left, agendas = list(solution), {}
    for c, (school_class, teacher, nb_lessons) in enumerate(courses):
        held, left = left[:nb_lessons], left[nb_lessons:]
        if len({slot // nb_periods for slot in held}) != nb_lessons:
            raise Wrong("course %d meets twice a day" % c)
        for slot in held:
            if (teacher, slot) in refusals:
                raise Wrong("teacher %d refuses period %d" % (teacher, slot))
            for who in (("class", school_class), ("teacher", teacher)):
                if slot in agendas.setdefault(who, set()):
                    raise Wrong("%s %d has two lessons in period %d" % (who + (slot,)))
                agendas[who].add(slot)
    for slot in set(solution):
        if solution.count(slot) > nb_rooms:
            raise Wrong("%d lessons in period %d" % (solution.count(slot), slot))
    idle = 0
    for agenda in agendas.values():
        for day in range(nb_days):
            today = sorted(slot for slot in agenda if slot // nb_periods == day)
            idle += sum(later - slot - 1 for slot, later in zip(today, today[1:]))
    return idle


PROBLEMS = {f.__name__: f for f in
            (knapsack, setcovering, quadraticassignment, graphcolouring, facilitylocation,
             planelocation, portfolio, antennas, travellingsalesman, carsequencing,
             binpacking, timetable)}


def main(arguments):
    if len(arguments) != 3 or arguments[0] not in PROBLEMS:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        solution = [int(word) for word in read_text(arguments[2]).split()]
        objective = PROBLEMS[arguments[0]](read_text(arguments[1]), solution)
    except (Wrong, OSError, ValueError, IndexError) as failure:
        print("wrong: %s" % failure)
        return 1
    print("objective %s" % objective)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
