// Malformed models, one rule after the other, with everything that is said about them.

#include <gtest/gtest.h>

#include <string>

#include "tests/host/model_support.h"

namespace symfold {
namespace {

struct Malformed {
  const char* name;
  const char* text;
  const char* message;
};

const Malformed kMalformed[] = {
    {"NothingAtAll", R"()",
     R"(m.sym:1:1: error: expected a system, got the end of the file

^)"},
    {"UnknownDeclaration", R"(konst int N = 3;)",
     R"(m.sym:1:1: error: expected 'const', 'type', 'system', 'label' or 'reward', got 'konst'
konst int N = 3;
^)"},
    {"MissingSemicolon",
     R"(const int N = 3
type T { }
system S { a : T; })",
     R"(m.sym:2:1: error: expected ';', got the keyword 'type'
type T { }
^)"},
    {"MalformedNumber", R"(const int N = 3x;)",
     R"(m.sym:1:15: error: expected a number, got '3x'
const int N = 3x;
              ^)"},
    {"NumberTooLarge", R"(const int N = 9223372036854775808;)",
     R"(m.sym:1:15: error: expected a number in the range of a 64-bit int, got '9223372036854775808'
const int N = 9223372036854775808;
              ^)"},
    {"KeywordForName", R"(const int join = 3;)",
     R"(m.sym:1:11: error: expected a name, got the keyword 'join'
const int join = 3;
          ^)"},
    {"SingleAmpersand", R"(const bool b = true & false;)",
     R"(m.sym:1:21: error: expected '&&', got '&'
const bool b = true & false;
                    ^)"},
    {"NotUtf8", "const int \xff = 1;",
     R"(m.sym:1:11: error: expected UTF-8 text, got another byte
const int ? = 1;
          ^)"},
    {"ForeignCharacter", R"(const int café = 1;)",
     R"(m.sym:1:14: error: expected a token of the language, got 'é'
const int café = 1;
             ^)"},
    {"OpenComment", R"(type T { } /* no end)",
     R"(m.sym:1:12: error: expected '*/', got the end of the file
type T { } /* no end
           ^)"},
    {"OpenString", R"(label "a = true;)",
     R"(m.sym:1:7: error: expected '"' before the end of the line
label "a = true;
      ^)"},
    {"ChainedComparison", R"(const bool b = 1 < 2 < 3;)",
     R"(m.sym:1:22: error: expected ';', got '<'
const bool b = 1 < 2 < 3;
                     ^)"},
    {"NegationAsOperand", R"(const bool b = true == !false;)",
     R"(m.sym:1:24: error: expected an operand (a negation here needs parentheses), got '!'
const bool b = true == !false;
                       ^)"},
    {"Tabs",
     "type T {\n"
     "\tprivate\tx = 3;\n"
     "}",
     "m.sym:2:12: error: expected ':', got '='\n"
     "\tprivate\tx = 3;\n"
     "\t       \t  ^"},
    {"SecondSystem",
     R"(type T { }
system S { a : T; }
system R { a : T; })",
     R"(m.sym:3:1: error: expected one system, got a second; the first, 'S', is at 2:8
system R { a : T; }
^)"},
    {"SeveralSyntaxErrors",
     R"(type T { private : bool; private x : [0..2; shared s bool; }
system S { a T; join { } })",
     R"(m.sym:1:18: error: expected a name, got ':'
type T { private : bool; private x : [0..2; shared s bool; }
                 ^
m.sym:1:43: error: expected ']', got ';'
type T { private : bool; private x : [0..2; shared s bool; }
                                          ^
m.sym:1:54: error: expected ':', got the keyword 'bool'
type T { private : bool; private x : [0..2; shared s bool; }
                                                     ^
m.sym:2:14: error: expected ':', got 'T'
system S { a T; join { } }
             ^
m.sym:2:22: error: expected a name, got '{'
system S { a T; join { } }
                     ^)"},
    {"UnknownName",
     R"(const int N = M;
type T { }
system S { a : T; })",
     R"(m.sym:1:15: error: expected a constant, got the name 'M', unknown here
const int N = M;
              ^)"},
    {"ConstantUsedBefore",
     R"(const int N = M + 1;
const int M = 2;
type T { }
system S { a : T; })",
     R"(m.sym:1:15: error: expected a constant that is declared before, got 'M', declared at 2:11
const int N = M + 1;
              ^)"},
    {"NameTwice",
     R"(const int T = 1;
type T { }
system S { a : T; })",
     R"(m.sym:2:6: error: expected a new name, got 'T', declared at 1:11
type T { }
     ^)"},
    {"Overflow",
     R"(const int N = 9223372036854775807 * 2;
type T { }
system S { a : T; })",
     R"(m.sym:1:35: error: expected a result in the range of a 64-bit int
const int N = 9223372036854775807 * 2;
                                  ^)"},
    {"DivisionByZero",
     R"(const int N = 1 % (2 - 2);
type T { }
system S { a : T; })",
     R"(m.sym:1:17: error: division by zero
const int N = 1 % (2 - 2);
                ^)"},
    {"RealDivisionOutsideRates",
     R"(const int N = 4 / 2;
type T { }
system S { a : T; })",
     R"(m.sym:1:17: error: expected 'div', got '/', which is real and for rates only
const int N = 4 / 2;
                ^)"},
    {"WrongTypes",
     R"(type T { private x : [0..3]; private b : bool;
  [a] x -> b : x = 1.5, b = x;
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
}
system S { a : T; })",
     R"(m.sym:2:7: error: expected bool, got int
  [a] x -> b : x = 1.5, b = x;
      ^
m.sym:2:12: error: expected int or real, got bool
  [a] x -> b : x = 1.5, b = x;
           ^
m.sym:2:20: error: expected int, got real
  [a] x -> b : x = 1.5, b = x;
                   ^
m.sym:2:29: error: expected bool, got int
  [a] x -> b : x = 1.5, b = x;
                            ^
m.sym:3:7: error: expected int, real or an enumeration's value, got bool
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
      ^
m.sym:3:20: error: expected bool, got int
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
                   ^
m.sym:3:31: error: expected int, got real
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
                              ^
m.sym:3:49: error: expected int or real, got bool
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
                                                ^
m.sym:3:52: error: expected a variable of type 'T', got 'y'
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
                                                   ^
m.sym:3:59: error: expected one assignment to 'x', got another; the first is at 3:37
  [c] b < true || !x -> x div 2.0 : x = b ? 1 : b, y = 1, x = 2;
                                                          ^)"},
    {"LiteralClashes",
     R"(type T(int a) { private x : {a, b, b, x}; }
system S { t : T(1); })",
     R"(m.sym:1:30: error: expected a new name, got 'a', declared at 1:12
type T(int a) { private x : {a, b, b, x}; }
                             ^
m.sym:1:36: error: expected a new literal, got 'b' again
type T(int a) { private x : {a, b, b, x}; }
                                   ^
m.sym:1:39: error: expected a new name, got 'x', declared at 1:25
type T(int a) { private x : {a, b, b, x}; }
                                      ^)"},
    {"LiteralOfTwoSets",
     R"(type T { private x : {l, r}; private y : {n, l};
  [a] x == l && y == l && l == l -> 1 : y = r;
}
system S { a : T; })",
     R"(m.sym:2:32: error: expected an operand that decides between 'l' of {l, r} at 1:23 and of {n, l} at 1:46, got none
  [a] x == l && y == l && l == l -> 1 : y = r;
                               ^
m.sym:2:45: error: expected {n, l}, got {l, r}
  [a] x == l && y == l && l == l -> 1 : y = r;
                                            ^)"},
    {"RangeBeyondSixteenBits",
     R"(type T(int n) { private x : [0..n]; }
system S { a : T(32767); b : T(32768); })",
     R"(m.sym:1:30: error: expected a range inside [-32768..32767], lower end first, got [0..32768] (in T(32768))
type T(int n) { private x : [0..n]; }
                             ^)"},
    {"InitialOutsideItsSet",
     R"(type T(int n) { private x : [0..n] = 4; }
system S { a : T(5); b : T(3); })",
     R"(m.sym:1:38: error: expected a value of [0..3], got 4 (in T(3))
type T(int n) { private x : [0..n] = 4; }
                                     ^)"},
    {"VariableInARange",
     R"(type T { private x : [0..3]; private y : [0..x]; }
system S { a : T; })",
     R"(m.sym:1:46: error: expected a constant or a parameter, got the name 'x', unknown here
type T { private x : [0..3]; private y : [0..x]; }
                                             ^)"},
    {"Arguments",
     R"(type T(int n, real r) { }
system S { a : T(1); b : T(1.5, 2); c : U; })",
     R"(m.sym:2:16: error: expected 2 arguments of 'T' (declared at 1:6), got 1
system S { a : T(1); b : T(1.5, 2); c : U; }
               ^
m.sym:2:28: error: expected int, got real
system S { a : T(1); b : T(1.5, 2); c : U; }
                           ^
m.sym:2:41: error: expected a type's name, got 'U'
system S { a : T(1); b : T(1.5, 2); c : U; }
                                        ^)"},
    {"InitialOfShared",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a : T { s = true; x = 1; x = 2; z = 1; } join j { a.s; } })",
     R"(m.sym:2:20: error: expected a private variable of type 'T', got the shared variable 's', which takes its initial value from its join
system S { a : T { s = true; x = 1; x = 2; z = 1; } join j { a.s; } }
                   ^
m.sym:2:37: error: expected one initial value of 'x', got another; the first is at 2:30
system S { a : T { s = true; x = 1; x = 2; z = 1; } join j { a.s; } }
                                    ^
m.sym:2:44: error: expected a private variable of type 'T', got 'z'
system S { a : T { s = true; x = 1; x = 2; z = 1; } join j { a.s; } }
                                           ^)"},
    {"OverrideOutsideItsSet",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : 2..5] : T { x = i; } join j { a[i].s for i : 2..5; } })",
     R"(m.sym:2:34: error: expected a value of [0..3], got 4 (in a_4)
system S { a[i : 2..5] : T { x = i; } join j { a[i].s for i : 2..5; } }
                                 ^)"},
    {"NoSubmodel",
     R"(type T { }
system S { a[i : 1..0] : T; })",
     R"(m.sym:2:8: error: expected at least one submodel, got none
system S { a[i : 1..0] : T; }
       ^)"},
    {"NamesOfElements",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : 0..1] : T; a_1 : T; a : T; join j { a[i].s for i : 0..1; a_1.s; } })",
     R"(m.sym:2:38: error: expected a new name, got 'a', declared at 2:12
system S { a[i : 0..1] : T; a_1 : T; a : T; join j { a[i].s for i : 0..1; a_1.s; } }
                                     ^)"},
    {"NamesOfElementsClash",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { b[i : 0..1] : T; b_1 : T; join j { b[i].s for i : 0..1; } })",
     R"(m.sym:2:12: error: expected names of elements that nothing else has, got 'b_1', which also comes from 2:29
system S { b[i : 0..1] : T; b_1 : T; join j { b[i].s for i : 0..1; } }
           ^)"},
    {"WordOfTheViewer",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { Node : T; join j { Node.s; } })",
     R"(m.sym:2:12: error: expected a name that graph viewers take, got 'Node', a word of their language
system S { Node : T; join j { Node.s; } }
           ^)"},
    {"NegativeArrayIndex",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : -1..1] : T; join j { a[0].s; } })",
     R"(m.sym:2:12: error: expected indices of at least 0, got -1
system S { a[i : -1..1] : T; join j { a[0].s; } }
           ^)"},
    {"EntriesThatNameNothing",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : 0..1] : T;
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
})",
     R"(m.sym:3:12: error: expected a submodel's name, got 'b'
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
           ^
m.sym:3:17: error: expected 1 index of 'a' (declared at 2:12), got 0
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
                ^
m.sym:3:27: error: expected a shared variable of type 'T', got 't'
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
                          ^
m.sym:3:35: error: expected a shared variable of type 'T', got the private variable 'x', declared at 1:18
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
                                  ^
m.sym:3:40: error: expected int, got bool
  join j { b.s; a.s; a[0].t; a[0].x; a[true].s; }
                                       ^)"},
    {"NoSuchElement",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : 0..2] : T;
  join j[i : 0..2] { a[i + 1].s; }
  join k { a[i - 2].s for i : 0..1; }
})",
     R"(m.sym:3:22: error: expected a submodel that exists, got a_3 ('a' is declared at 2:12) (in j_2)
  join j[i : 0..2] { a[i + 1].s; }
                     ^
m.sym:4:14: error: expected an index of at least 0, got -2 (in k)
  join k { a[i - 2].s for i : 0..1; }
             ^)"},
    {"LeftOutElement",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { if (i != 1) a[i : 0..2] : T; join j { a[i].s for i : 0..2; } })",
     R"(m.sym:2:50: error: expected a submodel that exists, got a_1 ('a' is declared at 2:24) (in j)
system S { if (i != 1) a[i : 0..2] : T; join j { a[i].s for i : 0..2; } }
                                                 ^)"},
    {"ShadowedIndex",
     R"(type T { private x : [0..3]; shared s : bool; }
const int i = 0;
system S { a[i : 0..1] : T; join j { a[k].s for k : 0..1, k : 0..1; } })",
     R"(m.sym:3:14: error: expected a new name, got 'i', declared at 2:11
system S { a[i : 0..1] : T; join j { a[k].s for k : 0..1, k : 0..1; } }
             ^
m.sym:3:59: error: expected a new name, got 'k', declared at 3:49
system S { a[i : 0..1] : T; join j { a[k].s for k : 0..1, k : 0..1; } }
                                                          ^)"},
    {"Unbound",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a[i : 0..1] : T; join j { a[0].s; } })",
     R"(m.sym:2:12: error: expected a join of every shared variable, got none of a_1.s (declared at 1:37)
system S { a[i : 0..1] : T; join j { a[0].s; } }
           ^)"},
    {"BoundTwice",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a : T; b : T;
  join j { a.s; }
  join k { b.s; a.s; }
})",
     R"(m.sym:4:17: error: expected every shared variable in one join, got a.s in k and, at 3:12, in j
  join k { b.s; a.s; }
                ^)"},
    {"ValueSetsDisagree",
     R"(type T { private x : [0..3]; shared s : bool; }
type U { shared s : [0..1]; }
system S { a : T; b : U; join j { a.s; b.s; } })",
     R"(m.sym:3:40: error: expected the value set bool of a.s (at 3:35), got [0..1] of b.s
system S { a : T; b : U; join j { a.s; b.s; } }
                                       ^)"},
    {"InitialValuesDisagree",
     R"(type T { private x : [0..3]; shared s : bool; }
type U { shared s : bool = true; }
system S { a : T; b : U; join j { a.s; b.s; } })",
     R"(m.sym:3:40: error: expected the initial value false of a.s (at 3:35), got true of b.s
system S { a : T; b : U; join j { a.s; b.s; } }
                                       ^)"},
    {"InitialOfAJoin",
     R"(type T { private x : [0..3]; shared s : bool; }
type U { shared v : [0..2]; }
system S { a : T; b : U; join j = 1 { a.s; } join k[i : 3..3] = i { b.v; } })",
     R"(m.sym:3:35: error: expected bool, got int
system S { a : T; b : U; join j = 1 { a.s; } join k[i : 3..3] = i { b.v; } }
                                  ^)"},
    {"InitialOfAJoinBeyond",
     R"(type U { shared v : [0..2]; }
system S { b : U; join k[i : 3..3] = i { b.v; } })",
     R"(m.sym:2:38: error: expected a value of [0..2], got 3 (in k_3)
system S { b : U; join k[i : 3..3] = i { b.v; } }
                                     ^)"},
    {"EmptyJoin",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a : T; join j { a.s; } join l { } })",
     R"(m.sym:2:40: error: expected at least one entry of join 'l', got none
system S { a : T; join j { a.s; } join l { } }
                                       ^)"},
    {"EmptyJoinByConditions",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a : T; join j { a.s; } join k[i : 0..1] { if (i > 1) a.s; } })",
     R"(m.sym:2:40: error: expected at least one member of join k_0, got none
system S { a : T; join j { a.s; } join k[i : 0..1] { if (i > 1) a.s; } }
                                       ^)"},
    {"Observables",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { a : T; join j { a.s; } }
label "x" = a.s;
label "x" = exists p : U . p.x == 1;
reward "x" = sum p : T . p.s;
reward "y" = count p : T . p.z && p;
label "z" = forall T : T . true;)",
     R"(m.sym:3:13: error: expected a name that a quantifier introduces before '.', got 'a'
label "x" = a.s;
            ^
m.sym:4:7: error: expected a new name of a label, got "x", declared at 3:7
label "x" = exists p : U . p.x == 1;
      ^
m.sym:4:24: error: expected a type's name, got 'U'
label "x" = exists p : U . p.x == 1;
                       ^
m.sym:5:26: error: expected int or real, got bool
reward "x" = sum p : T . p.s;
                         ^
m.sym:6:30: error: expected a variable of type 'T', got 'z'
reward "y" = count p : T . p.z && p;
                             ^
m.sym:6:35: error: expected '.' and a variable behind 'p'
reward "y" = count p : T . p.z && p;
                                  ^)"},
    {"QuantifierElsewhere",
     R"(type T { private x : bool; [a] exists p : T . p.x -> 1 : x = !x; }
const int n = count p : T . p.x;
system S { a : T; }
label "l" = exists p : T . exists q : T(p.x) . q.x;)",
     R"(m.sym:2:15: error: expected a constant, got a quantifier, which labels and rewards have
const int n = count p : T . p.x;
              ^
m.sym:1:32: error: expected a constant, a parameter, a variable or a literal, got a quantifier, which labels and rewards have
type T { private x : bool; [a] exists p : T . p.x -> 1 : x = !x; }
                               ^
m.sym:4:39: error: expected 0 arguments of 'T' (declared at 1:6), got 1
label "l" = exists p : T . exists q : T(p.x) . q.x;
                                      ^)"},
    {"ErrorsInsideConstants",
     R"(const int N = (M > 0 ? 1 : 2);
const int K = (1 ? 1 : 2) + (true || 5 ? 1 : 0);
system S { })",
     R"(m.sym:1:16: error: expected a constant, got the name 'M', unknown here
const int N = (M > 0 ? 1 : 2);
               ^
m.sym:2:16: error: expected bool, got int
const int K = (1 ? 1 : 2) + (true || 5 ? 1 : 0);
               ^
m.sym:2:38: error: expected bool, got int
const int K = (1 ? 1 : 2) + (true || 5 ? 1 : 0);
                                     ^)"},
    {"UnreachableDivision",
     R"(type T { private x : [0..3]; shared s : bool; }
system S { if (1 div 0 == 1) a : T; })",
     R"(m.sym:2:18: error: division by zero (in a)
system S { if (1 div 0 == 1) a : T; }
                 ^)"},
};

class ModelErrors : public testing::TestWithParam<Malformed> {};

TEST_P(ModelErrors, AreReportedToTheLetter) { EXPECT_EQ(error_of(GetParam().text), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(All, ModelErrors, testing::ValuesIn(kMalformed),
                         [](const auto& given) { return std::string(given.param.name); });

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
