// SPDX-License-Identifier: MIT
#include "CommandLine/picture.h"

#include "CommandLine/command.h"
#include "CommandLine/report.h"
#include "CommandLine/suggestions.h"

#ifdef OSTREL_WITH_CAIRO
#include "CommandLine/drawing.h"
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fstream>
#include <system_error>
#include <utility>

namespace command {

const studies::diagram_kind &diagram_kind_of(const std::string &argument, const std::string &name) {
    if (const auto *const kind = studies::diagram_kind_named(name))
        return *kind;
    std::vector<std::string> names;
    for (const studies::diagram_kind &one : studies::diagram_kinds())
        names.emplace_back(one.name);
    const std::string meant = did_you_mean(name, names);
    throw wrong_argument(argument + ": \"" + printable(name) + "\" is not a diagram. " +
                         (meant.empty() ? "" : meant + ' ') + "There are " + joined(names, ", ", " and "));
}

#ifdef OSTREL_WITH_CAIRO

namespace {

drawing::format format_of(const std::string &argument, const std::string &path) {
    constexpr std::pair<std::string_view, drawing::format> formats[] = {
        {".svg", drawing::format::svg}, {".pdf", drawing::format::pdf}, {".png", drawing::format::png}};
    for (const auto &[ending, format] : formats)
        if (path.size() > ending.size() && path.ends_with(ending))
            return format;
    throw wrong_argument(argument + ": \"" + printable(path) + "\"" + " does not end with .svg, .pdf or .png");
}

std::string model_of(const ostrel::fluid &fluid) {
    for (const ostrel::row &one : ostrel::list(ostrel::kind::models))
        if (one.name == fluid.text("model"))
            return std::string(one.description);
    return std::string(fluid.text("model"));
}

/// What limits the diagram.
std::string limits_of(const ostrel::fluid &fluid, const std::vector<drawing::layer> &layers,
                      studies::unit_system units) {
    std::string text;
    for (const drawing::layer &layer : layers)
        if (const std::string begin = studies::beginning_of(layer.curves, units); !begin.empty())
            text += (text.empty() ? "" : " ") + (layers.size() > 1 ? layer.name + ": " : "") + begin + ".";
    text = studies::capitalised(std::move(text));
    if (const std::string caloric = studies::extrapolation_of(fluid, layers.front().curves, units); !caloric.empty())
        text += (text.empty() ? "" : " ") + caloric;
    return text;
}

void write_file(const std::string &path, const std::string &bytes) {
    errno = 0;
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream)
        throw failure(printable(path) + " cannot be written: " + std::generic_category().message(errno));
}

/// Makes the axes reach to all states.
void widen(studies::axis_range &range, double value, bool logarithmic) {
    if (std::isnan(value) || (value >= range.low && value <= range.high))
        return;
    constexpr double margin = 0.05;
    const double room = logarithmic ? std::pow(range.high / range.low, margin) : margin * (range.high - range.low);
    if (value < range.low)
        range.low = logarithmic ? value / room : value - room;
    else
        range.high = logarithmic ? value * room : value + room;
}

/// The curves of each fluid, with the same axes and the same isolines.
std::vector<studies::diagram> curves_of(const std::vector<const ostrel::fluid *> &fluids,
                                        studies::diagram_request wanted) {
    if (fluids.size() > 1) {
        std::array<studies::axis_range, 2> ranges = studies::diagram_ranges(*fluids.front(), wanted);
        for (const ostrel::fluid *const fluid : fluids) {
            const auto other = studies::diagram_ranges(*fluid, wanted);
            for (std::size_t i = 0; i < 2; ++i)
                ranges[i] = {std::min(ranges[i].low, other[i].low), std::max(ranges[i].high, other[i].high)};
        }
        wanted.x = ranges[0];
        wanted.y = ranges[1];
    }
    std::vector<studies::diagram> curves;
    for (const ostrel::fluid *const fluid : fluids) {
        curves.push_back(studies::make_diagram(*fluid, wanted));
        if (curves.size() == 1)
            for (const studies::isoline &line : curves.front().lines)
                wanted.values[static_cast<std::size_t>(line.what)].push_back(line.value);
    }
    return curves;
}

} // namespace

void check_picture_name(const std::string &argument, const std::string &path) {
    format_of(argument, path);
}

void write_picture(const picture_request &asked, const std::vector<const ostrel::fluid *> &fluids) {
    const ostrel::fluid &first = *fluids.front();
    const studies::diagram_kind &kind = *asked.curves.kind;
    const drawing::format format = format_of("--output", asked.path);
    drawing::content content{
        .title = asked.title, .units = asked.curves.units, .width = asked.width, .height = asked.height};
    if (content.title.empty())
        content.title = std::string(first.text("name")) + ", " + std::string(studies::text_of(kind.y).symbol) + "-" +
                        std::string(studies::text_of(kind.x).symbol) + " diagram" +
                        (fluids.size() == 1 ? ", " + model_of(first) : "");
    for (const studies::overlay &one : asked.states)
        content.states.push_back(drawing::projected(first, kind, one));
    try {
        studies::diagram_request wanted = asked.curves;
        if (asked.show_states) {
            std::array<studies::axis_range, 2> ranges = studies::diagram_ranges(first, wanted);
            for (const drawing::marked_states &one : content.states)
                for (const studies::diagram_point &point : one.points) {
                    widen(ranges[0], point.x, studies::text_of(kind.x).logarithmic);
                    widen(ranges[1], point.y, studies::text_of(kind.y).logarithmic);
                }
            wanted.x = wanted.x ? wanted.x : ranges[0];
            wanted.y = wanted.y ? wanted.y : ranges[1];
        }
        std::vector<studies::diagram> curves = curves_of(fluids, wanted);
        for (std::size_t i = 0; i < fluids.size(); ++i)
            content.layers.push_back({model_of(*fluids[i]), std::move(curves[i])});
        content.notes = limits_of(first, content.layers, wanted.units);
        write_file(asked.path, drawing::draw(content, format).bytes);
    } catch (const studies::no_diagram &reason) {
        throw failure(reason.what());
    } catch (const drawing::drawing_failed &reason) {
        throw failure(reason.what());
    }
}

#else

void check_picture_name(const std::string &, const std::string &) {}

void write_picture(const picture_request &, const std::vector<const ostrel::fluid *> &) {
    throw failure("this build has no Cairo, and so cannot draw");
}

#endif

} // namespace command
