// velantis format --notation N LAT LON: prints one position as the native file
// writer prints it in that notation (latitude, one blank, longitude).
#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"
#include "geodesy/coordinate_notation.h"

namespace velantis::cli {

namespace {

struct TFormatOptions {
  int notation = 0;
  double lat = 0;
  double lon = 0;
};

int Run(const TFormatOptions& options) {
  std::string text, error;
  if (!FormatPosition(TLonLat{options.lon, options.lat}, options.notation, text, error)) {
    PrintError(error);
    return kExitRefused;
  }
  std::cout << text << "\n";
  return kExitOk;
}

}  // namespace

void AddFormatCommand(CLI::App& app, const TGlobalOptions&, int& exitCode) {
  auto options = std::make_shared<TFormatOptions>();
  auto* command = app.add_subcommand("format", "print a position in a coordinate notation");
  command
      ->add_option("--notation", options->notation,
                   "0 dd.dddddd, 1 degrees and minutes, 2 degrees, minutes and seconds, 3 grads")
      ->required()
      ->check(CLI::Range(0, kNotationCount - 1));
  // Negative values ("-33.5") are taken as values: no option has a digit for a name.
  command->add_option("lat", options->lat, "latitude in degrees")->required();
  command->add_option("lon", options->lon, "longitude in degrees")->required();
  command->callback([options, &exitCode] { exitCode = Run(*options); });
}

}  // namespace velantis::cli
