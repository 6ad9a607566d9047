#pragma once

// A self-contained SVG line plot for zemcalc-signal: axes with ticks and labels, one
// polyline per series, a legend; linear axes, or logarithmic ones (decades) for spectra,
// where points that are not positive are left out.
#include <string>
#include <vector>

namespace signal_tool {

struct Series {
  std::string name;
  std::vector<double> x, y;
};

struct Plot {
  std::string title, xLabel, yLabel;
  bool logarithmic = false;
  std::vector<Series> series;
};

// The SVG document of the plot.
std::string RenderSvg(const Plot& plot);

}  // namespace signal_tool
