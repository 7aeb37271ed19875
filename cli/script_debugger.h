// The terminal front end of the script debugger (velantis script --debug).
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "script/velan_script_base.h"

namespace velantis::cli {

// Runs the loaded script under a debugger session: shows each node's line on
// `screen` and reads the commands from `keys` (Enter steps, "c" continues,
// "q" stops; the end of `keys` continues). Returns the exit code: 0 for an
// end or a stop, 1 for a script error (reported as "velantis: <message>").
int RunScriptDebugger(TVelanScriptBase& script, const std::string& text, const std::string& name,
                      std::istream& keys, std::ostream& screen);

}  // namespace velantis::cli
