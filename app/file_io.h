// Whole-file reading and the atomic save every writer uses: the new content
// goes to a temporary file beside the target, which is then renamed over it, so
// a failed save leaves the old file exactly as it was.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

// Reads the whole file; on failure returns false and sets error to
// "Error opening " + path.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error);

// Writes bytes to path through a temporary file and a rename.
bool WriteFileAtomic(const std::string& path, std::string_view bytes, std::string& error);

}  // namespace velantis
