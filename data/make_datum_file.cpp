// Build step: turns the readable datum table into the binary "datumsb.dat".
#include <cstdio>
#include <string>
#include <vector>

#include "app/file_io.h"
#include "geodesy/datum_file.h"
#include "geodesy/datum_table.h"

int main(int argc, char** argv) {
  using namespace velantis;
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s TABLE OUTPUT\n", argv[0]);
    return 2;
  }
  std::string text, error;
  std::vector<TDatum> datums;
  if (!ReadWholeFile(argv[1], text, error) || !ParseDatumTable(text, datums, error) ||
      !WriteFileAtomic(argv[2], WriteDatumFile(datums), error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  return 0;
}
