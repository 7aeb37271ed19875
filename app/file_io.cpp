#include "app/file_io.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace velantis {

bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error) {
  // A folder opens as a stream on some systems and then fails to read.
  std::error_code ec;
  std::ifstream in;
  if (!std::filesystem::is_directory(path, ec)) in.open(path, std::ios::binary);
  if (!in.is_open()) {
    error = "Error opening " + path;
    return false;
  }
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  if (in.bad()) {
    error = "Error reading " + path;
    return false;
  }
  return true;
}

bool WriteFileAtomic(const std::string& path, std::string_view bytes, std::string& error) {
  const std::string temporary = path + ".tmp";
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) {
      error = "Error creating " + temporary;
      return false;
    }
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      error = "Error writing " + temporary;
      out.close();
      std::filesystem::remove(temporary);
      return false;
    }
  }
  std::error_code ec;
  std::filesystem::rename(temporary, path, ec);
  if (ec) {
    error = "Error renaming " + temporary + " to " + path + ": " + ec.message();
    std::filesystem::remove(temporary, ec);
    return false;
  }
  return true;
}

}  // namespace velantis
