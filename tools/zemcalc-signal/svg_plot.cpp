#include "svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace signal_tool {

namespace {

constexpr double kWidth = 960, kHeight = 540;
constexpr double kLeft = 80, kRight = 220, kTop = 50, kBottom = 60;  // margins; the legend sits right
const char* const kColours[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e", "#9467bd", "#8c564b", "#e377c2"};

std::string Escape(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.6g", v);
  return text;
}

struct Axis {
  double low = 0, high = 1;  // in plotted units (log10 of the value on a log axis)
  bool log = false;
  double Map(double v, double from, double to) const {
    const double p = log ? std::log10(v) : v;
    return from + (p - low) / (high - low) * (to - from);
  }
  // Tick values: decades on a log axis, 1-2-5 steps on a linear one.
  std::vector<double> Ticks() const {
    std::vector<double> ticks;
    if (log) {
      for (double d = std::ceil(low); d <= high + 1e-9 && ticks.size() < 40; d += 1) ticks.push_back(std::pow(10.0, d));
      return ticks;
    }
    const double raw = (high - low) / 6;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    const double step = raw / power < 1.5 ? power : raw / power < 3.5 ? 2 * power : raw / power < 7.5 ? 5 * power : 10 * power;
    for (double t = std::ceil(low / step) * step; t <= high + step * 1e-9 && ticks.size() < 40; t += step) {
      ticks.push_back(std::fabs(t) < step * 1e-9 ? 0.0 : t);
    }
    return ticks;
  }
};

bool Usable(double v, bool log) { return std::isfinite(v) && (!log || v > 0); }

Axis Fit(const Plot& plot, bool xAxis) {
  Axis a;
  a.log = plot.logarithmic;
  double low = INFINITY, high = -INFINITY;
  for (const Series& s : plot.series) {
    for (std::size_t i = 0; i < s.x.size(); ++i) {
      if (!Usable(s.x[i], a.log) || !Usable(s.y[i], a.log)) continue;
      const double v = xAxis ? s.x[i] : s.y[i];
      const double p = a.log ? std::log10(v) : v;
      low = std::min(low, p);
      high = std::max(high, p);
    }
  }
  if (!(low <= high)) low = 0, high = 1;
  if (high - low < 1e-12 * std::max(1.0, std::fabs(high))) low -= 0.5, high += 0.5;
  if (!xAxis && !a.log) {
    const double margin = 0.05 * (high - low);
    low -= margin;
    high += margin;
  }
  a.low = low;
  a.high = high;
  return a;
}

}  // namespace

std::string RenderSvg(const Plot& plot) {
  const Axis x = Fit(plot, true), y = Fit(plot, false);
  const double x0 = kLeft, x1 = kWidth - kRight, y0 = kHeight - kBottom, y1 = kTop;
  std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                    Number(kWidth) + "\" height=\"" + Number(kHeight) + "\" viewBox=\"0 0 " + Number(kWidth) + " " +
                    Number(kHeight) + "\" font-family=\"sans-serif\" font-size=\"12\">\n";
  svg += "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  svg += "<text x=\"" + Number(kWidth / 2) + "\" y=\"28\" text-anchor=\"middle\" font-size=\"16\">" + Escape(plot.title) +
         "</text>\n";
  for (double t : x.Ticks()) {
    const double px = x.Map(t, x0, x1);
    svg += "<line x1=\"" + Number(px) + "\" y1=\"" + Number(y0) + "\" x2=\"" + Number(px) + "\" y2=\"" + Number(y1) +
           "\" stroke=\"#e0e0e0\"/>\n<text x=\"" + Number(px) + "\" y=\"" + Number(y0 + 18) +
           "\" text-anchor=\"middle\">" + Number(t) + "</text>\n";
  }
  for (double t : y.Ticks()) {
    const double py = y.Map(t, y0, y1);
    svg += "<line x1=\"" + Number(x0) + "\" y1=\"" + Number(py) + "\" x2=\"" + Number(x1) + "\" y2=\"" + Number(py) +
           "\" stroke=\"#e0e0e0\"/>\n<text x=\"" + Number(x0 - 6) + "\" y=\"" + Number(py + 4) +
           "\" text-anchor=\"end\">" + Number(t) + "</text>\n";
  }
  svg += "<rect x=\"" + Number(x0) + "\" y=\"" + Number(y1) + "\" width=\"" + Number(x1 - x0) + "\" height=\"" +
         Number(y0 - y1) + "\" fill=\"none\" stroke=\"black\"/>\n";
  svg += "<text x=\"" + Number((x0 + x1) / 2) + "\" y=\"" + Number(kHeight - 16) + "\" text-anchor=\"middle\">" +
         Escape(plot.xLabel) + "</text>\n";
  svg += "<text transform=\"translate(18 " + Number((y0 + y1) / 2) + ") rotate(-90)\" text-anchor=\"middle\">" +
         Escape(plot.yLabel) + "</text>\n";
  for (std::size_t k = 0; k < plot.series.size(); ++k) {
    const Series& s = plot.series[k];
    const char* colour = kColours[k % (sizeof(kColours) / sizeof(kColours[0]))];
    std::string points;
    for (std::size_t i = 0; i < s.x.size(); ++i) {
      if (!Usable(s.x[i], x.log) || !Usable(s.y[i], y.log)) continue;
      points += Number(x.Map(s.x[i], x0, x1)) + "," + Number(y.Map(s.y[i], y0, y1)) + " ";
    }
    svg += "<polyline fill=\"none\" stroke=\"" + std::string(colour) + "\" stroke-width=\"1.2\" points=\"" + points +
           "\"/>\n";
    const double ly = y1 + 16 + 20 * static_cast<double>(k);
    svg += "<line x1=\"" + Number(x1 + 12) + "\" y1=\"" + Number(ly - 4) + "\" x2=\"" + Number(x1 + 36) + "\" y2=\"" +
           Number(ly - 4) + "\" stroke=\"" + colour + "\" stroke-width=\"2\"/>\n<text x=\"" + Number(x1 + 42) +
           "\" y=\"" + Number(ly) + "\">" + Escape(s.name) + "</text>\n";
  }
  svg += "</svg>\n";
  return svg;
}

}  // namespace signal_tool
