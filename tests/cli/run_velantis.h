// Runs the built velantis program as a user would, in a scratch user folder.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velantis::test {

struct TRunResult {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// Runs velantis with args (each one argument, no shell), feeding stdinText.
// A program that runs until it is told (a live command): whileRunning is
// called once it started, and the signal it returns is sent to it.
TRunResult RunVelantis(const std::vector<std::string>& args, const std::string& stdinText = "",
                       const std::function<int()>& whileRunning = {}, const std::string& userDir = "");

}  // namespace velantis::test
