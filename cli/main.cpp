// velantis: the application without its windows, one program with subcommands.
#include <CLI/CLI.hpp>

#include "cli/command.h"

int main(int argc, char** argv) {
  using namespace velantis::cli;
  CLI::App app{"Velantis: GPS mapping and navigation for outdoor activities", "velantis"};
  app.require_subcommand(1);
  // The folder options may stand before or after the subcommand's name.
  app.fallthrough();
  TGlobalOptions options;
  app.add_option("--data-dir", options.folders.dataDir, "folder of the built-in data");
  app.add_option("--user-dir", options.folders.userDir, "folder of the user's files");
  app.add_option("--config", options.folders.configFile, "configuration file (gps.ini)");

  int exitCode = kExitOk;
  AddDatumsCommand(app, options, exitCode);
  AddCoordCommand(app, options, exitCode);
  AddFormatCommand(app, options, exitCode);
  AddParseCommand(app, options, exitCode);
  AddInfoCommand(app, options, exitCode);
  AddConvertCommand(app, options, exitCode);
  AddCalibCommand(app, options, exitCode);
  AddNmeaCommand(app, options, exitCode);
  AddDetectCommand(app, options, exitCode);
  AddLiveCommand(app, options, exitCode);
  AddOptimizeCommand(app, options, exitCode);
  AddScriptCommand(app, options, exitCode);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    PrintError(e.what());
    return kExitUsage;
  }
  return exitCode;
}
