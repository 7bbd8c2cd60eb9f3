// One figure with axes, as SVG.
#include "report/report_plot.h"

#include "report/report_words.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace kxhost {
namespace {

/// Width of what is stretched, in its own measure.
constexpr double kWidth = 1000;
/// Flags that are nearer to each other share a text.
constexpr double kFlagDistance = 0.03;

std::string number(double value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    std::string digits = text.data();
    if (digits.ends_with(".0")) {
        digits.resize(digits.size() - 2);
    }
    return digits == "-0" ? "0" : digits;
}

std::string attribute(std::string_view name, std::string_view value)
{
    return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

} // namespace

Plot::Plot(Axis x, Axis y, int height) : x_(std::move(x)), y_(std::move(y)), height_(height) {}

std::string Plot::point(const PlotPoint& place) const
{
    return number(x_.place(place.x) * kWidth) + " " + number((1 - y_.place(place.y)) * height_);
}

std::string Plot::percent(double x) const
{
    return fixedText(x_.place(x) * 100, 2) + "%";
}

void Plot::line(std::string_view cssClass, const std::vector<std::vector<PlotPoint>>& pieces)
{
    std::string path;
    for (const std::vector<PlotPoint>& piece : pieces) {
        const char* command = "M";
        for (const PlotPoint& place : piece) {
            path += command + point(place);
            command = "L";
        }
        path += piece.size() == 1 ? "h1" : ""; // a line without length is not drawn everywhere
    }
    shapes_ += "<path" + attribute("class", cssClass) + attribute("d", path) + "/>";
}

void Plot::band(std::string_view cssClass, const std::vector<PlotPoint>& lower,
                const std::vector<PlotPoint>& upper)
{
    std::string path;
    for (const PlotPoint& place : lower) {
        path += (path.empty() ? "M" : "L") + point(place);
    }
    for (std::size_t i = upper.size(); i-- > 0;) {
        path += "L" + point(upper[i]);
    }
    shapes_ += "<path" + attribute("class", cssClass) + attribute("d", path + "Z") + "/>";
}

void Plot::stripe(std::string_view cssClass, double from, double to, const std::string& title)
{
    const double start = x_.place(from) * kWidth;
    const double width = std::max(x_.place(to) * kWidth - start, 1.0);
    shapes_ += "<rect" + attribute("class", cssClass) + attribute("x", number(start)) +
               attribute("y", "0") + attribute("width", number(width)) +
               attribute("height", std::to_string(height_)) + "><title>" + title +
               "</title></rect>";
}

void Plot::bar(std::string_view cssClass, double from, double to, double height)
{
    const double start = x_.place(from) * kWidth;
    const double width = std::max(x_.place(to) * kWidth - start, 1.0);
    const double high = std::max(y_.place(height) * height_, 1.0);
    shapes_ += "<rect" + attribute("class", cssClass) + attribute("x", number(start)) +
               attribute("y", number(height_ - high)) + attribute("width", number(width)) +
               attribute("height", number(high)) + "/>";
}

void Plot::flag(double x, const std::string& text, const std::string& title)
{
    const std::string at = percent(x);
    marks_ += "<g class=\"flag\"><title>" + title + "</title><line" + attribute("x1", at) +
              attribute("x2", at) + attribute("y1", "-4") +
              attribute("y2", std::to_string(height_)) + "/>";
    const double place = x_.place(x);
    if (lastFlag_ < 0 || place - lastFlag_ >= kFlagDistance) {
        marks_ += "<text" + attribute("x", at) + attribute("y", "-8") + ">" + text + "</text>";
        lastFlag_ = place;
    }
    marks_ += "</g>";
}

std::string Plot::axes() const
{
    std::string grid;
    for (const AxisMark& mark : y_.marks) {
        const std::string y = number((1 - y_.place(mark.at)) * height_);
        grid += "<line x1=\"0\" x2=\"100%\"" + attribute("y1", y) + attribute("y2", y) +
                "/><text class=\"y\" x=\"-8\"" + attribute("y", y) + ">" + mark.text + "</text>";
    }
    const std::string bottom = std::to_string(height_);
    for (std::size_t i = 0; i < x_.marks.size(); ++i) {
        const AxisMark& mark = x_.marks[i];
        const std::string at = percent(mark.at);
        const bool isLast = i + 1 == x_.marks.size();
        grid += "<line" + attribute("x1", at) + attribute("x2", at) + attribute("y1", bottom) +
                attribute("y2", std::to_string(height_ + 4)) + "/><text class=\"x\"" +
                attribute("x", at) + attribute("y", std::to_string(height_ + 18)) + ">" +
                mark.text + (isLast ? " " + x_.unit : "") + "</text>";
    }
    return "<g class=\"grid\">" + grid + "<text class=\"unit\" x=\"-8\" y=\"-14\">" + y_.unit +
           "</text></g>";
}

std::string Plot::svg(const std::string& label) const
{
    const std::string height = std::to_string(height_);
    return "<svg class=\"plot\" role=\"img\"" + attribute("aria-label", label) +
           attribute("height", height) + ">" + axes() + "<svg width=\"100%\"" +
           attribute("height", height) + attribute("viewBox", "0 0 1000 " + height) +
           " preserveAspectRatio=\"none\">" + shapes_ + "</svg>" + marks_ + "</svg>";
}

} // namespace kxhost
