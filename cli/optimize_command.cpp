// velantis optimize FILE [--type free|triangle|fai|quad] [--rules NAME]
// [--exact] [--json] [--save-route FILE.rte] [--save-track]: the turnpoints
// of the longest contest shape in a flight track, scored under a rule set.
//
// The search is one TFlightSearch value chosen in ChooseSearch, so another
// search (the exact one) takes its place without touching the rest.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <iostream>
#include <optional>

#include "analysis/exact_flight_optimizer.h"
#include "analysis/optimization_route.h"
#include "analysis/optimization_track_marks.h"
#include "analysis/track_optimization.h"
#include "cli/command.h"
#include "cli/terminal_progress.h"
#include "cli/text_output.h"
#include "formats/file_dispatch.h"

namespace velantis::cli {

namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kMetreDecimals = 3;
constexpr int kPointDecimals = 3;
constexpr std::string_view kUnknownRules = "Unknown rule set: ";
constexpr std::string_view kNoResult = "No result: the track has too few points for the shape";
// Only the native track file keeps properties for the track and its points;
// an IGC log would be rewritten without the result.
constexpr std::string_view kSaveTrackNeedsTrk =
    "The result can only be stored in a .trk file: convert the flight to .trk first";
constexpr std::string_view kNativeTrackExtension = "trk";

struct TOptimizeOptions {
  std::string file;
  std::string type = "free";
  std::string rules = std::string(DhvOlcRules().name);
  bool exact = false;
  bool json = false;
  std::optional<std::string> saveRoute;
  bool saveTrack = false;
};

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

TFlightSearch ChooseSearch(const TOptimizeOptions& options) {
  return options.exact ? TFlightSearch(ExactFlightSearch) : TFlightSearch(DefaultFlightSearch);
}

struct TPrintedPoint {
  const TBaliza& baliza;
  int index;
};

std::vector<TPrintedPoint> PrintedPoints(const TTrackOptimization& o) {
  std::vector<TPrintedPoint> points;
  size_t routeIndex = 0;
  for (int index : o.indices)
    if (index != kNoPoint) points.push_back({o.route.Point(routeIndex++).baliza, index});
  return points;
}

void PrintJson(const TTrackOptimization& o, const TOptimizationShape& shape) {
  std::cout << "{\"type\":" << JsonString(shape.name) << ",\"distance_m\":" << Fixed(o.ruleScore.distanceM, kMetreDecimals)
            << ",\"score\":" << Fixed(o.ruleScore.score, kPointDecimals) << ",\"points\":[";
  const char* separator = "";
  for (const TPrintedPoint& p : PrintedPoints(o)) {
    std::cout << separator << "{\"name\":" << JsonString(p.baliza.Name()) << ",\"index\":" << p.index
              << ",\"lat\":" << Fixed(p.baliza.Latitude(), kDegreeDecimals)
              << ",\"lon\":" << Fixed(p.baliza.Longitude(), kDegreeDecimals) << "}";
    separator = ",";
  }
  std::cout << "]}\n";
}

void PrintText(const TTrackOptimization& o, const TOptimizationShape& shape) {
  std::cout << "type: " << shape.name << "\nrules: " << o.rules->name
            << "\ndistance_m: " << Fixed(o.ruleScore.distanceM, kMetreDecimals)
            << "\nscore: " << Fixed(o.ruleScore.score, kPointDecimals) << "\n";
  for (const TPrintedPoint& p : PrintedPoints(o))
    std::cout << p.baliza.Name() << ": " << p.index << " " << Fixed(p.baliza.Latitude(), kDegreeDecimals) << " "
              << Fixed(p.baliza.Longitude(), kDegreeDecimals) << "\n";
}

bool SaveResults(const TOptimizeOptions& options, const TNativeOptions& native, TTrackOptimization& o, TTrack& track,
                 std::string& error) {
  if (options.saveRoute && !SaveRoute(*options.saveRoute, o.route, native, "", error)) return false;
  if (!options.saveTrack) return true;
  StoreOptimizationInTrack(o, track);
  return SaveTrack(options.file, track, native, error);
}

int Run(const TOptimizeOptions& options, const TGlobalOptions& global) {
  const TScoringRules* rules = FindScoringRules(options.rules);
  if (rules == nullptr) {
    PrintError(std::string(kUnknownRules) + options.rules);
    return kExitRefused;
  }
  if (options.saveTrack && !SameLetters(FileExtension(options.file), kNativeTrackExtension)) {
    PrintError(kSaveTrackNeedsTrk);
    return kExitRefused;
  }
  const TOptimizationShape& shape = *ShapeForName(options.type);
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TNativeOptions native = TNativeOptions::FromConfig(runtime.config, runtime.datums);
  TTrack track;
  TTrackOptimization optimization;
  std::string error;
  {
    TTerminalProgress progress;
    native.progress = progress.Progress();
    if (!OpenTrack(options.file, native, track, error)) {
      PrintError(error);
      return kExitRefused;
    }
    const TPhaseListener onPhase = [&progress](std::string_view message) { progress.SetCaption(std::string(message)); };
    if (!OptimizeTrack(track, shape, *rules, ChooseSearch(options), progress.Progress(), onPhase, optimization)) {
      PrintError(kCancelledError);
      return kExitRefused;
    }
    native.progress = nullptr;
  }
  if (!optimization.result.Found()) {
    PrintError(kNoResult);
    return kExitRefused;
  }
  if (!SaveResults(options, native, optimization, track, error)) {
    PrintError(error);
    return kExitRefused;
  }
  if (options.json) {
    PrintJson(optimization, shape);
  } else {
    PrintText(optimization, shape);
  }
  return kExitOk;
}

}  // namespace

void AddOptimizeCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TOptimizeOptions>();
  auto* command = app.add_subcommand("optimize", "flight distance optimisation of a track");
  command->add_option("file", options->file, "the flight track (.trk or .igc)")->required();
  command->add_option("--type", options->type, "the shape: free (two turnpoints), triangle, fai or quad")
      ->check(CLI::IsMember({"free", "triangle", "fai", "quad"}));
  command->add_option("--rules", options->rules,
                      "the rule set: \"DHV, HG/PG OLC\" (dhv, the default), \"Gliders OLC\" (gliders) or "
                      "\"French CFD\" (cfd)");
  command->add_flag("--exact", options->exact,
                    "prove the optimum (branch and bound) instead of the default coarse-then-fine search");
  command->add_flag("--json", options->json, "machine output");
  command->add_option("--save-route", options->saveRoute, "write the result route to this file (.rte)");
  command->add_flag("--save-track", options->saveTrack, "store the result in the track file");
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
