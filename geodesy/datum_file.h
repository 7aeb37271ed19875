// The binary datum files "datumsb.dat" (built in) and "datumsbp.dat" (the
// user's): a version (0 to 3 are read, 3 is written), a record count (at most
// kMaxDatumRecords) and the records back to back. Versions before 3 hold text
// in the legacy code page and have no short name before version 2.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "geodesy/datum.h"

namespace velantis {

inline constexpr int kMaxDatumRecords = 1000;
inline constexpr int kDatumFileVersion = 3;

// Appends the records of the file's bytes to datums. On failure the records
// read before the bad one stay appended and error holds the message.
bool ReadDatumFile(std::string_view bytes, std::vector<TDatum>& datums, std::string& error);

// Opens and reads a datum file ("Error opening " + path when it cannot be opened).
bool LoadDatumFile(const std::string& path, std::vector<TDatum>& datums, std::string& error);

// The bytes of a version-3 file holding the given records.
std::string WriteDatumFile(const std::vector<TDatum>& datums);

}  // namespace velantis
