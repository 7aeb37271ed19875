#include "formats/wpt_file.h"

#include "formats/native_text.h"
#include "formats/ozi_waypoint_file.h"
#include "formats/waypoint_record.h"

namespace velantis {

namespace {

constexpr int kBoundsPrecision = 6;

// The waypoint a "w", "t" or "Y" line belongs to, or the list for "Y" lines
// before the first waypoint.
struct TWptReadState {
  TWaypoints& list;
  bool haveWaypoint = false;
  TBaliza& Last() { return list.Baliza(list.Count() - 1); }
};

bool ReadLine(TNativeReader& reader, std::string_view line, TWptReadState& state, std::string& error) {
  const TRecordLine record = SplitRecord(line);
  bool ok = true;
  if (reader.HeaderLine(record.letter, record.content, ok, error)) return ok;
  switch (record.letter) {
    case 'W': {
      TBaliza baliza(reader.Options().defaults);
      if (!ReadWaypointLine(reader, line, true, baliza, error)) return false;
      state.list.Add(std::move(baliza));
      state.haveWaypoint = true;
      return true;
    }
    case 'w':
      if (state.haveWaypoint) ReadExtensionLine(reader, record.content, state.Last());
      return true;
    case 't':
      if (state.haveWaypoint) ReadLabelLine(reader, record.content, state.Last());
      return true;
    case 'Y':
      reader.PropertyLine(record.content, state.haveWaypoint ? state.Last().EditProperties()
                                                             : state.list.EditProperties());
      return true;
    case 'D':
      if (!state.haveWaypoint) state.list.SetDescription(reader.Text(record.content));
      return true;
    default:
      return true;
  }
}

}  // namespace

bool ReadWptFile(const std::string& path, const TNativeOptions& options, TWaypoints& list, std::string& error) {
  std::string bytes;
  return ReadWholeFile(path, bytes, error) && ReadWpt(bytes, options, list, error);
}

bool ReadWpt(std::string_view bytes, const TNativeOptions& options, TWaypoints& list, std::string& error) {
  if (IsOziWaypointFile(bytes)) return ReadOziWaypoints(bytes, options, list, error);
  TWaypoints read;
  TNativeReader reader(options);
  TWptReadState state{read};
  const auto readLine = [&](std::string_view line, size_t) { return ReadLine(reader, line, state, error); };
  if (!ReadLines(bytes, 'W', options.progress, readLine, error)) return false;
  read.MarkAsSaved();
  list = std::move(read);
  return true;
}

void WriteBoundsLine(TNativeWriter& writer, const TBoundingBox& box) {
  writer.Raw("z  ").Real(box.minLat, kBoundsPrecision).Raw(",").Real(box.minLon, kBoundsPrecision).Raw(",");
  writer.Real(box.maxLat, kBoundsPrecision).Raw(",").Real(box.maxLon, kBoundsPrecision).EndLine();
}

bool WriteWptFile(const std::string& path, const TWaypoints& list, const TNativeOptions& options,
                  std::string& error) {
  if (list.SaveProhibited()) {
    error = kSaveProhibitedError;
    return false;
  }
  TNativeWriter writer(path, options);
  if (!writer.Open(error) || !writer.WriteHeader(false, true, error)) return false;
  TBoundingBox box;
  for (const TBaliza& b : list.Balizas())
    if (!writer.AddWritten(box, b.Latitude(), b.Longitude(), true, error)) return false;
  WriteBoundsLine(writer, box);
  if (!list.Description().empty()) writer.Raw("D  ").Text(ReplaceChars(list.Description(), "\r\n", ' ')).EndLine();
  if (list.Properties() != nullptr) writer.PropertyBlock(*list.Properties());
  ProgressSetTotal(options.progress, static_cast<int64_t>(list.Count()));
  for (const TBaliza& baliza : list.Balizas()) {
    if (!WriteWaypointRecord(writer, baliza, true, true, error)) return false;
    if (!writer.Step()) {
      error = kCancelledError;
      return false;
    }
  }
  writer.Raw(kCrLf).Raw(kCrLf);
  return writer.Commit(error);
}

}  // namespace velantis
