// The built-in datum list as the program loads it: the table of data/ turned
// into "datumsb.dat" in a scratch data folder, with chosen grids linked into
// its "datumgrids".
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "geodesy/lista_datums.h"

namespace velantis::test {

// Makes a data folder named `name` with datumsb.dat from data/datums.txt and
// a link in datumgrids for each of the grids given; returns its path.
std::filesystem::path MakeDataFolder(const std::string& name,
                                     const std::vector<std::filesystem::path>& grids);

}  // namespace velantis::test
