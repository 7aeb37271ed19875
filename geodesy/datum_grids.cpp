// Attaching the NTv2 grid files of "datumgrids" to the datums they shift.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "app/log.h"
#include "geodesy/lista_datums.h"
#include "geodesy/ntv2.h"

namespace velantis {

namespace {

std::vector<std::filesystem::path> GridFiles(const std::string& folder) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    std::string extension = entry.path().extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".gsb") files.push_back(entry.path());
  }
  // A later file for the same datum replaces an earlier one: name order makes
  // that choice the same on every machine.
  std::sort(files.begin(), files.end());
  return files;
}

std::string Format(const char* pattern, const std::string& file, const std::string& datum) {
  const int size = std::snprintf(nullptr, 0, pattern, file.c_str(), datum.c_str());
  std::string text(static_cast<size_t>(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), pattern, file.c_str(), datum.c_str());
  text.resize(static_cast<size_t>(size));
  return text;
}

}  // namespace

void TListaDatums::AttachGrids(const std::string& folder) {
  TLog& log = TLog::Instance();
  for (const auto& path : GridFiles(folder)) {
    auto grid = std::make_shared<TDatumFileNTV2>();
    std::string error;
    if (!grid->Open(path.string(), error)) {
      log.Warning(kWarningGridHeader, error);
      continue;
    }
    const std::string file = path.filename().string();
    const int source = Find(grid->SourceDatum());
    if (source < 0) {
      log.Warning(kWarningGridUnusable,
                  Format("File %s not usefull, first datum %s not found in the list.", file,
                         grid->SourceDatum()));
      continue;
    }
    // A name that is not found comes back as -1, which is the configured datum.
    const int target = Find(grid->TargetDatum());
    const TDatum* targetDatum = Get(target);
    if (target != 0 && (targetDatum == nullptr || !SameDatumParameters(*targetDatum, m_datums[0]))) {
      log.Warning(kWarningGridUnusable,
                  Format("File %s not usefull, second datum %s not WGS84.", file,
                         grid->TargetDatum()));
      continue;
    }
    m_datums[static_cast<size_t>(source)].grid = std::move(grid);
  }
}

}  // namespace velantis
