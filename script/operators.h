// What the binary operators compute. Numbers are doubles; "%", "<<" and ">>"
// work on the operands as 64-bit integers.
//
// Choices the language leaves open:
// - comparisons, "&&" and "||" yield 1 or 0; two strings compare byte by
//   byte, a string with a number is "Should be Numeric";
// - "+" of two numbers adds; with a string on either side it joins the two
//   texts, a number written as NumberText writes it;
// - "<<" and ">>" shift the integer left and right (arithmetic shift); a
//   count outside 0..63 gives 0;
// - "x % 0" is 0, so is the one remainder that overflows (min % -1);
// - "&&" and "||" do not short-circuit: both operands were reduced before.
#pragma once

#include <cstddef>
#include <cstdint>

#include "script/token_node.h"
#include "script/var_velan_script.h"

namespace velantis {

// x op y for the operators of two numbers that need no integer conversion
// (arithmetic and comparisons); false for the others. Inline: the
// interpreter calls it before the general function.
inline bool NumberOperator(int32_t op, double x, double y, double& result) {
  switch (op) {
    case kTokPlus: result = x + y; return true;
    case kTokMinus: result = x - y; return true;
    case kTokMul: result = x * y; return true;
    case kTokDiv: result = x / y; return true;
    case kTokLess: result = x < y ? 1 : 0; return true;
    case kTokGreater: result = x > y ? 1 : 0; return true;
    case kTokLessEqual: result = x <= y ? 1 : 0; return true;
    case kTokGreaterEqual: result = x >= y ? 1 : 0; return true;
    case kTokEqual: result = x == y ? 1 : 0; return true;
    case kTokNotEqual: result = x != y ? 1 : 0; return true;
    default: return false;
  }
}

// out = a op b for the binary operator kinds (and the operator of op=).
// Throws TScriptError at `at`; a joined string longer than maxString is
// "Internal VelanScript Error".
void ApplyOperator(int32_t op, const TVarVelanScript& a, const TVarVelanScript& b,
                   TVarVelanScript& out, const TTokenNode& at, size_t maxString);

// The operator an assignment kind computes with ("+=" -> "+").
int32_t CompoundBase(int32_t assignKind);

}  // namespace velantis
