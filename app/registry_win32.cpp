// The Windows registry behind TRegistryReader (built under _WIN32 only).
#ifdef _WIN32

#include <windows.h>

#include <vector>

#include "app/registry.h"

namespace velantis {

namespace {

std::wstring Widen(const std::string& text) {
  if (text.empty()) return {};
  const int n = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), n);
  return wide;
}

std::string Narrow(const std::wstring& wide) {
  if (wide.empty()) return {};
  const int n = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr,
                                    nullptr);
  std::string text(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(), n, nullptr, nullptr);
  return text;
}

}  // namespace

TRegistryReader::TRegistryReader(std::string path) : m_path(std::move(path)) {}

void TRegistryReader::SetPath(std::string path) { m_path = std::move(path); }

bool TRegistryReader::Read(const std::string& section, const std::string& key, std::string& text) {
  const std::wstring path = Widen(std::string(kRegistryKeyRoot) + "\\" + section);
  const std::wstring name = Widen(key);
  HKEY handle = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return false;

  // The first query gives the size in bytes; the buffer is kept generous and
  // zeroed so that a value stored without its terminating zero still ends.
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExW(handle, name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
    RegCloseKey(handle);
    return false;
  }
  std::vector<BYTE> buffer((static_cast<size_t>(size) + 6) * 2, 0);
  DWORD readSize = size + 3;
  const LONG result = RegQueryValueExW(handle, name.c_str(), nullptr, &type, buffer.data(), &readSize);
  RegCloseKey(handle);
  if (result != ERROR_SUCCESS) return false;

  const auto* wide = reinterpret_cast<const wchar_t*>(buffer.data());
  size_t length = 0;
  while (length < buffer.size() / 2 && wide[length] != L'\0') ++length;
  text = Narrow(std::wstring(wide, length));
  return true;
}

}  // namespace velantis

#endif  // _WIN32
