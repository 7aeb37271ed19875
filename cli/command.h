// What every subcommand shares: the folders given on the command line, the
// started runtime, and the exit codes of the command-line contract.
#pragma once

#include <string>
#include <string_view>

#include "app/runtime/runtime.h"

namespace CLI {
class App;
}

namespace velantis::cli {

enum TExitCode { kExitOk = 0, kExitRefused = 1, kExitUsage = 2 };

struct TGlobalOptions {
  TFolders folders;
};

// Prints "velantis: <message>" on stderr.
void PrintError(std::string_view message);

// Starts the runtime; on failure prints the message and returns false.
bool StartRuntime(const TGlobalOptions& options, TRuntime& runtime);

// The --baud option of the commands that open a port.
void AddBaudOption(CLI::App& command, int& baud);

// Each subcommand registers itself on the program's parser; the action runs
// when it was chosen and sets the exit code.
void AddDatumsCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddCoordCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddFormatCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddParseCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddInfoCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddConvertCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddCalibCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddNmeaCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddDetectCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddLiveCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddOptimizeCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);
void AddScriptCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode);

}  // namespace velantis::cli
