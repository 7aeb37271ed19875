// velantis convert IN OUT [--datum NAME] [--notation N]: reads a file by its
// extension and writes it by the other's, in the configured datum and
// notation unless the options say otherwise.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>

#include "cli/command.h"
#include "cli/terminal_progress.h"
#include "formats/file_dispatch.h"
#include "geodesy/coordinate_notation.h"

namespace velantis::cli {

namespace {

struct TConvertOptions {
  std::string in, out;
  std::optional<std::string> datum;
  std::optional<int> notation;
};

int Run(const TConvertOptions& options, const TGlobalOptions& global) {
  TRuntime runtime;
  if (!StartRuntime(global, runtime)) return kExitRefused;
  TNativeOptions native = TNativeOptions::FromConfig(runtime.config, runtime.datums);
  if (options.datum) {
    native.datum = runtime.datums.Find(*options.datum);
    if (native.datum < 0) {
      PrintError("Unknown datum: " + *options.datum);
      return kExitRefused;
    }
  }
  if (options.notation) native.notation = *options.notation;
  TTerminalProgress progress;
  native.progress = progress.Progress();
  TElementFile file;
  std::string error;
  if (!OpenElementFile(options.in, native, file, error)) {
    PrintError(error);
    return kExitRefused;
  }
  std::error_code ec;
  if (!std::filesystem::equivalent(options.in, options.out, ec)) PrepareSaveAs(file);
  if (!SaveElementFile(options.out, file, native, error)) {
    PrintError(error);
    return kExitRefused;
  }
  return kExitOk;
}

}  // namespace

void AddConvertCommand(CLI::App& app, const TGlobalOptions& global, int& exitCode) {
  auto options = std::make_shared<TConvertOptions>();
  auto* command = app.add_subcommand("convert", "convert a data file to another format, datum or notation");
  command->add_option("in", options->in, "the file to read")->required();
  command->add_option("out", options->out, "the file to write (its extension chooses the format)")->required();
  command->add_option("--datum", options->datum, "the datum to write coordinates in");
  command->add_option("--notation", options->notation, "the coordinate notation, 0 to 3")
      ->check(CLI::Range(0, kNotationCount - 1));
  command->callback([options, &global, &exitCode] { exitCode = Run(*options, global); });
}

}  // namespace velantis::cli
