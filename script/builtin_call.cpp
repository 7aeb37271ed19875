#include "script/builtins.h"
#include "script/script_error.h"
#include "script/velan_script_base.h"

namespace velantis {

double TBuiltinCall::Number(size_t i) const {
  if (!args[i].IsNumber()) throw TScriptError("Should be Numeric!", at);
  return args[i].number;
}

const std::string& TBuiltinCall::Text(size_t i) const {
  if (!args[i].IsString()) throw TScriptError("Should be String!", at);
  return args[i].text;
}

TScriptObject& TBuiltinCall::Object(size_t i) const {
  if (!args[i].IsObject()) throw TScriptError(kShouldBeObject, at);
  TScriptObject* object = script.Objects().At(args[i].number);
  if (!object) throw TScriptError(kWrongPtr, at);
  return *object;
}

}  // namespace velantis
