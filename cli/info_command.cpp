// velantis info FILE [--json]: what a data or calibration file holds.
#include <CLI/CLI.hpp>
#include <cctype>
#include <iostream>

#include "cli/command.h"
#include "cli/map_info.h"
#include "cli/terminal_progress.h"
#include "cli/text_output.h"
#include "formats/element_summary.h"
#include "formats/file_dispatch.h"
#include "maps/map_file.h"

namespace velantis::cli {

namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kMetreDecimals = 3;

struct TInfoOptions {
  std::string file;
  bool json = false;
};

// "2024-06-05T13:07:00Z", or "" for a null time.
std::string IsoTime(TDateTime time) {
  std::string text = time.ToIsoText();
  if (text.empty()) return text;
  text[10] = 'T';
  return text + "Z";
}

std::string BoundsText(const TBoundingBox& box, const char* separator) {
  return Fixed(box.minLat, kDegreeDecimals) + separator + Fixed(box.minLon, kDegreeDecimals) + separator +
         Fixed(box.maxLat, kDegreeDecimals) + separator + Fixed(box.maxLon, kDegreeDecimals);
}

// Only the formats whose readers skip bad records show how many they skipped.
bool CountsBadRecords(const std::string& path) {
  std::string extension = FileExtension(path);
  for (char& c : extension) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return extension == "IGC";
}

void PrintText(const TElementSummary& s, const TNativeHeader& header, bool badRecords) {
  std::cout << "kind: " << s.kind << "\nname: " << s.name << "\ncount: " << s.count << "\n";
  if (s.kind == "track") std::cout << "segments: " << s.segments << "\n";
  if (badRecords) std::cout << "bad_records: " << header.badRecords << "\n";
  std::cout << "datum: " << header.datum << "\nnotation: " << header.notation << "\n";
  std::cout << "bounds: " << (s.bounds.empty ? "none" : BoundsText(s.bounds, " ")) << "\n";
  std::cout << "start: " << (s.start.IsNull() ? "none" : IsoTime(s.start)) << "\n";
  std::cout << "end: " << (s.end.IsNull() ? "none" : IsoTime(s.end)) << "\n";
  if (s.hasDistance) std::cout << "distance_m: " << Fixed(s.distanceM, kMetreDecimals) << "\n";
}

void PrintJson(const TElementSummary& s, const TNativeHeader& header, bool badRecords) {
  const auto timeOrNull = [](TDateTime t) { return t.IsNull() ? std::string("null") : JsonString(IsoTime(t)); };
  std::cout << "{\"kind\":" << JsonString(s.kind) << ",\"name\":" << JsonString(s.name) << ",\"count\":" << s.count;
  if (s.kind == "track") std::cout << ",\"segments\":" << s.segments;
  if (badRecords) std::cout << ",\"bad_records\":" << header.badRecords;
  std::cout << ",\"datum\":" << JsonString(header.datum) << ",\"notation\":" << header.notation;
  std::cout << ",\"bounds\":" << (s.bounds.empty ? "null" : "[" + BoundsText(s.bounds, ",") + "]");
  std::cout << ",\"start\":" << timeOrNull(s.start) << ",\"end\":" << timeOrNull(s.end);
  std::cout << ",\"distance_m\":" << (s.hasDistance ? Fixed(s.distanceM, kMetreDecimals) : "null") << "}\n";
}

int Run(const TInfoOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  if (IsCalibrationExtension(FileExtension(options.file))) {
    return PrintMapInfo(options.file, options.json, runtime);
  }
  TNativeOptions read = TNativeOptions::FromConfig(runtime.config, runtime.datums);
  TNativeHeader header;
  read.header = &header;
  TElementFile file;
  std::string error;
  {
    TTerminalProgress progress;
    read.progress = progress.Progress();
    if (!OpenElementFile(options.file, read, file, error)) {
      PrintError(error);
      return kExitRefused;
    }
  }
  const TElementSummary summary = SummarizeElement(file);
  if (options.json) {
    PrintJson(summary, header, CountsBadRecords(options.file));
  } else {
    PrintText(summary, header, CountsBadRecords(options.file));
  }
  return kExitOk;
}

}  // namespace

void AddInfoCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TInfoOptions>();
  auto* command = app.add_subcommand("info", "what a data or map file holds");
  command->add_option("file", options->file, "a waypoint (.wpt), route (.rte), track (.trk), flight log (.igc) or calibration (.imp, .map) file")->required();
  command->add_flag("--json", options->json, "machine output");
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
