# SPDX-License-Identifier: MIT
"""What the pages say of the answers, as numbers: means, medians, largest deviations and counts."""
import statistics

from accuracy.facts import CURVE, FLUIDS, TABLE, all_from_equations, boiling_point_fitted


class Comparison:
    """The deviations of measure.deviations(). `with_models` restricts a figure to the states at which these models
    answer, too, so that models can be compared at the same states."""

    def __init__(self, deviations):
        self._deviations = deviations

    def only(self, wanted):
        """The comparison of the points that are wanted."""
        return Comparison({key: {column: [point for point in points if wanted(point)]
                                 for column, points in columns.items()}
                           for key, columns in self._deviations.items()})

    def asked(self, key, fluid, model):
        """All points; none if the reference has no such number, or the model no such state."""
        return self._deviations[key].get((fluid, model), [])

    def answered(self, key, fluid, model, with_models=()):
        columns = [self.asked(key, fluid, other) for other in (model, *with_models)]
        return [row[0] for row in zip(*columns) if all(point.deviation is not None for point in row)]

    def mean(self, key, fluid, model, with_models=()):
        """The mean size of the deviations; None without an answer."""
        points = self.answered(key, fluid, model, with_models)
        return statistics.mean(abs(point.deviation) for point in points) if points else None

    def largest(self, key, fluid, model):
        """The point of the largest deviation."""
        return max(self.answered(key, fluid, model), key=lambda point: abs(point.deviation))

    def fluids(self, key, model, with_models=()):
        """Those that answer at half of their states or more."""
        return [fluid for fluid in FLUIDS.values() if self.asked(key, fluid, model) and
                2 * len(self.answered(key, fluid, model, with_models)) >= len(self.asked(key, fluid, model))]

    def median(self, key, model, with_models=()):
        """The median of the fluids' means; None if fewer than half of the fluids answer at half of their states."""
        fluids = self.fluids(key, model, with_models)
        if 2 * len(fluids) < len(FLUIDS):
            return None
        return statistics.median(self.mean(key, fluid, model, with_models) for fluid in fluids)

    def worst_mean(self, key, model, with_models=()):
        """The largest mean and its fluid."""
        return max((self.mean(key, fluid, model, with_models), fluid) for fluid in self.fluids(key, model, with_models))

    def worst_point(self, key, model):
        """The point of the largest deviation of all fluids and its fluid."""
        return max(((self.largest(key, fluid, model), fluid) for fluid in self.fluids(key, model)),
                   key=lambda pair: abs(pair[0].deviation))

    def counts(self, key, model):
        """The numbers of the states that answered and of those that were asked."""
        return tuple(sum(len(points(key, fluid, model)) for fluid in FLUIDS.values())
                     for points in (self.answered, self.asked))

    def worse_than(self, key, model, other):
        """The fluids whose mean is larger under the model than under the other one, at the states that both answer."""
        return [fluid for fluid in self.fluids(key, model, (other,))
                if self.mean(key, fluid, model, (other,)) > self.mean(key, fluid, other, (model,))]


class Catalogue:
    """The rows of measure.catalogue(), and measure.lines()."""
    LIMIT = 3  # per cent, as in scripts/choose_fluids.py

    def __init__(self, rows, lines):
        self.rows, self._lines = rows, lines

    def with_line(self, model):
        """For each of measure.LINE_TEMPERATURES, how many fluids have saturated states there through handles."""
        return [sum(column) for column in zip(*(self._lines[row["file"], model][0] for row in self.rows))]

    def model_at_Tb(self, model, fluids):
        """{fluid: deviation of the handle's saturation pressure at Tb} of those of the fluids that answer."""
        values = {fluid: self._lines[fluid, model][1] for fluid in fluids}
        return {fluid: value for fluid, value in values.items() if value is not None}

    def with_sign(self, model, sign):
        """How many fluids have a sign under a model, and with how many of them a neighbouring Pc has another one."""
        signs = [row[model] for row in self.rows if row[model][0] == sign]
        return len(signs), sum("?" in text for text in signs)

    def at_Tb(self, fluids=None):
        """{fluid: deviation of the saturation pressure at Tb} of the fluids that answer."""
        values = {row["file"]: row["p_sat at Tb, %"] for row in self.rows}
        return {fluid: float(value) for fluid, value in values.items()
                if value not in ("", "no answer") and (fluids is None or fluid in fluids)}

    def median_size(self, values):
        return statistics.median(map(abs, values.values()))

    def within(self, values):
        return sum(abs(value) <= self.LIMIT for value in values.values())

    def beyond(self, values):
        """(deviation, fluid) of those beyond the limit, the furthest first."""
        return sorted(((value, fluid) for fluid, value in values.items() if abs(value) > self.LIMIT),
                      key=lambda pair: -abs(pair[0]))

    def groups(self):
        """The fluids whose curve comes from a reference equation, those whose Tb was fitted, and the others."""
        groups = {"equation": [], "fitted": [], "other": []}
        for row in self.rows:
            fluid = row["file"]
            equation = all_from_equations(TABLE[fluid], CURVE)
            groups["fitted" if boiling_point_fitted(fluid) else "equation" if equation else "other"].append(fluid)
        return groups


def search_shares(found):
    """The share of fluids in per cent by isotherm, pair and fraction, of the answers of measure.searches()."""
    return [[[100 * sum(answers) / len(found) for answers in zip(*pair)] for pair in zip(*isotherm)]
            for isotherm in zip(*found)]
