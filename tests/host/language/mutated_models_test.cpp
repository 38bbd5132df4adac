// A damaged model is still a model, or it ends in errors with places in the text, and in nothing else.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/model_support.h"
#include "tests/support/reader_contract.h"
#include "tests/support/seeds.h"
#include "tests/support/text_mutator.h"

namespace symfold {
namespace {

TEST(MutatedModels, AreModelsOrErrors) {
  int models = 0;
  int errors = 0;
  const Seeds seeds(300);
  for (unsigned seed = seeds.first; seed < seeds.end; ++seed) {
    for (const std::string& name : example_names()) {
      const std::string text = TextMutator(seed).mutate(example_text(name));
      const Reading reading = read_by_contract(text);
      ASSERT_EQ(reading.breach, "") << "seed " << seed << " of " << name << "\n" << text;
      ++(reading.is_model ? models : errors);
    }
  }
  EXPECT_GT(models, 100);
  EXPECT_GT(errors, 100);
}

// The texts that the fuzzer starts from; its earlier findings are among them.
TEST(FuzzerSeeds, AreReadByContract) {
  const std::string directory = SYMFOLD_TESTS_DIR "/fuzz/seeds";
  EXPECT_TRUE(read_by_contract(file_text(directory + "/every_construct.sym")).is_model);
  for (const auto& seed : std::filesystem::directory_iterator(directory)) {
    EXPECT_EQ(read_by_contract(file_text(seed.path().string())).breach, "") << seed.path();
  }
}

}  // namespace
}  // namespace symfold
