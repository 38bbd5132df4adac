// Malformed models (malformed_models.txt), one for each rule, and models that fail in a state
// (failing_models.txt), each with the whole text of its errors.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"
#include "tests/support/reader_contract.h"

namespace symfold {
namespace {

struct WrongModel {
  std::string name;
  std::string text;
  std::string message;
};

// Each model of a corpus is a line "=== " with its name, the text, a line "---", and the whole text of its
// errors.
std::vector<WrongModel> corpus(const std::string& file) {
  std::vector<WrongModel> models;
  std::ifstream in(SYMFOLD_TESTS_DIR "/host/language/" + file);
  std::vector<std::string> lines;
  const auto take = [&lines] {
    std::string text;
    for (const std::string& line : lines) text += (&line == lines.data() ? "" : "\n") + line;
    lines.clear();
    return text;
  };
  for (std::string line; std::getline(in, line);) {
    if (line == "---") {
      models.back().text = take();
    } else if (line.starts_with("=== ")) {
      if (!models.empty()) models.back().message = take();
      models.push_back({line.substr(4), "", ""});
    } else {
      lines.push_back(line);
    }
  }
  if (!models.empty()) models.back().message = take();
  return models;
}

TEST(ModelErrors, AreReportedToTheLetter) {
  const std::vector<WrongModel> models = corpus("malformed_models.txt");
  EXPECT_GE(models.size(), 60U);
  for (const WrongModel& model : models) {
    EXPECT_EQ(error_of(model.text), model.message) << model.name;
    EXPECT_EQ(read_by_contract(model.text).breach, "") << model.name;
  }
}

TEST(ModelErrors, OfStatesAreReportedToTheLetter) {
  const std::vector<WrongModel> models = corpus("failing_models.txt");
  EXPECT_GE(models.size(), 15U);
  for (const WrongModel& model : models) {
    EXPECT_EQ(explored(read_model_text("m.sym", model.text)).error, model.message) << model.name;
  }
}

TEST(ModelErrors, ShowThePartOfALongLineAroundThem) {
  const std::string blanks(500, ' ');
  const std::string text = "const int N" + blanks + "\xC3\xA9" + blanks;
  const std::string blanks_59(59, ' ');
  EXPECT_EQ(error_of(text), "m.sym:1:512: error: expected a token of the language, got '\xC3\xA9'\n..." +
                                blanks_59 + " \xC3\xA9" + blanks_59 + "...\n   " + blanks_59 + " ^");
}

TEST(ModelErrors, KeepControlCharactersOffTheTerminal) {
  EXPECT_EQ(
      error_of("const \x1B int"),
      "m.sym:1:7: error: expected a token of the language, got a control character\nconst ? int\n      ^");
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  return text.replace(text.find(what), what.size(), with);
}

TEST(ModelErrors, AreThoseOfTheLanguageDocument) {
  const std::string document = file_text(SYMFOLD_DOCS_DIR "/model-language.md");
  const std::size_t start = document.find("```\n") + 4;
  const std::string model = document.substr(start, document.find("```", start) - start);
  EXPECT_EQ(error_of(model), "");
  for (const std::string& text :
       {replaced(model, "!m.up", "m.up == 0"), replaced(model, "0..N-1; }", "0..N; }")}) {
    const std::string message = error_of(text, {}, "shop.sym");
    EXPECT_NE(document.find("```\n" + message + "\n```\n"), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace symfold
