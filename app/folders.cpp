#include "app/folders.h"

#include "app/config.h"

#include <cstdlib>
#include <filesystem>

namespace velantis {

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// A program run from its build tree uses the build tree's data; an installed
// one, whose build tree is gone, the installed data.
std::string DefaultDataDir() {
  if (std::filesystem::exists(VELANTIS_BUILD_DATA_DIR)) return VELANTIS_BUILD_DATA_DIR;
  return VELANTIS_INSTALLED_DATA_DIR;
}

std::string DefaultUserDir() {
  namespace fs = std::filesystem;
#ifdef _WIN32
  const std::string base = Environment("APPDATA");
  return (fs::path(base.empty() ? "." : base) / "Velantis").string();
#else
  std::string base = Environment("XDG_DATA_HOME");
  if (base.empty()) {
    const std::string home = Environment("HOME");
    base = (fs::path(home.empty() ? "/tmp" : home) / ".local" / "share").string();
  }
  return (fs::path(base) / "velantis").string();
#endif
}

}  // namespace

TFolders ResolveFolders(TFolders given) {
  if (given.dataDir.empty()) given.dataDir = DefaultDataDir();
  if (given.userDir.empty()) given.userDir = DefaultUserDir();
  if (given.configFile.empty())
    given.configFile = (std::filesystem::path(given.userDir) / kConfigFileName).string();
  return given;
}

}  // namespace velantis
