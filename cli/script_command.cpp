// velantis script FILE: runs a script; Echo goes to stdout, an error to
// stderr. An error found while loading is reported before anything runs.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/command.h"
#include "script/velan_script_base.h"

namespace velantis::cli {

namespace {

int RunScript(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    PrintError("Error opening " + path);
    return kExitRefused;
  }
  std::ostringstream text;
  text << file.rdbuf();
  TVelanScriptBase script;
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

void AddScriptCommand(CLI::App& app, const TGlobalOptions&, int& exitCode) {
  auto* command = app.add_subcommand("script", "run a script file");
  auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "the script")->required();
  command->callback([path, &exitCode] { exitCode = RunScript(*path); });
}

}  // namespace velantis::cli
