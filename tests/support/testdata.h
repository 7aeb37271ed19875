// Where tests find the third-party test data, the source tree and the build tree.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <string>

#include "geodesy/lista_datums.h"

namespace velantis::test {

// The third-party test data folder: $VELANTIS_TESTDATA, else ../shared/testdata
// beside the repository.
std::filesystem::path TestDataDir();

// A file under the test data folder; the calling test is skipped (with the
// missing path in the message) when it is absent.
#define VELANTIS_TESTDATA_OR_SKIP(var, relative)                                  \
  const std::filesystem::path var = ::velantis::test::TestDataDir() / (relative); \
  if (!std::filesystem::exists(var))                                              \
    GTEST_SKIP() << "test data not found: " << var.string() << " (set VELANTIS_TESTDATA)"

std::filesystem::path SourceDir();
std::filesystem::path BinaryDir();

// A fresh empty folder for one test, removed and made again on each call.
std::filesystem::path ScratchDir(const std::string& name);

// The name of a test whose parameter is a file name: "neo-m8n.log" gives
// "neo_m8n_log".
struct TFileParamName {
  template <typename TParam>
  std::string operator()(const ::testing::TestParamInfo<TParam>& info) const {
    std::string name = info.param;
    for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
  }
};

// The bytes of a file (a failed read fails the test).
std::string FileBytes(const std::filesystem::path& path);

// The built-in datums of the build tree's data folder; false when the build
// has not made them.
bool LoadBuiltInDatums(TListaDatums& datums);

}  // namespace velantis::test
