// What a script leaves: its Echo output, then "v=" and the variable v when
// the script set it, then, when it failed, "|" with the message and the
// offsets of the token ("|Syntax Error@4-7").
#pragma once

#include <string>

#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis {

// host: the application side, when the script's own default will not do.
inline std::string Outcome(const std::string& text, TScriptHost* host = nullptr) {
  TVelanScriptBase script;
  if (host) script.SetHost(*host);
  std::string error;
  try {
    script.Load(text);
    script.Ejecuta();
  } catch (const TScriptError& e) {
    error = "|" + std::string(e.what()) + "@" + std::to_string(e.Start()) + "-" + std::to_string(e.End());
  }
  const TVarVelanScript* v = script.GetVariable("v");
  return script.Output() + (v ? "v=" + v->AsText() : "") + error;
}

struct TScriptCase {
  std::string script;
  std::string outcome;
};

}  // namespace velantis
