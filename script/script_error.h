// What ends a script: an error that points at a place in the script text, and
// the two unwinding signals that are not errors (a return, an Exit).
#pragma once

#include <stdexcept>
#include <string>

#include "script/token_node.h"
#include "script/var_velan_script.h"

namespace velantis {

// Message texts of the language; they are part of the interface, spelling
// included.
inline constexpr const char* kSyntaxError = "Syntax Error";
inline constexpr const char* kSyntaxErrorIn = "Syntax Error in ";
inline constexpr const char* kUnknownSymbol = "Syntax Error: Unknown symbol: ";
inline constexpr const char* kGrammarError = "Internal VelanScript Grammar Error";
inline constexpr const char* kInternalError = "Internal VelanScript Error";
inline constexpr const char* kUndefError = "Undef Error in TVelanScriptBase::Ejecuta";
inline constexpr const char* kUnknownTokenToExecute = "Unknown token to execute";
inline constexpr const char* kWrongDeclCount = "Wrong number of variables in call to declfunction";
inline constexpr const char* kShouldBeNumeric = "Should be Numeric";
inline constexpr const char* kShouldBeString = "Should be a String";
inline constexpr const char* kBlockInAssign = "{} Not admited in assing.";
inline constexpr const char* kValueNotAccepted = "Value not accepted in assign.";

// A script error; start and end are the offsets of the first and the last
// character of the token it concerns.
class TScriptError : public std::runtime_error {
public:
  TScriptError(const std::string& message, int start, int end)
      : std::runtime_error(message), m_start(start), m_end(end) {}
  TScriptError(const std::string& message, const TTokenNode& at)
      : TScriptError(message, at.start, at.end) {}
  int Start() const { return m_start; }
  int End() const { return m_end; }

private:
  int m_start, m_end;
};

// "Unknown variable 'x'" and the other texts with one name filled in.
std::string WithName(const char* format, const std::string& name);

// Thrown by `return`, caught by the call of the declared function.
struct TReturnVelanScript {
  TVarVelanScript value;
};

// Thrown by `Exit`: the script ends at once, without an error.
struct TExitVelanScript {};

}  // namespace velantis
