#include "script/script_host.h"

#include "app/log.h"

namespace velantis {

bool TLocalScriptHost::SaveConfig(std::string& error) {
  if (Config().Path().empty()) return true;  // an in-memory store: nothing to write back
  return Config().Save(error);
}

void TLocalScriptHost::Log(std::string_view line) {
  m_lines.emplace_back(line);
  TLog::Instance().Write(TLogKind::Debug, line);
}

}  // namespace velantis
