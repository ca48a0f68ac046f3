// scatter.h - estimated against actual selectivity as a picture: an SVG document, or characters for a terminal.
#ifndef EXAMPLES_ATLAS_SCATTER_H
#define EXAMPLES_ATLAS_SCATTER_H

#include <cstddef>
#include <string>
#include <vector>

namespace atlas {

struct Sample {
  std::size_t series;  // index into the names
  double estimated;    // both 0 to 1
  double actual;
  std::string label;  // UTF-8, the predicate
};

struct Scatter {
  std::vector<std::string> series;  // UTF-8, what the samples are told apart by
  std::vector<Sample> samples;
};

// The mean of |estimated - actual| over the samples of one series; 0 without any.
double meanAbsoluteError(const Scatter& scatter, std::size_t series);

// Two panels, linear and logarithmic, with a legend; a point tells its predicate when the mouse rests on it.
std::string svgDocument(const Scatter& scatter);

// The linear panel in characters (a letter is a sample of that series, "*" samples of several), and under it a line for
// each series: its mean error, the spread of its errors as bars, its worst predicate.
std::string terminalPlot(const Scatter& scatter);

}  // namespace atlas

#endif
