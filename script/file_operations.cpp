#include "script/file_operations.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "app/file_io.h"

namespace velantis {

namespace fs = std::filesystem;

namespace {

bool SameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

constexpr size_t kMinPieceDigits = 3;   // ".001"
constexpr int kTempNameTries = 100;  // names drawn before giving up

std::string PieceName(const std::string& path, size_t index, size_t digits) {
  const std::string number = std::to_string(index);
  return path + "." + std::string(digits > number.size() ? digits - number.size() : 0, '0') + number;
}

}  // namespace

// Iterative wildcard match: on a mismatch, the last "*" takes one more
// character, so the work stays linear in practice and never recurses.
bool NameMatches(std::string_view name, std::string_view pattern) {
  size_t n = 0, p = 0, starP = std::string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || SameLetter(pattern[p], name[n]))) {
      ++n;
      ++p;
    } else if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starN = n;
    } else if (starP != std::string_view::npos) {
      p = starP + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

bool ScanFolder(const std::string& folder, std::string_view pattern, std::vector<std::string>& paths,
                std::string& error) {
  std::error_code ec;
  fs::directory_iterator it(folder, ec), end;
  if (ec) {
    error = "Error opening " + folder;
    return false;
  }
  paths.clear();
  for (; it != end; it.increment(ec)) {
    if (ec) break;
    if (it->is_regular_file(ec) && NameMatches(it->path().filename().string(), pattern))
      paths.push_back(it->path().string());
  }
  std::sort(paths.begin(), paths.end());
  if (ec) error = "Error reading " + folder;
  return !ec;
}

bool CopyOneFile(const std::string& from, const std::string& to, std::string& error) {
  std::error_code ec;
  if (fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec)) return true;
  error = "Error copying " + from + " to " + to;
  return false;
}

bool CopyFolder(const std::string& from, const std::string& to, size_t& count, std::string& error) {
  count = 0;
  std::error_code ec;
  if (!fs::is_directory(from, ec)) {
    error = "Error opening " + from;
    return false;
  }
  fs::recursive_directory_iterator it(from, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    const fs::path target = fs::path(to) / fs::relative(it->path(), from, ec);
    if (ec) break;
    if (it->is_directory(ec)) {
      fs::create_directories(target, ec);
    } else if (it->is_regular_file(ec)) {
      fs::create_directories(target.parent_path(), ec);
      if (!ec && !CopyOneFile(it->path().string(), target.string(), error)) return false;
      ++count;
    }
  }
  if (!ec) fs::create_directories(to, ec);  // an empty source still makes its copy
  if (ec) error = "Error copying " + from + " to " + to;
  return !ec;
}

bool SplitFile(const std::string& path, size_t pieceBytes, size_t& count, std::string& error) {
  count = 0;
  std::string bytes;
  if (pieceBytes == 0) {
    error = "Piece size must be above 0";
    return false;
  }
  if (!ReadWholeFile(path, bytes, error)) return false;
  const size_t pieces = (bytes.size() + pieceBytes - 1) / pieceBytes;
  const size_t digits = std::max(kMinPieceDigits, std::to_string(pieces).size());
  for (size_t i = 0; i < pieces; ++i) {
    const std::string_view piece = std::string_view(bytes).substr(i * pieceBytes, pieceBytes);
    if (!WriteFileAtomic(PieceName(path, i + 1, digits), piece, error)) return false;
    ++count;
  }
  return true;
}

bool DeleteOneFile(const std::string& path, std::string& error) {
  std::error_code ec;
  if (fs::is_regular_file(path, ec) && fs::remove(path, ec)) return true;
  error = "Error deleting " + path;
  return false;
}

bool NewTemporaryFile(std::string_view extension, std::string& path, std::string& error) {
  std::error_code ec;
  const fs::path folder = fs::temp_directory_path(ec);
  if (ec) {
    error = "No temporary folder";
    return false;
  }
  static std::mt19937 draw{std::random_device{}()};
  for (int attempt = 0; attempt < kTempNameTries; ++attempt) {
    char name[32];
    std::snprintf(name, sizeof name, "velantis-%08x", static_cast<unsigned>(draw()));
    const std::string candidate = (folder / name).string() + std::string(extension);
    // "x": fails when the file exists, so two scripts never share a name.
    if (std::FILE* f = std::fopen(candidate.c_str(), "wx")) {
      std::fclose(f);
      path = candidate;
      return true;
    }
  }
  error = "Error creating a temporary file in " + folder.string();
  return false;
}

}  // namespace velantis
