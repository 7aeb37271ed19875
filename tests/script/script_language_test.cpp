// The language run end to end, one table per area: each row is a script
// and what it leaves (see Outcome).
#include <gtest/gtest.h>

#include "tests/script/script_outcome.h"

namespace velantis {
namespace {

using TCase = TScriptCase;

TEST(ScriptLanguage, Precedence) {
  const TCase cases[] = {
      {"v = 1 - 2 + 3;", "v=-4"},
      {"x = 7 % 4 + 1; v = x;", "v=7"},
      {"v = 2 * 3 / 6 * 2;", "v=0.5"},
      {"v = 1 < 2 > 0;", "v=0"},
      {"v = 2 >= 1 <= 0;", "v=0"},
      {"v = 1 != 2 == 0;", "v=1"},
      {"v = 3 > 2 < 1;", "v=0"},
      {"v = 1 << 3 >> 1;", "v=4"},
      {"v = 1 || 0 && 0;", "v=1"},
      {"v = 1; v += 1 && 0;", "v=2"},
      {"v = 2; v *= 3 + 1;", "v=8"},
      {"v = 9; v -= 2 * 3;", "v=3"},
      {"v = 9; v /= 2 + 1;", "v=3"},
      {"v = 4 - 1 == 3;", "v=1"},
      {"v = 1 + 2 == 3 + 0 != 0;", "v=1"},
      {"v = (-7 % 3);", "v=-1"},
      {"v = (7 % 0);", "v=0"},
      {"v = (1 - 2) + 3;", "v=2"},
      {"v = 2 - -3;", "v=5"},
      {"a=-1; v = a;", "v=-1"},
      {"v = -(2) * 3;", "v=-6"},
      {"a = 4; v = - a;", "v=-4"},
      {"v = !0 + !5;", "v=1"},
      {"i = 5; j = i++; v = i * 10 + j;", "v=65"},
      {"i = 5; i--; v = i;", "v=4"},
      // Each comparison once true and once false at its edge, numbers then strings.
      {"v = (1 == 1) + (1 == 2) * 2 + (1 != 2) * 4 + (2 > 1) * 8 + (1 > 1) * 16 + (1 < 2) * 32 + "
       "(2 < 2) * 64 + (1 >= 2) * 128 + (2 >= 2) * 256 + (2 <= 1) * 512 + (1 <= 1) * 1024;",
       "v=1325"},
      {"v = (\"a\" == \"a\") + (\"a\" == \"b\") * 2 + (\"a\" != \"b\") * 4 + (\"b\" > \"a\") * 8 + "
       "(\"a\" > \"a\") * 16 + (\"a\" < \"b\") * 32 + (\"a\" < \"a\") * 64 + (\"a\" >= \"b\") * 128 + "
       "(\"a\" >= \"a\") * 256 + (\"b\" <= \"a\") * 512 + (\"a\" <= \"a\") * 1024;",
       "v=1325"},
      {"v = \"n=\" + 1.5 + 2;", "v=n=1.52"},
      {"v = 1 + 2 + \"x\";", "v=3x"},
      {"v = true + true + false;", "v=2"},
  };
  for (const TCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

TEST(ScriptLanguage, Scanning) {
  const TCase cases[] = {
      {"v = \"ab\" \"cd\";", "v=abcd"},
      {"v = .5;", "v=0.5"},
      {"v = 1.25;", "v=1.25"},
      {"v = 0x1f;", "v=31"},
      {"v = 0xA + 0;", "v=10"},
      {"v = 'x\"y' + \"a\\tb\\\\c\\\"d\\q\\r\\n\";", "v=x\"ya\tb\\c\"dq\r\n"},
      {"v = \"\\q\"", "v=q"},
      {"// v = 1;\r\nv\t= 2; /* v = 3; */", "v=2"},
      {"// v = 1;\rv = 3;", "v=3"},
      {"/* open comment", ""},
      {"", ""},
      {"v = 12ab;", "|Syntax Error@4-7"},
      {"v = 1x5;", "v=5"},
      {"a ?= 1;", "|Syntax Error: Unknown symbol: ?=@2-3"},
      {"a = 1 +++ 2;", "|Syntax Error: Unknown symbol: +++@6-8"},
      {". 5;", "|Syntax Error@0-0"},
      {"v = 5.", "|Syntax Error@5-5"},
      {"v = \"open;", "|Syntax Error@4-4"},
      {"v = (1;", "|Syntax Error@4-4"},
      {"v = 1);", "|Syntax Error@5-5"},
      {"v = (1];", "|Syntax Error@6-6"},
  };
  for (const TCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

TEST(ScriptLanguage, ControlStructures) {
  const TCase cases[] = {
      {"a = 1; if (a) v = 1; else v = 2;", "v=1"},
      {"a = 0; if (a) v = 1; else v = 2;", "v=2"},
      {"a = 0; if (a) { v = 1; } else { v = 2; };", "v=2"},
      {"x = 2; if (x == 1) v = 1; else if (x == 2) v = 2; else v = 3;", "v=2"},
      {"x = 5; if (x == 1) v = 1; else if (x == 2) v = 2; else v = 3;", "v=3"},
      {"v = 0; if (0) if (1) v = 1; else v = 2;", "v=0"},
      {"v = 0; do { v = v + 1; } while (v < 3);", "v=3"},
      {"v = 7; do { v = v + 1; } while (0);", "v=8"},
      {"v = 0; while (v < 4) v++;", "v=4"},
      {"v = 5; v--; v--; w = \"s\"; w++;", "v=3|Should be Numeric@27-28"},
      {"v = 0; for (i = 0; i < 5; i++) v += i;", "v=10"},
      {"v = 0; for (i = 0; i < 3; i++) { for (j = 0; j < 3; j++) { v = v + 1; }; };", "v=9"},
      {"v = 1; { v = 2; };", "v=2"},
      {"do { x = 1; };", "|Syntax Error@0-1"},
      {"do { x = 1; } until (x);", "|Syntax Error@14-18"},
      {"for (i = 0; i < 3) { }", "|Syntax Error@4-17"},
      {"if a v = 1;", "|Syntax Error@3-3"},
      {"while (1) { } v = 1;", "|Syntax Error@14-14"},
      {"while (0);", "|Syntax Error@0-4"},
      {"return;", "|Syntax Error@0-5"},
      {"{ } v = 1;", "|Syntax Error@4-4"},
      {"else v = 1;", "|Unknown token to execute@0-3"},
      {"v = 1; else v = 2;", "v=1|Unknown token to execute@7-10"},
      {"+ 1;", "|Unknown token to execute@0-0"},
      {"v = 1; , ;", "v=1|Internal VelanScript Grammar Error@7-7"},
      {"if (\"a\") v = 1;", "|Should be Numeric@3-7"},
      // A loop's condition of two values: strings, a string with a number,
      // a variable not yet assigned.
      {"s = \"b\"; v = 0; while (s > \"a\") { s = \"a\"; v++; };", "v=1"},
      {"s = \"1\"; v = 0; while (s < 2) v++;", "v=0|Should be Numeric@25-25"},
      {"v = 0; while (v < k) v++;", "v=0|Unknown variable 'k'@18-18"},
      {"Echo(\"a\"); return 1; Echo(\"b\");", "a"},
  };
  for (const TCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

TEST(ScriptLanguage, DeclaredFunctions) {
  const TCase cases[] = {
      {"function f(k) { while (1) { for (q = 0; q < 9; q++) { if (q == k) return q * 10; }; }; }; v = f(3);", "v=30"},
      {"function g() { return 5; }; v = g() -1;", "v=4"},
      // Returns straight from the body and from inside a block give the same.
      {"function f(a) { if (a) { return \"x\" + a; }; return \"y\" + a; }; v = f(1) + f(0);", "v=x1y0"},
      {"function f(a) { b = a * 2; }; r = f(4); v = a * 100 + b * 10 + r;", "v=480"},
      {"function f(x, y) { return x - y; }; x = 1; y = 5; v = f(y, x);", "v=4"},
      // One variable table: the inner call changes n before "*" reads it.
      {"function fact(n) { if (n < 2) return 1; return n * fact(n - 1); }; v = fact(5);", "v=1"},
      {"function f(a) { return a; }; v = 1; f(Echo(\"x\"), 2);",
       "xv=1|Wrong number of variables in call to declfunction@36-36"},
      {"function f() { f(); }; f();", "|Internal VelanScript Error@13-20"},
      {"function f(1) { };", "|Syntax Error@11-11"},
      {"if (1) { function f() { }; };", "|Unknown token to execute@9-24"},
      {"function f() { function g() { }; return 1; }; v = f();", "|Unknown token to execute@15-30"},
  };
  for (const TCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

// An expression with more temporaries than the interpreter sets apart at a
// time, stacked by a recursion that runs while its outer copies wait.
TEST(ScriptLanguage, LongExpressionInNestedCalls) {
  std::string ones;
  for (int i = 0; i < 299; ++i) ones += " + 1";
  EXPECT_EQ(Outcome("function f(n) { if (n < 1) return 0; return f(n - 1)" + ones + "; }; v = f(3);"),
            "v=897");
}

TEST(ScriptLanguage, Errors) {
  const TCase cases[] = {
      {"x = y + 1;", "|Unknown variable 'y'@4-4"},
      {"foo(1);", "|Unknown function 'foo'@0-2"},
      {"x = \"a\" * 2;", "|Should be Numeric@8-8"},
      {"x = \"a\" == 1;", "|Should be Numeric@8-9"},
      {"x = - \"a\";", "|Syntax Error@4-4"},
      {"s = \"a\"; x = -s;", "|Should be Numeric@13-13"},
      {"x = !\"a\";", "|Syntax Error@4-4"},
      {"x = 1 +;", "|Syntax Error@6-6"},
      {"= 1;", "|Unknown token to execute@0-0"},
      {"5 = 1;", "|Syntax Error@2-2"},
      {"x = 5++;", "|Syntax Error@5-6"},
      {"a b;", "|Syntax Error in linea word a word b @0-2"},
      // Every kind's printed text, in the tree as written.
      {"a = 1; a += 1 a -= 1 a *= 1 a /= 1 a++ a-- 0 * 1 0 / 1 0 + 1 0 - 1 0 == 1 0 > 1 0 < 1 0 >= 1 "
       "0 <= 1 0 != 1 0 << 1 0 >> 1 0 && 1 0 || 1 0 % 1 !0 \"s\" (1) [2] max(1, 2) { b; } "
       "else while return function for if do;",
       "|Syntax Error in linea word a += num 1 word a -= num 1 word a *= num 1 word a /= num 1 "
       "word a ++ word a -- num 0 * num 1 num 0 / num 1 num 0 + num 1 num 0 - num 1 num 0 == num 1 "
       "num 0 > num 1 num 0 < num 1 num 0 >= num 1 num 0 <= num 1 num 0 != num 1 num 0 tipo=30 "
       "num 1 num 0 tipo=31 num 1 num 0 && num 1 num 0 || num 1 num 0 % num 1 ! num 0 \"string\" s "
       "() num 1 [] num 2 word max function() item, num 1 item, num 2 {} linea word b else while "
       "return function decl for if do @7-208"},
      {"a 2 << 1;", "|Syntax Error in linea word a num 2 tipo=30 num 1 @0-7"},
      {"x = ();", "|Syntax Error in () @4-5"},
      {"x = b.;", "|Syntax Error in linea word x = word b . @0-5"},
      {"x = { };", "|{} Not admited in assing.@4-6"},
      {"x = [1];", "|Syntax Error@2-2"},
      {"s = \"a\"; x = s.Name;", "|This object has no 'Name' property@13-13"},
      {"Echo(\"a\") + ;", "a|Syntax Error@10-10"},
      {"Echo(\"a\"); x = (Echo(\"b\") + Echo(\"c\") * ) + Echo(\"d\");", "adbc|Syntax Error@38-38"},
      {"if (0) { x = y z; }; v = 1;", "v=1"},
  };
  for (const TCase& c : cases) EXPECT_EQ(Outcome(c.script), c.outcome) << c.script;
}

// The debugger's hook sees each expression before it is evaluated: the
// statement, then each group and argument inside it, in evaluation order.
TEST(ScriptLanguage, DebugHookSeesEveryEvaluatedNode) {
  TVelanScriptBase script;
  std::string seen;
  script.SetDebugHook(
      [](void* context, const TTokenNode& node) {
        *static_cast<std::string*>(context) += PrintNode(node) + "@" + std::to_string(node.start) + " ";
      },
      &seen);
  script.Load("x = (1 + 2) * max(3, 4); if (x) x = 0;");
  script.Ejecuta();
  EXPECT_EQ(seen, "linea@0 item,@18 item,@21 ()@4 ()@28 linea@32 ");
  EXPECT_EQ(script.GetVariable("x")->number, 0);
}

// The loaded tree by kind codes (the debugger's stable numbers), each node
// followed by its children in brackets.
void AppendCodes(const TTokenNode& node, std::string& out) {
  out += std::to_string(node.kind);
  if (node.children.empty()) return void(out += ' ');
  out += '[';
  for (const auto& child : node.children) AppendCodes(*child, out);
  out += "] ";
}

TEST(ScriptLanguage, TreeOfEveryControlStructure) {
  TVelanScriptBase script;
  script.Load("function f(a, b) { return a; }; for (i = 0; i < 1; i++) { if (i) x = 1; else x = \"s\"; }; "
              "while (0) { }; do { } while (0); f(1, 2)[0].n;");
  std::string codes;
  AppendCodes(*script.Root(), codes);
  EXPECT_EQ(codes,
            "39[42[47[40[42[1 25 2 ] 42[1 35 2 ] 42[1 23 ] ] 39[42[49[40[1 ] 39[42[1 25 2 ] ] "
            "39[42[1 25 6 ] ] ] ] ] ] ] 42[48[40[2 ] 39 ] ] 42[51[39 40[2 ] ] ] "
            "42[1 45[43[2 ] 43[2 ] ] 41[2 ] 12 1 ] "
            "54[42[53[1 45[43[1 ] 43[1 ] ] 39[42[52[42[1 ] ] ] ] ] ] ] ] ");
}

}  // namespace
}  // namespace velantis
