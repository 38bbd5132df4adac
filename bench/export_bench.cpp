// The chain of the philosophers N=11 (1.2 million states) written in every format, to the disk and flushed.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>

#include "bench/example_family.h"
#include "host/chain/exploration.h"
#include "host/export/chain_export.h"

namespace symfold {
namespace {

const MarkovChain& example_chain() {
  static const ComposedModel model = read_example({"philosophers", {"N=11"}});
  static Exploration exploration(model, {}, nullptr, true);
  static const MarkovChain chain = [] {
    exploration.run({}, [](const ExplorationFigures&) { return true; });
    return exploration.take_chain();
  }();
  return chain;
}

void write(benchmark::State& state, const char* ending) {
  const MarkovChain& chain = example_chain();
  const auto stem = std::filesystem::temp_directory_path() / ("symfold-bench-" + std::to_string(getpid()));
  std::string file;
  for (auto _ : state) file = write_chain(chain, stem.string() + ending).front();
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file));
  std::filesystem::remove(file);
  state.SetBytesProcessed(bytes * static_cast<std::int64_t>(state.iterations()));
  state.counters["megabytes"] = static_cast<double>(bytes) / 1e6;
  state.counters["states"] = static_cast<double>(chain.matrix.state_count());
  state.counters["transitions"] = static_cast<double>(chain.matrix.entry_count());
}

const bool kRegistered = [] {
  for (const char* ending : {".tra", ".sta", ".lab", ".srew", ".drn", ".mtx", ".aut"}) {
    benchmark::RegisterBenchmark(ending, write, ending)->Unit(benchmark::kMillisecond)->UseRealTime();
  }
  return true;
}();

}  // namespace
}  // namespace symfold
