#!/usr/bin/python3
"""Expected water optics for the Jerlov water tests, worked out from the
tables alone, apart from the engine.

Run: /usr/bin/python3 jerlov_reference.py > rows.txt and paste the rows into
jerlov_water_test.cpp. Floats print in repr (shortest round-trip).

Units: bands carry centre wavelengths in micrometres. The absorption tables,
the exponential and power laws, and the k table are in nanometres, so they
take L = 1000 * wavelength; the reflectance table has its nodes in
micrometres and takes the wavelength as it is.
"""
import numpy as np

CONCENTRATION = [0.0, 0.01, 0.05, 0.1, 0.5, 2.0]

NM_400_700 = np.array([400.0 + 10.0 * i for i in range(31)])
AW = [0.018, 0.017, 0.016, 0.015, 0.015, 0.015, 0.016, 0.016, 0.018, 0.02, 0.026,
      0.036, 0.048, 0.051, 0.056, 0.064, 0.071, 0.08, 0.108, 0.157, 0.245, 0.29,
      0.31, 0.32, 0.33, 0.35, 0.41, 0.43, 0.45, 0.5, 0.65]
AC = [0.687, 0.828, 0.913, 0.973, 1.0, 0.944, 0.917, 0.87, 0.798, 0.75, 0.668,
      0.618, 0.528, 0.474, 0.416, 0.357, 0.294, 0.276, 0.291, 0.282, 0.236, 0.252,
      0.276, 0.317, 0.334, 0.356, 0.441, 0.595, 0.502, 0.329, 0.215]

C_NODES = [0.0, 0.03, 0.05, 0.12, 0.3, 0.6, 1.0, 3.0]
S = [0.0, 0.001, 0.002, 0.004, 0.009, 0.016, 0.024, 0.062]
LARGE = [0.0, 0.035, 0.051, 0.098, 0.194, 0.325, 0.476, 1.078]

NM_350_700 = np.array([350.0 + 25.0 * i for i in range(15)])
K = {
    1: [0.062, 0.038, 0.028, 0.022, 0.019, 0.018, 0.027, 0.043, 0.063, 0.089, 0.235, 0.305,
        0.36, 0.42, 0.56],
    2: [0.078, 0.052, 0.038, 0.031, 0.026, 0.025, 0.032, 0.048, 0.067, 0.094, 0.24, 0.31,
        0.37, 0.43, 0.57],
    3: [0.1, 0.066, 0.051, 0.042, 0.036, 0.033, 0.042, 0.054, 0.072, 0.099, 0.245, 0.315,
        0.375, 0.435, 0.58],
    4: [0.175, 0.122, 0.096, 0.081, 0.068, 0.062, 0.07, 0.076, 0.089, 0.115, 0.26, 0.335,
        0.4, 0.465, 0.61],
    5: [0.32, 0.22, 0.185, 0.16, 0.135, 0.116, 0.115, 0.116, 0.12, 0.148, 0.295, 0.375,
        0.445, 0.52, 0.66],
}

UM_400_700 = np.array([0.4, 0.425, 0.45, 0.475, 0.5, 0.525, 0.55, 0.575, 0.6, 0.625, 0.65,
                       0.675, 0.7])
REFL = {
    1: [0.097, 0.097, 0.074, 0.053, 0.031, 0.015, 0.0105, 0.0063, 0.0035, 0.0014, 0.0007,
        0.0004, 0.0002],
    2: [0.071, 0.07, 0.059, 0.045, 0.028, 0.016, 0.011, 0.0069, 0.0035, 0.0018, 0.0009,
        0.0005, 0.0002],
    3: [0.05, 0.052, 0.046, 0.04, 0.026, 0.017, 0.0125, 0.0081, 0.004, 0.002, 0.001, 0.0005,
        0.0003],
    4: [0.03, 0.034, 0.034, 0.03, 0.024, 0.018, 0.013, 0.0098, 0.0049, 0.0025, 0.0012, 0.0006,
        0.0003],
    5: [0.0155, 0.019, 0.022, 0.024, 0.023, 0.019, 0.017, 0.013, 0.0065, 0.0032, 0.0016,
        0.0008, 0.0004],
}

# Sanity of the transcription: node counts as the tables state them.
assert len(AW) == len(AC) == 31
assert all(len(v) == 15 for v in K.values())
assert all(len(v) == 13 for v in REFL.values())


def lookup(nodes, values, x):
    # np.interp is linear between nodes and holds the end values outside.
    return float(np.interp(x, nodes, values))


def optics(water_type, micrometres):
    conc = CONCENTRATION[water_type]
    nm = 1000.0 * micrometres
    a = ((lookup(NM_400_700, AW, nm) + 0.06 * lookup(NM_400_700, AC, nm) * conc ** 0.65)
         * (1 + 0.2 * np.exp(-0.014 * (nm - 440))))
    r = 400.0 / nm
    b = (0.005826 * r ** 4.322 + 1.1513 * r ** 1.7 * lookup(C_NODES, S, conc)
         + 0.3411 * r ** 0.3 * lookup(C_NODES, LARGE, conc))
    a = float(a)
    b = float(b)
    return a, b, a + b, lookup(NM_350_700, K[water_type], nm), \
        lookup(UM_400_700, REFL[water_type], micrometres)


def wavelengths():
    # Every node and mid-node of the 10 nm and 25 nm tables (the 25 nm nodes
    # from 0.4 on are the reflectance nodes), then points outside both ranges.
    nm = set()
    for i in range(31):
        nm.add(400 + 10 * i)
    for i in range(30):
        nm.add(405 + 10 * i)
    for i in range(15):
        nm.add(350 + 25 * i)
    for i in range(14):
        nm.add(362.5 + 25 * i)
    for x in (200, 300, 340, 720, 750, 1000):
        nm.add(x)
    # Decimal micrometres, as a band file would state them.
    return [float("%.4f" % (x / 1000.0)) for x in sorted(nm)]


print("// type, wavelength (um), a, b, c, k, refl")
for t in range(1, 6):
    for w in wavelengths():
        print("    {%d, %r, %r, %r, %r, %r, %r}," % ((t, w) + optics(t, w)))

print("// concentration, s, l")
for conc in C_NODES + [0.015, 0.04, 0.085, 0.21, 0.45, 0.8, 2.0, -1.0, 5.0] + CONCENTRATION[1:]:
    print("    {%r, %r, %r}," % (conc, lookup(C_NODES, S, conc), lookup(C_NODES, LARGE, conc)))
