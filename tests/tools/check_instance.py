#!/usr/bin/env python3
"""Checks the decisions found for a published instance, without any code of the engine.

usage: check_instance.py FAMILY INSTANCE SOLUTION

FAMILY is one of the folders of published instances; INSTANCE is the file of the family, plain or gzip.
SOLUTION holds "v" lines as the program ombrix writes them: the name of each decision, with "-" in front
when it is 0, in the order of creation. Prints "objective N", computed from the decisions and the instance
alone, and exits with 0 when they obey every rule of the problem. Otherwise says what is wrong and exits
with 1.

Families whose model is an example program are checked by check_example.py, once the decisions have been
turned into the numbers that the program itself would write. A SOLUTION without "v" lines holds these numbers.
"""
import heapq
import itertools
import re
import sys
from decimal import Decimal

import check_example
import check_opb
from check_opb import read_text


class Wrong(Exception):
    """The decisions cannot stand; the text says why."""


def read_decisions(name):
    """Value by name, in the order of the file. The numbers of an example program are kept as they are."""
    values, text = {}, read_text(name)
    if not any(line.startswith("v") for line in text.splitlines()):
        return [int(word) for word in text.split()]
    for line in text.splitlines():
        words = line.split()
        if words[:1] != ["v"]:
            continue
        for word in words[1:]:
            variable = word.lstrip("-")
            if variable in values:
                raise Wrong("decision %s is given twice" % variable)
            values[variable] = not word.startswith("-")
    return values


def indices(decision):
    """The numbers in a name such as x_3_7."""
    return tuple(int(part) for part in decision.split("_")[1:])


def taken(values):
    """The indices of the decisions that are 1."""
    return [indices(name) for name, value in values.items() if value]


def choices(values, nb_rows, nb_columns, what):
    """The one column chosen in each row of the decisions x_row_column."""
    columns = [None] * nb_rows
    for row, column in taken(values):
        if columns[row] is not None:
            raise Wrong("%s %d is assigned twice" % (what, row))
        if column >= nb_columns:
            raise Wrong("%s %d is assigned to %d, which does not exist" % (what, row, column))
        columns[row] = column
    if None in columns:
        raise Wrong("%s %d is not assigned" % (what, columns.index(None)))
    return columns


def at_most(load, capacity, what):
    if load > capacity:
        raise Wrong("%s holds %s of %s" % (what, load, capacity))


class Words:
    """The numbers of a text, one after the other."""

    def __init__(self, text, number=int):
        self.words = iter(text.split())
        self.number = number

    def next(self):
        return self.number(next(self.words))

    def list(self, count):
        return [self.next() for _ in range(count)]

    def rows(self, count, width):
        return [self.list(width) for _ in range(count)]


def gap(text, values):
    words = Words(text)
    nb_agents, nb_jobs = words.list(2)
    costs, needs = words.rows(nb_agents, nb_jobs), words.rows(nb_agents, nb_jobs)
    agents = choices(values, nb_jobs, nb_agents, "job")
    for i, capacity in enumerate(words.list(nb_agents)):
        at_most(sum(needs[i][j] for j in range(nb_jobs) if agents[j] == i), capacity, "agent %d" % i)
    return sum(costs[agents[j]][j] for j in range(nb_jobs))


def sscfl(text, values):
    words = Words(text, Decimal)
    nb_facilities, nb_customers = int(words.next()), int(words.next())
    capacities, opening = words.list(nb_facilities), words.list(nb_facilities)
    demands = words.list(nb_customers)
    serving = words.rows(nb_customers, nb_facilities)
    chosen = choices(values, nb_customers, nb_facilities, "customer")
    for f, capacity in enumerate(capacities):
        load = sum(demands[c] for c in range(nb_customers) if chosen[c] == f)
        at_most(load, capacity, "facility %d" % f)
    return sum(opening[f] for f in set(chosen)) + sum(serving[c][f] for c, f in enumerate(chosen))


def pmed(text, values):
    words = Words(text)
    n, nb_edges, p = words.list(3)
    lengths = {}
    for i, j, cost in words.rows(nb_edges, 3):
        lengths[(min(i, j) - 1, max(i, j) - 1)] = cost
    neighbours = [[] for _ in range(n)]
    for (i, j), cost in lengths.items():
        neighbours[i].append((j, cost))
        neighbours[j].append((i, cost))
    medians = [v for v, in taken(values)]
    if len(medians) != p or max(medians) >= n:
        raise Wrong("%d medians are chosen, not %d" % (len(medians), p))
    return sum(distances_from(medians, neighbours))


def distances_from(sources, neighbours):
    """The distance of every vertex to the nearest source."""
    distance = [None] * len(neighbours)
    queue = [(0, v) for v in sources]
    heapq.heapify(queue)
    while queue:
        d, v = heapq.heappop(queue)
        if distance[v] is not None:
            continue
        distance[v] = d
        for w, cost in neighbours[v]:
            if distance[w] is None:
                heapq.heappush(queue, (d + cost, w))
    if None in distance:
        raise Wrong("vertex %d is reached from no median" % distance.index(None))
    return distance


def mip01(text, values):
    kinds, sums, sides, ranges, bounds = {}, {}, {}, {}, []
    section, objective, names = "", None, set()
    for line in text.splitlines():
        words = line.split()
        if not words or line.startswith("*"):
            continue
        if not line[0].isspace():
            section = words[0]
            continue
        if section == "ROWS":
            kinds[words[1]], sums[words[1]] = words[0], Decimal(0)
            objective = objective or (words[1] if words[0] == "N" else None)
        elif section == "COLUMNS" and "'MARKER'" not in words:
            names.add(words[0])
            for row, number in zip(words[1::2], words[2::2]):
                if values.get(words[0]):
                    sums[row] += Decimal(number)
        elif section in ("RHS", "RANGES"):
            target = sides if section == "RHS" else ranges
            pairs = words[len(words) % 2:]
            target.update(zip(pairs[::2], map(Decimal, pairs[1::2])))
        elif section == "BOUNDS":
            bounds.append((words[0], words[2], words[3:]))
    if names != set(values):
        raise Wrong("the decisions are not the columns of the file")
    for kind, name, value in bounds:
        if kind == "FX" and values[name] != (Decimal(value[0]) == 1):
            raise Wrong("column %s is not at its bound" % name)
    for row, kind in kinds.items():
        check_row(row, kind, sums[row], sides.get(row, Decimal(0)), ranges.get(row))
    return sums[objective] - sides.get(objective, Decimal(0))


def check_row(row, kind, value, side, width):
    low = side if kind in "GE" else None
    high = side if kind in "LE" else None
    if width is not None and kind != "N":
        if kind == "G" or (kind == "E" and width > 0):
            high = side + abs(width)
        else:
            low = side - abs(width)
    if (low is not None and value < low) or (high is not None and value > high):
        raise Wrong("row %s is %s, with the side %s %s" % (row, value, kind, side))


def edges_of(text):
    """The number of vertices and the set of edges (u, v), u < v, from 0, of a file with e lines."""
    n, edges = 0, set()
    for line in text.splitlines():
        words = line.split()
        if words[:1] == ["p"]:
            n = int(words[2])
        elif words[:1] == ["e"]:
            u, v = int(words[1]) - 1, int(words[2]) - 1
            edges.add((min(u, v), max(u, v)))
    return n, edges


def clique(text, values):
    n, edges = edges_of(text)
    members = sorted(v for v, in taken(values))
    if members and members[-1] >= n:
        raise Wrong("vertex %d does not exist" % members[-1])
    for pair in itertools.combinations(members, 2):
        if pair not in edges:
            raise Wrong("vertices %d and %d are not adjacent" % pair)
    return len(members)


def maxcut(text, values):
    words = Words(text)
    n, nb_edges = words.list(2)
    side = [values["x_%d" % v] for v in range(n)]
    return sum(w for u, v, w in words.rows(nb_edges, 3) if side[u - 1] != side[v - 1])


def qubo(text, values):
    words = Words(text)
    n, nb_entries = words.list(2)
    x = [values["x_%d" % i] for i in range(n)]
    return sum(q if i == j else 2 * q
               for i, j, q in words.rows(nb_entries, 3) if x[i - 1] and x[j - 1])


def qkp(text, values):
    words = Words(text.split(None, 1)[1])
    n = words.next()
    profits = words.list(n)
    pairs = [words.list(n - 1 - i) for i in range(n - 1)]
    if words.next() != 0:
        raise Wrong("the constraint of the file is not from above")
    capacity, weights = words.next(), words.list(n)
    items = sorted(i for i, in taken(values))
    at_most(sum(weights[i] for i in items), capacity, "the knapsack")
    return sum(profits[i] for i in items) + sum(
        pairs[i][j - i - 1] for i, j in itertools.combinations(items, 2))


def read_clauses(text):
    """(weight or None for hard, literals) for each clause of the file."""
    lines = [line for line in text.splitlines() if line and not line.startswith("c")]
    has_weights, top = True, None
    if lines and lines[0].startswith("p"):
        header = lines.pop(0).split()
        has_weights = header[1] == "wcnf"
        top = int(header[4]) if len(header) > 4 else None
    words = iter(" ".join(lines).split())
    for word in words:
        weight = 1
        if has_weights:
            weight = None if word == "h" or int(word) == top else int(word)
            word = next(words)
        literals = []
        while word != "0":
            literals.append(int(word))
            word = next(words)
        yield weight, literals


def maxsat(text, values):
    cost = 0
    for number, (weight, literals) in enumerate(read_clauses(text), 1):
        if any(values["x_%d" % abs(a)] == (a > 0) for a in literals):
            continue
        if weight is None:
            raise Wrong("hard clause %d is falsified" % number)
        cost += weight
    return cost


def steelmill(text, values):
    words = Words(text)
    capacities = sorted(words.list(words.next()))
    words.next()
    orders = words.rows(words.next(), 2)
    slabs = choices(values, len(orders), len(orders), "order")
    loss = 0
    for slab in set(slabs):
        members = [orders[o] for o, s in enumerate(slabs) if s == slab]
        load = sum(size for size, _ in members)
        at_most(load, capacities[-1], "slab %d" % slab)
        at_most(len({colour for _, colour in members}), 2, "slab %d, in colours," % slab)
        loss += min(capacity for capacity in capacities if capacity >= load) - load
    return loss


def golfers(text, values):
    sizes = {name: int(number) for name, number in re.findall(r"(n_\w+)\s*=\s*(\d+)", text)}
    nb_groups, size = sizes["n_groups"], sizes["n_per_group"]
    rounds = [[None] * (nb_groups * size) for _ in range(sizes["n_rounds"])]
    for r, golfer, group in taken(values):
        if rounds[r][golfer] is not None:
            raise Wrong("golfer %d plays twice in round %d" % (golfer, r))
        rounds[r][golfer] = group
    meetings = {}
    for r, groups in enumerate(rounds):
        for g in range(nb_groups):
            if groups.count(g) != size:
                raise Wrong("group %d of round %d has %d golfers" % (g, r, groups.count(g)))
        for pair in itertools.combinations(range(nb_groups * size), 2):
            if groups[pair[0]] == groups[pair[1]]:
                meetings[pair] = meetings.get(pair, 0) + 1
    return sum(count - 1 for count in meetings.values())


def sections(text):
    """The fields of the lines of each section."""
    found, current = {}, []
    for line in text.splitlines():
        line = line.strip()
        if line.startswith("SECTION_"):
            current = found.setdefault(line, [])
        elif line and not line.startswith("#"):
            current.append([field.strip() for field in line.split(",")])
    return found


def runs(flags):
    """(value, length, whether it touches the first or the last day) of each stretch of equal flags."""
    position = 0
    for value, group in itertools.groupby(flags):
        length = len(list(group))
        yield value, length, position == 0 or position + length == len(flags)
        position += length


def check_nurse(name, roster, minutes, forbidden, fields):
    """The rules of one employee, whose roster has a shift or None for each day."""
    most, most_minutes, least_minutes, longest, shortest, shortest_off, weekends = fields
    for part in most.split("|"):
        shift, count = part.split("=")
        at_most(roster.count(shift), int(count), "%s, in shifts %s," % (name, shift))
    worked = sum(minutes[shift] for shift in roster if shift)
    if not int(least_minutes) <= worked <= int(most_minutes):
        raise Wrong("%s works %d minutes" % (name, worked))
    for today, tomorrow in zip(roster, roster[1:]):
        if today and tomorrow in forbidden[today]:
            raise Wrong("%s works %s after %s" % (name, tomorrow, today))
    for works, length, is_at_end in runs([shift is not None for shift in roster]):
        if works and length > int(longest):
            raise Wrong("%s works %d days in a row" % (name, length))
        if length < int(shortest if works else shortest_off) and not is_at_end:
            raise Wrong("%s has %d days of %s in a row" % (name, length, "work" if works else "rest"))
    at_most(sum(any(roster[day:day + 2]) for day in range(5, len(roster), 7)), int(weekends),
            "%s, in weekends," % name)


def nurse(text, values):
    parts = sections(text)
    nb_days = int(parts["SECTION_HORIZON"][0][0])
    shifts = [fields[0] for fields in parts["SECTION_SHIFTS"]]
    minutes = {fields[0]: int(fields[1]) for fields in parts["SECTION_SHIFTS"]}
    forbidden = {fields[0]: fields[2].split("|") if len(fields) > 2 else []
                 for fields in parts["SECTION_SHIFTS"]}
    staff = parts["SECTION_STAFF"]
    rosters = {fields[0]: [None] * nb_days for fields in staff}
    for employee, day, shift in taken(values):
        roster = rosters[staff[employee][0]]
        if roster[day] is not None:
            raise Wrong("%s has two shifts on day %d" % (staff[employee][0], day))
        roster[day] = (shifts + ["off"])[shift]
    for name in rosters:
        if None in rosters[name]:
            raise Wrong("%s has nothing on day %d" % (name, rosters[name].index(None)))
        rosters[name] = [None if shift == "off" else shift for shift in rosters[name]]
    for fields in staff:
        check_nurse(fields[0], rosters[fields[0]], minutes, forbidden, fields[1:])
    for name, *days in parts.get("SECTION_DAYS_OFF", []):
        if any(rosters[name][int(day)] for day in days):
            raise Wrong("%s works on a fixed day off" % name)
    return nurse_cost(parts, rosters)


def nurse_cost(parts, rosters):
    cost = 0
    for name, day, shift, weight in parts.get("SECTION_SHIFT_ON_REQUESTS", []):
        cost += int(weight) * (rosters[name][int(day)] != shift)
    for name, day, shift, weight in parts.get("SECTION_SHIFT_OFF_REQUESTS", []):
        cost += int(weight) * (rosters[name][int(day)] == shift)
    for day, shift, wanted, under, over in parts.get("SECTION_COVER", []):
        staff = sum(roster[int(day)] == shift for roster in rosters.values())
        cost += int(under) * max(int(wanted) - staff, 0) + int(over) * max(staff - int(wanted), 0)
    return cost


def rows_chosen(values, nb_rows):
    """The column chosen in each row, for a table of decisions created row by row."""
    flags = list(values.values())
    width = len(flags) // max(nb_rows, 1)
    if width * nb_rows != len(flags):
        raise Wrong("%d decisions make no table of %d rows" % (len(flags), nb_rows))
    columns = []
    for row in range(nb_rows):
        part = flags[row * width:(row + 1) * width]
        if part.count(True) != 1:
            raise Wrong("row %d has %d choices" % (row, part.count(True)))
        columns.append(part.index(True))
    return columns


def positions(values, first):
    return [first + i for i, value in enumerate(values.values()) if value]


def mkp(text, values):
    return check_example.knapsack(text, positions(values, 0))


def scp(text, values):
    """A row that the decisions leave uncovered gets its first cheapest column."""
    numbers, columns = [int(word) for word in text.split()], set(positions(values, 1))
    for row, costs in covering(numbers):
        if not columns & set(row):
            columns.add(min(row, key=lambda column: costs[column - 1]))
    return check_example.setcovering(text, sorted(columns))


def covering(numbers):
    """(columns, costs) for each row, in the layouts of check_example.setcovering."""
    if len(numbers) == 2 + 3 * numbers[1] and max(numbers[2:]) <= numbers[0]:
        costs = [1] * numbers[0]
        rows = [numbers[2 + 3 * i:5 + 3 * i] for i in range(numbers[1])]
    else:
        try:
            costs, rows = check_example.covering_rows(numbers)
        except IndexError:
            costs, rows = check_example.covering_columns(numbers)
    return [(sorted(row), costs) for row in rows]


def qap(text, values):
    n = int(text.split(None, 1)[0])
    return check_example.quadraticassignment(text, rows_chosen(values, n))


def coloring(text, values):
    colours = values if isinstance(values, list) else rows_chosen(values, edges_of(text)[0])
    return check_example.graphcolouring(text, colours)


def ufl(text, values):
    return check_example.facilitylocation(text, positions(values, 0))


def tsp(text, values):
    keys = dict(check_example.header(line) for line in text.splitlines())
    return check_example.travellingsalesman(text, rows_chosen(values, int(keys["DIMENSION"])))


def carseq(text, values):
    first = next(line for line in text.splitlines() if line.strip() and not line.startswith("%"))
    return check_example.carsequencing(text, rows_chosen(values, int(first.split()[0])))


def binpacking(text, values):
    return check_example.binpacking(text, rows_chosen(values, int(text.split(None, 1)[0])))


FAMILIES = {f.__name__: f for f in
            (gap, sscfl, pmed, mip01, clique, maxcut, qubo, qkp, maxsat, steelmill, golfers,
             nurse, mkp, scp, qap, coloring, ufl, tsp, carseq, binpacking)}
FAMILIES.update(scp_rail=scp, scp_sts=scp)


def check(family, instance, solution):
    if family in ("pb", "pb_miplib"):
        with open(solution, encoding="latin-1") as stream:
            return check_opb.check(instance, stream)
    return "objective %s" % FAMILIES[family](read_text(instance), read_decisions(solution))


def main(arguments):
    if len(arguments) != 3 or arguments[0] not in list(FAMILIES) + ["pb", "pb_miplib"]:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        print(check(*arguments))
    except (Wrong, check_example.Wrong, check_opb.Wrong, OSError) as failure:
        print("wrong: %s" % failure)
        return 1
    except (ValueError, IndexError, KeyError, StopIteration) as failure:
        print("wrong: the instance or the solution cannot be read: %r" % failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
