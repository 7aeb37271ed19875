// velantis datums [--json]: the datum list.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "cli/command.h"
#include "cli/text_output.h"
#include "geodesy/ntv2.h"

namespace velantis::cli {

namespace {

std::string GridName(const TDatum& datum) {
  return datum.grid ? std::filesystem::path(datum.grid->Path()).filename().string() : "";
}

void PrintJson(const TListaDatums& datums) {
  std::cout << "[";
  for (int i = 0; i < datums.Count(); ++i) {
    const TDatum& d = *datums.Get(i);
    const std::string grid = GridName(d);
    std::cout << (i ? ",\n" : "\n") << "{\"index\":" << i << ",\"name\":" << JsonString(d.name)
              << ",\"short\":" << JsonString(d.ShortLabel()) << ",\"a\":" << RoundTrip(d.a)
              << ",\"inv_f\":" << RoundTrip(d.invFlattening) << ",\"dx\":" << RoundTrip(d.dX)
              << ",\"dy\":" << RoundTrip(d.dY) << ",\"dz\":" << RoundTrip(d.dZ)
              << ",\"grid\":" << (grid.empty() ? "null" : JsonString(grid)) << "}";
  }
  std::cout << "\n]\n";
}

void PrintTable(const TListaDatums& datums) {
  for (int i = 0; i < datums.Count(); ++i) {
    const TDatum& d = *datums.Get(i);
    std::cout << i << "\t" << d.name << "\t" << d.ShortLabel() << "\t" << RoundTrip(d.a) << "\t"
              << RoundTrip(d.invFlattening) << "\t" << RoundTrip(d.dX) << "\t" << RoundTrip(d.dY)
              << "\t" << RoundTrip(d.dZ);
    if (const std::string grid = GridName(d); !grid.empty()) std::cout << "\tgrid=" << grid;
    std::cout << "\n";
  }
}

}  // namespace

void AddDatumsCommand(CLI::App& app, const TGlobalOptions& options, int& exitCode) {
  auto* command = app.add_subcommand("datums", "list the datums");
  auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json, "machine output");
  command->callback([&options, &exitCode, json] {
    TRuntime runtime;
    if (!StartRuntime(options, runtime)) {
      exitCode = kExitRefused;
      return;
    }
    if (*json) PrintJson(runtime.datums);
    else PrintTable(runtime.datums);
  });
}

}  // namespace velantis::cli
