# SPDX-License-Identifier: MIT
"""The six equations of state of real gases with the exact critical point, as fluid handles have them, by arithmetic of
60 digits: their saturation and everything that can be asked of a state. All of it follows from the Helmholtz energies of
helmholtz.py by differentiation.

Reduced quantities are in units of T_ref = Zc Tc, Pc and the critical volume, so that R is 1.
"""
from mpmath import mp, mpf

import helmholtz
import martin_hou
from taylor import INDEX, Inputs, Taylor

mp.dps = 60
SUFFIX = {"vdw": "vdWG", "mh": "MHG", "srk": "SRKG", "pr": "PRG", "rk": "RKG", "cii": "CIIG"}


def records(path):
    """The constants of a parameter file, as the exact numbers that it stands for."""
    lines = path.read_text(encoding="latin-1").splitlines()
    words = [line.split() for line in lines]
    M, Tc, Pc, Zc, Tb = (float(words[k][0]) for k in (4, 6, 7, 8, 9))
    fluid = {"M": mpf(M), "Tc": mpf(Tc), "Pc": mpf(Pc * 101325.0), "Zc": mpf(Zc), "Tb": mpf(Tb)}
    assert words[5][0] == "T" and words[13][0] == "F", path
    heat = {"cv_0": mpf(float(words[15][0])), "Tv": []}
    if words[14][0] == "5":
        count = int(words[16][0])
        for word in words[17]:
            times, _, value = word.rpartition("*")
            heat["Tv"] += [mpf(float(value))] * int(times or 1)
            if len(heat["Tv"]) >= count:
                break
        assert len(heat["Tv"]) == count
    else:
        assert words[14][0] == "1", path
    return fluid, heat


class Surface:
    def __init__(self, fluid, heat, model, translated=False):
        self.fluid, self.model = fluid, helmholtz.MODELS[[m.suffix for m in helmholtz.MODELS].index(SUFFIX[model])]
        Zc = fluid["Zc"]
        root = mp.cbrt(2) - 1
        theta = fluid["Tb"] / fluid["Tc"]
        omega = 3 * mp.log10(fluid["Pc"] / 101325) * theta / (7 * (1 - theta)) - 1
        p = {"Rgas": mpf(1)}
        if model == "vdw":
            Zc = mpf(3) / 8
            p.update(a=mpf(27) / 64 / Zc**2, b=mpf(1) / 3)
        elif model == "rk":
            Zc = mpf(1) / 3
            p.update(a=1 / (9 * root) / Zc**mpf("2.5"), b=root / 3 / Zc)
        elif model in ("srk", "pr"):
            if model == "srk":
                Zc, a, b = mpf(1) / 3, 1 / (9 * root), root / 3
                fw = mpf("0.48") + mpf("1.574") * omega - mpf("0.176") * omega**2
            else:
                two = mp.sqrt(2)
                x = (-1 + mp.cbrt(6 * two + 8) - mp.cbrt(6 * two - 8)) / 3
                Zc, a, b = 1 / (x + 3), 8 * (5 * x + 1) / (49 - 37 * x), x / (x + 3)
                fw = mpf("0.37464") + mpf("1.54226") * omega - mpf("0.26992") * omega**2
            p.update(c_a=a / Zc**2, b=b / Zc, fw=fw, Zc=Zc)
        elif model == "cii":
            p.update(a=mpf(27) / 64 / Zc**3, b=1 - 1 / (4 * Zc), c=mpf(3) / 8 / Zc - 1)
        else:
            p.update(martin_hou.coefficients(Inputs(fluid)))
        self.Zc, self.b, self.parameters = Zc, p["b"], Inputs(p)
        self.R = 8314 / fluid["M"]
        self.T_c = 1 / Zc
        self.T_ref, self.P_ref = Zc * fluid["Tc"], fluid["Pc"]
        self.v_ref = self.R * self.T_ref / self.P_ref
        self.form = 5 if heat["Tv"] else 1
        self.heat = Inputs({**heat, "R": self.R, "T_ref": self.T_ref})
        self.u_0 = self.s_0 = mpf(0)
        _, self.s_0, self.u_0 = self.caloric(self.T_c, mpf(1))
        self.offset = mpf(0)
        if translated:
            liquid = self.saturation(mpf(7) / 10 * self.T_c)[0]
            rackett = fluid["Zc"] ** (1 + mpf("0.3") ** (mpf(2) / 7)) / Zc
            self.offset = liquid - rackett

    def helmholtz(self, T, v, degree=3):
        """Without the part that depends on T only."""
        return self.model.a(self.parameters, Taylor.variable(T, (1, 0), degree), Taylor.variable(v, (0, 1), degree))

    def whole(self, T, v):
        """The Helmholtz energy, of the volume v of the equation."""
        t = Taylor.variable(T, (1, 0))
        return self.helmholtz(T, v) + helmholtz.ideal_part(self.form, self.heat, t) + t * self.s_0 - self.u_0

    def caloric(self, T, v):
        a = self.whole(T, v)
        s = -a.c[1]
        return -a.c[2], s, a.c[0] + T * s

    def P_g(self, T, v):
        """P and the Gibbs energy without the part of the ideal gas."""
        a = self.helmholtz(T, v, 1)
        return -a.c[2], a.c[0] - a.c[2] * v

    def P_v(self, T, v):
        return -2 * self.helmholtz(T, v, 2).c[5]

    def spinodals(self, T):
        """The ends of the branches beside the critical volume, which is between them; (v_l, v_g)."""
        def end(sign):
            last, step = mpf(1), mpf(10) ** -7
            while step < mpf(10) ** 9:
                v = 1 + step if sign > 0 else self.b + (1 - self.b) / (1 + step)
                if self.P_v(T, v) < 0:
                    return bisect(lambda x: self.P_v(T, x) > 0, last, v)
                last, step = v, step * mpf("1.1")
            return None
        return end(-1), end(1)

    def top(self, T, v_l):
        """The volume at which the liquid's branch ends; b if it does not."""
        last, w = v_l, v_l - self.b
        while w > mpf(10) ** -9:
            w /= mpf("1.05")
            if self.P_v(T, self.b + w) > 0:
                return bisect(lambda x: self.P_v(T, x) < 0, last, self.b + w)
            last = self.b + w
        return self.b

    def saturation(self, T, start=None):
        """(v_l, v_g, P) of the equation, or None: equal pressures and equal Gibbs energies. A start is the volumes at a
        temperature beside T."""
        v_l, v_g = start or self.near_saturation(T) or (None, None)
        return self.settled(T, v_l, v_g) if v_l is not None else None

    def near_saturation(self, T):
        """Volumes near those of saturation, by bisection of the pressure, or None."""
        with mp.workdps(18 if T < self.T_c * mpf('0.999') else 30):
            l_end, g_end = self.spinodals(T)
            if l_end is None or g_end is None:
                return None
            top = self.top(T, l_end) if self.model.suffix == "MHG" else self.b
            low_v = top if top > self.b else self.b + (l_end - self.b) * mpf(10) ** -9
            high = self.P_g(T, g_end)[0]
            if top > self.b:
                high = min(high, self.P_g(T, top)[0])
            low = self.P_g(T, l_end)[0]
            low = mp.log(low) if low > 0 else mpf(-1200)

            def both(x):
                P = mp.exp(x)
                far = max(mpf(4) * T / P, 2 * g_end)
                v_l = bisect(lambda v: self.P_g(T, v)[0] > P, low_v, l_end)
                v_g = mp.exp(bisect(lambda y: self.P_g(T, mp.exp(y))[0] > P, mp.log(g_end), mp.log(far)))
                return v_l, v_g

            def liquid_is_better(x):
                v_l, v_g = both(x)
                return self.P_g(T, v_l)[1] < self.P_g(T, v_g)[1]
            high = mp.log(high)
            x_high = high - mpf(10) ** -15 * (self.T_c - T) / T
            if not liquid_is_better(x_high):
                return None
            return both(bisect(lambda y: not liquid_is_better(y), low, x_high, 32))

    def settled(self, T, v_l, v_g):
        """By Newton's method in both volumes, the pressure being the vapor's."""
        for _ in range(16):
            l, g = self.helmholtz(T, v_l, 2), self.helmholtz(T, v_g, 2)
            P_l, P_g = -l.c[2], -g.c[2]
            d_P, d_g = P_l - P_g, l.c[0] - g.c[0] + P_g * (v_l - v_g)
            A, B, C, D = -2 * l.c[5], 2 * g.c[5], P_g - P_l, -2 * g.c[5] * (v_l - v_g)
            det = A * D - B * C
            step_l, step_g = (d_P * D - B * d_g) / det, (A * d_g - C * d_P) / det
            v_l, v_g = v_l - step_l, v_g - step_g
            if abs(step_l) < mpf(10) ** -45 * v_l and abs(step_g) < mpf(10) ** -45 * v_g:
                return v_l, v_g, -self.helmholtz(T, v_g, 1).c[2]
        raise RuntimeError("the volumes do not settle")


def bisect(holds, low, high, steps=110):
    """Where `holds`, true at low and false at high, changes."""
    for _ in range(steps):
        middle = (low + high) / 2
        if holds(middle):
            low = middle
        else:
            high = middle
        if abs(high - low) <= mpf(10) ** (-mp.dps + 3) * abs(high):
            break
    return (low + high) / 2


def gradients(surface, T, V):
    """p, h, s and u, each with its derivatives with respect to T and V, at one phase; V is the translated volume."""
    v = V + surface.offset
    a = surface.whole(T, v)
    P, P_T, P_v = -a.c[2], -a.c[4], -2 * a.c[5]
    s, s_T, s_v = -a.c[1], -2 * a.c[3], -a.c[4]
    u, u_T, u_v = a.c[0] + T * s, T * s_T, a.c[2] + T * s_v
    return [(P, P_T, P_v), (u + P * V, u_T + V * P_T, u_v + V * P_v + P), (s, s_T, s_v), (u, u_T, u_v)]


def mixture(surface, T, V, start):
    v_l, v_g, P = surface.saturation(T, start)
    (_, s_l, u_l), (_, s_g, u_g) = surface.caloric(T, v_l), surface.caloric(T, v_g)
    q = (V + surface.offset - v_l) / (v_g - v_l)
    u = u_l + q * (u_g - u_l)
    return q, (P, u + P * V, s_l + q * (s_g - s_l), u)


def gradients_of_mixture(surface, T, V):
    """The same between the phases, by differences of the mixture."""
    step = mpf(10) ** -15
    start = surface.saturation(T)[:2]

    def at(t, v):
        return mixture(surface, t, v, start)[1]
    q, middle = mixture(surface, T, V, start)
    warm, cold = at(T * (1 + step), V), at(T * (1 - step), V)
    wide, narrow = at(T, V * (1 + step)), at(T, V * (1 - step))
    return q, [(x, (w - c) / (2 * T * step), (b - n) / (2 * V * step) if k > 0 else mpf(0))
               for k, (x, w, c, b, n) in enumerate(zip(middle, warm, cold, wide, narrow))]


def scalars(surface, T, V):
    """The outputs of one phase that are neither inputs nor first derivatives of them, in SI units."""
    v = V + surface.offset
    a = surface.whole(T, v)
    P, P_T, P_v = -a.c[2], -a.c[4], -2 * a.c[5]
    P_TT, P_Tv, P_vv = -2 * a.c[INDEX[2, 1]], -2 * a.c[INDEX[1, 2]], -6 * a.c[INDEX[0, 3]]
    s, cv = -a.c[1], -2 * T * a.c[3]
    dcv = -2 * a.c[3] - 6 * T * a.c[INDEX[3, 0]]
    cp = cv - T * P_T**2 / P_v

    def stiffness(T_here, v_here):  # -dP/dv at constant s
        b = surface.whole(T_here, v_here)
        return 2 * b.c[5] + b.c[4] ** 2 / (2 * b.c[3]) * -1

    k = stiffness(T, v)
    step = mpf(10) ** -15
    T_v = -T * P_T / cv  # of the isentrope
    k_v = (stiffness(T + T_v * step * v, v * (1 + step)) - stiffness(T - T_v * step * v, v * (1 - step))) / (2 * v * step)
    p, t, w, R = surface.P_ref, surface.T_ref, surface.v_ref, surface.R
    energy = p * w
    u = a.c[0] + T * s
    return {"cv": cv * R, "dp_dt": P_T * p / t, "dp_dv": P_v * p / w, "d2p_dt2": P_TT * p / t**2,
            "d2p_dv2": P_vv * p / w**2, "d2p_dtdv": P_Tv * p / (t * w), "dcv_dt": dcv * R / t,
            "g": (u + P * V - T * s) * energy, "a": a.c[0] * energy, "cp": cp * R, "c": mp.sqrt(V * V * k * energy),
            "z": P * V / T, "fundamental": -k_v * V / (2 * k), "cp_cv": cp / cv, "isentropic_exponent": k * V / P,
            "kappa_t": -1 / (V * P_v * p), "beta_p": -P_T / (V * P_v * t), "jt": -(T * P_T + V * P_v) / (cp * P_v) * t / p}
