// velantis info for calibration files: what a map's calibration says.
#pragma once

#include <string>

#include "app/runtime/runtime.h"

namespace velantis::cli {

// Prints the calibration of an ".imp" or ".map" file; returns the exit code.
int PrintMapInfo(const std::string& file, bool json, TRuntime& runtime);

}  // namespace velantis::cli
