// The program that Exec runs: by default this program itself, found through
// the system (/proc/self/exe, GetModuleFileName), with no words before the
// command's own. The command-line program sets it once at start to its
// path and its global options (--config, --data-dir, --user-dir), so that
// what a script runs sees the same configuration as the script.
//
// The command-line start: the command held by the configuration key
// ExecCommand_at_Start is a script expression (usually a quoted command
// line, "convert a.igc a.trk") and runs as the one-line script
// "Velantis.Exec(" + command + ");" + CR LF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velantis {

// The words every Exec line starts with; the first is the program's path.
std::vector<std::string> ExecProgram();
void SetExecProgram(std::vector<std::string> words);

// The one-line script of the command-line start; "" when command holds
// nothing but blanks.
std::string StartCommandScript(std::string_view command);

}  // namespace velantis
