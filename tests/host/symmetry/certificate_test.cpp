// The product's own check of symmetries against the definition, and what certificates refuse. The program
// that reads certificates is tested in tests/tools/.

#include "host/symmetry/certificate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>

#include "host/symmetry/composition_check.h"
#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"
#include "tests/support/random_model.h"
#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

// Of all permutations of the cells, as many are symmetries as detection says.
void expect_group(const ComposedModel& model) {
  const Folding folding(model, Symmetry::kFast);
  const CompositionCheck check(model, folding.order());
  std::vector<int> images(model.cell_count());
  std::iota(images.begin(), images.end(), 0);
  int count = 0;
  do {
    if (check.find_fault(images).empty()) ++count;
  } while (std::next_permutation(images.begin(), images.end()));
  const std::vector<int>& lengths = folding.orbit_lengths();
  EXPECT_EQ(count, std::accumulate(lengths.begin(), lengths.end(), 1, std::multiplies<>()));
}

TEST(CompositionCheck, TakesExactlyTheGroup) {
  expect_group(small_example("philosophers"));
  expect_group(small_example("two_speeds"));
  int models = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    const std::string text = random_model(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
    const ComposedModel model = read_model_text("m.sym", text);
    if (model.cell_count() > 7) continue;
    expect_group(model);
    ++models;
  }
  EXPECT_GT(models, 50);
}

TEST(CompositionCheck, SaysInNamesWhatIsWrong) {
  const ComposedModel model = small_example("philosophers");
  const Folding folding(model, Symmetry::kFast);
  const CompositionCheck check(model, folding.order());
  using Images = std::vector<int>;
  EXPECT_EQ(check.find_fault(Images{1, 2, 3, 0, 5, 6, 7, 4}), "");
  for (const Images& none : {Images{0, 1}, Images{0, 1, 2, 3, 4, 5, 6, 6}, Images{0, 1, 2, 3, 4, 5, 6, 8}}) {
    EXPECT_EQ(check.find_fault(none), "is no permutation of the model's 8 cells");
  }
  EXPECT_EQ(check.find_fault(Images{4, 1, 2, 3, 0, 5, 6, 7}),
            "carries phil_0 of type Philosopher to join fork_0");
  EXPECT_EQ(check.find_fault(Images{1, 0, 2, 3, 4, 5, 6, 7}),
            "carries join fork_0 to fork_0, but its members not to the members there");
}

// A labeller with a fault, from some label on.
class FaultyLabeller final : public Labeller {
 public:
  FaultyLabeller(Labeller& labeller, bool lies_about_label) : labeller_(labeller), lies_(lies_about_label) {}

  bool find(const void* state, void* label) override {
    const bool is_exact = labeller_.find(state, label);
    if (is_faulty && lies_) static_cast<char*>(label)[0] = 2;
    return is_exact;
  }
  void find_witness(short* witness) override {
    labeller_.find_witness(witness);
    if (is_faulty && !lies_) std::swap(witness[0], witness[1]);
  }
  std::size_t inexact_count() const override { return 0; }

  bool is_faulty = false;

 private:
  Labeller& labeller_;
  bool lies_;
};

TEST(Certificate, IsNotWrittenIfALabelOrWitnessIsWrong) {
  const TempDir directory;
  const ComposedModel model = small_example("philosophers");
  const Folding folding(model, Symmetry::kExact);
  const std::unique_ptr<Labeller> labeller = folding.make_labeller();
  for (const auto& [lies_about_label, fault] :
       {std::pair{false, "the witness carries join fork_"}, {true, "is not among the states"}}) {
    FaultyLabeller faulty(*labeller, lies_about_label);
    Exploration exploration(model, folding.order(), &faulty, false);
    exploration.run({}, [](const ExplorationFigures&) { return true; });
    // The initial state's label holds: the fault is one of a transition.
    int states = 0;
    const auto break_labeller = [&] {
      faulty.is_faulty = ++states > 2;
      return true;
    };
    try {
      Certificate certificate(model, folding, {"certificate", "4"});
      exploration.certify(certificate, break_labeller);
      ADD_FAILURE() << "certified: " << fault;
    } catch (const UnsoundSymmetryError& error) {
      EXPECT_NE(std::string(error.what()).find(fault), std::string::npos) << error.what();
    }
    EXPECT_TRUE(std::filesystem::is_empty("."));
  }
}

TEST(Certificate, IsNotWrittenIfInterrupted) {
  const TempDir directory;
  const ComposedModel model = small_example("philosophers");
  const Folding folding(model, Symmetry::kExact);
  const std::unique_ptr<Labeller> labeller = folding.make_labeller();
  Exploration exploration(model, folding.order(), labeller.get(), false);
  exploration.run({}, [](const ExplorationFigures&) { return true; });
  {
    Certificate certificate(model, folding, {"certificate", "4"});
    int states = 0;
    EXPECT_FALSE(exploration.certify(certificate, [&] { return ++states < 5; }));
  }
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

}  // namespace
}  // namespace symfold
