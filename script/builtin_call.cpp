#include "script/builtins.h"
#include "script/script_error.h"

namespace velantis {

double TBuiltinCall::Number(size_t i) const {
  if (!args[i].IsNumber()) throw TScriptError("Should be Numeric!", at);
  return args[i].number;
}

const std::string& TBuiltinCall::Text(size_t i) const {
  if (!args[i].IsString()) throw TScriptError("Should be String!", at);
  return args[i].text;
}

}  // namespace velantis
