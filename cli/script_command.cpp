// velantis script FILE [--debug]: runs a script; Echo goes to stdout, an
// error to stderr. An error found while loading is reported before anything
// runs. --debug steps through it on the terminal (cli/script_debugger.h).
// velantis script --start runs the command of ExecCommand_at_Start instead
// of a file (exec_program.h). Prompts talk on stdin and stderr.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/command.h"
#include "cli/script_debugger.h"
#include "script/exec_program.h"
#include "script/script_host.h"
#include "script/user_prompt.h"
#include "script/velan_script_base.h"

namespace velantis::cli {

namespace {

struct TScriptOptions {
  std::string path;
  bool debug = false;
  bool start = false;
};

bool ReadScript(const std::string& path, std::string& text) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  std::ostringstream bytes;
  bytes << file.rdbuf();
  text = bytes.str();
  return true;
}

// What a script's Exec runs: this program with this run's folders.
void SetExecFolders(const TFolders& folders) {
  SetExecProgram({ExecProgram().front(), "--data-dir", folders.dataDir, "--user-dir", folders.userDir, "--config",
                  folders.configFile});
}

int RunScript(const TScriptOptions& options, const TGlobalOptions& global) {
  std::string text;
  if (!options.start && !ReadScript(options.path, text)) {
    PrintError("Error opening " + options.path);
    return kExitRefused;
  }
  // The script's Config is the program's configuration, written back to
  // its gps.ini; its positions use the program's datums.
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  if (options.start && (text = StartCommandScript(runtime.config.ExecCommand_at_Start)).empty()) {
    PrintError("No command in ExecCommand_at_Start");
    return kExitRefused;
  }
  SetExecFolders(runtime.folders);
  TLocalScriptHost host(runtime.config, runtime.datums);
  TTerminalPrompt terminal = TTerminalPrompt::OnStandardStreams();
  host.SetTerminal(&terminal);
  TVelanScriptBase script;
  script.SetHost(host);
  script.SetEchoSink([](std::string_view echoed) { std::cout << echoed << std::flush; });
  try {
    script.Load(text);
    if (options.debug) return RunScriptDebugger(script, text, options.path, std::cin, std::cerr);
    script.Ejecuta();
  } catch (const TScriptError& error) {
    PrintError(error.what());
    return kExitRefused;
  }
  return kExitOk;
}

}  // namespace

void AddScriptCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto* command = app.add_subcommand("script", "run a script file");
  auto options = std::make_shared<TScriptOptions>();
  auto* file = command->add_option("FILE", options->path, "the script");
  command->add_flag("--debug", options->debug, "step through the script: Enter steps, c continues, q stops");
  command->add_flag("--start", options->start, "run the command of ExecCommand_at_Start")->excludes(file);
  command->callback([options, &global, &exitCode] {
    if (!options->start && options->path.empty()) throw CLI::RequiredError("FILE");
    exitCode = RunScript(*options, global);
  });
}

}  // namespace velantis::cli
