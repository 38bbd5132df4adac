#include "tests/support/random_model.h"

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace symfold {
namespace {

// The letters stand for operands in the tables below.
enum Kind : char { kBool = 'B', kInt = 'I', kReal = 'R', kColour = 'C' };

struct Variable {
  Kind kind;
  std::string name;
  std::string values;
  std::string next;  // an expression to assign that stays inside `values`
};
const std::vector<Variable> kPrivate = {
    {kBool, "up", "bool", "B"},
    {kInt, "low", "[-2..1]", "I % 4 - 2"},
    {kInt, "one", "[3..3]", "min(3, max(I, 3))"},
    {kInt, "count", "[0..a]", "I % (a + 1)"},
    {kInt, "big", "[-32768..32767]", "(B ? 32767 : -32768)"},
    {kColour, "hue", "{red, green, blue}", "C"},
};
const std::vector<Variable> kShared = {
    {kBool, "flag", "bool", "B"}, {kBool, "gate", "bool", "B"}, {kInt, "pool", "[-1..1]", "I % 3 - 1"}};

const std::map<Kind, std::vector<std::string>> kLeaves = {
    {kBool, {"true", "false"}},
    {kInt, {"0", "1", "2", "-3", "7"}},
    {kReal, {"0.5", "0.1", "3.0", "2.0"}},
    {kColour, {}},  // a literal needs surroundings that tell its enumeration
};
const std::map<Kind, std::vector<std::string>> kOperations = {
    {kBool,
     {"(!B)", "(B && B)", "(B || B)", "(B ? B : B)", "(B == B)", "(I < I)", "(I == I)", "(I >= I)",
      "(R <= R)", "(C != C)", "(C > green)"}},
    {kInt,
     {"(I + I)", "(I - I)", "(I * I)", "(I div (1 + abs(I)))", "(I % (1 + abs(I)))", "(7 % I)",
      "min(I, I, I)", "max(I, I)", "abs(I)", "(-I)", "(B ? I : I)", "(9223372036854775807 - I)"}},
    {kReal,
     {"(R + R)", "(R - I)", "(I * R)", "min(R, I)", "max(R, R)", "abs(R)", "(-R)", "(B ? I : R)", "I",
      "(R / (1 + abs(I)))", "(2 / R)", "(R + 1e308)"}},
    {kColour, {"(B ? C : red)", "(B ? blue : C)"}},
};
const std::map<Kind, std::vector<std::string>> kQuantifiers = {
    {kBool, {"existsB", "forallB"}}, {kInt, {"sumI", "countB"}}, {kReal, {"sumR"}}, {kColour, {}}};

class ModelWriter {
 public:
  explicit ModelWriter(unsigned seed) : random_(seed) {}

  std::string write() {
    std::string text = type("T");
    text += type("U");
    text += system();
    is_observable_ = true;
    names_.clear();
    for (const std::string name : {"x", "y"}) {
      text += "label \"" + name + "\" = " + expression(kBool, 4, false) + ";\n";
      text += "reward \"" + name + "\" = " + expression(below(2) == 0 ? kInt : kReal, 4) + ";\n";
    }
    return text;
  }

 private:
  struct Name {
    Kind kind;
    std::string text;
  };

  std::size_t below(std::size_t bound) { return random_() % bound; }
  template <class Choice>
  Choice one_of(const std::vector<Choice>& choices) {
    return choices[below(choices.size())];
  }

  std::string type(const std::string& name) {
    std::string text = "type " + name + "(int a, real b) {\n";
    names_ = {{kInt, "a"}, {kReal, "b"}};
    for (const auto* kinds : {&kPrivate, &kShared}) {
      for (const Variable& variable : *kinds) {
        if (variable.kind != kColour && below(2) == 0) continue;  // every type knows the colours
        (kinds == &kPrivate ? privates_ : shared_)[name].push_back(variable);
        names_.push_back({variable.kind, variable.name});
        text += kinds == &kPrivate ? "  private " : "  shared ";
        text += variable.name + " : " + variable.values + ";\n";
      }
    }
    std::vector<Variable> variables = privates_[name];
    variables.insert(variables.end(), shared_[name].begin(), shared_[name].end());
    for (std::size_t i = variables.empty() ? 0 : 1 + below(4); i > 0; --i) text += action(variables);
    return text + "}\n";
  }

  std::string action(std::vector<Variable> variables) {
    const std::string rate = expression(kReal, 2);
    std::string text = "  [act] " + (below(2) == 0 ? "true" : expression(kBool, 2, false)) + " -> ";
    text += below(50) == 0 ? rate : "abs(" + rate + ")";
    std::shuffle(variables.begin(), variables.end(), random_);
    for (std::size_t i = 0; i < std::min<std::size_t>(variables.size(), 2); ++i) {
      const bool is_bounded = below(100) > 0;
      text += (i == 0 ? " : " : ", ") + variables[i].name + " = ";
      text += filled(is_bounded ? variables[i].next : std::string(1, variables[i].kind), 2, false);
    }
    return text + ";\n";
  }

  std::string system() {
    std::string text = "system S {\n";
    std::map<std::string, std::vector<std::string>> unbound;  // shared variables, by value set
    for (std::size_t i = 0, n = 2 + below(4); i < n; ++i) {
      const std::string name = "s" + std::to_string(i);
      const std::string of_type = below(3) > 0 ? "T" : "U";
      text += "  " + name + " : " + of_type + (below(4) == 0 ? "(2, 0.1);\n" : "(1, 0.1);\n");
      for (const Variable& variable : shared_[of_type]) {
        unbound[variable.values].push_back(name + "." + variable.name + "; ");
      }
    }
    int joins = 0;
    for (auto& [values, members] : unbound) {
      std::shuffle(members.begin(), members.end(), random_);
      std::string entries;
      for (std::size_t i = 0; i < members.size(); ++i) {
        entries += members[i];
        if (i + 1 < members.size() && below(3) > 0) continue;
        text += "  join j" + std::to_string(joins++) + " { " + entries + "}\n";
        entries.clear();
      }
    }
    return text + "}\n";
  }

  // `/` is for rates and rewards only.
  std::string expression(Kind kind, std::size_t depth, bool may_divide = true) {
    if (is_observable_ && depth > 1 && below(3) > 0 && kind != kColour) {
      return quantifier(one_of(kQuantifiers.at(kind)), depth, may_divide);
    }
    if (depth > 0 && below(4) > 0) return filled(one_of(kOperations.at(kind)), depth - 1, may_divide);
    std::vector<std::string> choices = kLeaves.at(kind);
    for (const Name& name : names_) {
      if (name.kind == kind) choices.insert(choices.end(), 4, name.text);
    }
    return one_of(choices);
  }

  std::string filled(const std::string& form, std::size_t depth, bool may_divide) {
    if (!may_divide && form.find('/') != std::string::npos) return "1.5";
    if (names_.empty() && form.find('C') != std::string::npos) return "true";
    std::string text;
    for (const char c : form) {
      const bool is_operand = kLeaves.contains(static_cast<Kind>(c));
      text += is_operand ? expression(static_cast<Kind>(c), depth, may_divide) : std::string(1, c);
    }
    return text;
  }

  std::string quantifier(const std::string& form, std::size_t depth, bool may_divide) {
    const std::size_t outer_names = names_.size();
    const std::string name = "p" + std::to_string(outer_names);
    const std::string of_type = below(3) > 0 ? "T" : "U";
    for (const auto* variables : {&privates_[of_type], &shared_[of_type]}) {
      for (const Variable& variable : *variables)
        names_.push_back({variable.kind, name + "." + variable.name});
    }
    const std::string range = of_type + (below(4) == 0 ? "(1, 0.1)" : "");
    const std::string body = expression(static_cast<Kind>(form.back()), depth - 1, may_divide);
    names_.resize(outer_names);
    return "(" + form.substr(0, form.size() - 1) + " " + name + " : " + range + " . " + body + ")";
  }

  std::mt19937 random_;
  std::map<std::string, std::vector<Variable>> privates_;  // by type
  std::map<std::string, std::vector<Variable>> shared_;
  std::vector<Name> names_;  // in scope
  bool is_observable_ = false;
};

}  // namespace

std::string random_model(unsigned seed) { return ModelWriter(seed).write(); }

}  // namespace symfold
