#include "cli/command.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace velantis::cli {

void PrintError(std::string_view message) { std::cerr << "velantis: " << message << "\n"; }

bool StartRuntime(const TGlobalOptions& options, TRuntime& runtime) {
  std::string error;
  if (runtime.Start(options.folders, error)) return true;
  PrintError(error);
  return false;
}

void AddBaudOption(CLI::App& command, int& baud) {
  command.add_option("--baud", baud, "baud rate of a serial port (default 4800)");
}

}  // namespace velantis::cli
