// The resolved form of one expression: the operations its reduction passes
// perform, in the order they perform them, each writing a temporary. It is
// made once, at the expression's first evaluation, and run every time; an
// expression that never runs is never resolved and never fails.
//
// An expression whose passes stop at an error resolves to the operations
// done before the error, then a Raise of that error at the same token, so
// calls and assignments made before the failure still happen, in order.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "script/script_slot.h"
#include "script/token_node.h"
#include "script/var_velan_script.h"

namespace velantis {

class TVelanScriptBase;

struct TOperand {
  enum class TKind : uint8_t { None, Constant, Variable, Temp };
  TKind kind = TKind::None;
  uint32_t index = 0;
  const TTokenNode* token = nullptr;  // a variable's name, for its error
  TScriptSlot* slot = nullptr;        // a variable's slot
};

enum class TOpCode : uint8_t {
  Hook,          // the debugger's step, with the node about to be evaluated
  Raise,         // message, at
  Load,          // a: the value of a group or an argument, read now
  Negate,        // a
  Not,           // a
  Binary,        // a (operator) b
  Assign,        // a (a variable) = b
  Compound,      // a (a variable) op= b
  PostStep,      // a (a variable) ++ or --
  CallFree,      // built-in free function
  CallMethod,    // a: receiver; method of the receiver's kind
  CallDeclared,  // function declared in the script
  CallCommand,   // application command (Velantis.Name)
  Property,      // a: receiver; property target read (name for messages)
  SetProperty,   // a: receiver; property target = b
  ConfigRead,    // configuration key target
  ConfigWrite,   // configuration key target = a
  CallMonitor,   // Monitor method
};

struct TInstruction {
  TOpCode op = TOpCode::Hook;
  int32_t tokenKind = 0;  // operator of Binary, Compound and PostStep
  TOperand a, b;
  uint32_t dest = 0;      // temporary written
  uint32_t argStart = 0, argCount = 0;
  uint32_t argTemps = 0;  // CallDeclared: the first of argCount temporaries its values are copied to
  int32_t target = -1;    // built-in, method, declared function, property or key; -1 unknown
  int32_t method = -1;    // CallMethod: the object method's name id; -1 none has it
  uint32_t name = 0;      // index in names: the called or read name, or the message
  const TTokenNode* at = nullptr;
};

struct TResolvedExpression {
  std::vector<TInstruction> code;
  std::vector<TVarVelanScript> constants;
  std::vector<TOperand> args;
  std::vector<std::string> names;
  uint32_t temps = 0;
  TOperand result;
};

// Runs the reduction passes over the expression node's tokens once.
TResolvedExpression ResolveExpression(const TTokenNode& expression, TVelanScriptBase& script);

// The value of a number token's text ("12", "0x1f", ".5", "1.25").
double NumberValue(const std::string& text);

}  // namespace velantis
