#include "script/script_events.h"

#include <stdexcept>
#include <string>

#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

struct TEventEntry {
  const char* function;
  bool wrapsErrors;  // false: errors pass as they are
};

// In the order of TScriptEvent.
constexpr TEventEntry kEvents[] = {
    {"OnCreateView2D", true},
    {"OnCreateGraph", true},
    {"OnConfigComm", false},
};

constexpr const char* kEventError = "Error in event ";
constexpr const char* kEngineEventException = "VelanScript: Exception in Velantis Engine, ";

}  // namespace

bool RunEvent(TVelanScriptBase& script, TScriptEvent event, std::vector<TVarVelanScript>& args,
              TVarVelanScript& result) {
  const TEventEntry& entry = kEvents[static_cast<size_t>(event)];
  const int function = script.FindDeclared(entry.function);
  if (function < 0) return false;
  const TTokenNode& at = *script.Declared(function).declaration;
  if (script.Declared(function).parameters.size() != args.size()) throw TScriptError(kWrongDeclCount, at);
  if (!entry.wrapsErrors) {
    script.CallDeclared(function, args.data(), result, at);
    return true;
  }
  try {
    script.CallDeclared(function, args.data(), result, at);
  } catch (const TExitVelanScript&) {
  } catch (const TScriptError& error) {
    throw TScriptError(kEventError + std::string(entry.function), error.Start(), error.End());
  } catch (const std::exception&) {
    throw TScriptError(kEngineEventException + std::string(entry.function), at);
  }
  return true;
}

}  // namespace velantis
