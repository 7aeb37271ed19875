// Whole-file reading and the atomic save every writer uses: the new content
// goes to a temporary file beside the target, which is then renamed over it, so
// a failed or cancelled save leaves the old file exactly as it was.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace velantis {

// Reads the whole file; on failure returns false and sets error to
// "Error opening " + path.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error);

// Writes bytes to path through a temporary file and a rename.
bool WriteFileAtomic(const std::string& path, std::string_view bytes, std::string& error);

// A save in several pieces: Write appends to the temporary file path + ".tmp",
// Commit renames it over path. A writer destroyed without a successful Commit
// removes the temporary file and leaves path untouched.
class TAtomicFileWriter {
public:
  explicit TAtomicFileWriter(std::string path);
  TAtomicFileWriter(const TAtomicFileWriter&) = delete;
  TAtomicFileWriter& operator=(const TAtomicFileWriter&) = delete;
  ~TAtomicFileWriter();

  bool Open(std::string& error);
  // False once any write has failed; Commit then reports it.
  bool Write(std::string_view bytes);
  // Bytes written so far: the file offset of the next byte.
  uint64_t Offset() const { return m_offset; }
  bool Commit(std::string& error);

private:
  void Discard();

  std::string m_path;
  std::string m_temporary;
  std::FILE* m_file = nullptr;
  uint64_t m_offset = 0;
  bool m_failed = false;
  bool m_created = false;  // the temporary file is ours to remove
};

}  // namespace velantis
