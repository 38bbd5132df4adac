// Time and memory from the text of a model to its labeller, by the number of its parts, and the time of a
// label.
//
//   large_groups [--symmetry fast|exact] [--only TEXT] [--limit SECONDS]
//
// A process for each row, which is ended at the limit (60 s). Seconds of processor time: reading and
// composing, then symmetries and labeller; the peak of the process's memory; microseconds per label of random
// states of two values. A row of a model that is refused shows the message.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <random>
#include <string>
#include <vector>

#include "host/language/model_reader.h"
#include "host/model/composed_model.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

const char* const kFreeParts = R"(
const int N = 1;
type Part { private on : bool = false; [flip] !on -> 1.0 : on = true; [flop] on -> 1.0 : on = false; }
system Parts { part[i : 0..N-1] : Part; }
)";

const char* const kJoinedParts = R"(
const int N = 1;
type Part { private on : bool = false; shared bus : bool = true;
  [flip] !on && bus -> 1.0 : on = true, bus = false; [flop] on -> 1.0 : on = false, bus = true; }
system Parts { part[i : 0..N-1] : Part; join bus { part[i].bus for i : 0..N-1; } }
)";

const char* const kWreath = R"(
const int N = 1;
type Part { private on : bool = false; shared bus : bool = true;
  [flip] !on && bus -> 1.0 : on = true, bus = false; [flop] on -> 1.0 : on = false, bus = true; }
system Parts { part[i : 0..N-1, j : 0..N-1] : Part; join bus[i : 0..N-1] { part[i, j].bus for j : 0..N-1; } }
)";

const char* const kRing = R"(
const int N = 1;
type Part { private on : bool = false; shared left : bool = true; shared right : bool = true;
  [flip] !on && left -> 1.0 : on = true, left = false; [flop] on && !right -> 1.0 : on = false, right = true; }
system Parts { part[i : 0..N-1] : Part;
  join link[i : 0..N-1] { part[i].left; part[(i + 1) % N].right; } }
)";

const char* const kFamilies = R"(
const int N = 1;
type Part(int family) { private on : bool = false;
  [flip] !on -> 1.0 + family : on = true; [flop] on -> 1.0 : on = false; }
system Parts { part[i : 0..N-1, j : 0..9] : Part(i); }
)";

const char* const kTorus = R"(
const int N = 1;
type Part { private on : bool = false; shared west : bool = true; shared east : bool = true;
  shared north : bool = true; shared south : bool = true;
  [flip] !on && west && north -> 1.0 : on = true, west = false, north = false;
  [flop] on && !east && !south -> 1.0 : on = false, east = true, south = true; }
system Parts { part[i : 0..N-1, j : 0..N-1] : Part;
  join row[i : 0..N-1, j : 0..N-1] { part[i, j].west; part[i, (j + 1) % N].east; }
  join column[i : 0..N-1, j : 0..N-1] { part[i, j].north; part[(i + 1) % N, j].south; } }
)";

struct Row {
  const char* name;
  const char* text;
  std::vector<int> sizes;
};

const std::vector<Row> kRows = {
    {"interchangeable parts", kFreeParts, {1'000, 3'000, 10'000, 30'000}},
    {"interchangeable parts on a join", kJoinedParts, {1'000, 3'000, 10'000, 30'000}},
    {"wreath N x N", kWreath, {20, 50, 100, 170}},
    {"ring", kRing, {1'000, 5'000, 16'000}},
    {"torus N x N", kTorus, {20, 50, 100}},
    {"N families of 10", kFamilies, {100, 500, 3'000}},
};

double processor_seconds() { return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC); }

// Prints the rest of the row.
void measure(const Row& row, int size, Symmetry symmetry) {
  const double start = processor_seconds();
  const ComposedModel model = read_model_text(row.name, row.text, {{"N", std::to_string(size)}});
  const double composed = processor_seconds();
  const Folding folding(model, symmetry);
  const auto labeller = folding.make_labeller();
  const double ready = processor_seconds();
  std::mt19937 random(1);
  std::vector<unsigned char> state(folding.state_size());
  double label_seconds = 0;
  int labels = 0;
  for (; labels < 1'000 && label_seconds < 2; ++labels) {
    for (std::size_t i = 0; i < state.size(); i += 2) state[i] = static_cast<unsigned char>(random() % 2);
    const double before = processor_seconds();
    labeller->find(state.data(), state.data());
    label_seconds += processor_seconds() - before;
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf(" %.2f | %.2f | %ld | %.1f | %zu |\n", composed - start, ready - composed,
              usage.ru_maxrss / 1024, 1e6 * label_seconds / labels, labeller->inexact_count());
}

int run(Symmetry symmetry, const std::string& only, unsigned limit) {
  std::printf("| model | N | composing, s | symmetries, s | peak, MiB | label, us | inexact |\n");
  std::printf("|---|---|---|---|---|---|---|\n");
  for (const Row& row : kRows) {
    if (std::string(row.name).find(only) == std::string::npos) continue;
    for (const int size : row.sizes) {
      std::printf("| %s | %d |", row.name, size);
      std::fflush(stdout);
      const pid_t child = fork();
      if (child == 0) {
        alarm(limit);
        try {
          measure(row, size, symmetry);
        } catch (const std::exception& error) {
          std::printf(" %s |\n", error.what());
        }
        std::fflush(stdout);
        _exit(0);
      }
      int status = 0;
      waitpid(child, &status, 0);
      if (!WIFEXITED(status)) std::printf(" ended by signal %d |\n", WTERMSIG(status));
    }
  }
  return 0;
}

}  // namespace
}  // namespace symfold

int main(int argc, char** argv) {
  symfold::Symmetry symmetry = symfold::Symmetry::kExact;
  std::string only;
  unsigned limit = 60;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    if (option == "--symmetry") symmetry = symfold::symmetry_named(argv[i + 1]).value_or(symmetry);
    if (option == "--only") only = argv[i + 1];
    if (option == "--limit") limit = static_cast<unsigned>(std::stoul(argv[i + 1]));
  }
  return symfold::run(symmetry, only, limit);
}
