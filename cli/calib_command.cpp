// velantis calib MAPFILE (--pixel X Y | --coord LAT LON) [--datum NAME]:
// converts through a map's calibration, pixel to coordinate or back; with
// --pixel or --coord alone, every line of stdin.
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/text_output.h"
#include "formats/native_text.h"
#include "maps/calibrated_map.h"
#include "maps/map_file.h"

namespace velantis::cli {

namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kPixelDecimals = 3;
constexpr const char* kDefaultDatum = "WGS 84";

struct TCalibOptions {
  std::string file;
  std::vector<std::string> pixel;
  std::vector<std::string> coord;
  std::string datum = kDefaultDatum;
};

bool ReadTwoNumbers(std::string_view text, bool fromPixel, double& first, double& second,
                    std::string& error) {
  std::string_view fields[3];
  if (SplitBlanks(text, fields, 3) != 2 || !ParseReal(fields[0], first) ||
      !ParseReal(fields[1], second)) {
    error = "Bad coordinate: " + std::string(text) +
            (fromPixel ? " (X Y in pixels expected)" : " (LAT LON in degrees expected)");
    return false;
  }
  return true;
}

// "LAT LON" of a pixel, or "X Y" of a coordinate.
bool ConvertText(std::string_view text, bool fromPixel, const TCalibratedMap& map, int datum,
                 std::string& output, std::string& error) {
  double first = 0;
  double second = 0;
  if (!ReadTwoNumbers(text, fromPixel, first, second, error)) return false;
  if (fromPixel) {
    TLonLat geo;
    if (!map.PixelToCoord({first, second}, datum, geo, error)) return false;
    output = Fixed(geo.lat, kDegreeDecimals) + " " + Fixed(geo.lon, kDegreeDecimals);
    return true;
  }
  TPlanePoint pixel;
  if (!map.CoordToPixel({second, first}, datum, pixel, error)) return false;
  output = Fixed(pixel.x, kPixelDecimals) + " " + Fixed(pixel.y, kPixelDecimals);
  return true;
}

// One output line per input line; a refused line prints "error: <message>".
bool ConvertLine(std::string_view text, bool fromPixel, const TCalibratedMap& map, int datum) {
  std::string output;
  std::string error;
  if (ConvertText(text, fromPixel, map, datum, output, error)) {
    std::cout << output << "\n";
    return true;
  }
  std::cout << "error: " << error << "\n";
  return false;
}

int Run(const TCalibOptions& options, bool fromPixel, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  const int datum = runtime.datums.Find(options.datum);
  if (datum < 0) {
    PrintError("Unknown datum: " + options.datum);
    return kExitRefused;
  }
  TMapCalibration calibration;
  TCalibratedMap map;
  std::string error;
  if (!ReadMapFile(options.file, runtime.datums, calibration, error) ||
      !map.Open(calibration, runtime.datums, runtime.folders.dataDir, error)) {
    PrintError(error);
    return kExitRefused;
  }
  const std::vector<std::string>& values = fromPixel ? options.pixel : options.coord;
  if (!values.empty()) {
    return ConvertLine(values[0] + " " + values[1], fromPixel, map, datum) ? kExitOk : kExitRefused;
  }
  for (std::string line; std::getline(std::cin, line);) {
    ConvertLine(line, fromPixel, map, datum);
  }
  return kExitOk;
}

}  // namespace

void AddCalibCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TCalibOptions>();
  auto* command = app.add_subcommand("calib", "convert through a map's calibration");
  command->add_option("file", options->file, "calibration file (.imp or OziExplorer .map)")
      ->required();
  auto* pixel = command->add_option("--pixel", options->pixel, "pixel X Y; stdin lines when alone")
                    ->expected(0, 2)
                    ->allow_extra_args(false);
  auto* coord = command->add_option("--coord", options->coord, "LAT LON; stdin lines when alone")
                    ->expected(0, 2)
                    ->allow_extra_args(false);
  pixel->excludes(coord);
  command->add_option("--datum", options->datum, "datum of the coordinates (default WGS 84)");
  command->callback([options, pixel, coord, &global, &exitCode] {
    if (pixel->count() == 0 && coord->count() == 0) {
      PrintError("one of --pixel or --coord is required");
      exitCode = kExitUsage;
      return;
    }
    const bool fromPixel = pixel->count() > 0;
    std::vector<std::string>& values = fromPixel ? options->pixel : options->coord;
    std::erase(values, std::string());  // an option given alone holds one empty value
    if (values.size() == 1) {
      PrintError(std::string(fromPixel ? "--pixel" : "--coord") + " takes two values or none");
      exitCode = kExitUsage;
      return;
    }
    exitCode = Run(*options, fromPixel, global);
  });
}

}  // namespace velantis::cli
