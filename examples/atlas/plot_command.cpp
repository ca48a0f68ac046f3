// plot_command.cpp - atlas plot: how well the indexes estimate, as a picture.
#include "cli.h"
#include "trials.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>

namespace atlas {

namespace {

struct PlotArguments {
  std::string svg;
  std::size_t predicates = 300;
};

void writeFile(const std::string& file, const std::string& text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  if (!out.flush()) throw Error(kExitBroken, "cannot write \"" + file + "\": " + std::strerror(errno));
}

void plot(const PlotArguments& arguments, const Globals& globals) {
  const std::unique_ptr<Database> database = Database::openForReading(globals.open());
  const Scatter scatter = runTrials(*database, arguments.predicates);
  if (scatter.samples.empty()) throw Mistake("no index holds a value that predicates could be made from");
  const std::string shown = terminalPlot(scatter);
  std::fwrite(shown.data(), 1, shown.size(), stdout);
  if (!arguments.svg.empty()) writeFile(arguments.svg, svgDocument(scatter));
}

}  // namespace

void addPlot(CLI::App& app, const Globals& globals) {
  const auto arguments = std::make_shared<PlotArguments>();
  CLI::App* command =
      app.add_subcommand("plot", "Show estimated against actual selectivity of predicates on all indexes");
  command->add_option("--svg", arguments->svg, "Also draw it as a picture in this file");
  command->add_option("--predicates", arguments->predicates, "How many predicates are tried")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command->callback([arguments, &globals] { plot(*arguments, globals); });
}

}  // namespace atlas
