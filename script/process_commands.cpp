// Exec and Quit.
//
// Exec(commandLine) runs the program's own command line: the line is cut
// into words (SplitCommandLine) and run as a child process of this program
// (the Exec program, exec_program.h), so Exec("convert a.igc a.trk") does
// what `velantis convert a.igc a.trk` does, with the same global options.
// It waits for the child and gives its exit code (0 for success; DESIGN's
// 1 and 2 for a refused input and bad usage), which the script may test. A
// line with no words fails with "Need parameters in Exec command."; a child
// that cannot be started, or a script without system access, with "Error
// in Exec command".
//
// Quit() ends the script at once without an error, like Exit(); the
// program then ends as after the script's last statement.
#include "script/application_commands.h"
#include "script/exec_program.h"
#include "script/process_runner.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

void Exec(TBuiltinCall& call) {
  const std::vector<std::string> words = SplitCommandLine(call.Text(0));
  if (words.empty()) throw TScriptError("Need parameters in Exec command.", call.at);
  std::vector<std::string> line = ExecProgram();
  line.insert(line.end(), words.begin(), words.end());
  std::string error;
  const int code = call.script.Limits().systemAccess ? RunProgram(line, error) : -1;
  if (code < 0) throw TScriptError("Error in Exec command", call.at);
  call.result.SetNumber(code);
}

void Quit(TBuiltinCall&) { throw TExitVelanScript{}; }

constexpr TApplicationCommand kProcessCommands[] = {{"Exec", 1, Exec}, {"Quit", 0, Quit}};

}  // namespace

std::span<const TApplicationCommand> ProcessCommands() { return kProcessCommands; }

}  // namespace velantis
