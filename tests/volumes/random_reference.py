#!/usr/bin/env python3
"""Expected sequences of the shuffled generator (family 902), worked out apart
from the engine from the generator's description.

Run: python3 random_reference.py [output file]. Writes random_sequences.txt
next to this script unless a path is given. Values print in repr, the shortest
text that reads back to the same double.

Integers are Python's unbounded ones, so no step can overflow; the remainder
is C's truncating one made positive, as described, not Python's floored %.
The table entry (i1 + i2 / m2) / m1 is formed with the stored reciprocals,
(i1 + i2 * (1 / m2)) * (1 / m1), one IEEE double operation at a time.
"""
import math
import os
import sys

M1, M2, M3 = 259200, 134456, 243000
A1, A2, A3 = 7141, 8121, 4561
C1, C2, C3 = 54773, 28411, 51349
RM1 = 1.0 / M1
RM2 = 1.0 / M2
TWO_PI = 6.283185307  # the engine's literal, not 2 * math.pi
TABLE = 97


def positive_remainder(x, m):
    r = abs(x) % m
    if x < 0:
        r = -r  # C's remainder takes the sign of x
    if r < 0:
        r += m
    return r


class Shuffled:
    def __init__(self, seed):
        r = positive_remainder
        self.i1 = r(C1 - seed, M1)
        self.i1 = r(A1 * self.i1 + C1, M1)
        self.i2 = r(self.i1, M2)
        self.i1 = r(A1 * self.i1 + C1, M1)
        self.i3 = r(self.i1, M3)
        self.table = []
        for _ in range(TABLE):
            self.i1 = r(A1 * self.i1 + C1, M1)
            self.i2 = r(A2 * self.i2 + C2, M2)
            self.table.append((self.i1 + self.i2 * RM2) * RM1)
        self.spare = None

    def uniform(self):
        r = positive_remainder
        self.i1 = r(A1 * self.i1 + C1, M1)
        self.i2 = r(A2 * self.i2 + C2, M2)
        self.i3 = r(A3 * self.i3 + C3, M3)
        j = self.i3 * TABLE // M3  # both non-negative: floor is truncation
        assert 0 <= j < TABLE
        value = self.table[j]
        self.table[j] = (self.i1 + self.i2 * RM2) * RM1
        return value

    def gaussian(self):
        if self.spare is not None:
            value, self.spare = self.spare, None
            return value
        angle = self.uniform() * TWO_PI
        u = self.uniform()
        if u == 0.0:
            # Half the smallest draw above 0; no seed reaches a 0 draw (the
            # first two states are never both multiples of 8 at one step),
            # but the rule is the generator's.
            u = 0.5 * RM2 * RM1
        radius = math.sqrt(-2.0 * math.log(u))
        self.spare = radius * math.sin(angle)
        return radius * math.cos(angle)


# (seed, count): the three long sequences, then short ones for seeds whose
# first remainder starts negative (above c1), is zero (c1), or would overflow
# 32-bit arithmetic (the int extremes).
SEQUENCES = [(1, 1000), (12345, 1000), (-7, 1000),
             (100000, 200), (54773, 200), (2147483647, 200), (-2147483648, 200)]


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "random_sequences.txt")
    lines = ["# Written by random_reference.py; do not edit.",
             "# sequence <seed> <uniform|gaussian> <count>, then one value a line,",
             "# each sequence from a freshly seeded generator."]
    for seed, count in SEQUENCES:
        for kind in ("uniform", "gaussian"):
            g = Shuffled(seed)
            draw = g.uniform if kind == "uniform" else g.gaussian
            lines.append("sequence %d %s %d" % (seed, kind, count))
            lines.extend(repr(draw()) for _ in range(count))
    with open(path, "w") as out:
        out.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
