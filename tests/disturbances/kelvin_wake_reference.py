#!/usr/bin/python3
"""Reference lattice of the stationary Kelvin wake (disturbance kind "wake"), in numpy.

Written from the wake's generation rule alone; it shares no code with the engine.

    kelvin_wake_reference.py OUT.npy n_x n_y dx dy length width depth shape eps us velocity
        [--stored FILE.npy] [--acceleration FILE.npy [--boat]]
    kelvin_wake_reference.py --self-test

OUT.npy gets the float64 lattice h[j, i] (row j = y index, column i = x index), i.e. the detail
lattice as the wake holds it in memory after generation. --stored writes the per-unit-depth field
that goes to the wake file, --acceleration the vertical acceleration of the pattern as the wake
hands it to the whitecaps (see acceleration()). shape is "rectangle", "ellipse" or anything else
(= "file": no source, flat wake).

Generation, with g = 9.81 and the constant 6.2831853 kept as written:

 1. Source. center_x = n_x dx - 0.5 length, center_y = 0.5 n_y dy (shape "file": both 0 and the
    source is zero). At node (i dx, j dy): xn = |x - center_x| / (0.5 length),
    yn = |y - center_y| / (0.5 width); 0 if xn >= 1 or yn >= 1, else d = 1 - yn / (1 - xn^2),
    0 if d <= 0, else -depth sqrt(d). Stored as float32, like the padded array.
 2. Padded real array, M = 2 n_x columns by N = n_y rows, zero, node (i, j) at column n_x + i.
 3. Forward transform, unscaled, exponent sign -1; mean mode set to 0.
 4. Mode (i, j), i = 0 .. M/2, j = 0 .. N-1 except (0, 0): kx = i dkx, ky = j dky for j < N/2 + 1
    else -(N - j) dky, dkx = 6.2831853 / (M dx), dky = 6.2831853 / (N dy).
    k = float32(sqrt(kx^2 + ky^2)), a = U kx (double), r = float32(a^2 / (9.81 k)),
    c = float32(a damping), damping = eps U^3 / (us^2 9.81).
    Mode *= H = (r + i c) / ((1 - r) - i c), single-precision complex (see mode_factor()).
 5. Inverse transform divided by M N.
 6. Node (i, j) = column n_x + i of row j.
 7. Stored field: lattice / depth when depth > 0, the lattice itself otherwise.

Transform conventions, and why numpy.fft.rfft2 / irfft2 give the same result.
 The engine's forward real transform of the M x N array (x fastest) is
     F[j, i] = sum_{y, x} f[y, x] exp(-2 pi i (i x / M + j y / N)),  i = 0 .. M/2,
 unscaled, stored half-complex: mode (i, j) at floats 2 (i + (M/2 + 1) j). numpy.fft.rfft2 on
 the array laid out [y, x] computes exactly this sum with the same exponent sign, into an array
 [j, i] of shape (N, M/2 + 1): the same modes in the same places. The inverse of the engine has
 exponent +1 and no scaling, and we divide by M N by hand; numpy.fft.irfft2 (norm "backward")
 has exponent +1 and divides by M N itself, so it equals "inverse then divide".

 A half-complex spectrum stands for a real field only through its implied other half,
 F(-kx, -ky) = conj F(kx, ky). Multiplying the stored half by H therefore applies, on the implied
 half, conj H(kx, ky). With kx >= 0 stored, r even in kx and c = U kx damping odd in kx,
     conj H(kx, ky) = (r - i c) / ((1 - r) + i c) = H evaluated at (-kx, -ky),
 so the half-complex product is exactly the full-plane filter H(k) with signed kx: the result is
 the real response of the physical filter, and rfft2 / irfft2 reproduce it with no sign flip. The
 sign of c is what makes the pattern causal: with synthesis exp(+i k.x), a source moving towards
 +x and switched on slowly as e^{mu t} (mu > 0) gives d/dt -> mu - i U kx and the denominator
 g k + (mu - i U kx)^2 ~ g k - U^2 kx^2 - 2 i mu U kx, the same sign as (1 - r) - i c: the waves
 trail behind the hull, towards x = 0 (kelvin_wake_physics_check.py checks that they do).

 Two places where the stored half is not the whole story:
 - Column i = M/2 (x Nyquist) is stored once for +ky and -ky, and H there is even in ky, so with
   c != 0 the filtered column is no longer conjugate symmetric: after the inverse along y that
   column's values are complex. A real inverse can only keep their real part (the value
   Re(Z) (-1)^x it contributes to a real field); numpy's irfft does that. The engine's fold of
   the x Nyquist term is free to differ there. The term is tiny for any hull resolved by a few
   nodes (the source's Nyquist content times c), so comparisons need only a small tolerance.
 - Row j = N/2 (N even) is counted as +ky; H depends on ky^2 only, so either sign is the same.

Precision. The engine transforms in single precision with its own twiddle recurrence, which no
numpy call reproduces bit for bit. Here the spectrum is taken in double and rounded to complex64
before the product (so that the rounding of k, r, c and of the product by H is the one the rule
asks for), the product is complex64, and the inverse is again in double; the lattice is rounded
to float32 at the end, as the engine's array is. Measured on the damped cases recommended in
kelvin_wake_physics_check.py: a relative error of 1e-6 added to every forward mode moves the
lattice by under 2e-7 of its largest |h|, and the x Nyquist imaginary parts above are under
2e-6 of it, so an engine lattice should match within 1e-5 of the largest |h|. Undamped
(eps 0) lattices are far more sensitive near resonance (5e-6 for a 1e-6 error on a 256 x 128
case), and a coarse hull with heavy damping makes the Nyquist term matter (0.3% on 64 x 32,
eps 0.5): compare those loosely or not at all.
"""
import argparse
import sys

import numpy

G = 9.81
TWO_PI = 6.2831853


def shape_code(word):
    """1 rectangle, 2 ellipse, 0 anything else (a hull taken from a file: no source)."""
    if word == "rectangle":
        return 1
    if word == "ellipse":
        return 2
    return 0


def damping_factor(eps, us, velocity):
    return eps * velocity ** 3 / (us * us * G)


def hull_source(n_x, n_y, dx, dy, length, width, depth, shape):
    """Sharp-ended hull source on the n_y x n_x nodes (float32), and the hull centre."""
    source = numpy.zeros((n_y, n_x), dtype=numpy.float32)
    if shape_code(shape) == 0:
        return source, 0.0, 0.0
    center_x = n_x * dx - 0.5 * length
    center_y = dy * 0.5 * n_y
    x = numpy.arange(n_x, dtype=numpy.float64) * dx
    y = numpy.arange(n_y, dtype=numpy.float64) * dy
    xn = numpy.abs(x - center_x) / (0.5 * length)
    yn = numpy.abs(y - center_y) / (0.5 * width)
    XN, YN = numpy.meshgrid(xn, yn)
    inside = (XN < 1.0) & (YN < 1.0)
    d = numpy.zeros_like(XN)
    d[inside] = 1.0 - YN[inside] / (1.0 - XN[inside] ** 2)
    take = inside & (d > 0.0)
    source[take] = (-depth * numpy.sqrt(d[take])).astype(numpy.float32)
    return source, center_x, center_y


def mode_factor(M, N, dx, dy, velocity, damping):
    """H on the half-complex modes [j, i] (shape N x (M/2 + 1)), complex64; H[0, 0] = 0.

    k, r and c are float32. The quotient is taken as (r + i c) * conj(den) / |den|^2 with
    den = (1 - r) - i c: the products in float32, |den|^2 accumulated in double from the float32
    parts, the quotient rounded back to float32.
    """
    f32 = numpy.float32
    dkx = TWO_PI / (M * dx)
    dky = TWO_PI / (N * dy)
    i = numpy.arange(M // 2 + 1)
    j = numpy.arange(N)
    kx = i * dkx
    ky = dky * numpy.where(j < N // 2 + 1, j, -(N - j))
    KX, KY = numpy.meshgrid(kx, ky)
    with numpy.errstate(divide="ignore", invalid="ignore", over="ignore"):
        k = numpy.sqrt(KX * KX + KY * KY).astype(f32)
        a = velocity * KX
        r = (a * a / (G * k.astype(numpy.float64))).astype(f32)
        c = (a * damping).astype(f32)
        den_re = f32(1.0) - r
        den_im = -c
        mod2 = den_re.astype(numpy.float64) ** 2 + den_im.astype(numpy.float64) ** 2
        # (r + i c) (den_re - i den_im)
        num_re = r * den_re + c * den_im
        num_im = c * den_re - r * den_im
        h = numpy.empty(KX.shape, dtype=numpy.complex64)
        h.real = (num_re / mod2).astype(f32)
        h.imag = (num_im / mod2).astype(f32)
    h[0, 0] = 0.0
    return h


def generate(n_x, n_y, dx, dy, length, width, depth, shape, eps, us, velocity, single=True):
    """The wake lattice h[j, i] (float64 copy of the float32 field)."""
    source, _, _ = hull_source(n_x, n_y, dx, dy, length, width, depth, shape)
    M, N = 2 * n_x, n_y
    padded = numpy.zeros((N, M), dtype=numpy.float32)
    padded[:, n_x:] = source
    spectrum = numpy.fft.rfft2(padded.astype(numpy.float64))
    if single:
        spectrum = spectrum.astype(numpy.complex64)
    spectrum[0, 0] = 0.0
    damping = damping_factor(eps, us, velocity)
    with numpy.errstate(invalid="ignore", over="ignore"):
        spectrum = spectrum * mode_factor(M, N, dx, dy, velocity, damping)
        full = numpy.fft.irfft2(spectrum.astype(numpy.complex128), s=(N, M))
    return full[:, n_x:].astype(numpy.float32).astype(numpy.float64)


def stored_field(lattice, depth):
    """What the wake file holds: the pattern per unit of hull depth (as is when depth <= 0)."""
    if depth > 0.0:
        return (lattice.astype(numpy.float32) / numpy.float32(depth)).astype(numpy.float64)
    return lattice.copy()


def acceleration(lattice, dx, dy, velocity, zero_edges=True):
    """Vertical acceleration of the stationary pattern at a fixed point: U^2 d2h/dx2.

    The pattern moves as h(x - U t), so d2h/dt2 = U^2 d2h/dx2, whose transform is the factor
    -U^2 kx^2 on each mode. Spectral on the n_x x n_y lattice itself (no padding, so periodic):
    mean mode 0, each mode times the float32 factor -U^2 kx^2 with kx = i 6.2831853 / (n_x dx),
    inverse divided by n_x n_y. With zero_edges the first n_x // 20 columns and the last two
    are zeroed, as the wake field does (the boat's Kelvin branch does not).
    """
    n_y, n_x = lattice.shape
    spectrum = numpy.fft.rfft2(lattice.astype(numpy.float32).astype(numpy.float64))
    spectrum = spectrum.astype(numpy.complex64)
    spectrum[0, 0] = 0.0
    kx = numpy.arange(n_x // 2 + 1) * (TWO_PI / (n_x * dx))
    factor = (-1.0 * velocity * velocity * kx * kx).astype(numpy.float32)
    spectrum = spectrum * factor[numpy.newaxis, :]
    acc = numpy.fft.irfft2(spectrum.astype(numpy.complex128), s=(n_y, n_x))
    acc = acc.astype(numpy.float32).astype(numpy.float64)
    if zero_edges:
        acc[:, : n_x // 20] = 0.0
        acc[:, n_x - 2 :] = 0.0
    return acc


# ---------------------------------------------------------------- self-checks


def _check(condition, text):
    if not condition:
        raise AssertionError(text)


def _hand_case():
    """n_x 2, n_y 1, dx dy 1, length 2, width 4, depth 3, no damping.

    center_x = 2 - 1 = 1, center_y = 0.5. Node 0 (x 0): xn = 1, no source. Node 1 (x 1): xn 0,
    yn = 0.5 / 2 = 0.25, d = 0.75, s = -3 sqrt(0.75). Padded row [0, 0, 0, s] (M 4, N 1).
    F_m = s exp(-2 pi i m 3 / 4) = s i^m: F1 = i s, F2 = -s; F0 -> 0.
    Only ky = 0 (N 1), so k = kx = m dkx, dkx = 6.2831853 / 4, r_m = U^2 kx / 9.81 and
    H_m = r_m / (1 - r_m) (c = 0). Inverse: h(x) = (F2 H2 (-1)^x + 2 Re(F1 H1 i^x)) / 4:
    x = 2 (node 0): (-s H2 + 2 Re(i s H1 (-1))) / 4 = -s H2 / 4
    x = 3 (node 1): (s H2 + 2 Re(i s H1 (-i))) / 4 = (s H2 + 2 s H1) / 4
    With U = 2: kx1 = 1.570796325, r1 = 4 kx1 / 9.81 = 0.640487..., r2 = 1.280974...
    """
    velocity = 2.0
    s = -3.0 * 0.75 ** 0.5
    dkx = 6.2831853 / 4.0
    r1 = velocity ** 2 * dkx / 9.81
    r2 = velocity ** 2 * 2.0 * dkx / 9.81
    h1 = r1 / (1.0 - r1)
    h2 = r2 / (1.0 - r2)
    expected = numpy.array([[-s * h2 / 4.0, (s * h2 + 2.0 * s * h1) / 4.0]])
    got = generate(2, 1, 1.0, 1.0, 2.0, 4.0, 3.0, "rectangle", 0.0, 1.0, velocity)
    _check(numpy.allclose(got, expected, rtol=2e-6, atol=1e-6),
           "hand case: got %s, expected %s" % (got, expected))
    # Same numbers, spelled out: r1 = 0.64048727, H1 = 1.7815..., r2 = 1.28097, H2 = -4.5591...
    _check(abs(r1 - 0.6404872) < 1e-6 and abs(h2 + 4.5591) < 1e-3, "hand case constants")


def _hand_case_damped():
    """The same hull with damping: H1 complex, H2 complex (x Nyquist).

    eps 0.5, us 2, U 2: damping = 0.5 * 8 / (4 * 9.81) = 0.10193680; c_m = U kx_m damping.
    Node 0 (x = 2): (-s Re(H2) + 2 Re(i s H1 (-1))) / 4 = (-s Re H2 + 2 s Im H1) / 4
    Node 1 (x = 3): (s Re(H2) + 2 Re(i s H1 (-i))) / 4 = (s Re H2 + 2 s Re H1) / 4
    Only Re H2 enters: the x Nyquist term's imaginary part has no place in a real field.
    """
    velocity, eps, us = 2.0, 0.5, 2.0
    damping = eps * velocity ** 3 / (us * us * 9.81)
    s = -3.0 * 0.75 ** 0.5
    dkx = 6.2831853 / 4.0
    hs = []
    for m in (1, 2):
        kx = m * dkx
        r = velocity ** 2 * kx / 9.81
        c = velocity * kx * damping
        hs.append(complex(r, c) / complex(1.0 - r, -c))
    h1, h2 = hs
    expected = numpy.array([[(-s * h2.real + 2.0 * s * h1.imag) / 4.0,
                             (s * h2.real + 2.0 * s * h1.real) / 4.0]])
    got = generate(2, 1, 1.0, 1.0, 2.0, 4.0, 3.0, "ellipse", eps, us, velocity)
    _check(numpy.allclose(got, expected, rtol=2e-6, atol=1e-6),
           "damped hand case: got %s, expected %s" % (got, expected))


def _full_plane_case():
    """A 2-D lattice against a full complex transform with the filter H(kx, ky), kx signed.

    Checks the conjugate-symmetry argument of the docstring: every mode of the full plane gets
    H computed in double from its own signed kx, ky (at the x Nyquist column with kx = +pi/dx),
    and the real part of the full inverse is taken.
    """
    n_x, n_y, dx, dy = 12, 10, 1.5, 2.0
    length, width, depth, velocity, eps, us = 9.0, 7.0, 1.3, 3.0, 0.3, 2.5
    damping = damping_factor(eps, us, velocity)
    source, _, _ = hull_source(n_x, n_y, dx, dy, length, width, depth, "rectangle")
    M, N = 2 * n_x, n_y
    padded = numpy.zeros((N, M))
    padded[:, n_x:] = source
    F = numpy.fft.fft2(padded)
    mx = numpy.arange(M)
    kx = 6.2831853 / (M * dx) * numpy.where(mx <= M // 2, mx, mx - M)
    my = numpy.arange(N)
    ky = 6.2831853 / (N * dy) * numpy.where(my < N // 2 + 1, my, my - N)
    KX, KY = numpy.meshgrid(kx, ky)
    k = numpy.sqrt(KX ** 2 + KY ** 2)
    k[0, 0] = 1.0
    a = velocity * KX
    r = a * a / (9.81 * k)
    c = a * damping
    H = (r + 1j * c) / ((1.0 - r) - 1j * c)
    H[0, 0] = 0.0
    expected = numpy.fft.ifft2(F * H).real[:, n_x:]
    got = generate(n_x, n_y, dx, dy, length, width, depth, "rectangle", eps, us, velocity)
    scale = numpy.abs(expected).max()
    _check(scale > 0.05, "full-plane case has no wake to compare")
    _check(numpy.abs(got - expected).max() < 2e-5 * scale,
           "full-plane case differs by %g" % numpy.abs(got - expected).max())


def _flat_cases():
    """Velocity 0 (every H is 0) and the "file" shape (no source) both give a flat field."""
    flat = generate(32, 16, 2.0, 2.0, 20.0, 6.0, 1.5, "rectangle", 0.01, 5.0, 0.0)
    _check(numpy.all(flat == 0.0), "velocity 0 is not flat")
    flat = generate(32, 16, 2.0, 2.0, 20.0, 6.0, 1.5, "file", 0.01, 5.0, 5.0)
    _check(numpy.all(flat == 0.0), "file shape is not flat")
    moving = generate(32, 16, 2.0, 2.0, 20.0, 6.0, 1.5, "rectangle", 0.01, 5.0, 5.0)
    _check(numpy.abs(moving).max() > 0.01, "a moving hull left no wake")


def _source_and_storage():
    """The source's node values by hand, and the per-unit-depth stored field."""
    # n_x 8, dx 1, length 4: center_x 6; n_y 4, dy 1, width 2: center_y 2.
    source, cx, cy = hull_source(8, 4, 1.0, 1.0, 4.0, 2.0, 2.0, "ellipse")
    _check((cx, cy) == (6.0, 2.0), "centre")
    # Node (6, 2): xn 0, yn 0: -2. Node (5, 2): xn 0.5, yn 0, d 1: -2.
    # Node (5, 3) and (7, 1): xn 0.5, yn 1: outside. Node (4, 2): xn 1: outside.
    expected = numpy.zeros((4, 8), dtype=numpy.float32)
    expected[2, 5] = expected[2, 6] = expected[2, 7] = -2.0
    _check(numpy.array_equal(source, expected), "hull source: %s" % source)
    # width 4: yn = |j - 2| / 2; node (5, 1): xn 0.5, yn 0.5, d = 1 - 0.5 / 0.75 = 1/3.
    source, _, _ = hull_source(8, 4, 1.0, 1.0, 4.0, 4.0, 2.0, "rectangle")
    _check(abs(source[1, 5] + 2.0 * (1.0 / 3.0) ** 0.5) < 1e-6, "hull source d")
    # Node (6, 1): xn 0, yn 0.5: d 0.5.
    _check(abs(source[1, 6] + 2.0 * 0.5 ** 0.5) < 1e-6, "hull source d at mid-ship")
    lattice = numpy.array([[0.5, -1.5]])
    _check(numpy.allclose(stored_field(lattice, 2.0), [[0.25, -0.75]]), "stored per depth")
    _check(numpy.array_equal(stored_field(lattice, 0.0), lattice), "stored at depth 0")


def _acceleration_case():
    """A single x Fourier mode: U^2 d2/dx2 of cos(kx x) is -U^2 kx^2 cos(kx x)."""
    n_x, n_y, dx, velocity = 40, 4, 0.5, 3.0
    kx = 3 * 6.2831853 / (n_x * dx)
    h = numpy.tile(numpy.cos(3 * 2.0 * numpy.pi * numpy.arange(n_x) / n_x), (n_y, 1))
    acc = acceleration(h, dx, 1.0, velocity, zero_edges=False)
    expected = -(velocity ** 2) * kx ** 2 * h
    _check(numpy.allclose(acc, expected, atol=1e-5 * numpy.abs(expected).max()), "acceleration")
    acc = acceleration(h, dx, 1.0, velocity)
    # n_x // 20 = 2 leading columns and the last two are cut; the rest is untouched.
    _check(numpy.all(acc[:, :2] == 0.0) and numpy.all(acc[:, -2:] == 0.0), "acceleration edges")
    _check(numpy.allclose(acc[:, 2:-2], expected[:, 2:-2], atol=1e-5 * numpy.abs(expected).max()),
           "acceleration interior")


def self_test():
    _hand_case()
    _hand_case_damped()
    _full_plane_case()
    _flat_cases()
    _source_and_storage()
    _acceleration_case()
    print("kelvin wake reference: all self-checks passed")


def main(argv):
    if len(argv) == 2 and argv[1] == "--self-test":
        try:
            self_test()
        except AssertionError as failure:
            print("kelvin wake reference self-check failed: %s" % failure)
            return 1
        return 0
    parser = argparse.ArgumentParser(description="Kelvin wake reference lattice")
    parser.add_argument("out")
    parser.add_argument("n_x", type=int)
    parser.add_argument("n_y", type=int)
    parser.add_argument("dx", type=float)
    parser.add_argument("dy", type=float)
    parser.add_argument("length", type=float)
    parser.add_argument("width", type=float)
    parser.add_argument("depth", type=float)
    parser.add_argument("shape")
    parser.add_argument("eps", type=float)
    parser.add_argument("us", type=float)
    parser.add_argument("velocity", type=float)
    parser.add_argument("--stored", help="also write the per-unit-depth field here")
    parser.add_argument("--acceleration", help="also write the vertical acceleration here")
    parser.add_argument("--boat", action="store_true",
                        help="acceleration without the zeroed edge columns")
    args = parser.parse_args(argv[1:])
    lattice = generate(args.n_x, args.n_y, args.dx, args.dy, args.length, args.width, args.depth,
                       args.shape, args.eps, args.us, args.velocity)
    numpy.save(args.out, lattice)
    if args.stored:
        numpy.save(args.stored, stored_field(lattice, args.depth))
    if args.acceleration:
        numpy.save(args.acceleration,
                   acceleration(lattice, args.dx, args.dy, args.velocity, not args.boat))
    print("wrote %s: %d x %d, min %.6g max %.6g rms %.6g" % (
        args.out, args.n_y, args.n_x, lattice.min(), lattice.max(),
        numpy.sqrt(numpy.mean(lattice ** 2))))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
