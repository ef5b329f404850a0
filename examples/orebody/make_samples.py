#!/usr/bin/env python3
"""Makes the boreholes of the example: a copper ore body that does not exist.

    make_samples.py > boreholes.csv       the samples
    make_samples.py --truth < points.csv  x,y,z and the true grade at the points of a table

The logarithm of the grade is a mean plus a sum of cosines whose wave vectors are drawn at random:
for many cosines a Gaussian field with a Matern covariance (nu = 1.5) of the scales below along the
axes of the body. Assays have a little noise. The generator is our own and does whole numbers, so
that every machine makes the same file.
"""

import csv
import math
import sys

SEED = 1
MEAN_GRADE = 1.1  # % Cu
DEVIATION = 0.45  # of the logarithm
NOISE = 0.10  # of the assays' logarithm
AZIMUTH, DIP = 60.0, 30.0  # of the long axis U; V is horizontal, W perpendicular to both
SCALES = (110.0, 70.0, 28.0)  # along U, V, W in m
COSINES = 160
ORIGIN = (4200.0, 7800.0)  # south-western corner
EXTENT = (1000.0, 800.0)
HOLES = (8, 5)  # west to east, south to north
STEP = 10.0  # between samples of a hole


class Random:
    """SplitMix64 (Steele, Lea and Flood, 2014)."""

    def __init__(self, seed):
        self.state = seed

    def uniform(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & 0xFFFFFFFFFFFFFFFF
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & 0xFFFFFFFFFFFFFFFF
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & 0xFFFFFFFFFFFFFFFF
        return ((z ^ (z >> 31)) >> 11) / 9007199254740992.0

    def normal(self):
        return sum(self.uniform() for _ in range(12)) - 6.0


def axes():
    a, d = math.radians(AZIMUTH), math.radians(DIP)
    u = (math.sin(a) * math.cos(d), math.cos(a) * math.cos(d), -math.sin(d))
    v = (-math.cos(a), math.sin(a), 0.0)
    w = (
        u[1] * v[2] - u[2] * v[1],
        u[2] * v[0] - u[0] * v[2],
        u[0] * v[1] - u[1] * v[0],
    )
    return u, v, w


def draw_waves(random):
    """Wave vectors of the spectrum of that covariance, a t distribution of 3 degrees of freedom."""
    waves = []
    for _ in range(COSINES):
        chi = math.sqrt(sum(random.normal() ** 2 for _ in range(3)) / 3.0)
        local = [random.normal() / (chi * scale) for scale in SCALES]
        vector = [sum(k * axis[i] for k, axis in zip(local, axes())) for i in range(3)]
        waves.append((vector, 2.0 * math.pi * random.uniform()))
    return waves


def log_grade(waves, x, y, z):
    total = sum(math.cos(k[0] * x + k[1] * y + k[2] * z + phase) for k, phase in waves)
    return math.log(MEAN_GRADE) + DEVIATION * math.sqrt(2.0 / COSINES) * total


def surface(x, y):
    return 410.0 + 12.0 * math.sin(x / 190.0) + 8.0 * math.cos(y / 140.0)


def holes(random):
    """Collar, direction and length of each hole; every third one runs across the body."""
    number = 0
    for row in range(HOLES[1]):
        for column in range(HOLES[0]):
            number += 1
            x = ORIGIN[0] + (column + 0.3 + 0.4 * random.uniform()) / HOLES[0] * EXTENT[0]
            y = ORIGIN[1] + (row + 0.3 + 0.4 * random.uniform()) / HOLES[1] * EXTENT[1]
            direction = (0.0, 0.0, -1.0)
            if number % 3 == 0:
                direction = tuple(-component for component in axes()[2])
            yield number, (x, y, surface(x, y)), direction, 180.0 + 120.0 * random.uniform()


def write_samples():
    random = Random(SEED)
    waves = draw_waves(random)
    print("hole no,depth,x,y,z,cuivre mesuré")
    for number, collar, direction, length in list(holes(random)):
        for index in range(int(length / STEP)):
            depth = (index + 0.5) * STEP
            place = [round(c + depth * d, 1) for c, d in zip(collar, direction)]
            noise = NOISE * random.normal()
            grade = "%.3f" % math.exp(log_grade(waves, *place) + noise)
            if random.uniform() < 0.03:
                grade = "perdu"  # lost core
            print("%d,%.1f,%.1f,%.1f,%.1f,%s" % (number, depth, *place, grade))


def write_truth():
    waves = draw_waves(Random(SEED))
    print("x,y,z,grade")
    for row in csv.DictReader(sys.stdin):
        x, y, z = float(row["x"]), float(row["y"]), float(row["z"])
        print("%s,%s,%s,%.6f" % (row["x"], row["y"], row["z"], math.exp(log_grade(waves, x, y, z))))


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    if sys.argv[1:] == ["--truth"]:
        write_truth()
    elif not sys.argv[1:]:
        write_samples()
    else:
        sys.exit(__doc__)
