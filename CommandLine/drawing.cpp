// SPDX-License-Identifier: MIT
#include "CommandLine/drawing.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <optional>

namespace drawing {
namespace {

using studies::diagram_point;
using studies::polyline;
using studies::property;

constexpr double infinity = std::numeric_limits<double>::infinity();

struct color {
    double red;
    double green;
    double blue;
};
constexpr color color_of(unsigned code) {
    return {(code >> 16U & 255U) / 255.0, (code >> 8U & 255U) / 255.0, (code & 255U) / 255.0};
}
constexpr color black = color_of(0x000000);
constexpr color white = color_of(0xFFFFFF);
constexpr color grid_color = color_of(0xE9E9E9);
constexpr color note_color = color_of(0x555555);
constexpr color states_color = color_of(0xC2185B);
/// In the order of studies::property.
constexpr color line_colors[] = {color_of(0xB5372B), color_of(0x1F5FA8), color_of(0x2E7D32),
                                 color_of(0x7A3E9D), color_of(0xB8660B), color_of(0x777777)};
/// Colors that remain different for people who see few.
constexpr color layer_colors[] = {color_of(0x0072B2), color_of(0xD55E00), color_of(0x009E73), color_of(0xCC79A7),
                                  color_of(0x8C6D00), color_of(0x56B4E9), color_of(0x444444), color_of(0x7F3C8D)};

/// The bytes as UTF-8: what is not, is taken as Latin-1. Control characters become ?.
std::string utf8(std::string_view text) {
    std::string result;
    const auto follows = [&](std::size_t at) { return at < text.size() && (text[at] & 0xC0) == 0x80; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const std::size_t length = byte < 0x80                   ? 1
                                   : byte >= 0xC2 && byte < 0xE0 ? 2
                                   : byte >= 0xE1 && byte < 0xED ? 3
                                                                 : 0;
        bool whole = length > 0;
        for (std::size_t k = 1; k < length; ++k)
            whole = whole && follows(i + k);
        if (byte < 0x20 || byte == 0x7F) {
            result += '?';
        } else if (whole) {
            result += text.substr(i, length);
            i += length - 1;
        } else {
            result += static_cast<char>(0xC0U | byte >> 6U);
            result += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return result;
}

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

/// A unit as books write it.
std::string pretty_unit(std::string_view unit) {
    return replaced(replaced(replaced(std::string(unit), "degC", "°C"), "m3", "m³"), "(kg K)", "(kg K)");
}

/// 10⁻⁵
std::string power_of_ten(int exponent) {
    constexpr std::string_view raised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    std::string text = exponent < 0 ? "10⁻" : "10";
    for (const char digit : std::to_string(std::abs(exponent)))
        text += raised[digit - '0'];
    return text;
}

/// A round number: 0.05, −200, 2·10⁻⁵
std::string short_number(double value) {
    std::array<char, 40> digits{};
    constexpr int precision = 6;
    const char *const end = std::to_chars(digits.data(), digits.data() + digits.size(), value == 0 ? 0 : value,
                                          std::chars_format::general, precision)
                                .ptr;
    std::string text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    const std::size_t exponent = text.find('e');
    if (exponent != std::string::npos) {
        int power = 0;
        const std::size_t sign = text[exponent + 1] == '+' ? 2 : 1;
        std::from_chars(text.data() + exponent + sign, text.data() + text.size(), power);
        const std::string mantissa = text.substr(0, exponent);
        text = (mantissa == "1" ? "" : mantissa + "·") + power_of_ten(power);
    }
    return replaced(std::move(text), "-", "−");
}

struct closing {
    void operator()(cairo_t *context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_font_options_t *options) const { cairo_font_options_destroy(options); }
};
using surface_pointer = std::unique_ptr<cairo_surface_t, closing>;

cairo_status_t append(void *bytes, const unsigned char *data, unsigned length) {
    static_cast<std::string *>(bytes)->append(data, data + length);
    return CAIRO_STATUS_SUCCESS;
}

surface_pointer surface_for(format as, double width, double height, std::string &bytes) {
    switch (as) {
    case format::svg: {
        surface_pointer surface(cairo_svg_surface_create_for_stream(append, &bytes, width, height));
        cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
        return surface;
    }
    case format::pdf: {
        surface_pointer surface(cairo_pdf_surface_create_for_stream(append, &bytes, width, height));
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
        return surface;
    }
    case format::png:
        break;
    }
    return surface_pointer(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width), static_cast<int>(height)));
}

/// Axes of a box, for the test whether two boxes are apart.
std::array<diagram_point, 2> directions(const label_box &box) {
    const auto between = [&](std::size_t a, std::size_t b) {
        return diagram_point{box.corners[b].x - box.corners[a].x, box.corners[b].y - box.corners[a].y};
    };
    return {between(0, 1), between(1, 2)};
}

template <class Points>
std::array<double, 2> extent(const Points &points, diagram_point along) {
    std::array<double, 2> ends = {infinity, -infinity};
    for (const diagram_point &point : points) {
        const double place = point.x * along.x + point.y * along.y;
        ends = {std::min(ends[0], place), std::max(ends[1], place)};
    }
    return ends;
}

template <class A, class B>
bool apart(const A &a, const B &b, diagram_point along) {
    const auto first = extent(a, along);
    const auto second = extent(b, along);
    return first[1] < second[0] || second[1] < first[0];
}

label_box box_around(diagram_point center, double width, double height, double angle, std::string text = {}) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    label_box box{std::move(text), {}};
    constexpr std::array<diagram_point, 4> signs = {{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};
    for (std::size_t i = 0; i < 4; ++i) {
        const double x = signs[i].x * width / 2;
        const double y = signs[i].y * height / 2;
        box.corners[i] = {center.x + c * x - s * y, center.y + s * x + c * y};
    }
    return box;
}

struct rectangle {
    double left;
    double top;
    double right;
    double bottom;
    bool contains(diagram_point at) const { return at.x >= left && at.x <= right && at.y >= top && at.y <= bottom; }
};

/// The part of a line between two points that is in a rectangle.
std::optional<std::array<diagram_point, 2>> clipped(diagram_point a, diagram_point b, const rectangle &in) {
    double from = 0;
    double to = 1;
    const auto cut = [&](double start, double step, double low, double high) {
        if (step == 0)
            return start >= low && start <= high;
        const double first = ((step > 0 ? low : high) - start) / step;
        const double last = ((step > 0 ? high : low) - start) / step;
        from = std::max(from, first);
        to = std::min(to, last);
        return from <= to;
    };
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    if (!cut(a.x, dx, in.left, in.right) || !cut(a.y, dy, in.top, in.bottom))
        return std::nullopt;
    return std::array<diagram_point, 2>{{{a.x + from * dx, a.y + from * dy}, {a.x + to * dx, a.y + to * dy}}};
}

/// The parts of a line that are in a rectangle.
std::vector<polyline> clipped(const polyline &line, const rectangle &in) {
    std::vector<polyline> parts;
    const auto same = [](diagram_point a, diagram_point b) { return a.x == b.x && a.y == b.y; };
    for (std::size_t i = 1; i < line.size(); ++i) {
        const auto seen = clipped(line[i - 1], line[i], in);
        if (!seen)
            continue;
        if (parts.empty() || !same(parts.back().back(), (*seen)[0]))
            parts.push_back({(*seen)[0]});
        parts.back().push_back((*seen)[1]);
    }
    return parts;
}

double distance(diagram_point a, diagram_point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

double length_of(const polyline &line) {
    double sum = 0;
    for (std::size_t i = 1; i < line.size(); ++i)
        sum += distance(line[i - 1], line[i]);
    return sum;
}

/// The point at a distance from the beginning of a line.
diagram_point along(const polyline &line, double at) {
    for (std::size_t i = 1; i < line.size(); ++i) {
        const double step = distance(line[i - 1], line[i]);
        if (at <= step && step > 0)
            return {line[i - 1].x + at / step * (line[i].x - line[i - 1].x),
                    line[i - 1].y + at / step * (line[i].y - line[i - 1].y)};
        at -= step;
    }
    return line.back();
}

/// One axis: from values in SI units to px, with its ticks.
struct axis {
    property what;
    studies::unit unit;
    double low; ///< [shown unit]
    double high;
    bool logarithmic;
    double from = 0; ///< px
    double to = 0;

    axis(property of, studies::axis_range range, studies::unit_system units)
        : what(of), unit(studies::shown_unit(studies::text_of(of).si, units)), low(studies::in_unit(range.low, unit)),
          high(studies::in_unit(range.high, unit)), logarithmic(studies::text_of(of).logarithmic) {}

    double place_of_shown(double value) const {
        const double part = logarithmic ? std::log(value / low) / std::log(high / low) : (value - low) / (high - low);
        return from + part * (to - from);
    }
    double place(double value) const { return place_of_shown(studies::in_unit(value, unit)); }

    std::vector<double> ticks(double room_for_label) const {
        const auto most = static_cast<std::size_t>(std::clamp(std::abs(to - from) / room_for_label, 2.0, 16.0));
        std::vector<double> values = studies::round_values(low, high, most, logarithmic);
        // A narrow logarithmic axis has too few round numbers.
        if (logarithmic && values.size() < 3)
            values = studies::round_values(low, high, most, false);
        return values;
    }
    std::vector<double> small_ticks() const {
        std::vector<double> values;
        if (!logarithmic || high / low > 1e8)
            return values;
        const int last = static_cast<int>(std::floor(std::log10(high)));
        for (int decade = static_cast<int>(std::floor(std::log10(low))); decade <= last; ++decade)
            for (int mantissa = 1; mantissa < 10; ++mantissa)
                if (const double value = mantissa * std::pow(10.0, decade); value > low && value < high)
                    values.push_back(value);
        return values;
    }
    std::string title() const {
        const studies::property_text &text = studies::text_of(what);
        return std::string(text.name) + " " + std::string(text.symbol) + " [" + pretty_unit(unit.name) + "]";
    }
};

/// An isoline on the picture.
struct drawn_line {
    const studies::isoline *of;
    std::vector<polyline> parts{};
    color paint{};
};

class page {
public:
    page(const content &what, format as)
        : what_(what), first_(what.layers.front().curves), x_(first_.kind->x, first_.x, what.units),
          y_(first_.kind->y, first_.y, what.units), surface_(surface_for(as, what.width, what.height, made_.bytes)),
          context_(cairo_create(surface_.get())) {
        made_.size = {what.width, what.height};
        scale_ = std::clamp(std::min(what.width / 1000, what.height / 700), 0.62, 2.2);
        const std::unique_ptr<cairo_font_options_t, closing> options(cairo_font_options_create());
        // Without hinting texts have the same extents in all formats.
        cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
        cairo_set_font_options(pen(), options.get());
        cairo_set_line_join(pen(), CAIRO_LINE_JOIN_ROUND);
        paint(white);
        cairo_paint(pen());
    }

    picture made(format as) && {
        lay_out();
        draw_axes();
        find_lines();
        cairo_save(pen());
        cairo_rectangle(pen(), frame_.left, frame_.top, frame_.right - frame_.left, frame_.bottom - frame_.top);
        cairo_clip(pen());
        draw_lines();
        draw_states();
        cairo_restore(pen());
        draw_marks();
        label_lines();
        draw_frame();
        made_.frame = {{{frame_.left, frame_.top}, {frame_.right, frame_.bottom}}};
        if (as == format::png)
            cairo_surface_write_to_png_stream(surface_.get(), append, &made_.bytes);
        cairo_status_t status = cairo_status(pen());
        cairo_surface_finish(surface_.get());
        if (status == CAIRO_STATUS_SUCCESS)
            status = cairo_surface_status(surface_.get());
        if (status != CAIRO_STATUS_SUCCESS)
            throw drawing_failed(cairo_status_to_string(status));
        return std::move(made_);
    }

private:
    cairo_t *pen() const { return context_.get(); }
    void paint(color with, double opacity = 1) const {
        cairo_set_source_rgba(pen(), with.red, with.green, with.blue, opacity);
    }
    diagram_point place(diagram_point at) const { return {x_.place(at.x), y_.place(at.y)}; }

    // ---- Texts

    enum class weight { normal, bold };
    void font(double size, weight with = weight::normal) const {
        cairo_select_font_face(pen(), "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                               with == weight::bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(pen(), size);
    }
    double width_of(const std::string &text) const {
        cairo_text_extents_t extents;
        cairo_text_extents(pen(), text.c_str(), &extents);
        return extents.x_advance;
    }
    /// Above and below the base line, without letters that reach lower than most.
    static constexpr double ascent = 0.76;
    static constexpr double descent = 0.24;

    /// Writes a text around a center; the box counts as one of the page's texts.
    void write(const std::string &text, diagram_point center, double size, double angle = 0) {
        const double width = width_of(text);
        made_.texts.push_back(box_around(center, width, size * (ascent + descent), angle, text));
        show(text, center, width, size, angle);
    }
    void show(const std::string &text, diagram_point center, double width, double size, double angle) const {
        cairo_save(pen());
        cairo_translate(pen(), center.x, center.y);
        cairo_rotate(pen(), angle);
        cairo_move_to(pen(), -width / 2, size * (ascent - descent) / 2 + size * 0.1);
        cairo_show_text(pen(), text.c_str());
        cairo_restore(pen());
    }
    void write_left(const std::string &text, double left, double middle, double size) {
        write(text, {left + width_of(text) / 2, middle}, size);
    }

    /// The words in lines that are not wider than the room.
    std::vector<std::string> lines_of(const std::string &text, double room) const {
        std::vector<std::string> lines;
        std::string line;
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t end = std::min(text.find(' ', at), text.size());
            const std::string word = text.substr(at, end - at);
            std::string longer = line;
            if (!longer.empty())
                longer += ' ';
            longer += word;
            if (!line.empty() && width_of(longer) > room) {
                lines.push_back(line);
                line = word;
            } else {
                line = longer;
            }
            at = end + 1;
        }
        if (!line.empty())
            lines.push_back(line);
        return lines;
    }

    // ---- Layout

    double size_of_text() const { return 13 * scale_; }
    double size_of_labels() const { return 10.5 * scale_; }
    double size_of_notes() const { return 10.5 * scale_; }

    struct key_entry {
        std::string text;
        color paint;
        bool dashed;
    };
    std::vector<key_entry> key() const {
        std::vector<key_entry> entries;
        if (what_.layers.size() > 1) {
            for (std::size_t i = 0; i < what_.layers.size(); ++i)
                entries.push_back({utf8(what_.layers[i].name), layer_colors[i % std::size(layer_colors)], false});
        } else {
            std::optional<property> last;
            for (const studies::isoline &line : first_.lines) {
                if (last == line.what)
                    continue;
                last = line.what;
                const studies::property_text &text = studies::text_of(line.what);
                const std::string unit = pretty_unit(studies::shown_unit(text.si, what_.units).name);
                entries.push_back({std::string(text.symbol) + (unit == "1" ? "" : " [" + unit + "]"),
                                   color_of_line(line), line.what == property::q});
            }
        }
        for (const marked_states &states : what_.states)
            if (!states.label.empty())
                entries.push_back({utf8(states.label), states_color, false});
        return entries;
    }
    static color color_of_line(const studies::isoline &line) {
        return line_colors[static_cast<std::size_t>(line.what)];
    }

    void lay_out() {
        const double gap = 6 * scale_;
        const double margin = 8 * scale_;
        const double room = what_.width - 2 * margin;
        double y = margin;
        const auto paragraph = [&](const std::string &text, double size, weight with, color in) {
            font(size, with);
            paint(in);
            for (const std::string &line : lines_of(text, room)) {
                write_left(line, margin, y + size * 0.6, size);
                y += size * 1.25;
            }
        };
        double title = 16 * scale_;
        const std::string name = utf8(what_.title);
        for (font(title, weight::bold); title > 10 * scale_ && width_of(name) > room; font(title, weight::bold))
            title -= 0.5 * scale_;
        paragraph(name, title, weight::bold, black);
        y += 2 * scale_;
        paragraph(utf8(what_.notes), size_of_notes(), weight::normal, note_color);
        draw_key(margin, room, y);
        y += gap;

        // The widths of numbers at the vertical axis depend on the height of the frame, which depends on the axis
        // below.
        font(size_of_text());
        frame_.top = y;
        frame_.bottom = what_.height - margin - 3.1 * size_of_text() - gap;
        y_.from = frame_.bottom;
        y_.to = frame_.top;
        double widest = 0;
        for (const double value : y_.ticks(3 * size_of_text()))
            widest = std::max(widest, width_of(short_number(value)));
        frame_.left = margin + 1.4 * size_of_text() + gap + widest + gap;
        frame_.right = what_.width - margin - 1.6 * size_of_text();
        x_.from = frame_.left;
        x_.to = frame_.right;
        constexpr double least = 60;
        if (frame_.right - frame_.left < least || frame_.bottom - frame_.top < least)
            throw drawing_failed("the picture is too small for a diagram with its texts");
    }

    void draw_key(double margin, double room, double &y) {
        const double size = size_of_notes();
        const double sample = 22 * scale_;
        font(size);
        double x = margin;
        bool any = false;
        for (const key_entry &entry : key()) {
            const double width = sample + 4 * scale_ + width_of(entry.text) + 14 * scale_;
            if (any && x + width > margin + room) {
                x = margin;
                y += size * 1.4;
            }
            any = true;
            paint(entry.paint);
            cairo_set_line_width(pen(), 1.6 * scale_);
            dashes(entry.dashed);
            cairo_move_to(pen(), x, y + size * 0.65);
            cairo_line_to(pen(), x + sample, y + size * 0.65);
            cairo_stroke(pen());
            dashes(false);
            paint(black);
            write_left(entry.text, x + sample + 4 * scale_, y + size * 0.6, size);
            x += width;
        }
        if (any)
            y += size * 1.4;
    }
    void dashes(bool on) const {
        const double pattern[] = {5 * scale_, 3 * scale_};
        cairo_set_dash(pen(), pattern, on ? 2 : 0, 0);
    }

    // ---- Axes

    void draw_axes() {
        const double size = size_of_text();
        const double tick = 5 * scale_;
        font(size);
        cairo_set_line_width(pen(), 1 * scale_);
        const auto line = [&](double x1, double y1, double x2, double y2) {
            cairo_move_to(pen(), x1, y1);
            cairo_line_to(pen(), x2, y2);
            cairo_stroke(pen());
        };
        double widest = 0;
        for (const double value : {x_.low, x_.high})
            widest = std::max(widest, width_of(short_number(value)));
        const std::vector<double> x_ticks = x_.ticks(std::max(3.2 * size, widest * 0.9 + size));
        const std::vector<double> y_ticks = y_.ticks(3 * size);
        paint(grid_color);
        for (const double value : x_ticks)
            line(x_.place_of_shown(value), frame_.top, x_.place_of_shown(value), frame_.bottom);
        for (const double value : y_ticks)
            line(frame_.left, y_.place_of_shown(value), frame_.right, y_.place_of_shown(value));
        paint(black);
        double last_end = 0;
        for (const double value : x_ticks) {
            const double x = x_.place_of_shown(value);
            line(x, frame_.bottom, x, frame_.bottom - tick);
            // On logarithmic axes labels are not evenly spaced.
            const std::string text = short_number(value);
            const double width = width_of(text);
            if (x - width / 2 > last_end + 0.4 * size) {
                write(text, {x, frame_.bottom + 1.15 * size}, size);
                last_end = x + width / 2;
            }
        }
        for (const double value : y_ticks) {
            const double y = y_.place_of_shown(value);
            line(frame_.left, y, frame_.left + tick, y);
            const std::string text = short_number(value);
            write(text, {frame_.left - 6 * scale_ - width_of(text) / 2, y}, size);
        }
        for (const double value : x_.small_ticks())
            line(x_.place_of_shown(value), frame_.bottom, x_.place_of_shown(value), frame_.bottom - tick / 2);
        for (const double value : y_.small_ticks())
            line(frame_.left, y_.place_of_shown(value), frame_.left + tick / 2, y_.place_of_shown(value));
        write(x_.title(), {(frame_.left + frame_.right) / 2, frame_.bottom + 2.65 * size}, size);
        write(y_.title(), {8 * scale_ + 0.7 * size, (frame_.top + frame_.bottom) / 2}, size, -std::numbers::pi / 2);
    }

    void draw_frame() const {
        paint(black);
        cairo_set_line_width(pen(), 1.2 * scale_);
        cairo_rectangle(pen(), frame_.left, frame_.top, frame_.right - frame_.left, frame_.bottom - frame_.top);
        cairo_stroke(pen());
    }

    // ---- Curves

    void find_lines() {
        for (std::size_t i = 0; i < what_.layers.size(); ++i) {
            const bool alone = what_.layers.size() == 1;
            const color of_layer = layer_colors[i % std::size(layer_colors)];
            for (const studies::isoline &line : what_.layers[i].curves.lines) {
                drawn_line drawn{.of = &line, .paint = alone ? color_of_line(line) : of_layer};
                for (const polyline &piece : line.pieces)
                    add_seen(drawn.parts, piece);
                lines_.push_back(std::move(drawn));
            }
            drawn_line dome{.of = nullptr, .paint = alone ? black : of_layer};
            add_seen(dome.parts, what_.layers[i].curves.dome);
            domes_.push_back(std::move(dome));
        }
        for (const marked_states &states : what_.states)
            if (states.joined) {
                drawn_line drawn{.of = nullptr, .paint = states_color};
                polyline run;
                for (const diagram_point &at : states.points)
                    if (std::isfinite(at.x) && std::isfinite(at.y))
                        run.push_back(at);
                add_seen(drawn.parts, run);
                joined_.push_back(std::move(drawn));
            }
    }
    void add_seen(std::vector<polyline> &parts, const polyline &piece) const {
        polyline placed;
        placed.reserve(piece.size());
        for (const diagram_point &at : piece)
            placed.push_back(place(at));
        std::ranges::move(clipped(placed, frame_), std::back_inserter(parts));
    }
    void stroke(const drawn_line &line, double width) const {
        paint(line.paint);
        cairo_set_line_width(pen(), width * scale_);
        for (const polyline &part : line.parts) {
            cairo_new_path(pen());
            for (const diagram_point &at : part)
                cairo_line_to(pen(), at.x, at.y);
            cairo_stroke(pen());
        }
    }
    void draw_lines() {
        for (const drawn_line &line : lines_) {
            dashes(line.of->what == property::q);
            stroke(line, 0.8);
        }
        dashes(false);
        for (const drawn_line &dome : domes_)
            stroke(dome, 1.9);
    }
    void draw_states() {
        for (const drawn_line &line : joined_)
            stroke(line, 1.7);
    }

    // ---- Marks and labels

    void dot(diagram_point at, double radius, color in) const {
        paint(in);
        cairo_new_path(pen());
        cairo_arc(pen(), at.x, at.y, radius, 0, 2 * std::numbers::pi);
        cairo_fill(pen());
    }
    void draw_marks() {
        const double radius = 3 * scale_;
        for (const layer &one : what_.layers)
            if (one.curves.critical) {
                const diagram_point at = place(*one.curves.critical);
                if (frame_.contains(at)) {
                    dot(at, radius, black);
                    obstacles_.push_back(box_around(at, 5 * radius, 5 * radius, 0));
                }
            }
        for (const marked_states &states : what_.states)
            if (states.marked)
                for (const diagram_point &point : states.points)
                    if (const diagram_point at = place(point); frame_.contains(at)) {
                        dot(at, radius, states_color);
                        obstacles_.push_back(box_around(at, 2.2 * radius, 2.2 * radius, 0));
                    }
        font(size_of_labels() * 1.1, weight::bold);
        for (const marked_states &states : what_.states)
            if (states.marked)
                for (std::size_t i = 0; i < states.points.size(); ++i)
                    if (const diagram_point at = place(states.points[i]); frame_.contains(at))
                        name_mark(i < states.names.size() && !states.names[i].empty() ? utf8(states.names[i])
                                                                                      : std::to_string(i + 1),
                                  at);
    }
    /// Writes the name of a marked state on the side that crosses the fewest lines.
    void name_mark(const std::string &text, diagram_point at) {
        const double size = size_of_labels() * 1.1;
        const double width = width_of(text);
        std::optional<label_box> best;
        diagram_point place{};
        double least = infinity;
        for (int ring = 0; ring < 3; ++ring)
            for (int k = 0; k < 8; ++k) {
                const double angle = k * std::numbers::pi / 4 - std::numbers::pi / 4;
                const double away = (6 + 7 * ring) * scale_;
                const diagram_point center = {at.x + std::cos(angle) * (away + width / 2),
                                              at.y + std::sin(angle) * (away + size / 2)};
                const label_box box = box_around(center, width + 2 * scale_, size, 0, text);
                if (!is_free(box))
                    continue;
                const double cost = crossings(box, nullptr) + ring + 0.05 * k;
                if (cost < least) {
                    least = cost;
                    best = box;
                    place = center;
                }
            }
        if (!best)
            return;
        // A bright edge keeps the name readable on lines.
        paint(white, 0.8);
        outline(*best);
        cairo_fill(pen());
        paint(states_color);
        show(text, place, width, size, 0);
        made_.labels.push_back(*best);
    }

    bool is_free(const label_box &box) const {
        const double edge = 3 * scale_;
        const rectangle inner = {frame_.left + edge, frame_.top + edge, frame_.right - edge, frame_.bottom - edge};
        return std::ranges::all_of(box.corners, [&](diagram_point at) { return inner.contains(at); }) &&
               std::ranges::none_of(obstacles_, [&](const label_box &other) { return overlap(box, other); }) &&
               std::ranges::none_of(made_.labels, [&](const label_box &other) { return overlap(box, other); });
    }
    static bool crosses(const label_box &box, const polyline &line) {
        const auto [first, second] = directions(box);
        const auto x = extent(box.corners, {1, 0});
        const auto y = extent(box.corners, {0, 1});
        for (std::size_t i = 1; i < line.size(); ++i) {
            const std::array<diagram_point, 2> segment = {line[i - 1], line[i]};
            if (std::max(segment[0].x, segment[1].x) < x[0] || std::min(segment[0].x, segment[1].x) > x[1] ||
                std::max(segment[0].y, segment[1].y) < y[0] || std::min(segment[0].y, segment[1].y) > y[1])
                continue;
            const diagram_point normal = {segment[0].y - segment[1].y, segment[1].x - segment[0].x};
            if (!apart(box.corners, segment, first) && !apart(box.corners, segment, second) &&
                !apart(box.corners, segment, normal))
                return true;
        }
        return false;
    }
    /// How much of other lines a label would hide.
    double crossings(const label_box &box, const drawn_line *own) const {
        double sum = 0;
        const auto count = [&](const std::vector<drawn_line> &lines, double each) {
            for (const drawn_line &line : lines)
                if (&line != own)
                    for (const polyline &part : line.parts)
                        sum += crosses(box, part) ? each : 0;
        };
        count(lines_, 1);
        count(domes_, 4);
        count(joined_, 4);
        return sum;
    }

    void label_lines() {
        font(size_of_labels());
        const std::size_t count = first_.lines.size(); // the most important family first
        for (std::size_t i = 0; i < count; ++i)
            label(lines_[i]);
    }
    std::string label_of(const studies::isoline &line) const {
        const studies::unit unit = studies::shown_unit(studies::text_of(line.what).si, what_.units);
        std::string text = short_number(studies::in_unit(line.value, unit));
        // In pictures of several equations colors do not tell what the lines are.
        if (what_.layers.size() > 1)
            text += unit.name == "1" ? "" : " " + pretty_unit(unit.name);
        return text;
    }

    void label(const drawn_line &line) {
        const std::string text = label_of(*line.of);
        const double size = size_of_labels();
        const double width = width_of(text);
        // A minus sign must not look like a piece of the line.
        const double gap = (text.starts_with("−") ? 20 : 9) * scale_;
        std::optional<label_box> best;
        diagram_point best_center{};
        double best_angle = 0;
        double least = 3.5; // A label that hides more than this is worse than none.
        for (const polyline &part : line.parts) {
            const double length = length_of(part);
            if (length < 1.6 * width)
                continue;
            constexpr int places = 25;
            for (int i = 1; i < places; ++i) {
                const double fraction = i / double{places};
                const double middle = fraction * length;
                if (middle < 0.6 * width || middle > length - 0.6 * width)
                    continue;
                const diagram_point before = along(part, middle - width / 2);
                const diagram_point after = along(part, middle + width / 2);
                const diagram_point on = along(part, middle);
                const diagram_point center = {(before.x + after.x) / 2, (before.y + after.y) / 2};
                const double bend = distance(on, center);
                if (bend > 0.3 * size || distance(before, after) < 0.9 * width)
                    continue;
                double angle = std::atan2(after.y - before.y, after.x - before.x);
                if (angle > std::numbers::pi / 2 + 1e-3)
                    angle -= std::numbers::pi;
                else if (angle <= -std::numbers::pi / 2 + 1e-3)
                    angle += std::numbers::pi;
                const label_box box = box_around(center, width + gap, 0.95 * size, angle, text);
                if (!is_free(box))
                    continue;
                const double cost = crossings(box, &line) + 0.6 * std::abs(fraction - 0.8) + bend / size;
                if (cost < least) {
                    least = cost;
                    best = box;
                    best_center = center;
                    best_angle = angle;
                }
            }
        }
        if (!best) {
            ++made_.left_out;
            return;
        }
        paint(white);
        outline(*best);
        cairo_fill(pen());
        paint(line.paint);
        show(text, best_center, width, size, best_angle);
        made_.labels.push_back(*best);
    }
    void outline(const label_box &box) const {
        cairo_new_path(pen());
        for (const diagram_point &corner : box.corners)
            cairo_line_to(pen(), corner.x, corner.y);
        cairo_close_path(pen());
    }

    const content &what_;
    const studies::diagram &first_;
    axis x_;
    axis y_;
    picture made_{};
    surface_pointer surface_;
    std::unique_ptr<cairo_t, closing> context_;
    double scale_ = 1;
    rectangle frame_{};
    std::vector<drawn_line> lines_; ///< those of the first layer first
    std::vector<drawn_line> domes_;
    std::vector<drawn_line> joined_; ///< through states
    std::vector<label_box> obstacles_;
};

} // namespace

bool overlap(const label_box &a, const label_box &b) {
    for (const label_box *const box : {&a, &b})
        for (const diagram_point direction : directions(*box))
            if (apart(a.corners, b.corners, direction))
                return false;
    return true;
}

marked_states projected(const ostrel::fluid &fluid, const studies::diagram_kind &kind, const studies::overlay &states) {
    return {states.label, studies::in_plane(fluid, kind, states.states), states.names, states.marked, states.joined};
}

picture draw(const content &what, format as) {
    return page(what, as).made(as);
}

} // namespace drawing

#ifdef OSTREL_SANITIZED_ADDRESSES
// Fontconfig keeps some of what it has read until the process ends, which the leak sanitizer would report.
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libfontconfig";
}
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_options();
extern "C" const char *__lsan_default_options() {
    return "print_suppressions=0";
}
#endif
