#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <limits>
#include <new>
#include <ostream>
#include <system_error>

#include "cli/advice.h"
#include "cli/memory_cap.h"
#include "host/export/chain_export.h"
#include "host/model/model_error.h"

namespace symfold {
namespace {

constexpr unsigned long long kMaxCount =
    std::numeric_limits<std::size_t>::max() - 1;  // the rest is "no limit"

void require_no_error(const std::string& error) {
  if (!error.empty()) throw CLI::ValidationError(error);
}

void add_constants(CLI::App& app, ModelInput& input, const std::string& help, bool takes_range) {
  const auto take = [&input, takes_range](const std::vector<std::string>& texts) {
    require_no_error(read_constants(texts, input));
    if (input.range && !takes_range) {
      throw CLI::ValidationError("--const " + input.constants[input.range->position] +
                                 ": expected one value, got a range, which only 'explore' takes");
    }
  };
  app.add_option_function<std::vector<std::string>>("--const", take, help)->allow_extra_args(false);
}

void add_model(CLI::App& app, ModelInput& input) {
  app.add_option("MODEL", input.model, "Model file; - is standard input")->required();
}

const char* const kConstHelp = "Replace constants: --const N=8 or --const N=8,mu=0.5";

// Conversions wrap negative numbers, take nan and inf, and cut what is too large.
std::string refuse_other_than_number(const std::string& text) {
  const bool is_number = !text.empty() && text.find_first_of("0123456789.") == 0;
  return is_number ? std::string() : "expected a number, at least 0, got '" + text + "'";
}

std::string refuse_other_than_count(const std::string& text) {
  std::string error = refuse_other_than_number(text);
  errno = 0;
  const unsigned long long value = std::strtoull(text.c_str(), nullptr, 0);
  if (!error.empty() || (errno != ERANGE && value <= kMaxCount)) return error;
  return "expected a number, at most " + std::to_string(kMaxCount) + ", got '" + text + "'";
}

std::string refuse_other_than_seconds(const std::string& text) {
  std::string error = refuse_other_than_number(text);
  if (!error.empty() || std::isfinite(std::strtod(text.c_str(), nullptr))) return error;
  return "expected a finite number of seconds, got '" + text + "'";
}

// Replaces a number with a unit by the number of bytes.
std::string replace_by_bytes(std::string& text) {
  std::string error = refuse_other_than_count(text);
  if (!error.empty()) return error;
  static const CLI::AsSizeValue to_bytes(false);
  const std::string given = text;
  try {
    error = to_bytes(text);
  } catch (const CLI::ValidationError& refusal) {
    error = refusal.what();
  }
  if (error.empty() && refuse_other_than_count(text).empty()) return "";
  return "expected a number of bytes, for instance 500M, at most " + std::to_string(kMaxCount) + ", got '" +
         given + "'";
}

std::vector<std::string> symmetry_names() {
  std::vector<std::string> names;
  for (const Symmetry symmetry : kSymmetries) names.emplace_back(to_string(symmetry));
  return names;
}

// The subcommands with their options; `command` becomes the one that was chosen.
struct Commands {
  explicit Commands(const Streams& streams) {
    app.require_subcommand(1);
    app.set_version_flag("--version", SYMFOLD_VERSION);

    CLI::App* detect_app = app.add_subcommand("detect", "Find the symmetries of a model");
    add_model(*detect_app, detect.input);
    add_constants(*detect_app, detect.input, kConstHelp, false);
    detect_app->add_option("-o,--output", detect.directory,
                           "Run directory (default: the model's name, .symfold)");
    detect_app->add_flag("--no-log", detect.no_log, "Do not write detection.log");
    detect_app->add_flag("--json", detect.json, "Print the results as one JSON object");
    detect_app->callback(
        [this, streams] { command = [this, streams] { return run_detect(detect, streams); }; });

    CLI::App* explore_app =
        app.add_subcommand("explore", "Explore the state space of a model, folded or not");
    add_model(*explore_app, explore.input);
    add_constants(*explore_app, explore.input,
                  std::string(kConstHelp) + "; one of them over a range: N=3..10, N=3:10 or mu=0.1:0.1:0.5",
                  true);
    CLI::Option* symmetry_option =
        explore_app
            ->add_option("--symmetry", symmetry, "off, or fold by fast or exact labels (default: exact)")
            ->check(CLI::IsMember(symmetry_names()));
    explore_app
        ->add_flag("--compare", explore.compare, "Explore with all of them and print them side by side")
        ->excludes(symmetry_option);
    explore_app->add_option("--max-states", explore.max_states, "Stop at so many states")
        ->check(CLI::Validator(refuse_other_than_count, ""));
    explore_app->add_option("--max-memory", explore.max_memory, "Stop at so many bytes, for instance 500M")
        ->transform(CLI::Validator(replace_by_bytes, ""));
    explore_app->add_option("--time-limit", explore.max_seconds, "Stop after so many seconds")
        ->check(CLI::Validator(refuse_other_than_seconds, ""));
    explore_app->add_option("-o,--output", explore.directory,
                            "Run directory for the detection's files (default: none are written)");
    explore_app->add_flag("--quiet", explore.quiet, "No progress");
    explore_app->add_flag("--json", explore.json, "Print the results as one JSON object");
    explore_app
        ->add_option("--export", explore.exports,
                     "Write the chain; the ending names the format: " + export_formats())
        ->allow_extra_args(false);
    explore_app->add_option("--plot", explore.plot,
                            "Write the numbers of states over a range of values, --const N=3..10, as SVG");
    CLI::Option* check_option = explore_app->add_flag(
        "--check", explore.check, "Write a certificate of the folding, checked before it is written");
    explore_app
        ->add_option("--certificate", explore.certificate,
                     "The certificate's file (default: the model's name, .certificate)")
        ->needs(check_option);
    explore_app
        ->add_option("--check-sample", explore.check_sample,
                     "Certify about so many transitions, spread over all (default: 100000)")
        ->needs(check_option)
        ->check(CLI::Validator(refuse_other_than_count, ""));
    explore_app->callback([this, streams] {
      explore.symmetry = *symmetry_named(symmetry);
      require_no_error(option_error(explore));
      command = [this, streams] { return run_explore(explore, streams); };
    });

    CLI::App* check_app = app.add_subcommand("check", "Check a permutation file against its model");
    add_model(*check_app, check.input);
    add_constants(*check_app, check.input, kConstHelp, false);
    check_app->add_option("PERMFILE", check.perm_file, "Permutation file of the model, or its run directory")
        ->required();
    check_app->add_flag("--json", check.json, "Print the results as one JSON object");
    check_app->callback([this, streams] { command = [this, streams] { return run_check(check, streams); }; });

    CLI::App* draw_app =
        app.add_subcommand("draw", "Draw how a model is composed, coloured by its symmetries");
    add_model(*draw_app, draw.input);
    add_constants(*draw_app, draw.input, kConstHelp, false);
    draw_app->add_option("-o,--output", draw.output,
                         "NAME.dot or NAME.svg; both are written (default: the model's name)");
    draw_app->add_flag("--collapse", draw.collapse, "A node for each orbit, as is done for large models");
    draw_app->callback([this, streams] {
      require_no_error(option_error(draw));
      command = [this, streams] { return run_draw(draw, streams); };
    });

    CLI::App* label_app = app.add_subcommand("label", "Map states to their canonical labels");
    label_app->add_option("PERMFILE", label.perm_file, "Permutation file of the model, or its run directory")
        ->required();
    label_app->add_option("FILE", label.states, "States, one per line in hexadecimal; - is standard input");
    label_app->add_option("--model", label.input.model,
                          "The model, for states by names, phil_1.phase=left fork_1=false: a variable that "
                          "is not named has the model's initial value");
    add_constants(*label_app, label.input, std::string(kConstHelp) + ", as for the detection", false);
    label_app->add_flag("--names", label.names, "Labels by names too");
    CLI::Option* perm = label_app->add_flag(
        "--perm", label.perm,
        "Add to each label a permutation of the partitions that carries the state onto it");
    label_app->add_flag("--exact", label.exact, "The largest images: one label for each symmetry class");
    label_app->add_flag("--raw", label.raw, "States and labels as bytes, without separators")->excludes(perm);
    label_app->callback([this, streams] {
      require_no_error(option_error(label));
      command = [this, streams] { return run_label(label, streams); };
    });

    CLI::App* show_app = app.add_subcommand("show", "Print the tables of a permutation file");
    show_app->add_option("PERMFILE", show.perm_file, "Permutation file of a model, or its run directory")
        ->required();
    show_app->add_flag("--json", show.json, "Print the tables as one JSON object");
    show_app->callback([this, streams] { command = [this, streams] { return run_show(show, streams); }; });

    CLI::App* help_app = app.add_subcommand("help", "Print the options of a subcommand");
    help_app->add_option("SUBCOMMAND", help_topic, "Its name; without one, all subcommands are listed");
    help_app->callback([this, streams] { command = [this, streams] { return run_help(streams); }; });
  }

  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const CLI::App* each : app.get_subcommands({})) names.push_back(each->get_name());
    return names;
  }

  // Returns kUsage and prints what to type instead if there is no such subcommand.
  int require_subcommand(const std::string& name, const Streams& streams) const {
    const std::vector<std::string> known = names();
    if (std::find(known.begin(), known.end(), name) != known.end()) return kOk;
    streams.err << "symfold: error: " << subcommand_advice(name, known) << "\n";
    return kUsage;
  }

  int run_help(const Streams& streams) const {
    const int code = help_topic.empty() ? kOk : require_subcommand(help_topic, streams);
    if (code != kOk) return code;
    const CLI::App* const topic = help_topic.empty() ? &app : app.get_subcommand(help_topic);
    const std::string above = help_topic.empty() ? app.get_name() : app.get_name() + " " + help_topic;
    streams.out << app.get_formatter()->make_help(topic, above, CLI::AppFormatMode::Normal);
    return kOk;
  }

  CLI::App app{"symfold finds the symmetries of composed models and folds their state spaces", "symfold"};
  CheckOptions check;
  DetectOptions detect;
  DrawOptions draw;
  ExploreOptions explore;
  std::string symmetry = to_string(explore.symmetry);
  LabelOptions label;
  ShowOptions show;
  std::string help_topic;
  std::function<int()> command;
};

int run_chosen(int argc, const char* const* argv, const Streams& streams) {
  Commands commands(streams);
  const std::string first = argc > 1 ? argv[1] : "-";
  if (!first.starts_with('-')) {
    const int code = commands.require_subcommand(first, streams);
    if (code != kOk) return code;
    // An option that takes a value would take --help for it.
    if (std::find(argv + 2, argv + argc, std::string_view("--help")) != argv + argc) {
      commands.help_topic = first;
      return commands.run_help(streams);
    }
  }
  try {
    commands.app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return commands.app.exit(error, streams.out, streams.err) == 0 ? kOk : kUsage;
  }
  return commands.command();
}

// Allocates nothing.
int report_memory(const Streams& streams) {
  streams.err << "symfold: error: out of memory\n";
  RefusalWatch::note_told();
  return kLimitReached;
}

// Says what ended a command.
int run_reporting(int argc, const char* const* argv, const Streams& streams) {
  try {
    return run_chosen(argc, argv, streams);
  } catch (const UnreadableModelError& error) {
    streams.err << error.what() << "\n";
    return kBadFile;
  } catch (const ModelError& error) {
    streams.err << error.what() << "\n";
    return kModelError;
  } catch (const GroupLimitError& error) {
    streams.err << "symfold: " << error.what() << "\n";
    return kLimitReached;
  } catch (const UnsoundSymmetryError& error) {
    streams.err << "symfold: " << error.what() << "\n";
    return kCheckFailed;
  } catch (const std::logic_error& error) {
    streams.err << "symfold: internal error: " << error.what() << "\n";
    return kInternalError;
  } catch (const std::bad_alloc&) {
    return report_memory(streams);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::not_enough_memory) return report_memory(streams);
    streams.err << "symfold: " << error.what() << "\n";
    return kBadFile;
  } catch (const std::exception& error) {
    streams.err << "symfold: " << error.what() << "\n";
    return kBadFile;
  }
}

// Whatever a command has found, it has failed if its results did not arrive.
int require_written(int code, const Streams& streams) {
  errno = 0;
  const bool is_flushed = streams.out.rdbuf()->pubsync() == 0;
  const int reason = errno;
  if (is_flushed && streams.out) return code;
  streams.err << "symfold: error: cannot write the results";
  if (!is_flushed && reason != 0) streams.err << ": " << std::strerror(reason);
  streams.err << "\n";
  return kBadFile;
}

}  // namespace

int run_command_line(int argc, const char* const* argv, const Streams& streams) noexcept {
  const RefusalWatch watch;
  int code = run_reporting(argc, argv, streams);
  if (watch.has_untold_refusal()) code = report_memory(streams);
  return require_written(code, streams);
}

}  // namespace symfold
