#include "scatter.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <iterator>

namespace atlas {

double meanAbsoluteError(const Scatter& scatter, std::size_t series) {
  double sum = 0;
  unsigned long samples = 0;
  for (const Sample& sample : scatter.samples) {
    if (sample.series != series) continue;
    sum += std::fabs(sample.estimated - sample.actual);
    ++samples;
  }
  return samples == 0 ? 0 : sum / static_cast<double>(samples);
}

namespace {

// Appends as printf would; every use is a line or less.
[[gnu::format(printf, 2, 3)]] void append(std::string& out, const char* format, ...) {
  char line[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  out += line;
}

std::string xmlText(const std::string& text) {
  std::string safe;
  for (const char ch : text) {
    if (ch == '&')
      safe += "&amp;";
    else if (ch == '<')
      safe += "&lt;";
    else if (ch == '>')
      safe += "&gt;";
    else if (ch == '"')
      safe += "&quot;";
    else
      safe += static_cast<unsigned char>(ch) < 0x20 ? ' ' : ch;
  }
  return safe;
}

// Colours that stay apart for most colour-blind eyes; the marks change when they begin anew.
const char* colourOf(std::size_t series) {
  static constexpr const char* kColours[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                             "#e69f00", "#56b4e9", "#5e3c99", "#555555"};
  return kColours[series % std::size(kColours)];
}

void mark(std::string& out, std::size_t series, double x, double y, const std::string& title) {
  const char* colour = colourOf(series);
  const std::string inner = title.empty() ? "" : "<title>" + xmlText(title) + "</title>";
  const bool isRound = series / 8 % 2 == 0;
  if (isRound)
    append(out, "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"4\" fill=\"%s\">", x, y, colour);
  else
    append(out, "<rect x=\"%.1f\" y=\"%.1f\" width=\"7\" height=\"7\" fill=\"%s\">", x - 3.5, y - 3.5, colour);
  out += inner + (isRound ? "</circle>\n" : "</rect>\n");
}

// A square with both axes from 0 to 1. The logarithmic one begins at 1/100,000, where it shows all that is less.
struct Panel {
  const char* title;
  double left;
  double top;
  bool isLogarithmic;

  static constexpr double kSide = 420;
  static constexpr int kDecades = 5;

  double along(double value) const {
    if (!isLogarithmic) return value * kSide;
    const double least = std::pow(10.0, -kDecades);
    return (1 + std::log10(std::max(value, least)) / kDecades) * kSide;
  }
  double x(double actual) const { return left + along(actual); }
  double y(double estimated) const { return top + kSide - along(estimated); }
};

std::string tickText(const Panel& panel, int i) {
  std::string text;
  if (!panel.isLogarithmic)
    append(text, "%.1f", i / 5.0);
  else if (i == 0)
    text = "≤ 0.00001";
  else
    append(text, "%.*f", Panel::kDecades - i, std::pow(10.0, i - Panel::kDecades));
  return text;
}

void grid(std::string& out, const Panel& panel) {
  for (int i = 0; i <= 5; ++i) {
    const double value = panel.isLogarithmic ? std::pow(10.0, i - Panel::kDecades) : i / 5.0;
    const double x = panel.x(value), y = panel.y(value), side = Panel::kSide;
    const std::string text = tickText(panel, i);
    append(out, "<path class=\"grid\" d=\"M%.1f %.1fv%.1fM%.1f %.1fh%.1f\"/>\n", x, panel.top, side, panel.left, y,
           side);
    append(out, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">%s</text>\n", x, panel.top + side + 18,
           text.c_str());
    append(out, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">%s</text>\n", panel.left - 8, y + 4, text.c_str());
  }
}

void axes(std::string& out, const Panel& panel) {
  const double left = panel.left, top = panel.top, side = Panel::kSide, middle = top + side / 2;
  append(out, "<path class=\"diagonal\" d=\"M%.1f %.1fL%.1f %.1f\"/>\n", left, top + side, left + side, top);
  append(out, "<rect class=\"frame\" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"/>\n", left, top, side, side);
  append(out, "<text class=\"name\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">%s</text>\n", left + side / 2,
         top - 12, panel.title);
  append(out, "<text class=\"name\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">actual</text>\n", left + side / 2,
         top + side + 38);
  append(out, "<text class=\"name\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\" transform=\"rotate(-90 %.1f %.1f)\">",
         left - 62, middle, left - 62, middle);
  out += "estimated</text>\n";
}

void points(std::string& out, const Panel& panel, const Scatter& scatter) {
  out += "<g fill-opacity=\"0.65\">\n";
  for (const Sample& sample : scatter.samples) {
    std::string title = sample.label;
    append(title, "\nestimated %.5f, actual %.5f", sample.estimated, sample.actual);
    mark(out, sample.series, panel.x(sample.actual), panel.y(sample.estimated), title);
  }
  out += "</g>\n";
}

constexpr double kLegendTop = 560;
constexpr double kLegendLine = 20;

void legend(std::string& out, const Scatter& scatter) {
  for (std::size_t i = 0; i < scatter.series.size(); ++i) {
    const std::size_t line = i / 3, column = i % 3;
    const double x = 80 + static_cast<double>(column) * 340, y = kLegendTop + static_cast<double>(line) * kLegendLine;
    mark(out, i, x, y - 4, "");
    append(out, "<text x=\"%.1f\" y=\"%.1f\">%s <tspan class=\"error\">mean error %.4f</tspan></text>\n", x + 12, y,
           xmlText(scatter.series[i]).c_str(), meanAbsoluteError(scatter, i));
  }
}

constexpr const char* kStyle =
    "<style>text{font:12px sans-serif;fill:#333}.name{font-size:13px;font-weight:600}.heading{font-size:17px;"
    "font-weight:600}.error{fill:#888}.grid{stroke:#ddd;fill:none}.frame{stroke:#333;fill:none}"
    ".diagonal{stroke:#999;stroke-dasharray:5 4;fill:none}</style>\n";

}  // namespace

std::string svgDocument(const Scatter& scatter) {
  const std::size_t lines = (scatter.series.size() + 2) / 3;
  const double width = 1100, height = kLegendTop + static_cast<double>(lines) * kLegendLine + 10;
  std::string out;
  append(out, "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" width=\"%.0f\" height=\"%.0f\">\n",
         width, height, width, height);
  out += kStyle;
  append(out, "<rect width=\"%.0f\" height=\"%.0f\" fill=\"#fff\"/>\n", width, height);
  append(out, "<text class=\"heading\" x=\"550\" y=\"28\" text-anchor=\"middle\">");
  append(out, "Selectivity of %zu predicates, estimated against actual</text>\n", scatter.samples.size());
  for (const Panel& panel : {Panel{"linear", 90, 75, false}, Panel{"logarithmic", 640, 75, true}}) {
    grid(out, panel);
    axes(out, panel);
    points(out, panel, scatter);
  }
  legend(out, scatter);
  return out + "</svg>\n";
}

namespace {

constexpr int kColumns = 61;
constexpr int kRows = 21;

char letterOf(std::size_t series) { return static_cast<char>('a' + series % 26); }

int cell(double value, int cells) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * (cells - 1))); }

// The rows of the plot from the top, a byte a cell: '.' on the diagonal.
std::vector<std::string> cells(const Scatter& scatter) {
  std::vector<std::string> rows(kRows, std::string(kColumns, ' '));
  for (int i = 0; i < kRows; ++i) {
    const int column = cell(static_cast<double>(i) / (kRows - 1), kColumns);
    rows[static_cast<std::size_t>(kRows - 1 - i)][static_cast<std::size_t>(column)] = '.';
  }
  for (const Sample& sample : scatter.samples) {
    const int row = kRows - 1 - cell(sample.estimated, kRows);
    char& shown = rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(cell(sample.actual, kColumns))];
    const char letter = letterOf(sample.series);
    shown = shown == ' ' || shown == '.' || shown == letter ? letter : '*';
  }
  return rows;
}

void plane(std::string& out, const Scatter& scatter) {
  const std::vector<std::string> rows = cells(scatter);
  out += "  estimated\n";
  for (int i = 0; i < kRows; ++i) {
    if (i % 5 == 0)
      append(out, "  %4.2f ", 1 - static_cast<double>(i) / (kRows - 1));
    else
      out += "       ";
    const std::string& row = rows[static_cast<std::size_t>(i)];
    out += (i % 5 == 0 ? "┤" : "│") + row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
  }
  out += "       └";
  for (int i = 0; i < kColumns; ++i) out += i % 15 == 0 ? "┬" : "─";
  out += "\n        0.00           0.25           0.50           0.75          1.00  actual\n";
}

// How many of the errors of a series fall below 0.001, 0.01, 0.05, 0.1, 0.25 and above, as bars of eight heights.
std::string errorBars(const Scatter& scatter, std::size_t series) {
  static constexpr double kLimits[] = {0.001, 0.01, 0.05, 0.1, 0.25, 2};
  static constexpr const char* kBars[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  unsigned long counts[std::size(kLimits)] = {}, most = 1;
  for (const Sample& sample : scatter.samples) {
    if (sample.series != series) continue;
    const double error = std::fabs(sample.estimated - sample.actual);
    unsigned long& count = counts[std::upper_bound(kLimits, std::end(kLimits), error) - kLimits];
    most = std::max(most, ++count);
  }
  std::string bars;
  for (const unsigned long count : counts) bars += count == 0 ? "·" : kBars[(count * 8 - 1) / most];
  return bars;
}

const Sample* worst(const Scatter& scatter, std::size_t series) {
  const Sample* found = nullptr;
  const auto error = [](const Sample& sample) { return std::fabs(sample.estimated - sample.actual); };
  for (const Sample& sample : scatter.samples) {
    if (sample.series == series && (found == nullptr || error(sample) > error(*found))) found = &sample;
  }
  return found;
}

}  // namespace

std::string terminalPlot(const Scatter& scatter) {
  std::string out;
  plane(out, scatter);
  std::size_t width = 5;
  for (const std::string& name : scatter.series) width = std::max(width, name.size());
  append(out, "\n    %-*s  predicates  mean error  spread  worst\n", static_cast<int>(width), "index");
  for (std::size_t i = 0; i < scatter.series.size(); ++i) {
    const auto samples = std::count_if(scatter.samples.begin(), scatter.samples.end(),
                                       [i](const Sample& sample) { return sample.series == i; });
    append(out, "  %c %-*s  %10ld  %10.4f  ", letterOf(i), static_cast<int>(width), scatter.series[i].c_str(),
           static_cast<long>(samples), meanAbsoluteError(scatter, i));
    out += errorBars(scatter, i);
    if (const Sample* sample = worst(scatter, i)) {
      append(out, "  estimated %.3f, actual %.3f: ", sample->estimated, sample->actual);
      out += sample->label;
    }
    out += "\n";
  }
  return out + "  spread: errors below 0.001, 0.01, 0.05, 0.1, 0.25 and above\n";
}

}  // namespace atlas
