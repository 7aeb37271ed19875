// The reduction passes of an expression, run once: instead of computing
// values they record the operation each reduction performs, in the order it
// performs it (see resolved_expression.h).
//
// The passes, in their fixed order, which is the precedence:
//   1 member access "a.b", indexing "a[i]" (a.Elem(i)) and calls;
//   2 parenthesised groups;  3 postfix "++", then "--";  4 unary "!" and "-";
//   5.. binary, one pass each: * / + - == > < >= <= != << >> += -= *= /= && || = %
// so "+" binds before "-" (a-b+c is a-(b+c)) and "%" after "=".
//
// The unary "-" rule depends on whether the token before it is "a number or
// an identifier". A token that an earlier pass reduced (the value of a call,
// a group, a postfix step or a unary operator) counts as a number there and
// as an operand, whatever value it has at run time; a member chain counts as
// an identifier. So "f() -1" subtracts, and "-(x)" negates.
#include <cstdlib>
#include <string>
#include <vector>

#include "script/application_commands.h"
#include "script/builtins.h"
#include "script/global_objects.h"
#include "script/object_methods.h"
#include "script/object_properties.h"
#include "script/resolved_expression.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

constexpr int32_t kReduced = -1;

constexpr int32_t kBinaryPasses[] = {
    kTokMul,       kTokDiv,       kTokPlus,      kTokMinus,     kTokEqual,
    kTokGreater,   kTokLess,      kTokGreaterEqual, kTokLessEqual, kTokNotEqual,
    kTokShiftLeft, kTokShiftRight, kTokAddAssign, kTokSubAssign, kTokMulAssign,
    kTokDivAssign, kTokAnd,       kTokOr,        kTokAssign,    kTokMod,
};

struct TItem {
  int32_t kind;
  const TTokenNode* token;     // where the item starts, for errors
  TOperand value;              // reduced: the value; dotword: the receiver
  std::vector<uint32_t> names; // dotword: the names after the receiver
};

// An error found by a pass: the resolution stops there.
struct TStop {
  std::string message;
  const TTokenNode* at;
};

bool IsValue(int32_t kind) {
  return kind == kReduced || kind == kTokNum || kind == kTokString || kind == kTokWord ||
         kind == kTokDotWord;
}

bool IsNumberOrName(int32_t kind) {
  return kind == kReduced || kind == kTokNum || kind == kTokWord || kind == kTokDotWord;
}

bool IsAssignment(int32_t kind) {
  return kind == kTokAssign || (kind >= kTokAddAssign && kind <= kTokDivAssign);
}

struct TArgument {
  const TTokenList* tokens;
  const TTokenNode* node;
};

// The items of a call's group: each comma-separated item, or the whole
// contents as one argument.
std::vector<TArgument> Arguments(const TTokenNode& group) {
  std::vector<TArgument> args;
  bool items = false;
  for (const auto& child : group.children) items = items || child->kind == kTokItem;
  if (items) {
    for (const auto& child : group.children) args.push_back({&child->children, child.get()});
  } else if (!group.children.empty()) {
    args.push_back({&group.children, &group});
  }
  return args;
}

class TResolver {
public:
  TResolver(TResolvedExpression& out, TVelanScriptBase& script) : m_out(out), m_script(script) {}

  TOperand Resolve(const TTokenList& tokens, const TTokenNode& node) {
    Emit(Op(TOpCode::Hook, &node));
    std::vector<TItem> items;
    items.reserve(tokens.size());
    for (const auto& token : tokens) items.push_back({token->kind, token.get(), {}, {}});
    MemberAccessAndCalls(items, node);
    Groups(items);
    PostfixSteps(items, kTokIncrement);
    PostfixSteps(items, kTokDecrement);
    UnaryOperators(items);
    for (const int32_t op : kBinaryPasses) BinaryOperators(items, op);
    if (items.size() != 1 || !IsValue(items[0].kind))
      throw TStop{kSyntaxErrorIn + PrintTree(node), &node};
    const TOperand value = ValueOf(items[0]);
    if (value.kind != TOperand::TKind::Variable) return value;
    return Emit(Op(TOpCode::Load, items[0].token, value));
  }

  void Raise(const TStop& stop) {
    m_out.names.push_back(stop.message);
    TInstruction raise = Op(TOpCode::Raise, stop.at);
    raise.name = static_cast<uint32_t>(m_out.names.size() - 1);
    Emit(raise);
  }

private:
  TResolvedExpression& m_out;
  TVelanScriptBase& m_script;

  static TInstruction Op(TOpCode op, const TTokenNode* at, TOperand a = {}) {
    TInstruction instruction;
    instruction.op = op;
    instruction.at = at;
    instruction.a = a;
    return instruction;
  }

  TOperand Emit(TInstruction instruction) {
    instruction.dest = m_out.temps++;
    m_out.code.push_back(instruction);
    return {TOperand::TKind::Temp, instruction.dest, instruction.at};
  }

  TOperand Constant(TVarVelanScript value, const TTokenNode* token) {
    m_out.constants.push_back(std::move(value));
    return {TOperand::TKind::Constant, static_cast<uint32_t>(m_out.constants.size() - 1), token};
  }

  uint32_t Name(const std::string& name) {
    m_out.names.push_back(name);
    return static_cast<uint32_t>(m_out.names.size() - 1);
  }

  // The operand an item stands for; a member chain is read here, at the
  // operation that uses it.
  TOperand ValueOf(const TItem& item) {
    switch (item.kind) {
      case kReduced: return item.value;
      case kTokNum: return Constant(TVarVelanScript(NumberValue(item.token->text)), item.token);
      case kTokString: return Constant(TVarVelanScript(item.token->text), item.token);
      case kTokWord: {
        const uint32_t slot = m_script.SlotOf(item.token->text);
        return {TOperand::TKind::Variable, slot, item.token, &m_script.Slot(slot)};
      }
      default: return ReadChain(item, item.names.size());
    }
  }

  // The property a chain's names from i on name: "Rect" takes the part
  // after it, so it may use two names; used tells how many.
  int PropertyAt(const std::vector<uint32_t>& names, size_t i, size_t count, size_t& used) {
    used = 1;
    const std::string& name = m_out.names[names[i]];
    if (name != "Rect" || i + 1 >= count) return FindProperty(name);
    used = 2;
    const int part = FindRectPart(m_out.names[names[i + 1]]);
    if (part < 0) throw TStop{kWrongRectProperty, nullptr};
    return kViaRect + part;
  }

  // The first count names of the chain read one after the other; Config's
  // first name is a configuration key.
  TOperand ReadChain(const TItem& chain, size_t count) {
    TOperand receiver = chain.value;
    size_t i = 0;
    if (count > 0 && GlobalOf(chain) == "Config") {
      TInstruction read = Op(TOpCode::ConfigRead, chain.token);
      read.target = ConfigKey(chain.names[0], chain.token);
      receiver = Emit(read);
      i = 1;
    }
    while (i < count) {
      size_t used = 1;
      TInstruction read = Op(TOpCode::Property, chain.token, receiver);
      read.target = PropertyOrStop(chain, i, count, used);
      read.name = chain.names[i];
      receiver = Emit(read);
      i += used;
    }
    return receiver;
  }

  int PropertyOrStop(const TItem& chain, size_t i, size_t count, size_t& used) {
    try {
      return PropertyAt(chain.names, i, count, used);
    } catch (TStop& stop) {
      stop.at = chain.token;
      throw;
    }
  }

  int32_t ConfigKey(uint32_t name, const TTokenNode* at) {
    const int key = FindConfigKey(m_out.names[name]);
    if (key < 0) throw TStop{kWrongConfigProperty, at};
    return key;
  }

  // The target of a postfix step: a variable.
  TOperand TargetOf(const TItem& item, const TTokenNode& op) {
    if (item.kind != kTokWord) throw TStop{kSyntaxError, &op};
    return ValueOf(item);
  }

  // x.Name = value, x.Rect.lat1 = value, Config.Key = value, and the
  // compound forms (read, operate, assign).
  TOperand AssignMember(const TItem& chain, int32_t op, TOperand value, const TTokenNode& at) {
    const size_t count = chain.names.size();
    if (count == 1 && GlobalOf(chain) == "Config") {
      const int32_t key = ConfigKey(chain.names[0], chain.token);
      if (op != kTokAssign) value = Combine(op, ReadChain(chain, 1), value, at);
      TInstruction write = Op(TOpCode::ConfigWrite, chain.token, value);
      write.target = key;
      return Emit(write);
    }
    size_t last = count - 1, used = 1;
    if (count >= 2 && m_out.names[chain.names[count - 2]] == "Rect") last = count - 2;
    const TOperand receiver = ReadChain(chain, last);
    const int property = PropertyOrStop(chain, last, count, used);
    if (op != kTokAssign) {
      TInstruction read = Op(TOpCode::Property, chain.token, receiver);
      read.target = property;
      read.name = chain.names[last];
      value = Combine(op, Emit(read), value, at);
    }
    TInstruction write = Op(TOpCode::SetProperty, chain.token, receiver);
    write.b = value;
    write.target = property;
    write.name = chain.names[last];
    return Emit(write);
  }

  TOperand Combine(int32_t op, TOperand current, TOperand value, const TTokenNode& at) {
    TInstruction combine = Op(TOpCode::Binary, &at, current);
    combine.tokenKind = CompoundBaseOf(op);
    combine.b = value;
    return Emit(combine);
  }

  static int32_t CompoundBaseOf(int32_t op) {
    switch (op) {
      case kTokAddAssign: return kTokPlus;
      case kTokSubAssign: return kTokMinus;
      case kTokMulAssign: return kTokMul;
      default: return kTokDiv;
    }
  }

  void Replace(std::vector<TItem>& items, size_t first, size_t count, TOperand value) {
    items[first] = {kReduced, items[first].token, value, {}};
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(first) + 1,
                items.begin() + static_cast<std::ptrdiff_t>(first + count));
  }

  std::vector<TOperand> ResolveArguments(const TTokenNode& group) {
    std::vector<TOperand> values;
    for (const TArgument& arg : Arguments(group)) values.push_back(Resolve(*arg.tokens, *arg.node));
    return values;
  }

  TOperand EmitCall(TOpCode op, int32_t target, uint32_t name, TOperand receiver,
                    const std::vector<TOperand>& args, const TTokenNode* at) {
    const auto start = static_cast<uint32_t>(m_out.args.size());
    m_out.args.insert(m_out.args.end(), args.begin(), args.end());
    TInstruction call = Op(op, at, receiver);
    call.argStart = start;
    call.argCount = static_cast<uint32_t>(args.size());
    call.target = target;
    call.name = name;
    return Emit(call);
  }

  TOperand FreeCall(const TItem& word, const std::vector<TOperand>& args) {
    const std::string& name = word.token->text;
    if (const int declared = m_script.FindDeclared(name); declared >= 0) {
      if (m_script.Declared(declared).parameters.size() != args.size())
        throw TStop{kWrongDeclCount, word.token};
      const TOperand call = EmitCall(TOpCode::CallDeclared, declared, Name(name), {}, args, word.token);
      m_out.code.back().argTemps = m_out.temps;
      m_out.temps += static_cast<uint32_t>(args.size());
      return call;
    }
    const int builtin = FindFreeBuiltin(name);
    if (builtin < 0) throw TStop{WithName(kUnknownFunction, name), word.token};
    if (FreeBuiltin(builtin).argCount != args.size())
      throw TStop{WithName(kTooFewParameters, name), word.token};
    return EmitCall(TOpCode::CallFree, builtin, Name(name), {}, args, word.token);
  }

  // The global object a chain starts with: its word, when the receiver is a
  // plain name ("" otherwise). The globals are names, not values.
  std::string_view GlobalOf(const TItem& chain) const {
    if (chain.value.kind != TOperand::TKind::Variable) return {};
    return chain.token->text;
  }

  TOperand CommandCall(const TItem& chain, const std::vector<TOperand>& args) {
    const std::string& name = m_out.names[chain.names[0]];
    const int command = FindApplicationCommand(name);
    if (command < 0) throw TStop{WithName(kUnknownCommand, name), chain.token};
    if (ApplicationCommand(command).argCount != args.size())
      throw TStop{WithName(kTooFewParameters, name), chain.token};
    return EmitCall(TOpCode::CallCommand, command, chain.names[0], {}, args, chain.token);
  }

  TOperand MonitorCall(const TItem& chain, const std::vector<TOperand>& args) {
    const std::string& name = m_out.names[chain.names[0]];
    const int method = FindMonitorMethod(name);
    if (method < 0) throw TStop{WithName(kUnknownFunction, name), chain.token};
    if (MonitorMethods()[static_cast<size_t>(method)].argCount != args.size())
      throw TStop{WithName(kTooFewParameters, name), chain.token};
    return EmitCall(TOpCode::CallMonitor, method, chain.names[0], {}, args, chain.token);
  }

  TOperand MethodCall(const TItem& chain, const std::vector<TOperand>& args) {
    if (chain.names.size() == 1 && GlobalOf(chain) == "Velantis") return CommandCall(chain, args);
    if (chain.names.size() == 1 && GlobalOf(chain) == "Monitor") return MonitorCall(chain, args);
    const TOperand receiver = ReadChain(chain, chain.names.size() - 1);
    return MethodOf(receiver, chain.names.back(), args, chain.token);
  }

  TOperand MethodOf(TOperand receiver, uint32_t name, const std::vector<TOperand>& args, const TTokenNode* at) {
    const std::string& method = m_out.names[name];
    const auto start = static_cast<uint32_t>(m_out.args.size());
    m_out.args.insert(m_out.args.end(), args.begin(), args.end());
    TInstruction call = Op(TOpCode::CallMethod, at, receiver);
    call.argStart = start;
    call.argCount = static_cast<uint32_t>(args.size());
    call.target = FindStringMethod(method);
    call.method = FindObjectMethodName(method);
    call.name = name;
    return Emit(call);
  }

  void JoinMember(std::vector<TItem>& items, size_t i, const TTokenNode& node) {
    if (i == 0 || i + 1 >= items.size() || !IsValue(items[i - 1].kind) ||
        items[i + 1].kind != kTokWord)
      throw TStop{kSyntaxErrorIn + PrintTree(node), &node};
    TItem& before = items[i - 1];
    if (before.kind != kTokDotWord) before = {kTokDotWord, before.token, ValueOf(before), {}};
    before.names.push_back(Name(items[i + 1].token->text));
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(i),
                items.begin() + static_cast<std::ptrdiff_t>(i) + 2);
  }

  void ApplyCall(std::vector<TItem>& items, size_t i) {
    const TTokenNode& group = *items[i].token;
    if (i == 0) throw TStop{kSyntaxError, &group};
    const TItem& before = items[i - 1];
    if (before.kind != kTokWord && before.kind != kTokDotWord) throw TStop{kSyntaxError, &group};
    const std::vector<TOperand> args = ResolveArguments(group);
    Replace(items, i - 1, 2, before.kind == kTokWord ? FreeCall(before, args) : MethodCall(before, args));
  }

  void ApplyIndex(std::vector<TItem>& items, size_t i) {
    const TOperand receiver = ValueOf(items[i - 1]);
    const std::vector<TOperand> args = ResolveArguments(*items[i].token);
    Replace(items, i - 1, 2, MethodOf(receiver, Name("Elem"), args, items[i].token));
  }

  void MemberAccessAndCalls(std::vector<TItem>& items, const TTokenNode& node) {
    for (size_t i = 0; i < items.size(); ++i) {
      switch (items[i].kind) {
        case kTokDot: JoinMember(items, i--, node); break;
        case kTokCall: ApplyCall(items, i--); break;
        case kTokBracketGroup:
          if (i > 0 && IsValue(items[i - 1].kind)) ApplyIndex(items, i--);
          break;
        default: break;
      }
    }
  }

  void Groups(std::vector<TItem>& items) {
    for (TItem& item : items)
      if (item.kind == kTokGroup)
        item = {kReduced, item.token, Resolve(item.token->children, *item.token), {}};
  }

  void PostfixSteps(std::vector<TItem>& items, int32_t op) {
    for (size_t i = 0; i < items.size(); ++i) {
      if (items[i].kind != op) continue;
      if (i == 0) throw TStop{kSyntaxError, items[i].token};
      const TOperand target = TargetOf(items[i - 1], *items[i].token);
      TInstruction step = Op(TOpCode::PostStep, items[i].token, target);
      step.tokenKind = op;
      Replace(items, i - 1, 2, Emit(step));
      --i;
    }
  }

  void UnaryOperators(std::vector<TItem>& items) {
    for (size_t i = 0; i + 1 < items.size(); ++i) {
      const TItem& next = items[i + 1];
      if (items[i].kind == kTokNot && IsValue(next.kind)) {
        Replace(items, i, 2, Emit(Op(TOpCode::Not, items[i].token, ValueOf(next))));
      } else if (items[i].kind == kTokMinus && IsNumberOrName(next.kind) &&
                 (i == 0 || !IsNumberOrName(items[i - 1].kind))) {
        Replace(items, i, 2, Negate(next, *items[i].token));
      }
    }
  }

  TOperand Negate(const TItem& operand, const TTokenNode& op) {
    if (operand.kind == kTokNum)  // a literal: folded, it cannot fail
      return Constant(TVarVelanScript(-NumberValue(operand.token->text)), &op);
    return Emit(Op(TOpCode::Negate, &op, ValueOf(operand)));
  }

  void BinaryOperators(std::vector<TItem>& items, int32_t op) {
    for (size_t i = 0; i < items.size(); ++i) {
      if (items[i].kind != op) continue;
      const TTokenNode& at = *items[i].token;
      if (i == 0 || !IsValue(items[i - 1].kind)) throw TStop{kSyntaxError, &at};
      if (op == kTokAssign && i + 1 < items.size() && items[i + 1].kind == kTokBlock)
        throw TStop{kBlockInAssign, items[i + 1].token};
      if (i + 1 >= items.size() || !IsValue(items[i + 1].kind)) throw TStop{kSyntaxError, &at};
      if (IsAssignment(op) && items[i - 1].kind == kTokDotWord) {
        Replace(items, i - 1, 3, AssignMember(items[i - 1], op, ValueOf(items[i + 1]), at));
        --i;
        continue;
      }
      TInstruction instruction = Op(TOpCode::Binary, &at);
      instruction.tokenKind = op;
      if (IsAssignment(op)) {
        instruction.op = op == kTokAssign ? TOpCode::Assign : TOpCode::Compound;
        instruction.a = TargetOf(items[i - 1], at);
      } else {
        instruction.a = ValueOf(items[i - 1]);
      }
      instruction.b = ValueOf(items[i + 1]);
      Replace(items, i - 1, 3, Emit(instruction));
      --i;
    }
  }
};

}  // namespace

double NumberValue(const std::string& text) {
  if (text.size() >= 2 && text[1] == 'x') return std::strtod(("0x" + text.substr(2)).c_str(), nullptr);
  return std::strtod(text.c_str(), nullptr);
}

TResolvedExpression ResolveExpression(const TTokenNode& expression, TVelanScriptBase& script) {
  TResolvedExpression out;
  TResolver resolver(out, script);
  try {
    out.result = resolver.Resolve(expression.children, expression);
  } catch (const TStop& stop) {
    resolver.Raise(stop);
  }
  return out;
}

}  // namespace velantis
