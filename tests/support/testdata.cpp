#include "tests/support/testdata.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <unistd.h>

#include "app/file_io.h"

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

std::string FileBytes(const std::filesystem::path& path) {
  std::string bytes, error;
  EXPECT_TRUE(ReadWholeFile(path.string(), bytes, error)) << error;
  return bytes;
}

bool LoadBuiltInDatums(TListaDatums& datums) {
  std::string error;
  return datums.Load((BinaryDir() / "data").string(), ScratchDir("datums-user").string(), error);
}

}  // namespace velantis::test
