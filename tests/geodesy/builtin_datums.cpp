#include "tests/geodesy/builtin_datums.h"

#include <gtest/gtest.h>

#include "app/file_io.h"
#include "geodesy/datum_file.h"
#include "geodesy/datum_table.h"
#include "tests/support/testdata.h"

namespace velantis::test {

std::filesystem::path MakeDataFolder(const std::string& name,
                                     const std::vector<std::filesystem::path>& grids) {
  const auto dir = ScratchDir(name);
  std::string text, error;
  std::vector<TDatum> datums;
  EXPECT_TRUE(ReadWholeFile((SourceDir() / "data" / "datums.txt").string(), text, error)) << error;
  EXPECT_TRUE(ParseDatumTable(text, datums, error)) << error;
  EXPECT_TRUE(WriteFileAtomic((dir / kBuiltInDatumFile).string(), WriteDatumFile(datums), error));
  std::filesystem::create_directories(dir / kDatumGridFolder);
  for (const auto& grid : grids)
    std::filesystem::create_symlink(grid, dir / kDatumGridFolder / grid.filename());
  return dir;
}

}  // namespace velantis::test
