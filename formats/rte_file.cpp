#include "formats/rte_file.h"

#include <filesystem>

#include "formats/magellan_route_file.h"
#include "formats/native_text.h"
#include "formats/ozi_waypoint_file.h"
#include "formats/waypoint_record.h"
#include "formats/wpt_file.h"

namespace velantis {

namespace {

constexpr size_t kRouteLineFields = 4;
constexpr size_t kShapeFields = 3;

struct TRteReadState {
  TRuta& route;
  bool haveRoute = false;
  bool LastPoint() const { return route.Count() > 0; }
  TRoutePoint& Last() { return route.Point(route.Count() - 1); }
};

void ReadRouteLine(const TNativeReader& reader, std::string_view content, TRuta& route) {
  std::string_view f[kRouteLineFields];
  const size_t count = SplitAt(content, ',', f, kRouteLineFields);
  int value = 0;
  if (ParseInt(f[0], value)) route.SetDisplayAttribute(0, value);
  if (count > 1) route.SetName(reader.Text(f[1]));
  if (count > 2 && ParseInt(f[2], value)) route.SetDisplayAttribute(1, value);
  if (count > 3 && ParseInt(f[3], value)) route.SetDisplayAttribute(2, value);
}

bool ReadShapeLine(const TNativeReader& reader, std::string_view content, TRoutePoint& point, std::string& error) {
  std::string_view f[kShapeFields];
  if (SplitBlanks(content, f, kShapeFields) < 2) {
    error = kWptLineError;
    return false;
  }
  TShapePoint shape;
  if (!reader.Position(f[0], f[1], true, shape.lat, shape.lon, error)) return false;
  ParseReal(f[2], shape.altitude);
  point.shape.push_back(shape);
  return true;
}

bool ReadLine(TNativeReader& reader, std::string_view line, TRteReadState& state, std::string& error) {
  const TRecordLine record = SplitRecord(line);
  bool ok = true;
  if (reader.HeaderLine(record.letter, record.content, ok, error)) return ok;
  switch (record.letter) {
    case 'R':
      if (!state.haveRoute) ReadRouteLine(reader, record.content, state.route);
      state.haveRoute = true;
      return true;
    case 'W': {
      TBaliza baliza(reader.Options().defaults);
      if (!ReadWaypointLine(reader, line, true, baliza, error)) return false;
      state.route.Add(std::move(baliza));
      return true;
    }
    case 'w':
      if (state.LastPoint()) ReadExtensionLine(reader, record.content, state.Last().baliza);
      return true;
    case 't':
      if (state.LastPoint()) ReadLabelLine(reader, record.content, state.Last().baliza);
      return true;
    case 'Y':
      if (state.LastPoint()) reader.PropertyLine(record.content, state.Last().baliza.EditProperties());
      return true;
    case 'p':
      return !state.LastPoint() || ReadShapeLine(reader, record.content, state.Last(), error);
    default:
      return true;
  }
}

bool WriteRoutePoint(TNativeWriter& writer, const TRoutePoint& point, std::string& error) {
  if (!WriteWaypointRecord(writer, point.baliza, true, false, error)) return false;
  for (const TShapePoint& shape : point.shape) {
    writer.Raw("p  ");
    if (!writer.Position(shape.lat, shape.lon, false, error)) return false;
    writer.Raw(" ").Real(shape.altitude).EndLine();
  }
  return true;
}

}  // namespace

std::string RouteNameOfFile(const std::string& path) {
  std::string name = std::filesystem::path(path).filename().string();
  const size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.resize(dot);
  return name;
}

bool ReadRteFile(const std::string& path, const TNativeOptions& options, TRuta& route, std::string& error) {
  std::string bytes;
  return ReadWholeFile(path, bytes, error) && ReadRte(bytes, options, route, error);
}

bool ReadRte(std::string_view bytes, const TNativeOptions& options, TRuta& route, std::string& error) {
  if (IsOziRouteFile(bytes)) return ReadOziRoute(bytes, options, route, error);
  if (IsMagellanRouteFile(bytes)) return ReadMagellanRoute(bytes, options, route, error);
  TRuta read;
  TNativeReader reader(options);
  TRteReadState state{read};
  const auto readLine = [&](std::string_view line, size_t) { return ReadLine(reader, line, state, error); };
  if (!ReadLines(bytes, 'W', options.progress, readLine, error)) return false;
  if (!state.haveRoute) {
    error = kNoRteSections;
    return false;
  }
  read.MarkAsSaved();
  route = std::move(read);
  return true;
}

bool WriteRteFile(const std::string& path, const TRuta& route, const TNativeOptions& options, std::string& error) {
  if (route.SaveProhibited()) {
    error = kSaveProhibitedError;
    return false;
  }
  TNativeWriter writer(path, options);
  if (!writer.Open(error) || !writer.WriteHeader(false, false, error)) return false;
  writer.Raw("R  ").Int(route.DisplayAttribute(0)).Raw(",").Text(RemoveChars(RouteNameOfFile(path), ",\r\n"));
  writer.Raw(",").Int(route.DisplayAttribute(1)).Raw(",").Int(route.DisplayAttribute(2)).EndLine();
  TBoundingBox box;
  for (size_t i = 0; i < route.Count(); ++i) {
    const TRoutePoint& point = route.Point(i);
    writer.AddWritten(box, point.baliza.Latitude(), point.baliza.Longitude(), false, error);
    for (const TShapePoint& shape : point.shape) writer.AddWritten(box, shape.lat, shape.lon, false, error);
  }
  if (!box.empty) WriteBoundsLine(writer, box);
  ProgressSetTotal(options.progress, static_cast<int64_t>(route.Count()));
  for (size_t i = 0; i < route.Count(); ++i) {
    if (!WriteRoutePoint(writer, route.Point(i), error)) return false;
    if (!writer.Step()) {
      error = kCancelledError;
      return false;
    }
  }
  writer.Raw(kCrLf).Raw(kCrLf);
  return writer.Commit(error);
}

}  // namespace velantis
