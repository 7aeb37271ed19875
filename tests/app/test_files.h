// Small file helpers shared by the app tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace velantis::test {

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace velantis::test
