#include "formats/file_dispatch.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <initializer_list>

#include "formats/igc_file.h"
#include "formats/rte_file.h"
#include "formats/trk_file.h"
#include "formats/wpt_file.h"

namespace velantis {

namespace {

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

bool IsOneOf(const std::string& extension, std::initializer_list<std::string_view> names) {
  const std::string upper = Upper(extension);
  return std::find(names.begin(), names.end(), upper) != names.end();
}

bool Refuse(const std::string& path, std::string& error) {
  error = std::string(kUnknownFileFormat) + FileExtension(path);
  return false;
}

// The track formats, by extension.
struct TTrackFormat {
  std::string_view extension;
  bool (*read)(const std::string&, const TNativeOptions&, TTrack&, std::string&);
  bool (*write)(const std::string&, TTrack&, const TNativeOptions&, std::string&);
};

const TTrackFormat kTrackFormats[] = {
    {"TRK", ReadTrkFile, WriteTrkFile},
    {"IGC", ReadIgcFile, WriteIgcFile},
};

const TTrackFormat* FindTrackFormat(const std::string& path) {
  const std::string upper = Upper(FileExtension(path));
  for (const TTrackFormat& f : kTrackFormats)
    if (f.extension == upper) return &f;
  return nullptr;
}

// Saves through write (which refuses a save-prohibited element), marking the
// element saved on success.
template <typename TElement, typename TWrite>
bool SaveMarked(TElement& element, TWrite write) {
  if (!write()) return false;
  element.MarkAsSaved();
  return true;
}

}  // namespace

std::string FileExtension(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  return extension.empty() ? extension : extension.substr(1);
}

TElementKind KindOfFile(const std::string& path) {
  const std::string extension = FileExtension(path);
  if (IsOneOf(extension, {"WPT", "MRK"})) return TElementKind::Waypoints;
  if (IsOneOf(extension, {"RTE"})) return TElementKind::Route;
  if (FindTrackFormat(path)) return TElementKind::Track;
  return TElementKind::Unknown;
}

bool OpenWaypoints(const std::string& path, const TNativeOptions& options, TWaypoints& list, std::string& error) {
  if (!IsOneOf(FileExtension(path), {"WPT", "MRK"})) return Refuse(path, error);
  return ReadWptFile(path, options, list, error);
}

bool SaveWaypoints(const std::string& path, TWaypoints& list, const TNativeOptions& options, std::string& error) {
  if (!IsOneOf(FileExtension(path), {"WPT"})) return Refuse(path, error);
  if (list.FromOziExplorer()) {
    error = kOziWaypointsRefused;
    return false;
  }
  return SaveMarked(list, [&] { return WriteWptFile(path, list, options, error); });
}

bool OpenRoute(const std::string& path, const TNativeOptions& options, TRuta& route, std::string& error) {
  if (!IsOneOf(FileExtension(path), {"RTE"})) return Refuse(path, error);
  return ReadRteFile(path, options, route, error);
}

bool SaveRoute(const std::string& path, TRuta& route, const TNativeOptions& options, std::string_view saveOptions,
               std::string& error) {
  if (!IsOneOf(FileExtension(path), {"RTE"})) return Refuse(path, error);
  if (route.FromOziExplorer()) {
    error = kOziRouteRefused;
    return false;
  }
  if (saveOptions.find(kRouteVariantOption) != std::string_view::npos) {
    error = "The route variant " + std::string(kRouteVariantOption) + " cannot be written";
    return false;
  }
  return SaveMarked(route, [&] { return WriteRteFile(path, route, options, error); });
}

bool OpenTrack(const std::string& path, const TNativeOptions& options, TTrack& track, std::string& error) {
  const TTrackFormat* format = FindTrackFormat(path);
  if (!format) return Refuse(path, error);
  return format->read(path, options, track, error);
}

bool SaveTrack(const std::string& path, TTrack& track, const TNativeOptions& options, std::string& error) {
  const TTrackFormat* format = FindTrackFormat(path);
  if (!format) return Refuse(path, error);
  return SaveMarked(track, [&] { return format->write(path, track, options, error); });
}

bool OpenElementFile(const std::string& path, const TNativeOptions& options, TElementFile& file, std::string& error) {
  file.kind = KindOfFile(path);
  switch (file.kind) {
    case TElementKind::Waypoints:
      return OpenWaypoints(path, options, file.waypoints, error);
    case TElementKind::Route:
      return OpenRoute(path, options, file.route, error);
    case TElementKind::Track:
      return OpenTrack(path, options, file.track, error);
    case TElementKind::Unknown:
      break;
  }
  return Refuse(path, error);
}

void PrepareSaveAs(TElementFile& file) {
  file.waypoints.SetFromOziExplorer(false);
  file.route.SetFromOziExplorer(false);
}

bool SaveElementFile(const std::string& path, TElementFile& file, const TNativeOptions& options, std::string& error) {
  switch (file.kind) {
    case TElementKind::Waypoints:
      return SaveWaypoints(path, file.waypoints, options, error);
    case TElementKind::Route:
      return SaveRoute(path, file.route, options, "", error);
    case TElementKind::Track:
      return SaveTrack(path, file.track, options, error);
    case TElementKind::Unknown:
      break;
  }
  return Refuse(path, error);
}

}  // namespace velantis
