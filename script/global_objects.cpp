#include "script/global_objects.h"

#include <type_traits>
#include <variant>

#include "app/config.h"
#include "app/config_registry.h"
#include "script/builtins.h"
#include "script/script_error.h"
#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

TScriptMonitor& Monitor(TBuiltinCall& call) { return call.script.Host().Monitor(); }

void Log(TBuiltinCall& call) { Monitor(call).Log(call.Text(0)); }
void Start(TBuiltinCall& call) { Monitor(call).Progress().SetTotal(ToInt64(call.Number(0))); }
void Step(TBuiltinCall& call) { call.result.SetNumber(Monitor(call).Progress().Step() ? 1 : 0); }
void End(TBuiltinCall& call) { Monitor(call).Progress().SetTotal(0); }

constexpr TApplicationCommand kMonitorMethods[] = {
    {"Log", 1, Log}, {"Start", 1, Start}, {"Step", 0, Step}, {"End", 0, End},
};

const TConfigRegistration& Registration(int key) { return ConfigRegistrations()[static_cast<size_t>(key)]; }

[[noreturn]] void ConfigError(const TBuiltinCall& call) { throw TScriptError(std::string(kConfigErrorValue), call.at); }

}  // namespace

std::span<const TApplicationCommand> MonitorMethods() { return kMonitorMethods; }

int FindMonitorMethod(std::string_view name) { return IndexOfName(kMonitorMethods, name); }

int FindConfigKey(std::string_view key) {
  const TConfigRegistration* found = FindConfigRegistration(key);
  return found ? static_cast<int>(found - ConfigRegistrations().data()) : -1;
}

void ReadConfig(TBuiltinCall& call, int key) {
  const TConfig& config = call.script.Host().Config();
  const TConfigRegistration& registration = Registration(key);
  const bool numeric = std::visit(
      [&](auto member) {
        using TValue = std::remove_cvref_t<decltype(config.*member)>;
        if constexpr (std::is_arithmetic_v<TValue>) {
          call.result.SetNumber(static_cast<double>(config.*member));
          return true;
        } else {
          return false;
        }
      },
      registration.member);
  if (numeric) return;
  std::string text, error;
  if (!config.GetByName(std::string(registration.key), text, error)) ConfigError(call);
  call.result.SetString(std::move(text));
}

// Yes/no keys take 0 and 1 (any number but 0 is yes), the others the text
// of the value.
void AssignConfig(TBuiltinCall& call, int key, const TVarVelanScript& value) {
  const TConfigRegistration& registration = Registration(key);
  if (!value.IsNumber() && !value.IsString()) ConfigError(call);
  std::string text = value.AsText();
  if (registration.type == TConfigType::Boolean && value.IsNumber()) text.assign(1, value.number != 0 ? '1' : '0');
  TScriptHost& host = call.script.Host();
  std::string error;
  if (!host.Config().SetByName(std::string(registration.key), text, error) || !host.SaveConfig(error))
    ConfigError(call);
}

}  // namespace velantis
