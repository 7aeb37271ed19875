#include "app/runtime/runtime.h"

#include <filesystem>

#include "app/log.h"

namespace velantis {

bool TRuntime::Start(const TFolders& given, std::string& error) {
  folders = ResolveFolders(given);
  std::error_code ec;
  std::filesystem::create_directories(folders.userDir, ec);
  TLog::Instance().Open((std::filesystem::path(folders.userDir) / TLog::kFileName).string());
  std::string configError;
  if (!config.Load(folders.configFile, configError)) TLog::Instance().Error(configError);
  return datums.Load(folders.dataDir, folders.userDir, error);
}

}  // namespace velantis
