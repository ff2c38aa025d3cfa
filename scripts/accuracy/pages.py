# SPDX-License-Identifier: MIT
"""Writes the pages: Accuracy.md and Catalogue.md as a whole, and the tables of Choosing-a-model.md, each between two
comments. Nothing is computed here."""
import re
import textwrap

from accuracy.facts import (CHOICES, FLUIDS, MODEL_NAMES, QUANTITIES, ROOT, SATURATING, TABLE, TRANSLATED, VAPOR_BRANCH,
                            VOLUME_MODELS, columns, columns_of_models, conductivity_remark, dense_places,
                            heat_capacity_from_equation, other_critical_points, places, source_counts)
from accuracy.measure import LINE_TEMPERATURES, NEIGHBOURS, SEARCH_FRACTIONS, SEARCH_ISOTHERMS, SEARCH_PAIRS

FOLDER = ROOT / "Documentation"
PLACES, DENSE_PLACES = places(), dense_places()
BAND = 2  # per cent, the half of the grey band in every panel of the pictures
HOPELESS = 1000  # per cent; with a larger median a model has no panel


def digits(value, count):
    """A number with some significant digits, without an exponent."""
    text = f"{value:.{count}g}"
    return f"{float(text):.0f}" if "e+" in text else text


def table(head, rows):
    lines = ["".join(f"| {cell} " if cell else "| " for cell in cells) + "|\n" for cells in (head, *rows)]
    return "".join([lines[0], "|---" * len(head), "|\n", *lines[1:]])


def filled(text):
    """Paragraphs with lines of 120 characters. Headings and lists stay as they are."""
    paragraphs = [paragraph if paragraph[0] in "#-" else
                  textwrap.fill(paragraph, 120, break_long_words=False, break_on_hyphens=False)
                  for paragraph in text.strip().split("\n\n")]
    return "\n\n".join(paragraphs) + "\n"


def sentence(text):
    return text[0].upper() + text[1:]


def listed(words):
    words = list(words)
    return " and ".join(filter(None, (", ".join(words[:-1]), words[-1])))


# Accuracy.md

ACCURACY_HEAD = """# Accuracy

How far the models are from reference equations of state, for {fluids} fluids. `scripts/accuracy_report` makes this page
from the facts in `Fluids/` and the tables in `Documentation/Reference`. [Choosing-a-model.md](Choosing-a-model.md) says
what follows from it.

{scope}

Deviations are (ours / reference - 1) in per cent. Cells show the mean and the largest size over the states, and in
brackets how many states answered, where not all did. "–": none did. The answers are those of [handles](Handles.md) with
stable states: `ostrel_fluid_saturation` by t, and "pt" for the other states. Where the reference is a vapor and the
model already a liquid, the state counts as not answered. What [the entry points](#through-the-entry-points) answer
otherwise has a table of its own.

The models: {models} (Z is the mean over the vapor states). "translated" means the option `volume=translated`, which
{translated} have. It does not change saturation pressures, enthalpies of vaporisation and heat capacities. "mh vapor"
means `states=metastable; phase=vapor`, a vapor also where the stable state of the model is a liquid.

Liquids are compared on the saturation line, and supercritical states above it. The reference tables have no compressed
liquid below the critical temperature.

In the pictures each model has a panel with its own scale; translated volumes have panels on the saturation line. A
model has no panel if fewer than half of the fluids answer at half of their states, or if its median is above {hopeless}
%. The grey band is {band} % wide on each side of zero in every panel. Grey lines without a name are the other fluids.
Single-phase states are shown at the highest pressure of each isotherm of vapor and gas, 0.97 of the saturation pressure
below Tc and 0.8 Pc above, unless the model has a liquid there. A line that leaves its panel goes far beyond all others.

## Summary

The median over the fluids of the mean deviation, in per cent: half of the fluids are worse. In brackets is the share of
the states that answered, where not all did. "–": fewer than half of the fluids answer at half of their states.
"""


def scope():
    """What the constants of the fluids come from."""
    (rows, points, curves), (compared, _, compared_curves) = source_counts()
    heat = sum(heat_capacity_from_equation(TABLE[fluid]) for fluid in FLUIDS.values())
    others = ", ".join(f"{tag} ({count})" for tag, count in other_critical_points())
    return (f"These fluids are favourable cases: the critical points and the acentric factors of {compared_curves} of "
            f"the {compared} come from reference equations of state, and the heat capacities of {heat} are fitted to "
            f"them; nothing else is fitted to them. Of the {rows} rows of `Fluids/fluids.csv`, {points} have a "
            f"critical point from a reference equation, and {curves} an acentric factor from it, too. The other "
            f"{rows - points} critical points come from {others}; [Fluids/README.md](../Fluids/README.md) explains "
            "these tags. The errors of such constants add to those on this page.")


def mean_and_largest(comparison, key, fluid, model):
    asked, points = comparison.asked(key, fluid, model), comparison.answered(key, fluid, model)
    if not asked:
        return ""
    if not points:
        return "–"
    text = f"{digits(comparison.mean(key, fluid, model), 3)} / "
    text += digits(abs(comparison.largest(key, fluid, model).deviation), 3)
    return text if len(points) == len(asked) else f"{text} ({len(points)} of {len(asked)})"


def fluids_table(comparison, quantity):
    models = columns(quantity.region, quantity.of_volume)
    rows = [(fluid, *(mean_and_largest(comparison, quantity.key, fluid, model) for model in models))
            for fluid in FLUIDS.values() if any(comparison.asked(quantity.key, fluid, model) for model in models)]
    return table(("fluid", *models), rows)


def median_and_share(comparison, key, model):
    median = comparison.median(key, model)
    if median is None:
        return "–"
    answered, asked = comparison.counts(key, model)
    return digits(median, 3) + (f" ({100 * answered / asked:.0f} %)" if answered < asked else "")


def region_summaries(cells, columns_of, wanted=lambda texts: True):
    """For each region its heading and its table of cells(key, column). Only rows whose texts are wanted stay."""
    parts = []
    for region, place in PLACES.items():
        models = columns_of(region)
        rows = [(f"{quantity.title}{f' ({quantity.remark})' if quantity.remark else ''}",
                 *(cells(quantity.key, model) for model in models))
                for quantity in QUANTITIES if quantity.region == region]
        rows = [row for row in rows if wanted(row[1:])]
        if rows:
            parts += [f"{sentence(place)}:\n", table(("quantity", *models), rows)]
    return parts


ENTRY_POINTS_HEAD = """
## Through the entry points

The same medians for the entry points, with saturation by "tq" and the other states by "pt" from the default first
values. Cells and rows that would say the same as those above are left out. Phases whose densities differ by less than
1.5 times count as not answered. Thermal conductivity: {conductivity}.
[Choosing-a-model.md](Choosing-a-model.md#entry-points) says what follows for hosts of the entry points.
"""


def accuracy(handles, entry_points):
    names = ", ".join(f"{model} {name}" for model, name in MODEL_NAMES.items())

    def other_text(key, model):
        text = median_and_share(entry_points, key, model)
        return text if text != median_and_share(handles, key, model) else ""
    parts = [filled(ACCURACY_HEAD.format(fluids=len(FLUIDS), scope=scope(), models=names, band=BAND, hopeless=HOPELESS,
                                         translated=listed(VOLUME_MODELS)))]
    parts += region_summaries(lambda key, model: median_and_share(handles, key, model), columns)
    parts.append(filled(ENTRY_POINTS_HEAD.format(conductivity=conductivity_remark())))
    parts += region_summaries(other_text, columns_of_models, any)
    for title, picture, quantities in sections():
        parts.append(f"## {title}\n")
        if quantities[0].remark:
            parts.append(f"{sentence(quantities[0].remark)}.\n")
        parts.append(f"![{title}: deviation over reduced temperature](Accuracy/{picture})\n")
        for quantity in quantities:
            parts += [f"{sentence(PLACES[quantity.region])}:\n", fluids_table(handles, quantity)]
    return "\n".join(parts)


def sections():
    """(title, name of the picture, quantities) of each section of Accuracy.md."""
    for title in dict.fromkeys(quantity.title for quantity in QUANTITIES):
        quantities = [quantity for quantity in QUANTITIES if quantity.title == title]
        yield title, f"{quantities[0].key.split()[0]}.svg", quantities


# Catalogue.md

CATALOGUE_HEAD = """# Catalogue

The {count} fluids of `Fluids/` that come from the table, and what each equation of state does for them, made by
`scripts/accuracy_report`. All load under all eight models: the last digits of Pc are chosen so. The signs are those of
the entry points; handles have [more saturated states](#saturation-lines-of-handles). In the columns:

- **s** saturation: "tq" at 0.7 and 0.9 Tc has a liquid more than twice as dense as the vapor;
- **=** the saturation table stands, but its phases are equal or nearly so at one of them;
- **-** there is no saturated state at one of them: no table, out of its range, or the search failed;
- **?** behind a sign of pr: rounding decides. With another tenth digit of Pc, up to {neighbours} away, with which the
  fluid loads, the sign is another one.

{defaults} the default. p_sat at Tb is the default model's saturation pressure at the true normal boiling temperature
over 101325 Pa, less 1, in per cent: {good} of {asked} fluids are within {limit} % (empty: the fluid sublimes). This is
a test only for the {tested} fluids whose acentric factor comes from a reference equation, {passed} of which pass. For
the others [the rule for Tb](../Fluids/README.md#where-the-files-come-from) sees to it that the deviation is below
{limit} %.
"""

LINES_HEAD = """## Saturation lines of handles

How many of the {count} fluids have saturated states, by the option `model` and by T/Tc. Where a line ends is explained
in [Handles.md](Handles.md#where-saturation-lines-end).

"""
SEARCH_HEAD = """## What the searches find

Through the entry points, of {fluids} fluids under their default models, in per cent: how many find the state by "ph",
"ps" and "hs" from the default first values, at a temperature and a fraction of the saturation pressure or of Pc. What
is missing to 100 fails with a message or, worse, answers another state with the same two values, of liquid density or
denser: ask for a second output where that would matter, or use "pt". Handles find {found} of the {asked} such states of
all {count} fluids.

"""
FLUIDS_HEAD = "## Fluids\n\n"


def lines_section(answers):
    rows = [(model, *map(str, answers.with_line(model))) for model in SATURATING]
    head = filled(LINES_HEAD.format(count=len(answers.rows)))
    return head + "\n" + table(("", *map(str, LINE_TEMPERATURES)), rows) + "\n"


def searches(shares, fluids, found, asked):
    """The section on the searches: the shares of some fluids by the entry points, the states that handles find of those
    that were asked for."""
    rows = [(f"{T}, of {of}" if pair == SEARCH_PAIRS[0] else "", pair, *(f"{share:.0f}" for share in by_fraction))
            for (T, of), by_pair in zip(SEARCH_ISOTHERMS, shares) for pair, by_fraction in zip(SEARCH_PAIRS, by_pair)]
    head = filled(SEARCH_HEAD.format(fluids=fluids, found=found, asked=asked, count=len(CHOICES)))
    return head + "\n" + table(("T/Tc", "pair", *map(str, SEARCH_FRACTIONS)), rows) + "\n"


def catalogue(answers, search_section):
    """The page of figures.Catalogue."""
    values = answers.at_Tb()
    beyond = {fluid for _, fluid in answers.beyond(values)}
    tested = answers.at_Tb(answers.groups()["equation"])
    defaults = sorted({MODEL_NAMES[row["default"]] for row in answers.rows})
    rows = [{key: f"**{value}**" if key.startswith("p_sat") and row["file"] in beyond else value
             for key, value in row.items()} for row in answers.rows]
    head = filled(CATALOGUE_HEAD.format(
        count=len(rows), defaults=f"{listed(defaults)} {'is' if len(defaults) == 1 else 'are'}", asked=len(values),
        good=answers.within(values), limit=answers.LIMIT, neighbours=NEIGHBOURS, tested=len(tested),
        passed=answers.within(tested)))
    head += "\n" + lines_section(answers) + search_section + FLUIDS_HEAD
    return head + table(rows[0].keys(), (row.values() for row in rows))


def catalogue_rows(page):
    """The rows of measure.catalogue(), read back from the page."""
    head, _, *rows = [line.strip("|").split("|") for line in page.split(FLUIDS_HEAD)[1].splitlines()]
    return [dict(zip(map(str.strip, head), (cell.strip().strip("*") for cell in row))) for row in rows]


def catalogue_searches(page):
    """The section on the searches, read back from the page."""
    return page[page.index(SEARCH_HEAD.split("\n")[0]):page.index(FLUIDS_HEAD)]


# Choosing-a-model.md

def per_cent(value):
    return f"{digits(value, 2)} %"


def titles(region):
    return {quantity.key: quantity.title for quantity in QUANTITIES if quantity.region == region}


def at_place(point):
    return f"{digits(point.Tr, 3)} Tc" + (f", {digits(point.pr, 2)} Pc" if point.pr else "")


def saturation_block(comparison, *_):
    rows, best, others = [], ("pr", "srk"), ("rk", "cii", "vdw")
    for key in ("psat", "dv", "hvap", "cpl"):
        worst = (comparison.worst_point(key, model) for model in best)
        rows.append((titles("saturation")[key],
                     *(median_and_worst(comparison, key, model) for model in (*best, *others)),
                     *(f"{digits(point.deviation, 2)} ({fluid}, {at_place(point)})" for point, fluid in worst),
                     ", ".join(comparison.worse_than(key, *best)) or "none"))
    head = ("", *best, *others, *(f"{model}: largest at one state" for model in best), "pr is worse than srk for")
    return f"{sentence(PLACES['saturation'])}:\n\n" + table(head, rows)


def at_pressure(comparison, pressure):
    return comparison.only(lambda point: point.pr == pressure)


WARM = 0.9  # T/Tc above which the volumes of saturated liquids are worst
WITH_TRANSLATED = [column for model in ("pr", "srk", "rk") for column in (model, TRANSLATED[model])]


def liquid_block(comparison, *_):
    rows = []
    for words, low, high in ((f"below {WARM} Tc", 0, WARM), (f"from {WARM} Tc", WARM, 1)):
        part = comparison.only(lambda point, low=low, high=high: low <= point.Tr < high)
        rows += [(f"{titles('saturation')[key]}, {words}",
                  *(median_and_worst(part, key, model) for model in WITH_TRANSLATED))
                 for key in ("dl", "wl", "etal", "lambdal")]
    for pressure, place in DENSE_PLACES.items():
        part = at_pressure(comparison, pressure)
        rows.append((f"Density, {place}", *(median_and_worst(part, "d dense", model) for model in WITH_TRANSLATED)))
    return table(("", *WITH_TRANSLATED), rows)


def boiling_block(_, answers, __):
    words = {"equation": "critical point and acentric factor from a reference equation",
             "fitted": "Tb of the file fitted to the boiling temperature with srk", "other": "all others"}
    rows = []
    for group, fluids in answers.groups().items():
        for model in ("pr", "srk"):
            values = answers.model_at_Tb(model, fluids)
            beyond = ", ".join(f"{fluid} {digits(value, 2)}" for value, fluid in answers.beyond(values))
            rows.append((words[group] if model == "pr" else "", str(len(values)) if model == "pr" else "", model,
                         per_cent(answers.median_size(values)), str(answers.within(values)), beyond or "none"))
    head = ("constants of the fluid", "fluids", "", "median", f"within {answers.LIMIT} %", "beyond, in per cent")
    return table(head, rows)


def median_and_worst(comparison, key, model, with_models=()):
    median = comparison.median(key, model, with_models)
    if median is None:
        return "–"
    mean, fluid = comparison.worst_mean(key, model, with_models)
    return f"{digits(median, 2)} ({digits(mean, 2)} {fluid})"


def region_table(comparison, region, models, keys, more=(), place=None):
    """A row for each quantity, a column for each model, and columns of more figures: (heading, function of the key)."""
    rows = [(title, *(median_and_worst(comparison, f"{key} {region}", model) for model in models),
             *(function(f"{key} {region}") for _, function in more))
            for key, title in ((key, titles(region)[f"{key} {region}"]) for key in keys)]
    return f"{sentence(place or PLACES[region])}:\n\n" + table(("", *models, *(heading for heading, _ in more)), rows)


THERMODYNAMIC = ("d", "h", "cp", "w", "gamma")
TRANSPORT = ("eta", "lambda")


def mh_worse(comparison, mh):
    return f"{mh} is worse than srk for", lambda key: ", ".join(comparison.worse_than(key, mh, "srk")) or "none"


def vapor_block(comparison, *_):
    models = ("pr", TRANSLATED["pr"], "srk", TRANSLATED["srk"])
    (stable, asked), (branch, _) = (comparison.counts("d vapor", model) for model in ("mh", VAPOR_BRANCH))
    return "\n".join([*(region_table(comparison, region, (*models, mh), THERMODYNAMIC, [mh_worse(comparison, mh)])
                        for region, mh in (("vapor", VAPOR_BRANCH), ("gas", "mh"))),
                      filled(f"\"{VAPOR_BRANCH}\" is mh with `states=metastable; phase=vapor`, which has {branch} of "
                             f"the {asked} vapor states. With stable states mh has {stable}; at the others it is "
                             "a liquid.")])


def dense_block(comparison, *_):
    parts = []
    for pressure, place in DENSE_PLACES.items():
        part = at_pressure(comparison, pressure)
        parts.append(region_table(part, "dense", ("pr", "pr translated", "srk", "srk translated", "mh"),
                                  THERMODYNAMIC, [mh_worse(part, "mh")], f"supercritical, {place}"))
    return "\n".join(parts)


def transport_block(comparison, *_):
    return "\n".join(region_table(comparison, region, ("pr", "pr translated", "srk", "mh", "ig"), TRANSPORT)
                     for region in ("vapor", "gas", "dense"))


def ideal_block(comparison, *_):
    rows = []
    for region in ("vapor", "gas"):
        for model in ("ig", "izg"):
            point, fluid = comparison.worst_point(f"d {region}", model)
            rows.append((model, PLACES[region], median_and_worst(comparison, f"d {region}", model),
                         f"{digits(point.deviation, 2)} % ({fluid}, {at_place(point)})"))
    return table(("", "states", "density", "largest at one state"), rows)


def cases_block(comparison, *_):
    cases = [("psat", "pr"), ("psat", "srk"), ("dl", "srk"), ("dl", "pr"), ("dl", "pr translated")]
    cases += [(f"d {region}", model) for region, models in (
        ("vapor", ("pr", "srk", VAPOR_BRANCH)), ("gas", ("srk", "mh")), ("dense", ("pr", "mh"))) for model in models]
    names = {"psat": "vapor pressure", "dl": "saturated liquid"}
    head = ["", *(f"{names.get(key) or 'density, ' + key.split()[1]}: {model}" for key, model in cases)]
    rows = [(fluid, *(mean_and_largest(comparison, key, fluid, model) for key, model in cases))
            for fluid in ("toluene", "water", "ammonia", "co2", "mdm", "r134a")]
    return table(head, rows)


def tables_block(_, answers, entry_points):
    count, uncertain = answers.with_sign("pr", "s")
    dense = {place: at_pressure(entry_points, pressure).counts("d dense", "mh")
             for pressure, place in DENSE_PLACES.items()}
    return filled(f"With pr, {count} of {len(answers.rows)} fluids have two distinct phases at 0.7 and 0.9 Tc, and for "
                  f"{uncertain} of these rounding decides. With mh {answers.with_sign('mh', 's')[0]} have, with srk "
                  f"{answers.with_sign('srk', 's')[0]}. Of the supercritical states, mh answers "
                  + listed(f"{answered} of {asked} at {place}" for place, (answered, asked) in dense.items()) + ".")


def lines_block(_, answers, __):
    with_line = answers.with_line("mh")
    at = ", ".join(f"{count} at {T} Tc" for T, count in zip(LINE_TEMPERATURES, with_line))
    return filled(f"Of {len(answers.rows)} fluids, so many have saturated states with mh: {at}.")


def scope_block(*_):
    return filled(scope())


BLOCKS = {"scope": scope_block, "saturation": saturation_block, "boiling": boiling_block, "liquid": liquid_block,
          "lines": lines_block, "vapor": vapor_block, "dense": dense_block, "transport": transport_block,
          "ideal": ideal_block, "tables": tables_block, "cases": cases_block}
BLOCK = re.compile(r"(<!-- scripts/accuracy_report: (\w+) -->\n).*?(<!-- end -->\n)", re.S)


def choosing(page, handles, entry_points, answers):
    """The page with its tables made anew."""
    names = [name for _, name, _ in BLOCK.findall(page)]
    if sorted(names) != sorted(BLOCKS):
        raise ValueError(f"Choosing-a-model.md has the tables {names} and not {list(BLOCKS)}")
    return BLOCK.sub(lambda found: found[1] + BLOCKS[found[2]](handles, answers, entry_points) + found[3], page)
