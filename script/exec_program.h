// The program that Exec runs: by default this program itself, found through
// the system (/proc/self/exe, GetModuleFileName), with no words before the
// command's own. The command-line program sets it once at start to its
// path and its global options (--config, --data-dir, --user-dir), so that
// what a script runs sees the same configuration as the script.
#pragma once

#include <string>
#include <vector>

namespace velantis {

// The words every Exec line starts with; the first is the program's path.
std::vector<std::string> ExecProgram();
void SetExecProgram(std::vector<std::string> words);

}  // namespace velantis
