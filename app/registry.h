// The machine-wide registry key "SOFTWARE\Velantis" as a source of setting
// texts: the value of a key is read from "SOFTWARE\Velantis\<section>", the
// value name being the key.
//
// On Windows this is the real registry (HKEY_LOCAL_MACHINE, UTF-16 values
// returned as UTF-8). On POSIX it is a machine-wide key file whose section
// names are the registry paths, e.g.
//   [SOFTWARE\Velantis\General]
//   Path_EXE=/opt/velantis/bin/velantis
// A registry (or file) that cannot be opened, or a value that cannot be read,
// reports the key as absent; nothing is thrown.
#pragma once

#include <string>
#include <string_view>

#include "app/config_reader.h"
#include "app/key_file.h"

namespace velantis {

inline constexpr std::string_view kRegistryKeyRoot = "SOFTWARE\\Velantis";
inline constexpr std::string_view kRegistryFilePathDefault = "/etc/velantis/registry.ini";

class TRegistryReader : public TConfigReader {
public:
  // path: the POSIX key file standing for the registry (unused on Windows).
  explicit TRegistryReader(std::string path = std::string(kRegistryFilePathDefault));

  void SetPath(std::string path);
  const std::string& Path() const { return m_path; }

  // Reads the backing file again on the next Read (POSIX; the Windows
  // registry is always read live).
  void Reload() { m_loaded = false; }

  bool Read(const std::string& section, const std::string& key, std::string& text) override;

private:
  std::string m_path;
  bool m_loaded = false;
  bool m_opened = false;
  TKeyFile m_file;
};

}  // namespace velantis
