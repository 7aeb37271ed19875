// Runs a resolved expression: its operations in order, each writing its own
// temporary in the interpreter's stack of temporaries.
#include <vector>

#include "script/application_commands.h"
#include "script/builtins.h"
#include "script/global_objects.h"
#include "script/object_methods.h"
#include "script/object_properties.h"
#include "script/operators.h"
#include "script/resolved_expression.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {
constexpr const char* kUnknownVariable = "Unknown variable '%s'";
}  // namespace

class TExpressionRunner {
public:
  TExpressionRunner(TVelanScriptBase& script, const TResolvedExpression& expression)
      : m_script(script), m_expression(expression),
        m_temps(script.m_temps.Take(expression.temps, m_mark)) {}
  ~TExpressionRunner() { m_script.m_temps.Restore(m_mark); }
  TExpressionRunner(const TExpressionRunner&) = delete;
  TExpressionRunner& operator=(const TExpressionRunner&) = delete;

  // Without a debugger the expression's own step (always its first
  // operation) is skipped: one dispatch less on every evaluation.
  const TVarVelanScript& Run() {
    const TInstruction* in = m_expression.code.data();
    const TInstruction* const end = in + m_expression.code.size();
    if (!m_script.m_hook && in != end && in->op == TOpCode::Hook) ++in;
    for (; in != end; ++in) Step(*in);
    return Read(m_expression.result);
  }

private:
  TVelanScriptBase& m_script;
  const TResolvedExpression& m_expression;
  TTempStack::TMark m_mark;
  TVarVelanScript* m_temps;

  TVarVelanScript& Temp(uint32_t index) { return m_temps[index]; }

  // The failures are out of line so that the reads stay small enough to be
  // inlined in every operation.
  [[noreturn, gnu::noinline]] static void Unassigned(const TOperand& operand) {
    throw TScriptError(WithName(kUnknownVariable, operand.slot->name), *operand.token);
  }
  [[noreturn, gnu::noinline]] static void NoOperand() { throw TScriptError(kInternalError, 0, 0); }

  TVelanScriptBase::TSlot& Variable(const TOperand& operand) {
    TScriptSlot& slot = *operand.slot;
    if (!slot.assigned) Unassigned(operand);
    return slot;
  }

  const TVarVelanScript& Read(const TOperand& operand) {
    switch (operand.kind) {
      case TOperand::TKind::Constant: return m_expression.constants[operand.index];
      case TOperand::TKind::Temp: return Temp(operand.index);
      case TOperand::TKind::Variable: return Variable(operand).value;
      default: NoOperand();
    }
  }

  // The slot an assignment writes; the resolver only makes variables targets
  // (a member chain was read, and failed, before).
  TVelanScriptBase::TSlot& Target(const TOperand& operand) {
    if (operand.kind != TOperand::TKind::Variable) throw TScriptError(kInternalError, *operand.token);
    return *operand.slot;
  }

  std::vector<TVarVelanScript> Arguments(const TInstruction& instruction) {
    std::vector<TVarVelanScript> values;
    values.reserve(instruction.argCount);
    for (uint32_t i = 0; i < instruction.argCount; ++i)
      values.push_back(Read(m_expression.args[instruction.argStart + i]));
    return values;
  }

  double Numeric(const TVarVelanScript& value, const char* message, const TTokenNode& at) {
    if (!value.IsNumber()) throw TScriptError(message, at);
    return value.number;
  }

  void Step(const TInstruction& in) {
    switch (in.op) {
      case TOpCode::Hook:
        if (m_script.m_hook) m_script.m_hook(m_script.m_hookContext, *in.at);
        return;
      case TOpCode::Raise: throw TScriptError(m_expression.names[in.name], *in.at);
      case TOpCode::Load: return Temp(in.dest).CopyFrom(Read(in.a));
      case TOpCode::Negate:
        return Temp(in.dest).SetNumber(-Numeric(Read(in.a), kShouldBeNumeric, *in.at));
      case TOpCode::Not:
        return Temp(in.dest).SetNumber(Numeric(Read(in.a), kSyntaxError, *in.at) == 0 ? 1 : 0);
      case TOpCode::Binary: return Binary(in.tokenKind, Read(in.a), Read(in.b), Temp(in.dest), *in.at);
      case TOpCode::Assign: return Assign(in);
      case TOpCode::Compound: return Compound(in);
      case TOpCode::PostStep: return PostStep(in);
      case TOpCode::CallFree: return CallFree(in);
      case TOpCode::CallMethod: return CallMethod(in);
      case TOpCode::CallDeclared: return CallDeclared(in);
      case TOpCode::CallCommand: return CallCommand(in);
      case TOpCode::CallMonitor: return CallMonitor(in);
      case TOpCode::Property: return Property(in);
      case TOpCode::SetProperty: return SetProperty(in);
      case TOpCode::ConfigRead: return ConfigRead(in);
      case TOpCode::ConfigWrite: return ConfigWrite(in);
    }
  }

  // Two numbers take the inline path; the rest (strings, references, the
  // integer operators) the general one.
  void Binary(int32_t op, const TVarVelanScript& a, const TVarVelanScript& b, TVarVelanScript& out,
              const TTokenNode& at) {
    double value;
    if (a.IsNumber() && b.IsNumber() && NumberOperator(op, a.number, b.number, value))
      return out.SetNumber(value);
    ApplyOperator(op, a, b, out, at, m_script.m_limits.maxStringLength);
  }

  void Assign(const TInstruction& in) {
    TVarVelanScript& result = Temp(in.dest);
    result.CopyFrom(Read(in.b));
    TVelanScriptBase::TSlot& slot = Target(in.a);
    slot.value.CopyFrom(result);
    slot.assigned = true;
  }

  void Compound(const TInstruction& in) {
    TVarVelanScript& result = Temp(in.dest);
    const TVarVelanScript& current = Variable(in.a).value;
    Binary(CompoundBase(in.tokenKind), current, Read(in.b), result, *in.at);
    Target(in.a).value.CopyFrom(result);
  }

  // Postfix "++" and "--" yield the value before the step, as in C.
  void PostStep(const TInstruction& in) {
    TVarVelanScript& value = Variable(in.a).value;
    const double before = Numeric(value, kShouldBeNumeric, *in.at);
    value.SetNumber(in.tokenKind == kTokIncrement ? before + 1 : before - 1);
    Temp(in.dest).SetNumber(before);
  }

  void CallFree(const TInstruction& in) {
    std::vector<TVarVelanScript> args = Arguments(in);
    TVarVelanScript result;
    TBuiltinCall call{m_script, args, result, *in.at};
    FreeBuiltin(in.target).function(call);
    Temp(in.dest) = std::move(result);
  }

  // Properties, the configuration and Monitor: calls without arguments
  // into their own files.
  void Property(const TInstruction& in) {
    std::vector<TVarVelanScript> none;
    TVarVelanScript result;
    TBuiltinCall call{m_script, none, result, *in.at};
    ReadProperty(call, Read(in.a), in.target, m_expression.names[in.name]);
    Temp(in.dest) = std::move(result);
  }

  void SetProperty(const TInstruction& in) {
    std::vector<TVarVelanScript> none;
    TVarVelanScript result;
    TBuiltinCall call{m_script, none, result, *in.at};
    const TVarVelanScript& value = Read(in.b);
    AssignProperty(call, Read(in.a), in.target, m_expression.names[in.name], value);
    Temp(in.dest) = value;
  }

  void ConfigRead(const TInstruction& in) {
    std::vector<TVarVelanScript> none;
    TBuiltinCall call{m_script, none, Temp(in.dest), *in.at};
    ReadConfig(call, in.target);
  }

  void ConfigWrite(const TInstruction& in) {
    std::vector<TVarVelanScript> none;
    TVarVelanScript result;
    TBuiltinCall call{m_script, none, result, *in.at};
    const TVarVelanScript& value = Read(in.a);
    AssignConfig(call, in.target, value);
    Temp(in.dest) = value;
  }

  void CallMonitor(const TInstruction& in) {
    std::vector<TVarVelanScript> args = Arguments(in);
    TVarVelanScript result;
    TBuiltinCall call{m_script, args, result, *in.at};
    MonitorMethods()[static_cast<size_t>(in.target)].function(call);
    Temp(in.dest) = std::move(result);
  }

  void CallObjectMethod(const TInstruction& in, const TVarVelanScript& receiver) {
    TScriptObject* object = m_script.m_objects.At(receiver.number);
    if (!object) throw TScriptError(kWrongPtr, *in.at);
    const std::string& name = m_expression.names[in.name];
    const TObjectBuiltin* method = ObjectMethod(object->Kind(), in.method);
    if (!method && IsRectProjOnlyMethod(in.method)) throw TScriptError(kShouldBeRectProj, *in.at);
    if (!method) throw TScriptError(WithName(kUnknownFunction, name), *in.at);
    std::vector<TVarVelanScript> args = Arguments(in);
    if (args.size() != method->argCount) throw TScriptError(WithName(kTooFewParameters, name), *in.at);
    TVarVelanScript result;
    TBuiltinCall call{m_script, args, result, *in.at};
    method->method(call, *object);
    Temp(in.dest) = std::move(result);
  }

  void CallMethod(const TInstruction& in) {
    const std::string& name = m_expression.names[in.name];
    TVarVelanScript constant;
    TVarVelanScript* receiver = &constant;
    if (in.a.kind == TOperand::TKind::Variable) receiver = &Variable(in.a).value;
    else if (in.a.kind == TOperand::TKind::Temp) receiver = &Temp(in.a.index);
    else constant = Read(in.a);
    if (receiver->IsObject()) return CallObjectMethod(in, *receiver);
    if (!receiver->IsString() && IsRectProjOnlyMethod(in.method)) throw TScriptError(kShouldBeRectProj, *in.at);
    if (in.target < 0) throw TScriptError(WithName(kUnknownFunction, name), *in.at);
    if (!receiver->IsString()) throw TScriptError(kObjectShouldBeString, *in.at);
    std::vector<TVarVelanScript> args = Arguments(in);
    if (args.size() != StringMethod(in.target).argCount)
      throw TScriptError(WithName(kTooFewParameters, name), *in.at);
    TVarVelanScript result;
    TBuiltinCall call{m_script, args, result, *in.at};
    StringMethod(in.target).method(call, receiver->text);
    Temp(in.dest) = std::move(result);
  }

  // A failure of the application below a command (memory, file system, a
  // library) names the command; the script's own errors pass as they are.
  void CallCommand(const TInstruction& in) {
    std::vector<TVarVelanScript> args = Arguments(in);
    TVarVelanScript result;
    TBuiltinCall call{m_script, args, result, *in.at};
    try {
      ApplicationCommand(in.target).function(call);
    } catch (const TScriptError&) {
      throw;
    } catch (const std::exception&) {
      throw TScriptError(kEngineException + m_expression.names[in.name], *in.at);
    }
    Temp(in.dest) = std::move(result);
  }

  // The values are copied before the first parameter is assigned: an
  // argument may read a variable that is another parameter.
  void CallDeclared(const TInstruction& in) {
    TVarVelanScript* values = &Temp(in.argTemps);
    for (uint32_t i = 0; i < in.argCount; ++i) values[i].CopyFrom(Read(m_expression.args[in.argStart + i]));
    m_script.CallDeclared(in.target, values, Temp(in.dest), *in.at);
  }
};

namespace {

const TVarVelanScript* NumberOperand(const TResolvedExpression& expression, const TOperand& operand) {
  if (operand.kind == TOperand::TKind::Constant) return &expression.constants[operand.index];
  if (operand.kind == TOperand::TKind::Variable && operand.slot->assigned) return &operand.slot->value;
  return nullptr;
}

}  // namespace

// A condition that is one comparison of two numbers read from variables or
// constants (a loop's "i < n") is decided here, without running it; any
// other form, or other values, run as an expression, so every error stays
// the runner's.
bool TVelanScriptBase::Test(const TResolvedExpression& expression, bool& holds) {
  if (m_hook || expression.code.size() != 2) return false;
  const TInstruction& in = expression.code[1];
  if (in.op != TOpCode::Binary || expression.result.kind != TOperand::TKind::Temp ||
      expression.result.index != in.dest)
    return false;
  const TVarVelanScript* a = NumberOperand(expression, in.a);
  const TVarVelanScript* b = NumberOperand(expression, in.b);
  double value;
  if (!a || !b || !a->IsNumber() || !b->IsNumber() || !NumberOperator(in.tokenKind, a->number, b->number, value))
    return false;
  holds = value != 0;
  return true;
}

// A statement that is one postfix step of a number variable ("n++", a
// loop's "i++") is done here, without a runner (its value is not used);
// any other statement, or a variable not holding a number, runs.
void TVelanScriptBase::Perform(const TResolvedExpression& expression) {
  if (!m_hook && expression.code.size() == 2 && expression.code[1].op == TOpCode::PostStep) {
    const TInstruction& in = expression.code[1];
    TScriptSlot& slot = *in.a.slot;
    if (slot.assigned && slot.value.IsNumber())
      return void(slot.value.number += in.tokenKind == kTokIncrement ? 1 : -1);
  }
  Run(expression);
}

// The result is a constant of the expression or one of its temporaries:
// released when the runner ends, but its storage stays until the next
// expression runs, which is after the caller has read it.
const TVarVelanScript& TVelanScriptBase::Run(const TResolvedExpression& expression) {
  return TExpressionRunner(*this, expression).Run();
}

}  // namespace velantis
