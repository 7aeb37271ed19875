#include "cli/command.h"

#include <iostream>

namespace velantis::cli {

void PrintError(std::string_view message) { std::cerr << "velantis: " << message << "\n"; }

bool StartRuntime(const TGlobalOptions& options, TRuntime& runtime) {
  std::string error;
  if (runtime.Start(options.folders, error)) return true;
  PrintError(error);
  return false;
}

}  // namespace velantis::cli
