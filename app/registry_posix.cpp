// The POSIX stand-in for the registry behind TRegistryReader: a key file.
#ifndef _WIN32

#include <filesystem>

#include "app/registry.h"

namespace velantis {

TRegistryReader::TRegistryReader(std::string path) : m_path(std::move(path)) {}

void TRegistryReader::SetPath(std::string path) {
  m_path = std::move(path);
  m_loaded = false;
}

bool TRegistryReader::Read(const std::string& section, const std::string& key, std::string& text) {
  if (!m_loaded) {
    // A missing file is a registry key that does not open: every key absent.
    std::error_code ec;
    std::string error;
    m_opened = std::filesystem::is_regular_file(m_path, ec) && m_file.Load(m_path, error);
    m_loaded = true;
  }
  if (!m_opened) return false;
  const auto value = m_file.Find(std::string(kRegistryKeyRoot) + "\\" + section, key);
  if (!value) return false;
  text = *value;
  return true;
}

}  // namespace velantis

#endif  // !_WIN32
