// Files and folders (file_operations.h gives the rules of each).
//
// Argument lists:
//   DirScan(folder, pattern): a TArray of the paths of the folder's files
//     whose names match ("*.trk"), sorted by name; "Error reading folder";
//   Copy(from, to): 1; "Error copying file";
//   XCopy(fromFolder, toFolder): the number of files copied; "Error copying files";
//   Split(path, pieceBytes): the number of pieces path.001, path.002 ...;
//     "Error splitting file";
//   Delete(path): 1; "Can't delete file" (a missing file included);
//   NewTempFileName(extension): the path of a new empty file in the
//     temporary folder ("velantis-1a2b3c4d.trk"); "Error creating temporary file";
//   Convert(in, out): reads in by its extension and writes out by its own,
//     in the configured datum and notation, 1; the reader's or writer's
//     message on failure ("Unknown file format: xyz");
//   ImportWptsTxt(path), ImportTrackTxt(path): a new waypoint list or track
//     of the application, named after the file, holding the lines of the
//     text (text_import.h); "Error opening <path>" or "Error in line N".
// Without system access (TScriptLimits) each fails with its message.
#include <filesystem>

#include "app/file_io.h"
#include "script/application_commands.h"
#include "script/array_object.h"
#include "script/element_objects.h"
#include "script/file_operations.h"
#include "script/script_host.h"
#include "script/text_import.h"
#include "script/velan_script_base.h"

namespace velantis {

namespace {

// The path arguments, or the command's message without system access.
void RequireSystemAccess(const TBuiltinCall& call, const char* message) {
  if (!call.script.Limits().systemAccess) throw TScriptError(message, call.at);
}

void Fail(const TBuiltinCall& call, const char* message) { throw TScriptError(message, call.at); }

void DirScan(TBuiltinCall& call) {
  constexpr const char* kMessage = "Error reading folder";
  const std::string &folder = call.Text(0), &pattern = call.Text(1);
  RequireSystemAccess(call, kMessage);
  std::vector<std::string> paths;
  std::string error;
  if (!ScanFolder(folder, pattern, paths, error)) Fail(call, kMessage);
  auto array = std::make_shared<TArrayObject>();
  for (std::string& path : paths) array->values.emplace_back().SetString(std::move(path));
  call.result = call.script.Reference(std::move(array));
}

void Copy(TBuiltinCall& call) {
  constexpr const char* kMessage = "Error copying file";
  const std::string &from = call.Text(0), &to = call.Text(1);
  RequireSystemAccess(call, kMessage);
  std::string error;
  if (!CopyOneFile(from, to, error)) Fail(call, kMessage);
  call.result.SetNumber(1);
}

void XCopy(TBuiltinCall& call) {
  constexpr const char* kMessage = "Error copying files";
  const std::string &from = call.Text(0), &to = call.Text(1);
  RequireSystemAccess(call, kMessage);
  size_t count = 0;
  std::string error;
  if (!CopyFolder(from, to, count, error)) Fail(call, kMessage);
  call.result.SetNumber(static_cast<double>(count));
}

void Split(TBuiltinCall& call) {
  constexpr const char* kMessage = "Error splitting file";
  const std::string& path = call.Text(0);
  const double pieceBytes = call.Number(1);
  RequireSystemAccess(call, kMessage);
  size_t count = 0;
  std::string error;
  if (!(pieceBytes >= 1 && pieceBytes <= 1e15) || !SplitFile(path, static_cast<size_t>(pieceBytes), count, error))
    Fail(call, kMessage);
  call.result.SetNumber(static_cast<double>(count));
}

void Delete(TBuiltinCall& call) {
  constexpr const char* kMessage = "Can't delete file";
  const std::string& path = call.Text(0);
  RequireSystemAccess(call, kMessage);
  std::string error;
  if (!DeleteOneFile(path, error)) Fail(call, kMessage);
  call.result.SetNumber(1);
}

void NewTempFileName(TBuiltinCall& call) {
  constexpr const char* kMessage = "Error creating temporary file";
  const std::string& extension = call.Text(0);
  RequireSystemAccess(call, kMessage);
  std::string path, error;
  if (!NewTemporaryFile(extension, path, error)) Fail(call, kMessage);
  call.result.SetString(path);
}

void Convert(TBuiltinCall& call) {
  const std::string &in = call.Text(0), &out = call.Text(1);
  RequireSystemAccess(call, "Error reading file");
  TScriptHost& host = call.script.Host();
  const TNativeOptions options = TNativeOptions::FromConfig(host.Config(), host.Datums());
  TElementFile file;
  std::string error;
  if (!OpenElementFile(in, options, file, error)) throw TScriptError(error, call.at);
  if (in != out) PrepareSaveAs(file);
  if (!SaveElementFile(out, file, options, error)) throw TScriptError(error, call.at);
  call.result.SetNumber(1);
}

// The text read into a new element of the application, which the script
// then holds.
void Import(TBuiltinCall& call, TElementKind kind) {
  const std::string& path = call.Text(0);
  RequireSystemAccess(call, "Error reading file");
  std::string text, error;
  auto file = std::make_shared<TLoadedFile>();
  file->element.kind = kind;
  TScriptHost& host = call.script.Host();
  const std::string name = std::filesystem::path(path).stem().string();
  const bool read =
      ReadWholeFile(path, text, error) &&
      (kind == TElementKind::Track
           ? ReadTrackText(text, file->element.track, error)
           : ReadWaypointsText(text, TBalizaDefaults::FromConfig(host.Config()), file->element.waypoints, error));
  if (!read) throw TScriptError(error, call.at);
  if (kind == TElementKind::Track)
    file->element.track.SetName(name);
  else
    file->element.waypoints.SetName(name);
  host.Loaded().push_back(file);
  call.result = call.script.Reference(std::make_shared<TElementObject>(ObjectKindOf(kind), std::move(file)));
}

void ImportWptsTxt(TBuiltinCall& call) { Import(call, TElementKind::Waypoints); }
void ImportTrackTxt(TBuiltinCall& call) { Import(call, TElementKind::Track); }

constexpr TApplicationCommand kFileCommands[] = {
    {"DirScan", 2, DirScan},           {"Copy", 2, Copy},       {"XCopy", 2, XCopy},
    {"Split", 2, Split},               {"Delete", 1, Delete},   {"NewTempFileName", 1, NewTempFileName},
    {"Convert", 2, Convert},           {"ImportWptsTxt", 1, ImportWptsTxt},
    {"ImportTrackTxt", 1, ImportTrackTxt},
};

}  // namespace

std::span<const TApplicationCommand> FileCommands() { return kFileCommands; }

}  // namespace velantis
