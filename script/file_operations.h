// The file and folder work of the script commands (DirScan, Copy, XCopy,
// Split, Delete, NewTempFileName). Each returns a success flag and fills
// the caller's error text; the commands turn a failure into their message.
//
// Choices:
// - name patterns: "*" any run of characters, "?" any one; letters compare
//   without regard to ASCII case, as the file systems the scripts were first
//   written for do; the pattern applies to the file name only;
// - a folder scan lists regular files (not folders), not recursing, sorted by
//   name so that a script sees the same order on every system;
// - copies overwrite what is at the target; a folder copy makes the target
//   folders as needed and copies every file below the source;
// - a split cuts a file into pieces of at most pieceBytes bytes named
//   path + ".001", ".002" ... (three digits, more when there are more than 999
//   pieces); an empty file gives no piece;
// - a new temporary file is created empty in the system's temporary folder as
//   "velantis-" + 8 random hex digits + extension, so the name is taken when
//   it is returned.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velantis {

bool NameMatches(std::string_view name, std::string_view pattern);

bool ScanFolder(const std::string& folder, std::string_view pattern, std::vector<std::string>& paths,
                std::string& error);
bool CopyOneFile(const std::string& from, const std::string& to, std::string& error);
// count: the number of files copied.
bool CopyFolder(const std::string& from, const std::string& to, size_t& count, std::string& error);
// count: the number of pieces written.
bool SplitFile(const std::string& path, size_t pieceBytes, size_t& count, std::string& error);
bool DeleteOneFile(const std::string& path, std::string& error);
bool NewTemporaryFile(std::string_view extension, std::string& path, std::string& error);

}  // namespace velantis
