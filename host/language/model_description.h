// A model file as a tree: what the parser builds and the checker completes.
//
// Expressions live in one vector, operands before their operators, and refer to each other by index, so that
// no destructor recurses and a model can be copied as it is. After checking, every expression has its type,
// constants and literals are plain values, and every remaining name says what it stands for (see Reference).
// The actions' guards, rates and assignments, the labels and the rewards stay in this form; other rooms give
// them their meaning.

#ifndef SYMFOLD_HOST_LANGUAGE_MODEL_DESCRIPTION_H
#define SYMFOLD_HOST_LANGUAGE_MODEL_DESCRIPTION_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/language/source_text.h"
#include "host/model/composed_model.h"
#include "host/model/value.h"

namespace symfold {

// The type of an expression. Enumerations with the same literals in the same order are one type.
struct StaticType {
  Scalar scalar = Scalar::kUnknown;
  int enumeration = -1;  // of kEnum: index into ModelDescription::enumerations

  bool operator==(const StaticType&) const = default;
  bool is_known() const { return scalar != Scalar::kUnknown; }
  bool is_number() const { return scalar == Scalar::kInt || scalar == Scalar::kReal; }
};

inline constexpr StaticType kBoolType{Scalar::kBool, -1};
inline constexpr StaticType kIntType{Scalar::kInt, -1};
inline constexpr StaticType kRealType{Scalar::kReal, -1};

// Limits of one model file.
inline constexpr int kMaxExpressionDepth = 256;
inline constexpr std::size_t kMaxExpressions = 2'000'000;
inline constexpr std::size_t kMaxIndices = 16;  // of one array, and arguments of one type
inline constexpr int kMaxQuantifierDepth = 8;

// Index into ModelDescription::expressions.
using ExprId = int;
inline constexpr ExprId kNoExpr = -1;

// Operands are in the order of the text. A quantifier has one operand, its body. min and max of more than two
// arguments are nested to the left.
enum class Op : std::uint8_t {
  kValue,
  kName,
  kMember,  // p.var
  kConditional,
  kOr,
  kAnd,
  kNot,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,      // real
  kDivideDown,  // div
  kRemainder,   // %
  kNegate,
  kMin,
  kMax,
  kAbs,
  kExists,
  kForAll,
  kSum,
  kCount
};

// Operators of which any number may follow one another: a + b - c * d is a run of two, a + b and the - on it.
// In a run, each operator is the first operand of the next. Runs may be long, so that no walk recurses along
// them: it starts at `innermost` and goes on by `outer`. The height counts a run once.
constexpr bool is_link(Op op) {
  return op == Op::kOr || op == Op::kAnd || (op >= Op::kAdd && op <= Op::kRemainder) || op == Op::kMin ||
         op == Op::kMax;
}

enum class Reference : std::uint8_t {
  kNone,
  kParameter,  // index: position among the type's parameters
  kIndex,      // index: position among the indices in scope, outermost first
  kVariable    // index: position among the type's variables; of a kMember, those of the quantifier's type
};

struct Expr {
  Op op = Op::kValue;
  Reference reference = Reference::kNone;
  StaticType type;
  Offset offset = 0;           // where the expression starts
  Offset operator_offset = 0;  // where its operator stands; of a kMember the part after the dot
  int height = 1;              // at most kMaxExpressionDepth
  int index = -1;              // see Reference
  int quantifier = -1;         // of a quantifier or kMember: index into ModelDescription::quantifiers
  std::array<ExprId, 3> operands{kNoExpr, kNoExpr, kNoExpr};
  ExprId innermost = kNoExpr;  // of a link: the link of its run whose first operand is none
  ExprId outer = kNoExpr;      // of a link: the one whose first operand it is
  Value value;
  std::string_view name;    // of a name; of a kMember the part before the dot
  std::string_view member;  // of a kMember the part after it
};

// A name in the text.
struct Name {
  std::string_view text;
  Offset offset = 0;
};

// Literals are numbered from 0 in the order of their declaration.
struct Enumeration {
  std::shared_ptr<const std::vector<std::string>> literals;
  std::unordered_map<std::string_view, int> ordinals;
};

// exists|forall|sum|count variable : type(arguments) . body
struct Quantifier {
  Name variable;
  Name type;
  bool has_arguments = false;  // if true, it ranges over the instances with these arguments only
  std::vector<ExprId> arguments;
  int type_index = -1;
};

struct ConstantDecl {
  Name name;
  StaticType type;
  ExprId value = kNoExpr;
  Value evaluated;  // of scalar kUnknown until known
};

struct ParameterDecl {
  Name name;
  StaticType type;
};

struct VariableDecl {
  Name name;
  bool is_shared = false;
  StaticType type;       // bool, int or an enumeration
  ExprId low = kNoExpr;  // of a range
  ExprId high = kNoExpr;
  std::vector<Name> literals;  // of an enumeration
  ExprId initial = kNoExpr;
  int slot = 0;  // position among the type's private or shared variables
};

// variable = value
struct Assignment {
  Name variable;
  ExprId value = kNoExpr;
  int variable_index = -1;  // into TypeDecl::variables
};

struct ActionDecl {
  Name name;
  ExprId guard = kNoExpr;
  ExprId rate = kNoExpr;
  std::vector<Assignment> assignments;
};

struct TypeDecl {
  Name name;
  std::vector<ParameterDecl> parameters;
  std::vector<VariableDecl> variables;
  std::vector<ActionDecl> actions;
};

// name : low..high
struct IndexRange {
  Name name;
  ExprId low = kNoExpr;
  ExprId high = kNoExpr;
};

struct SubmodelDecl {
  ExprId condition = kNoExpr;
  Name name;
  std::vector<IndexRange> ranges;  // empty: no array
  Name type;
  std::vector<ExprId> arguments;
  std::vector<Assignment> initials;
  int type_index = -1;
};

struct JoinEntryDecl {
  ExprId condition = kNoExpr;
  Name submodel;
  std::vector<ExprId> indices;
  Name variable;
  std::vector<IndexRange> ranges;  // after `for`
  int submodel_index = -1;         // into SystemDecl::submodels
  int variable_index = -1;         // into TypeDecl::variables
};

struct JoinDecl {
  ExprId condition = kNoExpr;
  Name name;
  std::vector<IndexRange> ranges;
  ExprId initial = kNoExpr;
  std::vector<JoinEntryDecl> entries;
};

struct SystemDecl {
  Name name;
  std::vector<SubmodelDecl> submodels;
  std::vector<JoinDecl> joins;
};

// A label (of type bool) or a reward (a number).
struct ObservableDecl {
  bool is_reward = false;
  Name name;  // without the quotes
  ExprId value = kNoExpr;
};

struct ModelDescription {
  explicit ModelDescription(std::shared_ptr<const SourceText> text) : source(std::move(text)) {}

  const Expr& expr(ExprId id) const { return expressions[static_cast<std::size_t>(id)]; }
  Expr& expr(ExprId id) { return expressions[static_cast<std::size_t>(id)]; }
  const TypeDecl& type(int index) const { return types[static_cast<std::size_t>(index)]; }
  const Enumeration& enumeration(const StaticType& type) const {
    return enumerations[static_cast<std::size_t>(type.enumeration)];
  }

  std::shared_ptr<const SourceText> source;  // keeps the names alive
  std::vector<Expr> expressions;
  std::vector<Enumeration> enumerations;
  std::vector<Quantifier> quantifiers;
  std::vector<ConstantDecl> constants;
  std::vector<TypeDecl> types;
  SystemDecl system;
  std::vector<ObservableDecl> observables;
};

// The value set of a type's variable in an instance of the type.
inline const ValueSet& values_of(const TypeInstance& instance, const VariableDecl& variable) {
  const auto slot = static_cast<std::size_t>(variable.slot);
  return (variable.is_shared ? instance.shared_variables : instance.private_variables)[slot].values;
}

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_MODEL_DESCRIPTION_H
