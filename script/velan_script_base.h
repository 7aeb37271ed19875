// TVelanScriptBase: the interpreter of the program's own command language.
// Load turns the text into a tree of token nodes (scanning, classification,
// grouping); Ejecuta walks the tree. Each expression is resolved once, at
// its first evaluation, into a short list of operations whose variables are
// bound to slots of the one variable table (see resolved_expression.h), and
// that list is what runs each time after.
//
// Failure: every error throws TScriptError with the language's message and
// the offsets of the token it concerns; the script ends there. An error
// found while loading is thrown by Load, before anything runs.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "script/script_error.h"
#include "script/script_objects.h"
#include "script/script_slot.h"
#include "script/temp_stack.h"
#include "script/token_node.h"
#include "script/var_velan_script.h"

namespace velantis {

struct TResolvedExpression;
class TScriptHost;

// Bounds that keep a run of untrusted text finite in memory and stack.
struct TScriptLimits {
  int maxDepth = 1000;                  // nested blocks and declared calls
  size_t maxStringLength = size_t{1} << 30;
  bool systemAccess = true;             // files, folders and Sleep
};

class TVelanScriptBase {
public:
  // Called with each node before it is evaluated (the debugger's step).
  using TDebugHook = void (*)(void* context, const TTokenNode& node);

  TVelanScriptBase();
  ~TVelanScriptBase();
  TVelanScriptBase(const TVelanScriptBase&) = delete;
  TVelanScriptBase& operator=(const TVelanScriptBase&) = delete;

  // Steps 1 to 7: scan, classify, group. Throws TScriptError.
  void Load(std::string_view text);
  // Runs the loaded script from its root. Throws TScriptError.
  void Ejecuta();

  void SetDebugHook(TDebugHook hook, void* context) {
    m_hook = hook;
    m_hookContext = context;
  }
  void SetLimits(const TScriptLimits& limits) { m_limits = limits; }
  const TScriptLimits& Limits() const { return m_limits; }

  // Echo's text goes to the sink when one is set, else it is kept in Output().
  void SetEchoSink(std::function<void(std::string_view)> sink) { m_echoSink = std::move(sink); }
  void Echo(std::string_view text);
  const std::string& Output() const { return m_output; }

  // Variables by name for the built-ins: nullptr when never assigned.
  const TVarVelanScript* GetVariable(std::string_view name) const;
  // Creates the variable when it does not exist.
  void SetVariable(std::string_view name, TVarVelanScript value);

  const TTokenNode* Root() const { return m_root.get(); }

  // The application side (not owned); a TLocalScriptHost of the script's
  // own until one is set.
  void SetHost(TScriptHost& host) { m_host = &host; }
  TScriptHost& Host();
  TScriptObjects& Objects() { return m_objects; }
  // A new object's value.
  TVarVelanScript Reference(std::shared_ptr<TScriptObject> object) {
    TVarVelanScript value;
    value.SetObject(m_objects.Add(std::move(object)));
    return value;
  }

  // For the resolver and the evaluator.
  using TSlot = TScriptSlot;
  struct TDeclaredFunction {
    std::string name;
    std::vector<TSlot*> parameters;
    const TTokenNode* declaration = nullptr;
    const TTokenNode* body = nullptr;
  };
  uint32_t SlotOf(const std::string& name);
  TSlot& Slot(uint32_t index) { return m_slots[index]; }
  int FindDeclared(std::string_view name) const;
  const TDeclaredFunction& Declared(int index) const { return m_functions[index]; }

  // Evaluates the expression node (a statement, a group, an item).
  void Evaluate(const TTokenNode& expression, TVarVelanScript& out);
  // Runs a declared function with its argument values (one per parameter;
  // they are moved into the parameters).
  void CallDeclared(int function, TVarVelanScript* args, TVarVelanScript& out, const TTokenNode& at);
  void CheckString(const TVarVelanScript& value, const TTokenNode& at) const;

private:
  std::unique_ptr<TTokenNode> m_root;
  std::deque<TSlot> m_slots;  // a deque: slots keep their address as the table grows
  std::unordered_map<std::string, uint32_t> m_slotIndex;
  std::vector<TDeclaredFunction> m_functions;
  TTempStack m_temps;
  TDebugHook m_hook = nullptr;
  void* m_hookContext = nullptr;
  TScriptLimits m_limits;
  int m_depth = 0;
  std::string m_output;
  std::function<void(std::string_view)> m_echoSink;
  TScriptHost* m_host = nullptr;
  std::unique_ptr<TScriptHost> m_ownHost;
  TScriptObjects m_objects;

  friend class TExpressionRunner;

  void CollectFunctions();
  void ExecuteBlock(const TTokenNode& block);
  bool ExecuteBody(const TTokenNode& body, TVarVelanScript& out);
  void ExecuteStatement(const TTokenNode& statement);
  bool Condition(const TTokenNode& expression);
  void RunFor(const TTokenNode& node);
  void RunIf(const TTokenNode& node);
  void RunWhile(const TTokenNode& node);
  void RunDo(const TTokenNode& node);
  [[noreturn]] void RunReturn(const TTokenNode& node);
  // The expression's value, valid until the next expression runs.
  const TVarVelanScript& Run(const TResolvedExpression& expression);
  const TVarVelanScript& Value(const TTokenNode& expression);
  // Resolved once, at the first evaluation; inline: every statement asks.
  const TResolvedExpression& Resolved(const TTokenNode& expression) {
    if (!expression.resolved) Resolve(expression);
    return *expression.resolved;
  }
  void Resolve(const TTokenNode& expression);
  bool Test(const TResolvedExpression& expression, bool& holds);
  void Perform(const TResolvedExpression& expression);

  class TDepthGuard;
};

}  // namespace velantis
