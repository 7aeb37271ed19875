// velantis coord --from CRS --to CRS [VALUES...]: converts one coordinate, or
// every line of stdin when no values are given.
#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"
#include "geodesy/crs.h"

namespace velantis::cli {

namespace {

struct TCoordOptions {
  std::string from, to;
  std::vector<std::string> values;
};

std::string Join(const std::vector<std::string>& words) {
  std::string line;
  for (const auto& word : words) line += (line.empty() ? "" : " ") + word;
  return line;
}

// One output line per input line; a refused line prints "error: <message>".
bool ConvertLine(const std::string& line, const TCrs& from, const TCrs& to, TListaDatums& datums) {
  std::string output, error;
  if (ConvertCrsLine(line, from, to, datums, output, error)) {
    std::cout << output << "\n";
    return true;
  }
  std::cout << "error: " << error << "\n";
  return false;
}

int Run(const TCoordOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TCrs from, to;
  std::string error;
  for (auto [text, crs] : {std::pair{&options.from, &from}, std::pair{&options.to, &to}}) {
    const TCrsError result = ParseCrs(*text, runtime.datums, *crs, error);
    if (result != TCrsError::None) {
      PrintError(error);
      return result == TCrsError::UnknownForm ? kExitUsage : kExitRefused;
    }
  }
  if (!options.values.empty()) {
    return ConvertLine(Join(options.values), from, to, runtime.datums) ? kExitOk : kExitRefused;
  }
  for (std::string line; std::getline(std::cin, line);) {
    ConvertLine(line, from, to, runtime.datums);
  }
  return kExitOk;
}

}  // namespace

void AddCoordCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TCoordOptions>();
  auto* command = app.add_subcommand("coord", "convert coordinates between systems");
  command->add_option("--from", options->from, "source system, e.g. geo:WGS 84")->required();
  command->add_option("--to", options->to, "target system")->required();
  command->add_option("values", options->values, "the coordinate; stdin lines when absent");
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
