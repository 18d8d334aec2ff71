#!/usr/bin/python3
"""Physics checks of a stationary Kelvin wake lattice, whoever made it.

    kelvin_wake_physics_check.py LATTICE dx dy velocity length
        [--acceleration ACC] [--depth D] [--dataset NAME]
    kelvin_wake_physics_check.py --self-test
        (case B below passes; lattices made at 1.1 and 0.9 times the speed, with damping of the
        wrong sign, and an acceleration of the wrong sign each fail their check; a speed at
        which the hull's transverse waves cancel is refused)

LATTICE and ACC are a .npy array h[j, i] (row j = y index) or an HDF 4 file holding one rank-2
float data set of dims (n_y, n_x) (read with pyhdf.SD; --dataset picks one by name when the file
holds several). --depth multiplies the lattice by D first, as the wake does with a stored
per-unit-depth file; ACC is never scaled. The hull is taken where the wake puts it: centre
(center_x, center_y) = (n_x dx - 0.5 length, 0.5 n_y dy), moving towards +x, pattern trailing
towards x = 0. With g = 9.81, U = velocity, lambda = 2 pi U^2 / g:

 1. Transverse wavelength. On the track (the row at center_y, interpolated if between rows),
    from one lambda behind the stern (center_x - 0.5 length) to 5% of the lattice from x = 0,
    where the local amplitude is above 2% of its largest: zero crossings, linearly interpolated,
    fitted by a straight line against their count; twice its slope must equal lambda within 2%.
    The sharp-ended hull's transverse waves cancel where u = g length / (2 U^2) solves
    tan u = u (Froude 0.3336, 0.2544, ...): the transform along x of its parabolic section area
    vanishes at the transverse wavenumber, and the track then shows near-field residue of another
    period (5% short at Froude 0.333). Within 0.35 of such a u (Froude 0.321 .. 0.347 and
    0.249 .. 0.260) the check refuses.
    And the wake must trail the hull: the largest |h| over the first 3 lambda of that stretch
    (next to the stern) must exceed the largest over its last 3 lambda (far behind) and be at
    least 2% of the largest |h| of the lattice (about 14% on the cases below).
 2. Kelvin half-angle. Envelope = |analytic signal along x| (transform along x with the row
    padded by zeros to twice its length, negative wavenumbers dropped): every wake wave has
    kx != 0, so this is the local amplitude; it is then averaged over lambda along x and
    lambda / 2 across. For each column X = center_x - x behind the hull centre, on each side, the
    envelope between 8 and 35 degrees off the track is scaled to its largest value there. The
    ridge is the straight line, offset = a + X tan(angle), along which that scaled envelope is
    largest on average (a search over a in steps of dy within 1.5 lengths and angle in steps of
    0.05 degrees from 10 to 30), over the far half of the usable columns (X from
    0.5 length + 3 lambda to the left 5%, and X tan 35 deg inside the lattice; that far half must
    span 4 lambda, or the slope's lever is too short and the check refuses). Unlike a
    least-squares line through each column's maximum, it is not tilted by the columns where the
    maximum jumps to an inner fringe. The ridge must rise at atan(1/sqrt(8)) = 19.47 degrees
    within 1.5 degrees, on each arm. The envelope's maximum lies slightly inside the cusp line
    (the Airy peak, an offset growing as X^(1/3)), so the ridge reads a little low: on the
    reference, 18.4 .. 19.2 degrees on 1024 x 1024 lattices (case A's hull, speeds 4.5 .. 7.75
    m/s) and 18.3 .. 20.4 on 512 x 512. The ridge stands at the Kelvin angle only for Froude
    numbers U / sqrt(g length) near 0.3 (faster hulls show a narrower apparent wake), so outside
    0.2 .. 0.4 the check refuses.
 3. Vertical acceleration (only with --acceleration). A stationary pattern moving as h(x - U t)
    has d2h/dt2 = U^2 d2h/dx2; compared with ACC where the field is smooth, by a sixth-order
    central difference along x (relative error (k dx)^6 / 560: 4e-4 for waves of 8 nodes,
    7e-6 for 16), over columns from 10% of the lattice to one lambda behind the stern, all rows: the
    error's RMS must stay under 2% of ACC's RMS there. The left 10% keeps clear of the columns
    the wake zeroes and of the ringing of a periodic transform across the seam between the far
    wake and the bow; the hull and its near field are left out for their sharp edges.

Exit status: 0 when every check passes, 1 when one fails (each failure says why), 2 when none
fails but the input cannot be checked meaningfully (unreadable, wrong shape, too small, Froude
number out of range); the checks that can run still run and report.

Recommended cases (all four pass on the numpy reference, kelvin_wake_reference.py; the engine
side makes the same lattice with a wake file "generate_wake: yes", the same shape, length, width,
depth, damping_eps, damping_us, a detail of the same n_x, n_y, dx, dy, and the velocity):

  A  1024 x 1024, dx = dy = 1 m, rectangle 40 x 8 x 2 m, eps 0.02, us 6, U 6 m/s
     (Froude 0.303, lambda 23.06 m, 42 lambda of wake in the lattice, resonant damping c = 0.02):
       kelvin_wake_reference.py A.npy 1024 1024 1 1 40 8 2 rectangle 0.02 6 6 --acceleration A_acc.npy
       kelvin_wake_physics_check.py A.npy 1 1 6 40 --acceleration A_acc.npy
  B  512 x 512, the same hull and speed, ellipse (same source; quicker, shorter ridge):
       kelvin_wake_reference.py B.npy 512 512 1 1 40 8 2 ellipse 0.02 6 6 --acceleration B_acc.npy
       kelvin_wake_physics_check.py B.npy 1 1 6 40 --acceleration B_acc.npy
  C  1024 x 1024, dx = dy = 0.5 m, rectangle 18 x 4 x 1 m, eps 0.02, us 4, U 4 m/s
     (Froude 0.301, lambda 10.25 m = 20.5 nodes):
       kelvin_wake_reference.py C.npy 1024 1024 0.5 0.5 18 4 1 rectangle 0.02 4 4 --acceleration C_acc.npy
       kelvin_wake_physics_check.py C.npy 0.5 0.5 4 18 --acceleration C_acc.npy
  D  case A stored per unit depth (the wake file), read back at depth 2:
       kelvin_wake_reference.py A.npy 1024 1024 1 1 40 8 2 rectangle 0.02 6 6 --stored A_unit.npy
       kelvin_wake_physics_check.py A_unit.npy 1 1 6 40 --depth 2 --acceleration A_acc.npy
A lattice made at 1.1 times the speed (velocity 6.6 in case A) fails check 1 with a measured
ratio of 1.10, not 1.21: at Froude 0.333 its own transverse waves cancel (see check 1). One made
at 0.9 times the speed (5.4) fails it with the expected 0.81.
For an engine HDF file, give the file in place of the .npy (the wake file holds case D's field).
"""
import argparse
import math
import sys

import numpy

G = 9.81
KELVIN_DEGREES = math.degrees(math.atan(1.0 / math.sqrt(8.0)))


class Unusable(Exception):
    """The input cannot be checked meaningfully (exit status 2)."""


def load_lattice(name, dataset=None):
    if name.endswith(".npy"):
        values = numpy.load(name)
    else:
        from pyhdf.SD import SD, SDC

        try:
            sd = SD(name, SDC.READ)
        except Exception as error:  # pyhdf raises its own HDF4Error
            raise Unusable("cannot read %s as HDF: %s" % (name, error))
        chosen = None
        for set_name, (_, shape, _, index) in sorted(sd.datasets().items(),
                                                      key=lambda item: item[1][3]):
            sds = sd.select(index)
            usable = not sds.iscoordvar() and len(shape) == 2
            if usable and (dataset is None or set_name == dataset) and chosen is None:
                chosen = numpy.array(sds.get(), dtype=numpy.float64)
            sds.endaccess()
        sd.end()
        if chosen is None:
            raise Unusable("%s holds no rank-2 data set%s" % (
                name, "" if dataset is None else " named " + dataset))
        values = chosen
    values = numpy.asarray(values, dtype=numpy.float64)
    if values.ndim != 2:
        raise Unusable("%s is not a rank-2 lattice (shape %s)" % (name, values.shape))
    if not numpy.all(numpy.isfinite(values)):
        raise Unusable("%s holds non-finite values" % name)
    return values


class Wake:
    def __init__(self, h, dx, dy, velocity, length):
        self.h = h
        self.n_y, self.n_x = h.shape
        self.dx, self.dy = dx, dy
        self.velocity, self.length = velocity, length
        self.center_x = self.n_x * dx - 0.5 * length
        self.center_y = 0.5 * self.n_y * dy
        self.wavelength = 2.0 * math.pi * velocity * velocity / G
        self.stern_x = self.center_x - 0.5 * length
        self.x = numpy.arange(self.n_x) * dx
        self.y = numpy.arange(self.n_y) * dy - self.center_y
        if self.wavelength < 8.0 * dx:
            raise Unusable("wavelength %.4g m is under 8 nodes of %.4g m: too coarse" % (
                self.wavelength, dx))
        if self.stern_x - self.wavelength - 0.05 * self.n_x * dx < 6.0 * self.wavelength:
            raise Unusable("less than 6 wavelengths (%.4g m) of track behind the hull" %
                           self.wavelength)

    def track(self):
        """The row through the hull's centre line, interpolated between rows if need be."""
        row = self.center_y / self.dy
        low = int(math.floor(row))
        w = row - low
        if w < 1e-9 or low + 1 >= self.n_y:
            return self.h[low]
        return (1.0 - w) * self.h[low] + w * self.h[low + 1]

    def envelope(self):
        padded = numpy.concatenate([self.h, numpy.zeros_like(self.h)], axis=1)
        spectrum = numpy.fft.fft(padded, axis=1)
        m = padded.shape[1]
        spectrum[:, m // 2 + 1 :] = 0.0
        spectrum[:, 1 : m // 2] *= 2.0
        return numpy.abs(numpy.fft.ifft(spectrum, axis=1))[:, : self.n_x]


# Roots of tan u = u: the sharp-ended hull's section area is parabolic along its length, and its
# transform, 3 (sin u - u cos u) / u^3 with u = kx length / 2, vanishes there.
CANCELLING_U = (4.4934, 7.7253, 10.9041, 14.0662, 17.2208, 20.3713)


def check_wavelength(wake):
    u = G * wake.length / (2.0 * wake.velocity * wake.velocity)
    for root in CANCELLING_U:
        if abs(u - root) < 0.35:
            raise Unusable("transverse wavelength: at Froude %.3f this hull's transverse waves "
                           "cancel (g length / (2 U^2) = %.3f, near %.4f), so the track shows "
                           "no clean wave; choose another speed" % (
                               wake.velocity / math.sqrt(G * wake.length), u, root))
    profile = wake.track()
    take = (wake.x <= wake.stern_x - wake.wavelength) & (wake.x >= 0.05 * wake.n_x * wake.dx)
    xs, p = wake.x[take], profile[take]
    # Local amplitude along the track (largest |h| within a wavelength), to leave out the far
    # end where the wake has died away into rounding noise.
    amplitude = numpy.abs(p)
    width = max(1, int(round(wake.wavelength / wake.dx)))
    running = numpy.array([amplitude[max(0, i - width) : i + width + 1].max()
                           for i in range(len(p))])
    alive = running > 0.02 * running.max() if running.max() > 0.0 else running > 1.0
    sign = numpy.sign(p)
    idx = numpy.where((sign[:-1] * sign[1:] < 0.0) & alive[:-1] & alive[1:])[0]
    if len(idx) < 8:
        return False, "transverse wavelength: only %d zero crossings on the track behind the " \
                      "hull (need 8)" % len(idx)
    zeros = xs[idx] - p[idx] * (xs[idx + 1] - xs[idx]) / (p[idx + 1] - p[idx])
    count = numpy.arange(len(zeros), dtype=numpy.float64)
    slope = numpy.polyfit(count, zeros, 1)[0]
    measured = 2.0 * abs(slope)
    ratio = measured / wake.wavelength
    # A causal wake is strongest just behind the hull; faint waves that grow towards x = 0 came
    # the other way round the periodic transform.
    span = 3 * width
    near, far = amplitude[-span:].max(), amplitude[:span].max()
    trails = near > far and near >= 0.02 * numpy.abs(wake.h).max()
    ok = abs(ratio - 1.0) <= 0.02 and trails
    return ok, "transverse wavelength: %.4f m over %d zero crossings, expected 2 pi U^2 / g = " \
               "%.4f m, ratio %.4f (tolerance 2%%); track amplitude %.4g near the stern, %.4g " \
               "far behind%s" % (measured, len(zeros), wake.wavelength, ratio, near, far,
                                 "" if trails else " (the waves do not trail the hull)")


def box_mean(values, width, axis):
    """Running mean over about width nodes along one axis (shorter at the ends)."""
    half = max(0, int(round(0.5 * width)))
    if half == 0:
        return values
    moved = numpy.moveaxis(values, axis, 0)
    total = numpy.concatenate([numpy.zeros((1,) + moved.shape[1:]), numpy.cumsum(moved, axis=0)])
    n = moved.shape[0]
    low = numpy.clip(numpy.arange(n) - half, 0, n)
    high = numpy.clip(numpy.arange(n) + half + 1, 0, n)
    shape = (n,) + (1,) * (moved.ndim - 1)
    mean = (total[high] - total[low]) / (high - low).reshape(shape)
    return numpy.moveaxis(mean, 0, axis)


def check_angle(wake):
    froude = wake.velocity / math.sqrt(G * wake.length)
    if not 0.2 <= froude <= 0.4:
        raise Unusable("Froude number %.3f is outside 0.2 .. 0.4, where the envelope's ridge "
                       "does not stand at the Kelvin angle" % froude)
    # Smoothed over a wavelength along x and half of one across, so that the interference of
    # transverse and diverging crests does not make the ridge jump between fringes.
    envelope = box_mean(box_mean(wake.envelope(), wake.wavelength / wake.dx, 1),
                        0.5 * wake.wavelength / wake.dy, 0)
    half_width = min(wake.center_y, wake.n_y * wake.dy - wake.center_y)
    tan_low, tan_high = math.tan(math.radians(8.0)), math.tan(math.radians(35.0))
    columns = []
    for i in range(wake.n_x):
        distance = wake.center_x - wake.x[i]
        if (distance >= 0.5 * wake.length + 3.0 * wake.wavelength
                and wake.x[i] >= 0.05 * wake.n_x * wake.dx
                and distance * tan_high <= half_width):
            columns.append((distance, i))
    if len(columns) < 4:
        raise Unusable("lattice too small for the ridge: %d usable columns" % len(columns))
    columns.sort()
    far = columns[len(columns) // 2 :]
    if far[-1][0] - far[0][0] < 4.0 * wake.wavelength:
        raise Unusable("lattice too small for the ridge: the far columns span %.1f m, under 4 "
                       "wavelengths, too short a lever for the slope" % (far[-1][0] - far[0][0]))
    distances = numpy.array([distance for distance, _ in far])
    indices = numpy.array([i for _, i in far])
    slopes = numpy.tan(numpy.radians(numpy.arange(10.0, 30.0, 0.05)))
    intercepts = numpy.arange(-1.5 * wake.length, 1.5 * wake.length + 0.5 * wake.dy, wake.dy)
    results = []
    ok = True
    for side, name in ((1.0, "y > center_y"), (-1.0, "y < center_y")):
        # Each column scaled to its own largest value in the search wedge, zero outside it, so
        # that near and far columns weigh alike.
        off = side * wake.y
        scaled = numpy.zeros((wake.n_y, len(far)))
        for m, distance in enumerate(distances):
            rows = (off >= distance * tan_low) & (off <= distance * tan_high)
            column = envelope[rows, indices[m]]
            if column.max() > 0.0:
                scaled[rows, m] = column / column.max()
        # The ridge is the straight line offset = a + X tan(angle) along which the scaled
        # envelope is largest on average: a column whose maximum jumps to another fringe then
        # costs the line little, where a least-squares fit through the maxima would tilt.
        best = (-1.0, 0.0, 0.0)
        count = numpy.arange(len(far))
        for a in intercepts:
            rowf = (side * (a + numpy.outer(slopes, distances)) + wake.center_y) / wake.dy
            low = numpy.clip(numpy.floor(rowf).astype(int), 0, wake.n_y - 2)
            f = numpy.clip(rowf - low, 0.0, 1.0)
            score = ((1.0 - f) * scaled[low, count] + f * scaled[low + 1, count]).mean(axis=1)
            k = int(numpy.argmax(score))
            if score[k] > best[0]:
                best = (score[k], slopes[k], a)
        angle = math.degrees(math.atan(best[1]))
        arm_ok = abs(angle - KELVIN_DEGREES) <= 1.5
        ok = ok and arm_ok
        results.append("%s %.2f deg (mean scaled envelope %.2f)%s" % (
            name, angle, best[0], "" if arm_ok else " FAILED"))
    return ok, "Kelvin half-angle (Froude %.3f, ridge fitted over X = %.1f .. %.1f m): %s, " \
               "expected %.2f deg within 1.5" % (froude, far[0][0], far[-1][0],
                                                 ", ".join(results), KELVIN_DEGREES)


SIXTH_ORDER = (1.0 / 90.0, -3.0 / 20.0, 3.0 / 2.0, -49.0 / 18.0, 3.0 / 2.0, -3.0 / 20.0,
               1.0 / 90.0)


def check_acceleration(wake, acc):
    if acc.shape != wake.h.shape:
        raise Unusable("acceleration lattice is %d x %d, the wake %d x %d (rows x columns)" % (
            acc.shape[0], acc.shape[1], wake.n_y, wake.n_x))
    half = len(SIXTH_ORDER) // 2
    second = numpy.zeros_like(wake.h)
    for offset, weight in enumerate(SIXTH_ORDER):
        shifted = wake.h[:, offset : wake.n_x - 2 * half + offset]
        second[:, half : wake.n_x - half] += weight * shifted
    expected = wake.velocity * wake.velocity * second / (wake.dx * wake.dx)
    take = (wake.x >= 0.1 * wake.n_x * wake.dx) & (wake.x <= wake.stern_x - wake.wavelength)
    take[:half] = False
    take[wake.n_x - half :] = False
    reference_rms = math.sqrt(numpy.mean(expected[:, take] ** 2))
    if reference_rms == 0.0:
        return False, "vertical acceleration: the wake is flat where it should be compared"
    error_rms = math.sqrt(numpy.mean((acc[:, take] - expected[:, take]) ** 2))
    acc_rms = math.sqrt(numpy.mean(acc[:, take] ** 2))
    ratio = error_rms / max(acc_rms, reference_rms)
    ok = ratio <= 0.02
    return ok, "vertical acceleration U^2 d2h/dx2: RMS %.6g (finite differences) against %.6g " \
               "given, error RMS %.3g%% (tolerance 2%%) over x = %.1f .. %.1f m" % (
                   reference_rms, acc_rms, 100.0 * ratio, wake.x[take][0], wake.x[take][-1])


def run_checks(h, dx, dy, velocity, length, acc=None, out=print):
    """All checks on one lattice: returns (failed, unusable) counts, reporting through out."""
    try:
        wake = Wake(h, dx, dy, velocity, length)
    except Unusable as reason:
        out("kelvin wake check cannot run: %s" % reason)
        return 0, 1
    checks = [check_wavelength, check_angle]
    if acc is not None:
        checks.append(lambda w: check_acceleration(w, acc))
    failed = unusable = 0
    for check in checks:
        try:
            ok, text = check(wake)
        except Unusable as reason:
            unusable += 1
            out("CANNOT CHECK: %s" % reason)
            continue
        failed += 0 if ok else 1
        out("%s: %s" % ("ok" if ok else "FAILED", text))
    return failed, unusable


def self_test():
    """Case B from the reference passes; three wrong lattices each fail their own check."""
    import os

    sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
    import kelvin_wake_reference as reference

    args = (512, 512, 1.0, 1.0, 40.0, 8.0, 2.0, "ellipse", 0.02, 6.0)
    lines = []
    good = reference.generate(*args, 6.0)
    acc = reference.acceleration(good, 1.0, 1.0, 6.0)
    problems = []
    if run_checks(good, 1.0, 1.0, 6.0, 40.0, acc, lines.append) != (0, 0):
        problems.append("the reference lattice does not pass")
    for factor in (1.1, 0.9):
        lines.append("-- made at %.1f times the speed:" % factor)
        run_checks(reference.generate(*args, 6.0 * factor), 1.0, 1.0, 6.0, 40.0, None,
                   lines.append)
        if not lines[-2].startswith("FAILED: transverse wavelength"):
            problems.append("a lattice made at %.1f times the speed passes the wavelength "
                            "check" % factor)
    lines.append("-- damping of the wrong sign (the waves run ahead, round the seam):")
    plain = reference.mode_factor
    reference.mode_factor = lambda *a: plain(*a).conj()
    try:
        ahead = reference.generate(*args, 6.0)
    finally:
        reference.mode_factor = plain
    run_checks(ahead, 1.0, 1.0, 6.0, 40.0, None, lines.append)
    if not lines[-1].startswith("FAILED: Kelvin half-angle"):
        problems.append("a wake running ahead passes the angle check")
    lines.append("-- at Froude 0.333, where this hull's transverse waves cancel:")
    cancelling = reference.generate(*args[:-1], 6.6, 6.6)
    if run_checks(cancelling, 1.0, 1.0, 6.6, 40.0, None, lines.append) != (0, 1):
        problems.append("a speed at which the transverse waves cancel is not refused")
    lines.append("-- acceleration of the wrong sign:")
    run_checks(good, 1.0, 1.0, 6.0, 40.0, -acc, lines.append)
    if not lines[-1].startswith("FAILED: vertical acceleration"):
        problems.append("an acceleration of the wrong sign passes")
    for line in lines:
        print(line)
    for problem in problems:
        print("kelvin wake physics self-check failed: %s" % problem)
    if problems:
        return 1
    print("kelvin wake physics: all self-checks passed")
    return 0


def main(argv):
    if len(argv) == 2 and argv[1] == "--self-test":
        return self_test()
    parser = argparse.ArgumentParser(description="Kelvin wake physics checks")
    parser.add_argument("lattice")
    parser.add_argument("dx", type=float)
    parser.add_argument("dy", type=float)
    parser.add_argument("velocity", type=float)
    parser.add_argument("length", type=float)
    parser.add_argument("--acceleration")
    parser.add_argument("--depth", type=float, default=1.0)
    parser.add_argument("--dataset")
    args = parser.parse_args(argv[1:])
    try:
        h = load_lattice(args.lattice, args.dataset) * args.depth
        acc = load_lattice(args.acceleration, args.dataset) if args.acceleration else None
    except Unusable as reason:
        print("kelvin wake check cannot run: %s" % reason)
        return 2
    failed, unusable = run_checks(h, args.dx, args.dy, args.velocity, args.length, acc)
    total = 2 + (acc is not None)
    if failed:
        print("kelvin wake physics: %d of %d checks FAILED" % (failed, total))
        return 1
    if unusable:
        print("kelvin wake physics: %d of %d checks could not run" % (unusable, total))
        return 2
    print("kelvin wake physics: all %d checks passed" % total)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
