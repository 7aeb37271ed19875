// A script value: a number (double; booleans are 1 and 0), an 8-bit string
// or a reference to an application object. A reference is the object's
// reference number (see script_objects.h) kept in `number`, so copying one
// costs what copying a number does.
#pragma once

#include <cstdint>
#include <string>

namespace velantis {

struct TVarVelanScript {
  enum class TKind : unsigned char { Number, String, Object };

  TKind kind = TKind::Number;
  double number = 0;
  std::string text;

  TVarVelanScript() = default;
  explicit TVarVelanScript(double n) : number(n) {}
  explicit TVarVelanScript(std::string s) : kind(TKind::String), text(std::move(s)) {}

  bool IsNumber() const { return kind == TKind::Number; }
  bool IsString() const { return kind == TKind::String; }
  bool IsObject() const { return kind == TKind::Object; }
  // The reference number of an object value.
  uint32_t Reference() const { return static_cast<uint32_t>(number); }
  void SetObject(uint32_t reference) {
    kind = TKind::Object;
    number = reference;
  }
  void SetNumber(double n) {
    kind = TKind::Number;
    number = n;
  }
  // A copy that leaves this value's string storage alone unless the value
  // copied is a string (a number's text is never read).
  void CopyFrom(const TVarVelanScript& other) {
    if (other.IsString()) return void(*this = other);
    kind = other.kind;
    number = other.number;
  }
  void SetString(std::string s) {
    kind = TKind::String;
    text = std::move(s);
  }
  // The value as a string joins it: a string as it is, a number (and a
  // reference, by its number) as NumberText writes it.
  std::string AsText() const;
};

// Integral values below 2^53 without decimals ("3", "-4"), others in the
// shortest form that reads back to the same double ("0.5", "1e+300").
std::string NumberText(double value);

// The number as a 64-bit integer for "%", "<<" and ">>": truncated, NaN is 0
// and values beyond the range take its nearest end.
long long ToInt64(double value);

}  // namespace velantis
