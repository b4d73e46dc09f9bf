#!/usr/bin/env python3
"""Generates the instance files of examples/data, by published schemes with fixed seeds.

usage: generate.py FOLDER

set covering      E. Balas and A. Ho 1980, as used by J. E. Beasley 1987: 200 rows, 1000 columns,
                  density 2 %, costs uniform from 1 to 100; each row has at least two columns, each
                  column at least one row.
knapsack          P. C. Chu and J. E. Beasley 1998: 5 constraints, 100 items, weights uniform from 0
                  to 1000, capacities half of the sum of the weights, profits correlated with them.
quadratic         E. D. Taillard 1991, uniform: 30 places, symmetric distances and flows uniform from
assignment        0 to 99.
colouring         D. S. Johnson et al. 1991: 125 vertices, each edge with probability 0.5.
facility location M. Koerkel 1989 and D. Ghosh 2003, uniform, small fixed costs: 100 facilities and
                  customers, service costs from 1000 to 2000, fixed costs from 100 to 200.
location in the   60 sites and 200 customers on a square of 100, opening costs from 200 to 600,
plane             demands from 1 to 20.
portfolio         W. F. Sharpe 1963, with 6 factors: 150 assets, of which 20 are chosen; percent a year.
antennas          8 antennas on a circle of radius 30 around 120 users, demands from 1 to 10.
travelling        D. S. Johnson and L. A. McGeoch 1997, uniform: 60 cities on a square of 1000.
salesman
car sequencing    B. M. Smith 1996: 100 cars in 20 classes, 5 options used to about 90 %.
timetable         8 classes of 24 lessons in 30 periods, 12 teachers, 7 rooms; each teacher refuses 4
                  periods.
bin packing       E. Falkenauer 1996, uniform: 120 items, sizes from 20 to 100, bins of 150.

The formats are those of the libraries of each problem, if it has one, and are told in the examples;
set covering and knapsack come as pseudo-Boolean models too. The same files come out on every machine and version of Python.
"""
import os
import sys


class Draws:
    """The minimal standard generator of S. K. Park and K. W. Miller 1988."""

    def __init__(self, seed):
        self.state = seed

    def uniform(self, low, high):
        """An integer from low to high."""
        self.state = self.state * 16807 % 2147483647
        return low + self.state * (high - low + 1) // 2147483647


def wrapped(numbers, per_line=16):
    """Lines of numbers."""
    texts = [str(number) for number in numbers]
    return "".join(
        " ".join(texts[i : i + per_line]) + "\n" for i in range(0, len(texts), per_line)
    )


def opb(comment, nb_variables, objective, constraints):
    """objective: (direction, coefficients); constraints: ([(coefficient, variable)], end)."""

    def text(terms):
        return " ".join("%+d x%d" % term for term in terms)

    direction, coefficients = objective
    lines = [
        "* #variable= %d #constraint= %d" % (nb_variables, len(constraints)),
        "* " + comment,
        "%s: %s ;" % (direction, text((c, j) for j, c in enumerate(coefficients, 1))),
    ]
    lines += ["%s %s ;" % (text(terms), end) for terms, end in constraints]
    return "\n".join(lines) + "\n"


def set_covering(nb_rows, nb_columns, percent, seed):
    draws = Draws(seed)
    costs = [draws.uniform(1, 100) for _ in range(nb_columns)]
    rows = [set() for _ in range(nb_rows)]
    for column in range(1, nb_columns + 1):
        rows[draws.uniform(0, nb_rows - 1)].add(column)
    for row in rows:
        while len(row) < 2:
            row.add(draws.uniform(1, nb_columns))
    nb_entries = sum(len(row) for row in rows)
    while nb_entries < nb_rows * nb_columns * percent // 100:
        row = rows[draws.uniform(0, nb_rows - 1)]
        column = draws.uniform(1, nb_columns)
        nb_entries += column not in row
        row.add(column)
    plain = "%d %d\n" % (nb_rows, nb_columns) + wrapped(costs)
    for row in rows:
        plain += "%d\n" % len(row) + wrapped(sorted(row))
    name = "scp%dx%d" % (nb_rows, nb_columns)
    constraints = [([(1, column) for column in sorted(row)], ">= 1") for row in rows]
    model = opb("set covering, seed %d" % seed, nb_columns, ("min", costs), constraints)
    return {name + ".txt": plain, name + ".opb": model}


def knapsack(nb_constraints, nb_items, seed):
    draws = Draws(seed)
    weights = [[draws.uniform(0, 1000) for _ in range(nb_items)] for _ in range(nb_constraints)]
    capacities = [sum(row) // 2 for row in weights]
    profits = [
        sum(row[item] for row in weights) // nb_constraints + draws.uniform(0, 499)
        for item in range(nb_items)
    ]
    plain = "1\n%d %d 0\n" % (nb_items, nb_constraints) + wrapped(profits)
    for row in weights:
        plain += wrapped(row)
    plain += wrapped(capacities)
    name = "mkp%dx%d" % (nb_constraints, nb_items)
    constraints = [
        ([(weight, item) for item, weight in enumerate(row, 1)], "<= %d" % capacity)
        for row, capacity in zip(weights, capacities)
    ]
    model = opb("knapsack, seed %d" % seed, nb_items, ("max", profits), constraints)
    return {name + ".txt": plain, name + ".opb": model}


def quadratic_assignment(size, seed):
    draws = Draws(seed)
    text = "%d\n" % size
    for _ in ("distances", "flows"):
        matrix = [[0] * size for _ in range(size)]
        for i in range(size):
            for j in range(i + 1, size):
                matrix[i][j] = matrix[j][i] = draws.uniform(0, 99)
        text += "\n" + "".join(wrapped(row, size) for row in matrix)
    return {"qap%d.txt" % size: text}


def colouring(nb_vertices, percent, seed):
    draws = Draws(seed)
    edges = [
        (i, j)
        for j in range(2, nb_vertices + 1)
        for i in range(1, j)
        if draws.uniform(0, 99) < percent
    ]
    text = "c random graph, seed %d\np edge %d %d\n" % (seed, nb_vertices, len(edges))
    text += "".join("e %d %d\n" % edge for edge in edges)
    return {"graph%d.col" % nb_vertices: text}


def facility_location(size, seed):
    draws = Draws(seed)
    text = "%d %d\n" % (size, size)
    for _ in range(size):
        text += "0 %d\n" % draws.uniform(100, 200)
    for _ in range(size):
        text += "0\n" + wrapped(draws.uniform(1000, 2000) for _ in range(size))
    return {"ufl%d.txt" % size: text}


def decimal(draws, low, high, nb_decimals):
    """A decimal number from low to high, as text; the limits count units of the last decimal."""
    number = draws.uniform(low, high)
    digits = "%0*d" % (nb_decimals + 1, abs(number))
    return "%s%s.%s" % ("-" * (number < 0), digits[:-nb_decimals], digits[-nb_decimals:])


def plane_location(nb_sites, nb_customers, seed):
    draws = Draws(seed)

    def point():
        return "%s %s" % (decimal(draws, 0, 100000, 3), decimal(draws, 0, 100000, 3))

    text = "%d %d\n" % (nb_sites, nb_customers)
    for _ in range(nb_sites):
        text += "%s %s\n" % (point(), decimal(draws, 20000, 60000, 2))
    for _ in range(nb_customers):
        text += "%s %s\n" % (point(), decimal(draws, 100, 2000, 2))
    return {"plane%dx%d.txt" % (nb_sites, nb_customers): text}


def portfolio(nb_assets, nb_factors, nb_chosen, seed):
    draws = Draws(seed)
    text = "%d %d %d %s\n" % (nb_assets, nb_factors, nb_chosen, "20.0")
    for _ in range(nb_assets):
        asset = [decimal(draws, 200, 1500, 2), decimal(draws, 5000, 90000, 2)]
        # The first factor is the market, which moves nearly all assets the same way.
        asset.append(decimal(draws, 500, 2500, 2))
        asset += [decimal(draws, -800, 800, 2) for _ in range(nb_factors - 1)]
        text += " ".join(asset) + "\n"
    return {"portfolio%d.txt" % nb_assets: text}


def antennas(nb_antennas, nb_users, radius, seed):
    draws = Draws(seed)
    text = "%d %d %d\n" % (nb_antennas, nb_users, radius)
    reach = 1000 * radius
    for _ in range(nb_users):
        x = y = reach
        while x * x + y * y > reach * reach:
            x, y = draws.uniform(-reach, reach), draws.uniform(-reach, reach)
        text += "%.3f %.3f %s\n" % (x / 1000, y / 1000, decimal(draws, 100, 1000, 2))
    return {"antennas%dx%d.txt" % (nb_antennas, nb_users): text}


def travelling_salesman(nb_cities, seed):
    draws = Draws(seed)
    name = "cities%d" % nb_cities
    text = "NAME : %s\nTYPE : TSP\nCOMMENT : uniform on a square, seed %d\n" % (name, seed)
    text += "DIMENSION : %d\nEDGE_WEIGHT_TYPE : EUC_2D\nNODE_COORD_SECTION\n" % nb_cities
    for city in range(1, nb_cities + 1):
        text += "%d %d %d\n" % (city, draws.uniform(0, 1000), draws.uniform(0, 1000))
    return {name + ".tsp": text + "EOF\n"}


def car_sequencing(nb_cars, nb_classes, percent, seed):
    """A coin decides whether a class takes an option, up to percent of what its station can do."""
    draws = Draws(seed)
    options = [(1, 2), (2, 3), (1, 3), (2, 5), (1, 5)]
    counts = [1] * nb_classes
    for _ in range(nb_cars - nb_classes):
        counts[draws.uniform(0, nb_classes - 1)] += 1
    text = "%% seed %d\n%d %d %d\n" % (seed, nb_cars, len(options), nb_classes)
    text += " ".join("%d" % p for p, _ in options) + "\n"
    text += " ".join("%d" % q for _, q in options) + "\n"
    left = [nb_cars * p * percent // (100 * q) for p, q in options]
    for index, count in enumerate(counts):
        flags = []
        for o, (p, q) in enumerate(options):
            takes = draws.uniform(0, 1) == 1 and count <= left[o]
            left[o] -= count if takes else 0
            flags.append("%d" % takes)
        text += "%d %d %s\n" % (index, count, " ".join(flags))
    return {"cars%d.txt" % nb_cars: text}


def bin_packing(nb_items, seed):
    draws = Draws(seed)
    text = "%d\n150\n" % nb_items
    text += "".join("%d\n" % draws.uniform(20, 100) for _ in range(nb_items))
    return {"bins%d.txt" % nb_items: text}


def timetable(nb_classes, nb_teachers, nb_rooms, seed):
    draws = Draws(seed)
    nb_days, nb_periods, most = 5, 6, 20
    load, courses = [0] * nb_teachers, []
    for school_class in range(nb_classes):
        for nb_lessons in (4, 4, 3, 3, 3, 3, 2, 2):
            teacher = draws.uniform(0, nb_teachers - 1)
            while load[teacher] + nb_lessons > most:
                teacher = (teacher + 1) % nb_teachers
            load[teacher] += nb_lessons
            courses.append((school_class, teacher, nb_lessons))
    refusals = set()
    while len(refusals) < 4 * nb_teachers:
        refusals.add((len(refusals) // 4, draws.uniform(0, nb_days * nb_periods - 1)))
    text = "%d %d %d\n" % (nb_days, nb_periods, nb_rooms)
    text += "%d %d %d\n" % (nb_classes, nb_teachers, len(courses))
    text += "".join("%d %d %d\n" % course for course in courses)
    text += "%d\n" % len(refusals) + "".join("%d %d\n" % pair for pair in sorted(refusals))
    return {"timetable%d.txt" % nb_classes: text}


def generate():
    """The contents of every file, by name."""
    files = {}
    files.update(set_covering(200, 1000, 2, 20011))
    files.update(knapsack(5, 100, 20021))
    files.update(quadratic_assignment(30, 20023))
    files.update(colouring(125, 50, 20029))
    files.update(facility_location(100, 20047))
    files.update(plane_location(60, 200, 20051))
    files.update(portfolio(150, 6, 20, 20063))
    files.update(antennas(8, 120, 30, 20071))
    files.update(travelling_salesman(60, 20089))
    files.update(car_sequencing(100, 20, 92, 20101))
    files.update(bin_packing(120, 20107))
    files.update(timetable(8, 12, 7, 20113))
    return files


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 1
    for name, text in generate().items():
        with open(os.path.join(arguments[1], name), "w", encoding="ascii", newline="\n") as stream:
            stream.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
