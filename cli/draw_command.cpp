#include "cli/commands.h"

#include <filesystem>
#include <iostream>

#include "cli/figures.h"
#include "host/new_file.h"
#include "host/pictures/composition_dot.h"
#include "host/pictures/graphviz.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxSubmodels = 500;
constexpr std::size_t kMaxJoins = 1000;
constexpr std::size_t kMaxNodes = 3000;  // Graphviz places so many in about a minute

// The output's name without its ending.
std::string output_stem(const DrawOptions& options) {
  if (options.output.empty()) return options.input.stem();
  return options.output.substr(0, options.output.size() - std::string(".dot").size());
}

}  // namespace

std::string option_error(const DrawOptions& options) {
  const std::filesystem::path path = options.output;
  if (options.output.empty() || path.extension() == ".dot" || path.extension() == ".svg") return "";
  return "--output " + options.output + ": expected one of the endings .dot, .svg";
}

int run_draw(const DrawOptions& options, const Streams& streams) {
  const ComposedModel model = read_input(options.input, streams);
  const Folding folding(model, Symmetry::kExact, {}, &streams.err);
  folding.require_sound();
  const NamedOrbits orbits = find_orbits(*folding.detector());
  const bool is_large = model.submodels.size() > kMaxSubmodels || model.joins.size() > kMaxJoins;
  const DrawnGraph graph =
      options.collapse || is_large ? drawn_orbits(model, orbits) : drawn_parts(model, orbits);
  std::string title = options.input.stem();
  for (const std::string& constant : options.input.constants) title += " " + constant;
  const std::string parts =
      counted(model.submodels.size(), "submodel") + ", " + counted(model.joins.size(), "join");
  const std::string stem = output_stem(options);
  NewFile file(stem + ".dot");
  file.append(composition_dot(graph, {title, parts, group_order(folding.orbit_lengths())}));
  file.commit();
  streams.out << title << ": " << parts << " in " << counted(graph.orbits.size(), "orbit")
              << (graph.is_collapsed ? ", a node for each orbit" : "") << "\nfile  " << stem << ".dot\n";
  if (graph.nodes.size() > kMaxNodes) {
    streams.err << "symfold: no picture of " << graph.nodes.size() << " nodes, more than " << kMaxNodes
                << "\n";
  } else if (draw_svg(stem + ".dot", stem + ".svg")) {
    streams.out << "file  " << stem << ".svg\n";
  } else {
    streams.err << "symfold: no picture: the program dot, of Debian's package graphviz, is not installed\n";
  }
  return kOk;
}

}  // namespace symfold
