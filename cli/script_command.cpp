// velantis script FILE: runs a script; Echo goes to stdout, an error to
// stderr. An error found while loading is reported before anything runs.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/command.h"
#include "script/script_host.h"
#include "script/velan_script_base.h"

namespace velantis::cli {

namespace {

int RunScript(const std::string& path, const TGlobalOptions& global) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    PrintError("Error opening " + path);
    return kExitRefused;
  }
  std::ostringstream text;
  text << file.rdbuf();
  // The script's Config is the program's configuration, written back to
  // its gps.ini; its positions use the program's datums.
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TLocalScriptHost host(runtime.config, runtime.datums);
  TVelanScriptBase script;
  script.SetHost(host);
  script.SetEchoSink([](std::string_view echoed) { std::cout << echoed << std::flush; });
  try {
    script.Load(text.str());
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
  auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "the script")->required();
  command->callback([path, &global, &exitCode] { exitCode = RunScript(*path, global); });
}

}  // namespace velantis::cli
