// Choices the language leaves open:
// - `return` is caught by the call of the declared function it runs in and
//   becomes the call's value; a function that ends without one gives 0; a
//   `return` outside any function ends the script without an error;
// - a declared function's arguments are all evaluated before the first is
//   assigned to its parameter (the parameters share the one variable table);
// - a condition must be a number ("Should be Numeric") and holds when not 0;
// - a statement that starts with a "{}" block and goes on after it is
//   "Syntax Error" at the first token after the block;
// - blocks and declared calls nest at most TScriptLimits::maxDepth deep;
//   deeper is "Internal VelanScript Error".
#include "script/velan_script_base.h"

#include "script/grouping.h"
#include "script/resolved_expression.h"
#include "script/scanner.h"
#include "script/script_host.h"

namespace velantis {

class TVelanScriptBase::TDepthGuard {
public:
  TDepthGuard(TVelanScriptBase& script, const TTokenNode& at) : m_script(script) {
    if (++m_script.m_depth > m_script.m_limits.maxDepth) {
      --m_script.m_depth;
      throw TScriptError(kInternalError, at);
    }
  }
  ~TDepthGuard() { --m_script.m_depth; }
  TDepthGuard(const TDepthGuard&) = delete;
  TDepthGuard& operator=(const TDepthGuard&) = delete;

private:
  TVelanScriptBase& m_script;
};

namespace {

bool StartsExpression(int32_t kind) {
  switch (kind) {
    case kTokWord:
    case kTokNum:
    case kTokString:
    case kTokGroup:
    case kTokMinus:
    case kTokNot: return true;
    default: return false;
  }
}

std::vector<const TTokenNode*> Parameters(const TTokenNode& list) {
  std::vector<const TTokenNode*> names;
  for (const auto& child : list.children) {
    const TTokenNode* name = child.get();
    if (name->kind == kTokItem) {
      if (name->children.size() != 1) throw TScriptError(kSyntaxError, *name);
      name = name->children[0].get();
    }
    if (name->kind != kTokWord) throw TScriptError(kSyntaxError, *name);
    names.push_back(name);
  }
  return names;
}

}  // namespace

TVelanScriptBase::TVelanScriptBase() = default;
TVelanScriptBase::~TVelanScriptBase() = default;

void TVelanScriptBase::Load(std::string_view text) {
  m_root.reset();
  m_functions.clear();
  TTokenList tokens = ScanScript(text);
  ClassifyTokens(tokens);
  m_root = GroupTokens(std::move(tokens));
  CollectFunctions();
}

void TVelanScriptBase::CollectFunctions() {
  if (m_root->children.empty() || m_root->children.back()->kind != kTokFunctions) return;
  for (const auto& statement : m_root->children.back()->children) {
    const TTokenNode& declaration = *statement->children[0];
    TDeclaredFunction function;
    function.name = declaration.children[0]->text;
    function.declaration = &declaration;
    function.body = declaration.children[2].get();
    for (const TTokenNode* name : Parameters(*declaration.children[1]))
      function.parameters.push_back(&m_slots[SlotOf(name->text)]);
    if (FindDeclared(function.name) < 0) m_functions.push_back(std::move(function));
  }
}

void TVelanScriptBase::Ejecuta() {
  if (!m_root) return;
  m_depth = 0;
  try {
    ExecuteBlock(*m_root);
  } catch (const TReturnVelanScript&) {
  } catch (const TExitVelanScript&) {
  } catch (const TScriptError&) {
    throw;
  } catch (const std::exception&) {  // the system's own failures (memory, file system)
    throw TScriptError(kUndefError, *m_root);
  }
}

TScriptHost& TVelanScriptBase::Host() {
  if (!m_host) {
    m_ownHost = std::make_unique<TLocalScriptHost>();
    m_host = m_ownHost.get();
  }
  return *m_host;
}

void TVelanScriptBase::Echo(std::string_view text) {
  if (m_echoSink) m_echoSink(text);
  else m_output += text;
}

const TVarVelanScript* TVelanScriptBase::GetVariable(std::string_view name) const {
  const auto found = m_slotIndex.find(std::string(name));
  if (found == m_slotIndex.end() || !m_slots[found->second].assigned) return nullptr;
  return &m_slots[found->second].value;
}

void TVelanScriptBase::SetVariable(std::string_view name, TVarVelanScript value) {
  TSlot& slot = m_slots[SlotOf(std::string(name))];
  slot.value = std::move(value);
  slot.assigned = true;
}

uint32_t TVelanScriptBase::SlotOf(const std::string& name) {
  const auto [found, added] = m_slotIndex.try_emplace(name, static_cast<uint32_t>(m_slots.size()));
  if (added) m_slots.push_back({name, false, {}});
  return found->second;
}

int TVelanScriptBase::FindDeclared(std::string_view name) const {
  for (size_t i = 0; i < m_functions.size(); ++i)
    if (m_functions[i].name == name) return static_cast<int>(i);
  return -1;
}

void TVelanScriptBase::Resolve(const TTokenNode& expression) {
  expression.resolved = std::make_shared<const TResolvedExpression>(ResolveExpression(expression, *this));
}

const TVarVelanScript& TVelanScriptBase::Value(const TTokenNode& expression) {
  return Run(Resolved(expression));
}

void TVelanScriptBase::Evaluate(const TTokenNode& expression, TVarVelanScript& out) {
  out = Value(expression);
}

void TVelanScriptBase::CallDeclared(int index, TVarVelanScript* args, TVarVelanScript& out,
                                    const TTokenNode& at) {
  TDepthGuard guard(*this, at);
  const TDeclaredFunction& function = m_functions[index];
  for (size_t i = 0; i < function.parameters.size(); ++i) {
    TSlot& slot = *function.parameters[i];
    slot.value = std::move(args[i]);
    slot.assigned = true;
  }
  try {
    if (!ExecuteBody(*function.body, out)) out = TVarVelanScript(0.0);
  } catch (TReturnVelanScript& returned) {
    out = std::move(returned.value);
  }
}

void TVelanScriptBase::ExecuteBlock(const TTokenNode& block) {
  TDepthGuard guard(*this, block);
  for (const auto& child : block.children) {
    if (child->kind == kTokFunctions) continue;
    if (child->kind != kTokLinea) throw TScriptError(kUnknownTokenToExecute, *child);
    ExecuteStatement(*child);
  }
}

// A function's body block, as ExecuteBlock runs it, except a `return` that
// stands directly in it: nothing lies between that statement and the call,
// so its value goes straight to the call's result instead of being thrown
// (a throw costs microseconds). A return inside a loop or a nested block
// still throws TReturnVelanScript, which the call catches: the same value
// either way. True when a return ended the body.
bool TVelanScriptBase::ExecuteBody(const TTokenNode& body, TVarVelanScript& out) {
  TDepthGuard guard(*this, body);
  for (const auto& child : body.children) {
    if (child->kind == kTokFunctions) continue;
    if (child->kind != kTokLinea) throw TScriptError(kUnknownTokenToExecute, *child);
    const TTokenNode* first = child->children.empty() ? nullptr : child->children[0].get();
    if (first && first->kind == kTokReturn && !first->children.empty()) {
      out.CopyFrom(Value(*first->children[0]));
      return true;
    }
    ExecuteStatement(*child);
  }
  return false;
}

void TVelanScriptBase::ExecuteStatement(const TTokenNode& statement) {
  // Only separators (a lone ","): nothing the grouping could make a statement of.
  if (statement.children.empty()) throw TScriptError(kGrammarError, statement);
  const TTokenNode& first = *statement.children[0];
  const bool rewritten = !first.children.empty();
  switch (first.kind) {
    case kTokIf:
      if (rewritten) return RunIf(first);
      break;
    case kTokWhile:
      if (rewritten) return RunWhile(first);
      break;
    case kTokFor:
      if (rewritten) return RunFor(first);
      break;
    case kTokDo:
      if (rewritten) return RunDo(first);
      break;
    case kTokReturn:
      if (rewritten) RunReturn(first);
      break;
    case kTokBlock:
      if (statement.children.size() > 1) throw TScriptError(kSyntaxError, *statement.children[1]);
      return ExecuteBlock(first);
    default:
      if (StartsExpression(first.kind)) return Perform(Resolved(statement));
  }
  throw TScriptError(kUnknownTokenToExecute, first);
}

bool TVelanScriptBase::Condition(const TTokenNode& expression) {
  const TResolvedExpression& resolved = Resolved(expression);
  bool holds;
  if (Test(resolved, holds)) return holds;
  const TVarVelanScript& value = Run(resolved);
  if (!value.IsNumber()) throw TScriptError(kShouldBeNumeric, expression);
  return value.number != 0;
}

void TVelanScriptBase::RunIf(const TTokenNode& node) {
  if (Condition(*node.children[0])) ExecuteBlock(*node.children[1]);
  else if (node.children.size() > 2) ExecuteBlock(*node.children[2]);
}

void TVelanScriptBase::RunWhile(const TTokenNode& node) {
  while (Condition(*node.children[0])) ExecuteBlock(*node.children[1]);
}

void TVelanScriptBase::RunDo(const TTokenNode& node) {
  do ExecuteBlock(*node.children[0]);
  while (Condition(*node.children[1]));
}

void TVelanScriptBase::RunFor(const TTokenNode& node) {
  const TTokenNode& parts = *node.children[0];
  Perform(Resolved(*parts.children[0]));
  while (Condition(*parts.children[1])) {
    ExecuteBlock(*node.children[1]);
    Perform(Resolved(*parts.children[2]));
  }
}

void TVelanScriptBase::RunReturn(const TTokenNode& node) {
  TReturnVelanScript returned;
  Evaluate(*node.children[0], returned.value);
  throw returned;
}

}  // namespace velantis
