#include "tests/support/testdata.h"

#include <cstdlib>

#include <unistd.h>

namespace velantis::test {

std::filesystem::path TestDataDir() {
  if (const char* dir = std::getenv("VELANTIS_TESTDATA"); dir && *dir) return dir;
  return VELANTIS_DEFAULT_TESTDATA;
}

std::filesystem::path SourceDir() { return VELANTIS_SOURCE_DIR; }

std::filesystem::path BinaryDir() { return VELANTIS_BINARY_DIR; }

std::filesystem::path ScratchDir(const std::string& name) {
  const auto dir = std::filesystem::temp_directory_path() / ("velantis-test-" + name + "-" + std::to_string(::getpid()));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

}  // namespace velantis::test
