"""Reads a universal file as an engineer's own script does: columns into arrays, by number.

Prints the seconds that it took, how many nodes and elements there are, and the sums of all
coordinates and of all values.
"""
import sys
import time

import numpy as np


def ints(line):
    return [int(line[i:i + 10]) for i in range(0, len(line.rstrip()), 10)]


def reals(line, width):
    columns = range(0, len(line.rstrip()), width)
    return np.array([float(line[i:i + width].replace("D", "E")) for i in columns])


start = time.perf_counter()
nodes, systems, elements, shape = {}, {}, {}, {}
with open(sys.argv[1]) as file:
    for line in file:
        kind = next(file).strip()  # behind the mark that begins a data set
        if kind == "2414":
            for _ in range(13):
                next(file)
        for line in file:
            if line.strip() == "-1":
                break
            label, *fields = ints(line)
            if kind == "2411":
                systems[label] = fields[:2]
                nodes[label] = reals(next(file), 25)
            elif kind == "2412":
                elements[label] = fields, ints(next(file))
            elif kind == "2414":
                shape[label] = reals(next(file), 13)
seconds = time.perf_counter() - start
print(seconds, len(nodes), len(elements), sum(nodes.values()).sum(), sum(shape.values()).sum())
