#!/usr/bin/python3
"""Independent single-scattering reference for the sky of an air file.

Brute-force quadrature of the air model (two exponential layers, molecules and
aerosols, lit by one sun in single scattering), written from the model's
definitions alone, without the renderer's code.  python3 + numpy only.

What is computed (per band of the air file that the band table defines):
  * path_radiance : integral over the view path of
        sum_layers k_L(h) * phase_L(c) * T_view(0, s) * T_sun(x(s)) * E_sun
    with k_L(h) = tau_L / H_L * exp(-h / H_L) (extinction = scattering, the
    model has no absorption), c = view direction . sun direction, T_view the
    transmission of both layers from the origin to s, T_sun the transmission of
    both layers from x(s) to infinity along the sun direction, and T_sun = 0
    when the sun ray from x(s) strikes the ground (the sun has set there).
  * transmission  : exp(-sum_layers integral k_L ds) over the same path.
  * sun_irradiance: E_sun * T_sun(point), exactly 0 when the sun ray from the
    point strikes the ground (round: the sphere; flat: the plane z = 0).

Model constants, as the air model defines them (air file fields, layer setup,
phase functions):
  * molecular scale height = molecular_height * 8000.0 m, aerosol scale height
    = aerosol_height * 1200.0 m.
  * vertical molecular optical depth = band mean over [l1, l2] (l1, l2 = centre
    -/+ width/2) of 1.07e-06 * H_m * D * lbar^(e - 4.1) * l^-e, e the file's
    molecular_wavelength_dependence, lbar the mean of the band centres of the
    air's bands.  The model gives this as three closed forms (e = 4.1, e = 1,
    other); they ARE the exact band mean, and here the band mean is taken by a
    fine numerical quadrature over wavelength instead (checked to agree).
    Constants assume wavelengths in micrometres (0.55 gives tau ~ 0.1).
  * dirty aerosol: g1 = factor - 0.1064 lc, g2 = 0.07964 lc - 0.613408,
    w = 0.05528 lc + 0.935354, two Henyey-Greenstein lobes with weights w and
    1 - w; tau_a = aerosol_density * 0.000106 * H_a (all bands).
  * haze: one HG lobe, g = aerosol_scattering_width of the band, weight 1;
    tau_a = aerosol_density * 0.000106 * H_a * max(strength, 0.1).
  * molecular phase = 0.060709651179326155 * (1 + 0.9324 c^2) (normalised).
  * HG lobe = (1 - g^2) / (12.566371 (1 - 2 g c + g^2)^1.5).
  * clean air: molecules only.  uniform air: not a scattering model; see
    below.

Geometry and conventions (assumed, from the sun's and the air's definitions):
  * z is up.  The base passes through the origin; a round base is the sphere
    of radius surface_radius centred at (0, 0, -R); a flat base is z = 0.
  * The sun direction (from a point towards the sun) is, in the model,
    (-sin Z cos A, -sin Z sin A, -cos Z) with Z = pi - theta and A = phi + pi
    for the angles theta, phi (degrees) of the object list's sun line.  That is
    (sin theta cos phi, sin theta sin phi, cos theta): theta is the sun's
    zenith angle, phi its azimuth counted from +x towards +y.  Here the CLI
    takes elevation = 90 - theta and azimuth = phi:
        sun = (cos el cos az, cos el sin az, sin el).
    The sun is a point source at infinity: the direction is the same at every
    point, so over a round base its local elevation changes with position.
  * The air's own pose is taken as the identity (air frame = world frame).
  * Radiance units: those of the sun's irradiance per steradian.

Ambiguities and how they are resolved here (physically right reading):
  * Height over a round base: the model states a parabolic height
    z + (x^2+y^2)/(2R) for the integrals but the exact sphere for the ground
    tests.  Here the EXACT SPHERE is used for both (h = |x - C| - R).  Within
    300 km of the origin the two heights differ by < 4 m, but on long grazing
    paths (300-400 km, level views, twilight) the results differ by up to
    0.5 % in radiance and 0.2 % in transmission (measured with
    naive_crosscheck.py, which can integrate either height model).
  * The model clips its radiance integral at a shell of 6 scale heights; here
    nothing is clipped (layers are followed to 30 of the largest scale height,
    where the density is 1e-13 of the ground value).
  * Flat base: the model's closed form dims each layer only by itself and
    adds 0.001 / 0.0001 to the sun's sine, and may add an extra term beyond a
    finite end.  Here both layers dim each other, no offsets, and the path is
    exactly [0, distance].  A downward ray over a flat base ends on the plane.
  * A path that meets the ground before the requested distance ends there
    (both radiance and transmission).  An origin below the ground starts where
    the ray comes out of the ground (as the model does for a flat base).
  * The band's optical depth is the band MEAN optical depth (the model's
    definition); radiance is computed with it, not spectrally resolved.
  * A point within 1 mm of the round ground counts as on it (lit only if the
    sun is above its local horizon); a point deeper below gets no sun.
  * The sun's disc is a point (no partial sunset over the disc).
  * uniform air: radiance = radiance_value for a path to infinity, 0 for a
    finite path; transmission 1.  (Outside the scattering model.)
  * The sun's irradiance per band is given directly (CLI --sun-irradiance in
    the order of --bands); a band the sun lacks gets 0.

Numerics: every integral is a composite Simpson rule on fixed uniform steps.
Rays over a round base are integrated in w = sign(s - s_t) sqrt(r(s) - p)
(p the ray's closest distance to the centre, s_t where that happens), an exact
change of variable that makes ds = 2(p + w^2)/sqrt(2p + w^2) dw smooth and
the height h = (p - R) + w^2.  The view path is cut at the ground, at the
closest approach, and at the exact crossings of the earth's shadow, so the
integrand is smooth on each piece.  The cumulative optical depth along the view
uses Simpson on node pairs and a quadratic rule for the odd nodes.  All step
counts are doubled until every band's radiance and transmission change by less
than `tol` (default 1e-5 relative); the change reached is returned.
"""

import math
import sys

import numpy as np

DEG = 0.017453292519444445
TOP_SCALE_HEIGHTS = 30.0  # layers are followed up to this many scale heights


# ---------------------------------------------------------------- air file


def parse_air_file(path):
    """Read an air file; return a dict of its fields (file units)."""
    with open(path) as f:
        tok = f.read().split()
    pos = [0]

    def nxt():
        if pos[0] >= len(tok):
            raise ValueError("air file ends early")
        t = tok[pos[0]]
        pos[0] += 1
        return t

    magic = nxt()
    if magic not in ("Tidecast_data_file", "Beavis_rules_the"):
        raise ValueError("bad header word %r" % magic)
    if nxt() != "air":
        raise ValueError("not an air file")
    version = int(nxt())
    oldest = int(nxt())
    if oldest > 2 or version == 0:
        raise ValueError("air file version not readable")
    air = {"version": version}
    nxt()
    n = int(nxt())
    air["number_of_bands"] = n
    nxt()
    air["band_id"] = [int(nxt()) for _ in range(n)]
    nxt()
    w = nxt()
    air["air_type"] = {"uniform": 0, "clean": 1, "haze": 3}.get(w, 2)
    nxt()
    air["surface_shape"] = 1 if nxt() == "round" else 0
    air["surface_radius"] = None
    if air["surface_shape"] == 1:
        nxt()
        air["surface_radius"] = float(nxt())
    air["molecular_height"] = 1.0
    air["molecular_density"] = 1.0
    air["molecular_wavelength_dependence"] = 4.1
    air["aerosol_height"] = 1.0
    air["aerosol_density"] = 1.0
    air["aerosol_scattering_factor"] = 0.93
    air["radiance_value"] = [0.0] * n
    air["aerosol_scattering_strength"] = [0.0] * n
    air["aerosol_scattering_width"] = [0.95] * n
    t = air["air_type"]
    if t == 0:
        vals = []
        for _ in range(n):
            nxt()
            vals.append(float(nxt()))
        air["radiance_value"] = vals
    else:
        nxt()
        air["molecular_height"] = float(nxt())
        nxt()
        air["molecular_density"] = float(nxt())
        if version >= 2:
            nxt()
            air["molecular_wavelength_dependence"] = float(nxt())
        if t in (2, 3):
            nxt()
            air["aerosol_height"] = float(nxt())
            nxt()
            air["aerosol_density"] = float(nxt())
        if t == 2:
            nxt()
            air["aerosol_scattering_factor"] = float(nxt())
        if t == 3:
            nxt()
            air["aerosol_scattering_strength"] = [float(nxt()) for _ in range(n)]
            nxt()
            air["aerosol_scattering_width"] = [float(nxt()) for _ in range(n)]
    air["sun_max_radiance"] = 99999999.0
    air["external_exact"] = 0
    if pos[0] < len(tok):
        w = nxt()
        if w != "end":
            v = float(nxt())
            air["sun_max_radiance"] = 99999999.0 if v < 0 else v
            if pos[0] < len(tok):
                w = nxt()
                if w != "end":
                    air["external_exact"] = int(nxt())
                    w = nxt()
                    if w != "end":
                        raise ValueError("air file invalid, read %s instead of end" % w)
    return air


def parse_bands(text):
    """'id,centre,width;...' -> list of (id, centre, width)."""
    out = []
    for part in text.split(";"):
        part = part.strip()
        if part:
            a = part.split(",")
            out.append((int(a[0]), float(a[1]), float(a[2])))
    return out


class Sun:
    """A point sun at infinity: elevation and azimuth in degrees (azimuth from
    +x towards +y), irradiance per band id (dict)."""

    def __init__(self, elevation_deg, azimuth_deg, irradiance):
        self.elevation = elevation_deg
        self.azimuth = azimuth_deg
        self.irradiance = dict(irradiance)
        el, az = elevation_deg * DEG, azimuth_deg * DEG
        self.direction = np.array(
            [math.cos(el) * math.cos(az), math.cos(el) * math.sin(az), math.sin(el)]
        )


def make_sun(elevation_deg, azimuth_deg, bands, values):
    """Sun from a band table [(id, centre, width)] and values in its order."""
    return Sun(elevation_deg, azimuth_deg, {b[0]: v for b, v in zip(bands, values)})


# ---------------------------------------------------------------- optics


def _band_mean(fn, l1, l2, n=20001):
    x = np.linspace(l1, l2, n)
    y = fn(x)
    h = (l2 - l1) / (n - 1)
    return h / 3.0 * (y[0] + y[-1] + 4 * y[1:-1:2].sum() + 2 * y[2:-1:2].sum()) / (l2 - l1)


class _Model:
    """The air file made numeric for a band table."""

    def __init__(self, air, bands):
        table = {b[0]: (b[1], b[2]) for b in bands}
        self.kind = air["air_type"]
        self.round = air["surface_shape"] == 1
        self.R = air["surface_radius"]
        if self.round and (self.R is None or self.R <= 0):
            raise ValueError("surface_radius must be positive")
        self.ids, idx = [], []
        for i, bid in enumerate(air["band_id"]):
            if bid not in table:
                raise ValueError("band %d not defined in band table" % bid)
            self.ids.append(bid)
            idx.append(i)
        nb = len(self.ids)
        centre = np.array([table[b][0] for b in self.ids])
        width = np.array([table[b][1] for b in self.ids])
        self.uniform = np.array([air["radiance_value"][i] for i in idx])
        self.layers = []  # (k0 per band [1/m], H [m], phase(c) -> per band)
        if self.kind == 0:
            return
        Hm = air["molecular_height"] * 8000.0
        D = air["molecular_density"]
        e = air["molecular_wavelength_dependence"]
        lbar = centre.mean()
        tau_m = np.empty(nb)
        for m in range(nb):
            l1, l2 = centre[m] - width[m] / 2, centre[m] + width[m] / 2
            f = lambda l: 1.07e-06 * Hm * D * lbar ** (e - 4.1) * l ** (-e)
            tau_m[m] = f(centre[m]) if l2 <= l1 else _band_mean(f, l1, l2)
        self.tau_m = tau_m
        self.layers.append(
            (tau_m / Hm, Hm, lambda c: np.full(nb, 0.060709651179326155 * (1.0 + 0.9324 * c * c)))
        )
        if self.kind in (2, 3):
            Ha = air["aerosol_height"] * 1200.0
            if self.kind == 2:
                fac = air["aerosol_scattering_factor"]
                g1 = fac - 0.1064 * centre
                g2 = 0.07964 * centre - 0.613408
                w = 0.05528 * centre + 0.935354
                w1, w2 = w, 1.0 - w
                tau_a = np.full(nb, air["aerosol_density"] * 0.000106 * Ha)
            else:
                g1 = np.array([air["aerosol_scattering_width"][i] for i in idx])
                g2 = np.zeros(nb)
                w1, w2 = np.ones(nb), np.zeros(nb)
                st = np.array([max(air["aerosol_scattering_strength"][i], 0.1) for i in idx])
                tau_a = air["aerosol_density"] * 0.000106 * Ha * st
            self.tau_a = tau_a

            def hg(c, g1=g1, g2=g2, w1=w1, w2=w2):
                p1 = (1 - g1 * g1) / (12.566371 * (1 - 2 * g1 * c + g1 * g1) ** 1.5)
                p2 = (1 - g2 * g2) / (12.566371 * (1 - 2 * g2 * c + g2 * g2) ** 1.5)
                return w1 * p1 + w2 * p2

            self.layers.append((tau_a / Ha, Ha, hg))
        self.Hmax = max(L[1] for L in self.layers)
        self.Hmin = min(L[1] for L in self.layers)
        self.h_top = TOP_SCALE_HEIGHTS * self.Hmax

    def height(self, P):
        if self.round:
            q = P.copy()
            q[..., 2] += self.R
            return np.sqrt((q * q).sum(-1)) - self.R
        return P[..., 2]

    def ext_at(self, h):
        """extinction per band at heights h: shape h.shape + (nb,)"""
        out = 0.0
        for k0, H, _ in self.layers:
            out = out + np.exp(-h / H)[..., None] * k0
        return out


def _simpson_weights(n_pairs):
    w = np.ones(2 * n_pairs + 1)
    w[1:-1:2] = 4.0
    w[2:-1:2] = 2.0
    return w / 3.0


# ---------------------------------------------------------------- sun rays


def _sun_columns(model, P, sd, M):
    """Per layer, column integral of exp(-h/H) ds from each point of P (N,3)
    to infinity along sd; plus a mask of points the sun does not reach."""
    N = P.shape[0]
    cols = np.zeros((len(model.layers), N))
    if not model.round:
        z = P[:, 2]
        blocked = (z < -1e-3) | (sd[2] <= 0.0)
        if sd[2] > 0:
            for li, (_, H, _) in enumerate(model.layers):
                # exact antiderivative of exp(-(z + mu s)/H) over s in [0, inf)
                cols[li] = H * np.exp(-np.maximum(z, 0.0) / H) / sd[2]
        return cols, blocked
    R = model.R
    q = P.copy()
    q[:, 2] += R
    r0 = np.sqrt((q * q).sum(1))
    b = q @ sd
    cr = np.cross(q, sd)
    p = np.sqrt((cr * cr).sum(1))
    blocked = (r0 < R - 1e-3) | ((b < 0) & (p < R))
    ht = p - R  # height of closest approach (of the full line)
    h0 = r0 - R
    wsq0 = np.maximum(r0 - p, 0.0)
    w0 = np.where(b >= 0, 1.0, -1.0) * np.sqrt(wsq0)
    hmin = np.where(b >= 0, h0, ht)
    t = np.linspace(0.0, 1.0, 2 * M + 1)
    sw = _simpson_weights(M)
    chunk = max(1, 4000000 // (2 * M + 1))
    for li, (_, H, _) in enumerate(model.layers):
        hcut = np.maximum(hmin, 0.0) + TOP_SCALE_HEIGHTS * H
        w_end = np.sqrt(np.maximum(hcut - ht, 0.0))
        w_end = np.maximum(w_end, w0)
        for a in range(0, N, chunk):
            sl = slice(a, a + chunk)
            W = w0[sl, None] + (w_end - w0)[sl, None] * t[None, :]
            W2 = W * W
            f = np.exp(-(ht[sl, None] + W2) / H) * 2.0 * (p[sl, None] + W2) / np.sqrt(
                2.0 * p[sl, None] + W2
            )
            cols[li, sl] = (f @ sw) * (w_end - w0)[sl] / (2 * M)
    return cols, blocked


def _sun_transmission(model, P, sd, M, use_block=True):
    cols, blocked = _sun_columns(model, P, sd, M)
    tau = 0.0
    for li, (k0, H, _) in enumerate(model.layers):
        tau = tau + cols[li][:, None] * k0[None, :]
    T = np.exp(-tau)
    if use_block:
        T[blocked] = 0.0
    return T


def _sun_blocked(model, P, sd):
    """True where the sun ray from a point strikes the ground (or the point
    lies more than 1 mm under it)."""
    if not model.round:
        return (P[:, 2] < -1e-3) | (sd[2] <= 0.0)
    q = P.copy()
    q[:, 2] += model.R
    r0 = np.sqrt((q * q).sum(1))
    b = q @ sd
    cr = np.cross(q, sd)
    p = np.sqrt((cr * cr).sum(1))
    return (r0 < model.R - 1e-3) | ((b < 0) & (p < model.R))


# ---------------------------------------------------------------- view rays


def _sphere_hits(o, d, C, rad):
    q = o - C
    b = q @ d
    c = q @ q - rad * rad
    disc = b * b - c
    if disc < 0:
        return None
    sq = math.sqrt(disc)
    return (-b - sq, -b + sq)


def _view_segment(model, o, d, max_distance):
    """Return [s_lo, s_hi] of the path inside the air (None if empty)."""
    s_hi = math.inf if max_distance is None else float(max_distance)
    s_lo = 0.0
    if model.round:
        C = np.array([0.0, 0.0, -model.R])
        g = _sphere_hits(o, d, C, model.R)
        r0 = math.sqrt(((o - C) ** 2).sum())
        if g is not None:
            if r0 < model.R - 1e-3:  # origin under ground: start where it comes out
                s_lo = max(s_lo, g[1])
            elif (o - C) @ d < 0 and g[1] > 0:  # heading into the ground
                s_hi = min(s_hi, max(g[0], 0.0))
        t = _sphere_hits(o, d, C, model.R + model.h_top)
        if t is None:
            return None
        s_lo = max(s_lo, t[0])
        s_hi = min(s_hi, t[1])
    else:
        mu = d[2]
        z0 = o[2]
        if z0 < 0:
            if mu <= 0:
                return None
            s_lo = max(s_lo, -z0 / mu)
        elif mu < 0:
            s_hi = min(s_hi, -z0 / mu)
        if mu > 0:
            s_hi = min(s_hi, max(0.0, (model.h_top - z0) / mu))
        elif z0 >= model.h_top:
            return None
        if mu < 0 and z0 > model.h_top:
            s_lo = max(s_lo, (model.h_top - z0) / mu)
        if not math.isfinite(s_hi):
            # level ray over a flat base: stop at 60 optical depths (e^-60)
            k = model.ext_at(np.array(max(z0, 0.0))).min()
            s_hi = 60.0 / k
    if s_hi <= s_lo:
        return None
    return s_lo, s_hi


def _shadow_breaks(model, o, d, sd, s_lo, s_hi):
    """Distances where the ray enters or leaves the earth's shadow."""
    out = []
    if not model.round:
        return out
    C = np.array([0.0, 0.0, -model.R])
    q0 = o - C
    # boundary of {|q_perp| < R} and the plane q . sd = 0
    qp = q0 - (q0 @ sd) * sd
    dp = d - (d @ sd) * sd
    A = dp @ dp
    B = 2 * (qp @ dp)
    Cc = qp @ qp - model.R ** 2
    if A > 1e-30:
        disc = B * B - 4 * A * Cc
        if disc >= 0:
            sq = math.sqrt(disc)
            out += [(-B - sq) / (2 * A), (-B + sq) / (2 * A)]
    if abs(d @ sd) > 1e-30:
        out.append(-(q0 @ sd) / (d @ sd))
    return [s for s in out if s_lo < s < s_hi]


def _pieces(model, o, d, s_lo, s_hi, breaks, level):
    """Nodes of the view path: list of (s, ds/dvar, step) per piece, each
    with an odd number of uniform nodes in its own variable."""
    cuts = sorted(set([s_lo, s_hi] + breaks))
    pieces = []
    if model.round:
        C = np.array([0.0, 0.0, -model.R])
        q0 = o - C
        st = -(q0 @ d)
        cr = np.cross(q0, d)
        p = math.sqrt(cr @ cr)
        if s_lo < st < s_hi:
            cuts = sorted(set(cuts + [st]))

        def w_of(s):
            r = math.sqrt(((q0 + s * d) ** 2).sum())
            return math.copysign(math.sqrt(max(r - p, 0.0)), s - st)

        for a, b in zip(cuts[:-1], cuts[1:]):
            if b - a <= 0:
                continue
            wa, wb = w_of(a), w_of(b)
            if wb <= wa:
                continue
            wm = max(abs(wa), abs(wb))
            dw = math.inf
            for _, H, _ in model.layers:
                dw = min(dw, min(math.sqrt(H), H / (2 * wm + 1e-30)))
            hmin = (p - model.R) + (0.0 if wa <= 0 <= wb else min(wa * wa, wb * wb))
            kext = model.ext_at(np.array(max(hmin, 0.0))).max()
            jmax = 2 * (p + wm * wm) / math.sqrt(2 * p + wm * wm)
            dw = min(dw, 1.0 / (kext * jmax + 1e-300))
            n = int(min(max(8, math.ceil((wb - wa) / dw * 2.0)), 200000)) * 2 ** level
            w = np.linspace(wa, wb, 2 * n + 1)
            r = p + w * w
            s = st + np.sign(w) * np.sqrt(np.maximum(r * r - p * p, 0.0))
            s[0], s[-1] = a, b
            jac = 2 * r / np.sqrt(2 * p + w * w)
            pieces.append((s, jac, (wb - wa) / (2 * n)))
    else:
        mu = d[2]
        for a, b in zip(cuts[:-1], cuts[1:]):
            zmin = min(o[2] + mu * a, o[2] + mu * b)
            ds = math.inf
            if abs(mu) > 0:
                ds = model.Hmin / abs(mu)
            kext = model.ext_at(np.array(max(zmin, 0.0))).max()
            ds = min(ds, 1.0 / kext)
            n = int(min(max(8, math.ceil((b - a) / ds * 2.0)), 200000)) * 2 ** level
            s = np.linspace(a, b, 2 * n + 1)
            pieces.append((s, np.ones_like(s), (b - a) / (2 * n)))
    return pieces


def _integrate(model, sun, o, d, max_distance, level, M, want_radiance=True):
    nb = len(model.ids)
    E = np.array([sun.irradiance.get(b, 0.0) for b in model.ids]) if sun else np.zeros(nb)
    seg = _view_segment(model, o, d, max_distance)
    if seg is None:
        return np.zeros(nb), np.ones(nb)
    s_lo, s_hi = seg
    sd = sun.direction if sun else np.array([0.0, 0.0, -1.0])
    breaks = _shadow_breaks(model, o, d, sd, s_lo, s_hi)
    c = float(d @ sd)
    phases = [L[2](c) for L in model.layers]
    tau0 = np.zeros(nb)
    L = np.zeros(nb)
    for s, jac, h in _pieces(model, o, d, s_lo, s_hi, breaks, level):
        P = o[None, :] + s[:, None] * d[None, :]
        hgt = model.height(P)
        ext = model.ext_at(hgt) * jac[:, None]  # per unit of the piece variable
        n = (len(s) - 1) // 2
        cum = np.zeros_like(ext)
        f0, f1, f2 = ext[0:-1:2], ext[1::2], ext[2::2]
        even = np.cumsum(h / 3.0 * (f0 + 4 * f1 + f2), axis=0)
        cum[2::2] = even
        base = np.vstack([np.zeros((1, nb)), even[:-1]])
        cum[1::2] = base + h / 12.0 * (5 * f0 + 8 * f1 - f2)
        Tv = np.exp(-(tau0[None, :] + cum))
        if want_radiance and sun is not None and np.any(E > 0):
            mid = P[len(s) // 2 : len(s) // 2 + 1]
            if not _sun_blocked(model, mid, sd)[0]:
                # pieces are cut at the shadow's edge: one test per piece, so
                # an end node on the edge keeps its grazing sun
                Ts = _sun_transmission(model, P, sd, M, use_block=False)
                scat = 0.0
                for (k0, H, _), ph in zip(model.layers, phases):
                    scat = scat + np.exp(-hgt / H)[:, None] * (k0 * ph)[None, :]
                f = scat * Tv * Ts * jac[:, None]
                L += h * (_simpson_weights(n) @ f)
        tau0 = tau0 + cum[-1]
    return L * E, np.exp(-tau0)


def _converged(model, sun, o, d, max_distance, tol, max_level, want_radiance=True):
    o = np.asarray(o, float)
    d = np.asarray(d, float)
    d = d / math.sqrt(d @ d)
    prev = None
    M = 128
    for level in range(max_level + 1):
        L, T = _integrate(model, sun, o, d, max_distance, level, M * 2 ** level, want_radiance)
        if prev is not None:
            dl = np.abs(L - prev[0]) / np.maximum(np.abs(L), 1e-300)
            dl[np.abs(L) < 1e-14 * max(1e-300, np.abs(L).max())] = 0.0
            dt = np.abs(T - prev[1]) / np.maximum(T, 1e-300)
            dt[T < 1e-30] = 0.0
            change = float(max(dl.max(), dt.max()))
            if change < tol:
                return L, T, change
        prev = (L, T)
    return L, T, change


# ---------------------------------------------------------------- public API


def path_radiance(air, bands, sun, origin, direction, max_distance=None, tol=1e-5,
                  max_level=5, with_info=False):
    """Single-scattered path radiance per band of the air file (np array, in
    the order of air['band_id']).  max_distance None: to the ground or out of
    the air.  with_info: return (radiance, transmission, relative change of the
    last refinement)."""
    model = _Model(air, bands)
    if model.kind == 0:
        nb = len(model.ids)
        rad = model.uniform.copy() if max_distance is None else np.zeros(nb)
        return (rad, np.ones(nb), 0.0) if with_info else rad
    L, T, ch = _converged(model, sun, origin, direction, max_distance, tol, max_level)
    return (L, T, ch) if with_info else L


def transmission(air, bands, origin, direction, max_distance=None, tol=1e-7, max_level=6):
    """Path transmission per band of the air file along the same path."""
    model = _Model(air, bands)
    if model.kind == 0:
        return np.ones(len(model.ids))
    _, T, _ = _converged(model, None, origin, direction, max_distance, tol, max_level,
                         want_radiance=False)
    return T


def sun_irradiance(air, bands, sun, point, tol=1e-9):
    """The sun's irradiance per band at a point (normal to the sun ray): top
    irradiance times the transmission to infinity along the sun ray, 0 when
    the ray strikes the ground."""
    model = _Model(air, bands)
    E = np.array([sun.irradiance.get(b, 0.0) for b in model.ids])
    P = np.asarray(point, float)[None, :]
    if _sun_blocked(model, P, sun.direction)[0]:
        return np.zeros_like(E)
    if model.kind == 0:
        return E
    prev = None
    for level in range(12):
        T = _sun_transmission(model, P, sun.direction, 64 * 2 ** level)[0]
        if prev is not None and np.all(np.abs(T - prev) <= tol * np.maximum(T, 1e-300)):
            break
        prev = T
    return E * T


def band_ids(air, bands):
    return _Model(air, bands).ids


# ---------------------------------------------------------------- CLI


def _vec(text):
    return np.array([float(v) for v in text.split(",")])


def main(argv):
    import argparse

    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("airfile")
    ap.add_argument("--bands", required=True, help='"id,centre,width;..."')
    ap.add_argument("--sun-elevation", type=float, required=True)
    ap.add_argument("--sun-azimuth", type=float, default=0.0)
    ap.add_argument("--sun-irradiance", required=True, help="values in the order of --bands")
    ap.add_argument("--origin", type=_vec)
    ap.add_argument("--direction", type=_vec)
    ap.add_argument("--distance", type=float, default=None)
    ap.add_argument("--irradiance-at", type=_vec, default=None)
    ap.add_argument("--tol", type=float, default=1e-5)
    a = ap.parse_args(argv)
    air = parse_air_file(a.airfile)
    bands = parse_bands(a.bands)
    sun = make_sun(a.sun_elevation, a.sun_azimuth, bands, [float(v) for v in a.sun_irradiance.split(",")])
    ids = band_ids(air, bands)
    if a.origin is not None and a.direction is not None:
        L, T, ch = path_radiance(air, bands, sun, a.origin, a.direction, a.distance, tol=a.tol,
                                 with_info=True)
        print("# band radiance transmission   (last refinement changed by %.2e)" % ch)
        for i, b in enumerate(ids):
            print("%d %.9e %.9e" % (b, L[i], T[i]))
    if a.irradiance_at is not None:
        E = sun_irradiance(air, bands, sun, a.irradiance_at)
        print("# band sun_irradiance at %s" % ",".join("%g" % v for v in a.irradiance_at))
        for i, b in enumerate(ids):
            print("%d %.9e" % (b, E[i]))
    if a.irradiance_at is None and (a.origin is None or a.direction is None):
        ap.error("give --origin and --direction, or --irradiance-at")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
