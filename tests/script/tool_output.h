// Runs a system tool for a reference answer; "" when the tool is missing or
// fails, so that the caller can skip.
#pragma once

#include <cstdio>
#include <string>

namespace velantis::test {

inline std::string ToolOutput(const std::string& command) {
  std::string out;
  std::FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
  if (!pipe) return out;
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
  return ::pclose(pipe) == 0 ? out : std::string();
}

}  // namespace velantis::test
