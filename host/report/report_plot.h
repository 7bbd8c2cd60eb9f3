// One figure with axes, as SVG.
#ifndef KXHOST_REPORT_PLOT_H
#define KXHOST_REPORT_PLOT_H

#include "report/report_axis.h"

#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// A place in a figure, in the measures of its axes.
struct PlotPoint {
    double x = 0;
    double y = 0;
};

/// Draws into a figure that fills the width of its place: what is drawn stretches with it, letters
/// and line widths do not. Colours come from the page's style, by class names.
class Plot {
public:
    /// `height` in CSS pixels, without the marks below.
    Plot(Axis x, Axis y, int height);

    /// A line through the points; alone or in pieces. A piece of one point is a dot.
    void line(std::string_view cssClass, const std::vector<std::vector<PlotPoint>>& pieces);
    /// The area between two lines over the same places.
    void band(std::string_view cssClass, const std::vector<PlotPoint>& lower,
              const std::vector<PlotPoint>& upper);
    /// From one place of the x axis to another, over the whole height. `title` is markup.
    void stripe(std::string_view cssClass, double from, double to, const std::string& title);
    /// A bar from the bottom of the figure.
    void bar(std::string_view cssClass, double from, double to, double height);
    /// A vertical line with a text at its top, which is left out where the one before is too near;
    /// `text` and `title` are markup.
    void flag(double x, const std::string& text, const std::string& title);

    /// The whole figure; `label` says in words what it shows (markup).
    std::string svg(const std::string& label) const;

private:
    std::string point(const PlotPoint& place) const;
    std::string percent(double x) const;
    std::string axes() const;

    Axis x_;
    Axis y_;
    int height_;
    std::string shapes_; ///< stretched
    std::string marks_;  ///< not stretched
    double lastFlag_ = -1;
};

} // namespace kxhost

#endif
