# SPDX-License-Identifier: MIT
"""Taylor polynomials in (T, v) with 70 digits, and the sensitivity of results to everything that they depend on."""
import math

from mpmath import mp, mpf

mp.dps = 70
STEP = mpf(10) ** -20  # relative step; a difference over it has about 20 digits
TOP = 3  # the largest total degree

POWERS = [(n - j, j) for n in range(TOP + 1) for j in range(n + 1)]  # of T and v, by total degree
INDEX = {power: k for k, power in enumerate(POWERS)}
LENGTH = {n: (n + 1) * (n + 2) // 2 for n in range(TOP + 1)}
PRODUCTS = [[(INDEX[i, j], INDEX[p - i, q - j]) for i in range(p + 1) for j in range(q + 1)] for p, q in POWERS]


class Taylor:
    """The polynomial of a function of (T, v) about a state, up to a total degree."""

    def __init__(self, degree, coefficients):
        self.degree = degree
        self.c = coefficients

    @classmethod
    def variable(cls, value, power, degree=TOP):
        c = [mpf(0)] * LENGTH[degree]
        c[0] = value
        c[INDEX[power]] = mpf(1)
        return cls(degree, c)

    @classmethod
    def constant(cls, value, degree=TOP):
        return cls(degree, [mpf(value)] + [mpf(0)] * (LENGTH[degree] - 1))

    @property
    def value(self):
        return self.c[0]

    def along_T(self):
        return self._derived(0)

    def along_v(self):
        return self._derived(1)

    def _derived(self, variable):
        lower = self.degree - 1
        c = []
        for p, q in POWERS[:LENGTH[lower]]:
            raised = (p + 1, q) if variable == 0 else (p, q + 1)
            c.append(self.c[INDEX[raised]] * raised[variable])
        return Taylor(lower, c)

    def _lift(self, other):
        return other if isinstance(other, Taylor) else Taylor.constant(other, self.degree)

    def __add__(self, other):
        if not isinstance(other, Taylor):
            return Taylor(self.degree, [self.c[0] + other] + self.c[1:])
        degree = min(self.degree, other.degree)
        return Taylor(degree, [x + y for x, y in zip(self.c, other.c)])

    __radd__ = __add__

    def __neg__(self):
        return Taylor(self.degree, [-x for x in self.c])

    def __sub__(self, other):
        return self + -other

    def __rsub__(self, other):
        return -self + other

    def __mul__(self, other):
        if not isinstance(other, Taylor):
            return Taylor(self.degree, [x * other for x in self.c])
        degree = min(self.degree, other.degree)
        a, b = self.c, other.c
        c = []
        for k in range(LENGTH[degree]):
            total = mpf(0)
            for i, j in PRODUCTS[k]:
                if a[i] and b[j]:
                    total += a[i] * b[j]
            c.append(total)
        return Taylor(degree, c)

    __rmul__ = __mul__

    def of(self, derivatives):
        """f(self) from f and its derivatives at the value: f, f', f'', ..."""
        rest = Taylor(self.degree, [mpf(0)] + self.c[1:])
        result = Taylor.constant(derivatives[0], self.degree)
        power = rest
        for k in range(1, self.degree + 1):
            result += power * (derivatives[k] / math.factorial(k))
            if k < self.degree:
                power = power * rest
        return result

    def __truediv__(self, other):
        return self * (other ** -1 if isinstance(other, Taylor) else 1 / mpf(other))

    def __rtruediv__(self, other):
        return self ** -1 * other

    def __pow__(self, n):
        n = mpf(n)
        derivatives = []
        factor = mpf(1)
        for k in range(self.degree + 1):
            derivatives.append(factor * self.value ** (n - k) if factor else mpf(0))
            factor *= n - k
        return self.of(derivatives)


def log(x):
    if not isinstance(x, Taylor):
        return mp.log(x)
    inverse = 1 / x.value
    derivatives = [mp.log(x.value), inverse]
    for k in range(1, x.degree):
        derivatives.append(derivatives[-1] * -k * inverse)
    return x.of(derivatives)


def exp(x):
    return x.of([mp.exp(x.value)] * (x.degree + 1)) if isinstance(x, Taylor) else mp.exp(x)


def sqrt(x):
    return x ** mpf("0.5")


class Inputs:
    """Everything that a result depends on: named values, which are exact doubles, the constants in a formula, and
    intermediate results whose rounding the inputs do not show. Each of them can be changed by a small step."""

    def __init__(self, values, changed=None):
        self.values = values
        self.changed = changed
        self.used = []

    def _register(self, name, value):
        if not value:
            return value
        if name not in self.used:
            self.used.append(name)
        return value * (1 + STEP) if name == self.changed else value

    def __getitem__(self, name):
        return self._register(name, mpf(self.values[name]))

    def list(self, name, first=0, last=None):
        return [self._register(f"{name}({first + k})", mpf(value))
                for k, value in enumerate(self.values[name][first:last])]

    def constant(self, text):
        return self._register(text, mpf(text))

    def rounded(self, name, value):
        return self._register(name, value)


def sensitivities(evaluate, values):
    """The list of numbers that evaluate(Inputs) gives, and for the name of each input x the list of x dX/dx."""
    inputs = Inputs(values)
    base = evaluate(inputs)
    slopes = {}
    for name in inputs.used:
        moved = evaluate(Inputs(values, name))
        slopes[name] = [(y - x) / STEP for x, y in zip(base, moved)]
    return base, slopes


def scales(base, slopes):
    """The magnitude by which an error of one rounding of everything is judged."""
    return [abs(x) + sum(abs(slope[k]) for slope in slopes.values()) for k, x in enumerate(base)]
