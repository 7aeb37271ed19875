// Opening and saving elements by the extension of the file's name (compared
// without regard to case). Formats whose readers or writers are not built
// yet are refused like unknown ones, with "Unknown file format: " followed by
// the extension.
//
// Waypoint lists open from "WPT" and "MRK" (the native reader, which also
// reads OziExplorer waypoint files and marks the list as OziExplorer-born)
// and save to "WPT" (refused for an OziExplorer-born list). Routes open from
// "RTE" (native, OziExplorer or Magellan) and save to "RTE" (refused for an
// OziExplorer- or Magellan-born route). Tracks open from and save to "TRK"
// and "IGC" (igc_file.h). Nothing is written for an element whose
// save-prohibited bit is set. After a complete save the element is marked
// as saved.
#pragma once

#include <string>
#include <string_view>

#include "core/ruta.h"
#include "core/track.h"
#include "core/waypoints.h"
#include "formats/native_file.h"

namespace velantis {

inline constexpr std::string_view kUnknownFileFormat = "Unknown file format: ";
inline constexpr std::string_view kOziWaypointsRefused =
    "Velantis cannot save waypoints in the OZI original format. To save in Velantis format, select 'Save "
    "Waypoints As'";
inline constexpr std::string_view kOziRouteRefused =
    "Velantis cannot save routes in the OZI original format. To save in Velantis format, select 'Save Route As'";
// The save option that asks for the variant route writer.
inline constexpr std::string_view kRouteVariantOption = "/subtipo=804";

// The extension of path without its dot, as written ("" when none).
std::string FileExtension(const std::string& path);

// The kinds of element a file holds, by extension.
enum class TElementKind { Waypoints, Route, Track, Unknown };
TElementKind KindOfFile(const std::string& path);

bool OpenWaypoints(const std::string& path, const TNativeOptions& options, TWaypoints& list, std::string& error);
bool SaveWaypoints(const std::string& path, TWaypoints& list, const TNativeOptions& options, std::string& error);
bool OpenRoute(const std::string& path, const TNativeOptions& options, TRuta& route, std::string& error);
// saveOptions: the caller's option text ("/subtipo=804" asks for the variant
// writer, which is not built: such a save is refused).
bool SaveRoute(const std::string& path, TRuta& route, const TNativeOptions& options, std::string_view saveOptions,
               std::string& error);
bool OpenTrack(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error);
bool SaveTrack(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error);

// Whatever element a file holds, for the commands that take any file.
struct TElementFile {
  TElementKind kind = TElementKind::Unknown;
  TWaypoints waypoints;
  TRuta route;
  TTrack track;
};

// Opens path by its kind; files of no known kind are refused with
// "Unknown file format: " + extension.
bool OpenElementFile(const std::string& path, const TNativeOptions& options, TElementFile& file, std::string& error);
// "Save As" to a file other than the one read: an OziExplorer-born element
// may then be written in the native formats (saving it over its original
// stays refused).
void PrepareSaveAs(TElementFile& file);
// Saves the file's element by the extension of path (a route to "WPT" is
// refused like any format its kind has no writer for).
bool SaveElementFile(const std::string& path, TElementFile& file, const TNativeOptions& options, std::string& error);

}  // namespace velantis
