#include "script/operators.h"

#include <limits>
#include <string>

#include "script/script_error.h"

namespace velantis {

namespace {

double Numeric(const TVarVelanScript& value, const TTokenNode& at) {
  if (!value.IsNumber()) throw TScriptError(kShouldBeNumeric, at);
  return value.number;
}

double Bool(bool value) { return value ? 1 : 0; }

// Two strings by their bytes; a number with a string is not comparable
// (two numbers went through NumberOperator).
double CompareStrings(int32_t op, const TVarVelanScript& a, const TVarVelanScript& b, const TTokenNode& at) {
  if (!a.IsString() || !b.IsString()) throw TScriptError(kShouldBeNumeric, at);
  const int order = a.text.compare(b.text);
  switch (op) {
    case kTokEqual: return Bool(order == 0);
    case kTokNotEqual: return Bool(order != 0);
    case kTokGreater: return Bool(order > 0);
    case kTokLess: return Bool(order < 0);
    case kTokGreaterEqual: return Bool(order >= 0);
    default: return Bool(order <= 0);
  }
}

double Shift(int32_t op, double value, double count) {
  const long long x = ToInt64(value), n = ToInt64(count);
  if (n < 0 || n > 63) return 0;
  if (op == kTokShiftLeft) return static_cast<double>(static_cast<long long>(static_cast<unsigned long long>(x) << n));
  return static_cast<double>(x >> n);
}

double Remainder(double a, double b) {
  const long long x = ToInt64(a), y = ToInt64(b);
  if (y == 0 || (y == -1 && x == std::numeric_limits<long long>::min())) return 0;
  return static_cast<double>(x % y);
}

// The operators NumberOperator leaves: logical and integer ones.
double IntegerOrLogical(int32_t op, double x, double y) {
  switch (op) {
    case kTokAnd: return Bool(x != 0 && y != 0);
    case kTokOr: return Bool(x != 0 || y != 0);
    case kTokMod: return Remainder(x, y);
    default: return Shift(op, x, y);
  }
}

bool IsComparison(int32_t op) { return op >= kTokEqual && op <= kTokNotEqual; }

}  // namespace

int32_t CompoundBase(int32_t assignKind) {
  switch (assignKind) {
    case kTokAddAssign: return kTokPlus;
    case kTokSubAssign: return kTokMinus;
    case kTokMulAssign: return kTokMul;
    default: return kTokDiv;
  }
}

void ApplyOperator(int32_t op, const TVarVelanScript& a, const TVarVelanScript& b,
                   TVarVelanScript& out, const TTokenNode& at, size_t maxString) {
  if (op == kTokPlus && (a.IsString() || b.IsString())) {
    std::string joined = a.AsText() + b.AsText();
    if (joined.size() > maxString) throw TScriptError(kInternalError, at);
    out.SetString(std::move(joined));
    return;
  }
  const bool numbers = a.IsNumber() && b.IsNumber();
  if (IsComparison(op) && !numbers) return out.SetNumber(CompareStrings(op, a, b, at));
  const double x = Numeric(a, at), y = Numeric(b, at);
  double value;
  if (NumberOperator(op, x, y, value)) return out.SetNumber(value);
  out.SetNumber(IntegerOrLogical(op, x, y));
}

}  // namespace velantis
