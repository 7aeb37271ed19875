// velantis parse TEXT: reads a typed latitude or longitude and prints the
// degrees with 9 decimals, one blank, and "lat" or "lon".
#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"
#include "cli/text_output.h"
#include "geodesy/coordinate_notation.h"

namespace velantis::cli {

namespace {

constexpr int kParsedDecimals = 9;

int Run(const std::vector<std::string>& words) {
  // Words given apart ("41" "23.5'N") stand for the text with single blanks.
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
  double degrees = 0;
  bool isLatitude = false;
  std::string error;
  if (!ParseLatLon(text, degrees, isLatitude, error)) {
    PrintError(error);
    return kExitRefused;
  }
  std::cout << Fixed(degrees, kParsedDecimals) << (isLatitude ? " lat" : " lon") << "\n";
  return kExitOk;
}

}  // namespace

void AddParseCommand(CLI::App& app, const TGlobalOptions&, int& exitCode) {
  auto words = std::make_shared<std::vector<std::string>>();
  auto* command = app.add_subcommand("parse", "read a typed latitude or longitude");
  command->add_option("text", *words, "the text, e.g. \"41 23.5'N\"")->required();
  command->callback([words, &exitCode] { exitCode = Run(*words); });
}

}  // namespace velantis::cli
