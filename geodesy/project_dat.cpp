#include "geodesy/project_dat.h"

#include <filesystem>

#include "app/file_io.h"
#include "geodesy/projection_file.h"
#include "geodesy/projection_file_lines.h"

namespace velantis {

namespace {

using projection_file::ForEachLine;
using projection_file::SameKey;
using projection_file::SplitKeyValue;
using projection_file::TrimBlanks;

constexpr size_t kSeparatorMinDashes = 3;
constexpr std::string_view kLineEnd = "\r\n";

bool IsSeparator(std::string_view trimmed) {
  return trimmed.size() >= kSeparatorMinDashes &&
         trimmed.find_first_not_of('-') == std::string_view::npos;
}

bool IsComment(std::string_view trimmed) { return !trimmed.empty() && trimmed.front() == '#'; }

// True when name is one of the ";" entries of list.
bool ListHoldsName(std::string_view list, std::string_view name) {
  size_t start = 0;
  while (true) {
    const size_t end = list.find(';', start);
    if (SameKey(TrimBlanks(list.substr(start, end - start)), name)) return true;
    if (end == std::string_view::npos) return false;
    start = end + 1;
  }
}

// Calls visit(blockText, firstLine, matchesName) for each block, the block
// without its comments; stops when visit returns false.
template <class TVisit>
void ForEachBlock(std::string_view text, std::string_view name, TVisit&& visit) {
  std::string block;
  int firstLine = 0;
  bool matches = false;
  bool stopped = false;
  const auto finish = [&] {
    if (!block.empty() && !visit(std::string_view(block), firstLine, matches)) stopped = true;
    block.clear();
    matches = false;
    return !stopped;
  };
  const bool whole = ForEachLine(text, [&](std::string_view line, int number) {
    const std::string_view trimmed = TrimBlanks(line);
    if (IsSeparator(trimmed)) return finish();
    if (trimmed.empty() || IsComment(trimmed)) return true;
    if (block.empty()) firstLine = number;
    std::string_view key, value;
    if (SplitKeyValue(line, key, value)) {
      if (SameKey(key, "NAME")) matches = matches || SameKey(value, name);
      if (SameKey(key, "OTHER_NAMES")) matches = matches || ListHoldsName(value, name);
    }
    block.append(line).append(kLineEnd);
    return true;
  });
  if (whole) finish();
}

bool Lookup(const std::string& path, std::string_view name, const TListaDatums* datums,
            TDatosProyeccion& definition, std::string_view notFound, std::string& error) {
  std::string text;
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec) || !ReadWholeFile(path, text, error)) {
    error = kProjectDatMissing;
    return false;
  }
  bool found = false;
  if (FindInProjectDat(text, name, datums, definition, found, error)) return true;
  if (!found) error = notFound;
  return false;
}

}  // namespace

bool FindInProjectDat(std::string_view text, std::string_view name, const TListaDatums* datums,
                      TDatosProyeccion& definition, bool& found, std::string& error) {
  const std::string_view wanted = TrimBlanks(name);
  bool ok = false;
  found = false;
  if (wanted.empty()) return false;
  ForEachBlock(text, wanted, [&](std::string_view block, int, bool matches) {
    if (!matches) return true;
    found = true;
    ok = ReadProjectionText(block, datums, definition, error);
    return false;
  });
  return ok;
}

bool ReadProjectDat(std::string_view text, const TListaDatums* datums,
                    std::vector<TDatosProyeccion>& definitions, std::string& error) {
  std::vector<TDatosProyeccion> read;
  bool ok = true;
  ForEachBlock(text, {}, [&](std::string_view block, int firstLine, bool) {
    TDatosProyeccion definition;
    std::string message;
    if (!ReadProjectionText(block, datums, definition, message)) {
      error = "Definition at line " + std::to_string(firstLine) + ": " + message;
      ok = false;
      return false;
    }
    read.push_back(std::move(definition));
    return true;
  });
  if (ok) definitions = std::move(read);
  return ok;
}

bool LookupProjectDat(const std::string& dataDir, std::string_view name, const TListaDatums* datums,
                      TDatosProyeccion& definition, std::string& error) {
  const std::string path = (std::filesystem::path(dataDir) / kProjectDatFile).string();
  return Lookup(path, name, datums, definition, kProjectDatNoProjection, error);
}

bool LookupEcwProjectDat(const std::string& dataDir, std::string_view name,
                         const TListaDatums* datums, TDatosProyeccion& definition,
                         std::string& error) {
  const std::string path = (std::filesystem::path(dataDir) / kEcwProjectDatFile).string();
  return Lookup(path, name, datums, definition, kEcwProjectDatNoProjection, error);
}

bool ReadDefaultProjection(const std::string& userDir, const std::string& dataDir,
                           const TListaDatums* datums, TDatosProyeccion& definition,
                           std::string& error) {
  namespace fs = std::filesystem;
  std::error_code ec;
  const fs::path user = fs::path(userDir) / kDefaultProjectionFile;
  const fs::path path = !userDir.empty() && fs::is_regular_file(user, ec)
                            ? user
                            : fs::path(dataDir) / kDefaultProjectionFile;
  return ReadProjectionFile(path.string(), datums, definition, error);
}

}  // namespace velantis
