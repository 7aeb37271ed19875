// How a round-trip fuzz target reports a file that broke it: what went
// wrong, then the text the writer made, and a trap the fuzzer records.
#pragma once

#include <cstdio>
#include <string>

namespace velantis::fuzz {

[[noreturn]] inline void Fail(const std::string& what, const std::string& written) {
  std::fprintf(stderr, "%s\n--- written ---\n%s\n", what.c_str(), written.c_str());
  __builtin_trap();
}

}  // namespace velantis::fuzz
