// The built-ins a script calls: one table per receiver kind, looked up by
// exact, case-sensitive name when an expression is resolved. The caller
// checks the argument count against the table before the call.
#pragma once

#include <string_view>
#include <vector>

#include "script/script_objects.h"
#include "script/token_node.h"
#include "script/var_velan_script.h"

namespace velantis {

class TVelanScriptBase;

struct TBuiltinCall {
  TVelanScriptBase& script;
  std::vector<TVarVelanScript>& args;
  TVarVelanScript& result;
  const TTokenNode& at;

  double Number(size_t i) const;            // "Should be Numeric!"
  const std::string& Text(size_t i) const;  // "Should be String!"
  // "Should be an Object!"; "Error, wrong ptr at ObjectAtPtr" for a
  // reference that is no longer live.
  TScriptObject& Object(size_t i) const;
};

using TFreeFunction = void (*)(TBuiltinCall& call);
using TStringMethod = void (*)(TBuiltinCall& call, std::string& receiver);

struct TFreeBuiltin {
  std::string_view name;
  size_t argCount;
  TFreeFunction function;
};

struct TStringBuiltin {
  std::string_view name;
  size_t argCount;
  TStringMethod method;
};

// The index of the entry named name in a table of built-ins (anything with a
// `name`), -1 for a name not there. Names are compared exactly, letter case
// included.
template <typename TTable>
int IndexOfName(const TTable& table, std::string_view name) {
  int index = 0;
  for (const auto& entry : table) {
    if (entry.name == name) return index;
    ++index;
  }
  return -1;
}

// Indexes into the tables, -1 for a name not there.
int FindFreeBuiltin(std::string_view name);
const TFreeBuiltin& FreeBuiltin(int index);
int FindStringMethod(std::string_view name);
const TStringBuiltin& StringMethod(int index);

inline constexpr const char* kTooFewParameters = "Too few parametes in call to '%s' ";
inline constexpr const char* kUnknownFunction = "Unknown function '%s'";
inline constexpr const char* kObjectShouldBeString = "Object should be a string";

}  // namespace velantis
