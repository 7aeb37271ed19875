// Elements with every field set, drawn from a seeded random source, and the
// built datum list, for the round trips of the file formats.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "core/ruta.h"
#include "core/track.h"
#include "core/waypoints.h"
#include "formats/native_file.h"
#include "geodesy/lista_datums.h"
#include "tests/support/testdata.h"

namespace velantis::test {

// The options with UTF-8 texts, so that tests can spell the bytes.
TNativeOptions Utf8Options();
// What write (a native writer) puts in a scratch file named fileName.
template <typename TElement, typename TWrite>
std::string WrittenBytes(TElement& element, const TNativeOptions& options, const std::string& fileName,
                         TWrite write) {
  const auto path = ScratchDir("written") / fileName;
  std::string error;
  EXPECT_TRUE(write(path.string(), element, options, error)) << error;
  return FileBytes(path);
}

// OziExplorer waypoint and route files around the given records.
inline std::string OziWaypoints(std::string_view records, std::string_view datum = "WGS 84") {
  return "OziExplorer Waypoint File Version 1.1\r\n" + std::string(datum) + "\r\nReserved 2\r\ngarmin\r\n" +
         std::string(records);
}
inline std::string OziRoute(std::string_view lines, std::string_view datum = "WGS 84") {
  return "OziExplorer Route File Version 1.0\r\n" + std::string(datum) + "\r\nReserved 1\r\nReserved 2\r\n" +
         std::string(lines);
}

// The captures of point, joined by blanks, in the part of a GPX text from
// the first from to the next to (GPSBabel's output, the outside reference).
inline std::vector<std::string> GpxCaptures(const std::string& gpx, const std::string& from, const std::string& to,
                                            const std::regex& point) {
  std::vector<std::string> found;
  const size_t start = gpx.find(from);
  if (start == std::string::npos) return found;
  const std::string part = gpx.substr(start, gpx.find(to, start) - start);
  for (std::sregex_iterator it(part.begin(), part.end(), point), end; it != end; ++it) {
    std::string text = (*it)[1].str();
    for (size_t i = 2; i < it->size(); ++i) text += " " + (*it)[i].str();
    found.push_back(text);
  }
  return found;
}

// A waypoint with every field away from its default (times to whole
// seconds, compact reals that print exactly, names and texts without the
// characters the files drop). nonAscii puts accented letters in the texts.
TBaliza SampleWaypoint(std::mt19937_64& random, const TBalizaDefaults& defaults, bool nonAscii);
TWaypoints SampleWaypoints(std::mt19937_64& random, size_t count, const TBalizaDefaults& defaults);
TRuta SampleRoute(std::mt19937_64& random, size_t count, const TBalizaDefaults& defaults);
// A track with every header value and every point field set (the terrain
// altitude, which files do not carry, left unknown), labels and properties
// on some points.
TTrack SampleTrack(std::mt19937_64& random, size_t count);

// Every field a native file keeps, the position excepted, as one text (a
// track point's time in whole seconds): a round trip compares them all at once.
std::string KeptFields(const TBaliza& b);
std::string KeptFields(const TTrack& track, size_t point);

}  // namespace velantis::test
