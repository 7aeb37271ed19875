#include "geodesy/lista_datums.h"

#include <filesystem>

#include "app/file_io.h"
#include "app/log.h"
#include "geodesy/datum_file.h"
#include "geodesy/datum_names.h"

namespace velantis {

bool TListaDatums::Load(const std::string& programDir, const std::string& userDir,
                        std::string& error) {
  namespace fs = std::filesystem;
  m_datums.clear();
  std::string message;
  if (!AppendFile((fs::path(programDir) / kBuiltInDatumFile).string(), message)) {
    error = "Error reading file DATUMSB.DAT " + message;
    return false;
  }
  m_builtInCount = Count();
  m_userFile = (fs::path(userDir) / kUserDatumFile).string();
  // A missing user file is no error; a broken one keeps what it held before
  // the bad record and is logged.
  if (fs::exists(m_userFile) && !AppendFile(m_userFile, message)) {
    TLog::Instance().Error(message);
  }
  AttachGrids((fs::path(programDir) / kDatumGridFolder).string());
  return true;
}

bool TListaDatums::AppendFile(const std::string& path, std::string& error) {
  return LoadDatumFile(path, m_datums, error);
}

void TListaDatums::Add(TDatum datum) {
  datum.ComputeDerived();
  m_datums.push_back(std::move(datum));
}

bool TListaDatums::SaveUserDatums(std::string& error) const {
  return SaveUserDatums(m_builtInCount, Count() - 1, error);
}

bool TListaDatums::SaveUserDatums(int first, int last, std::string& error) const {
  if (first < 0 || last >= Count() || last < first - 1) {
    error = "Datum range error";
    return false;
  }
  const std::vector<TDatum> records(m_datums.begin() + first, m_datums.begin() + last + 1);
  return WriteFileAtomic(m_userFile, WriteDatumFile(records), error);
}

bool TListaDatums::Exists(int index) const {
  return index >= 0 && index < Count();
}

int TListaDatums::ConfiguredIndex() const { return *m_configured; }

const TDatum* TListaDatums::Get(int index) const {
  index = Resolve(index);
  return Exists(index) ? &m_datums[static_cast<size_t>(index)] : nullptr;
}

int TListaDatums::Find(std::string_view name) const {
  if (name.empty()) return -1;
  return FindNormalised(NormaliseDatumName(name));
}

int TListaDatums::FindProjectionName(std::string_view name) const {
  return Find(StripProjectionDatumName(name));
}

int TListaDatums::FindNormalised(const std::string& text) const {
  if (IsAutoShiftName(text)) return ConfiguredIndex();
  for (int i = 0; i < Count(); ++i) {
    const TDatum& datum = m_datums[static_cast<size_t>(i)];
    if (SameDatumName(datum.name, text)) return i;
    for (const std::string& alias : datum.aliases) {
      if (SameDatumName(alias, text)) return i;
    }
  }
  for (int i = 0; i < Count(); ++i) {
    const TDatum& datum = m_datums[static_cast<size_t>(i)];
    if (!datum.shortName.empty() && SameDatumName(datum.shortName, text)) return i;
  }
  return -1;
}

TDatumChooser TListaDatums::FillChooser(const std::vector<std::string>& recent,
                                        int current) const {
  TDatumChooser chooser;
  for (const std::string& name : recent) {
    const int index = Find(name);
    if (index < 0) continue;
    if (index == current) chooser.selected = static_cast<int>(chooser.lines.size());
    chooser.lines.push_back(name);
  }
  const int firstDatumLine = chooser.lines.empty() ? 0 : static_cast<int>(chooser.lines.size()) + 1;
  if (!chooser.lines.empty()) chooser.lines.push_back(kDatumChooserSeparator);
  for (const TDatum& datum : m_datums) chooser.lines.push_back(datum.name);
  if (chooser.selected < 0 && Exists(current)) chooser.selected = firstDatumLine + current;
  return chooser;
}

}  // namespace velantis
