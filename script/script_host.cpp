#include "script/script_host.h"

#include "app/log.h"

namespace velantis {

namespace {
constexpr double kWgs84SemiMajorM = 6378137.0;
constexpr double kWgs84InverseFlattening = 298.257223563;
}  // namespace

// The host's own datum list holds WGS 84 alone: enough for UTM positions.
TLocalScriptHost::TLocalScriptHost() {
  TDatum wgs84;
  wgs84.name = "WGS 84";
  wgs84.a = kWgs84SemiMajorM;
  wgs84.invFlattening = kWgs84InverseFlattening;
  wgs84.ComputeDerived();
  m_datums.Add(std::move(wgs84));
}

bool TLocalScriptHost::SaveConfig(std::string& error) {
  if (Config().Path().empty()) return true;  // an in-memory store: nothing to write back
  return Config().Save(error);
}

void TLocalScriptHost::Log(std::string_view line) {
  m_lines.emplace_back(line);
  TLog::Instance().Write(TLogKind::Debug, line);
}

}  // namespace velantis
