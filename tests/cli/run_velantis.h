// Runs the built velantis program as a user would, in a scratch user folder.
#pragma once

#include <string>
#include <vector>

namespace velantis::test {

struct TRunResult {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// Runs velantis with args (each one argument, no shell), feeding stdinText.
TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText = "");

}  // namespace velantis::test
