// A key file ("ini"): sections in brackets, lines of key, "=", value.
//
// Reads follow the Windows profile-string rules, because the configuration
// store's growing-buffer read depends on them exactly: a value is copied into a
// buffer of a given size, at most size - 1 characters plus a terminating zero,
// and the count copied is returned, so a value that does not fit reports
// size - 1; a missing key yields the caller's default under the same rule.
// Section and key names compare without regard to ASCII letter case; values
// are returned with their surrounding blanks and tabs trimmed. Unlike Windows,
// quotation marks around a value are kept, so a text written comes back as it
// was.
//
// The file is held as its lines, so that what the user wrote (unknown keys,
// comments, blank lines, order, even a line end other than CR LF) survives a
// save untouched; lines the writer adds or changes end in CR LF. A file loaded
// and saved without a change is byte for byte the same. The first section or
// key of a given name wins when a name appears twice.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velantis {

class TKeyFile {
public:
  // Reads the file; a missing file is an empty key file (true). A file that
  // exists but cannot be read fails with the reader's message.
  bool Load(const std::string& path, std::string& error);
  void LoadText(std::string_view text);

  // Writes the whole file through a temporary file and a rename.
  bool Save(const std::string& path, std::string& error) const;
  std::string Text() const;

  // Copies the value, or the default when the key is missing, into buffer:
  // at most size - 1 characters and a zero. Returns the count copied
  // (0 when size is 0, in which case nothing is written).
  size_t GetProfileString(std::string_view section, std::string_view key,
                          std::string_view defaultText, char* buffer, size_t size) const;

  // The value of a key (trimmed), or nothing when it is missing.
  std::optional<std::string> Find(std::string_view section, std::string_view key) const;

  // Changes the value in place (a line whose value is already this text is
  // left byte for byte as it is), appends a missing key after the last
  // non-blank line of its section, or appends a missing section at the end.
  // Refuses (false) names or values that would break the line structure:
  // line breaks anywhere, "=" in a key, "]" in a section, blanks around names.
  bool WriteProfileString(std::string_view section, std::string_view key, std::string_view value);

  bool Empty() const { return m_lines.empty(); }

private:
  struct TLine {
    std::string text;  // without its line end
    std::string end;   // "\r\n", "\n", "\r" or "" (last line without one)
  };

  // Index of the line of the first section of that name, or npos.
  size_t FindSection(std::string_view section) const;
  // Index of the key's line inside the section starting at sectionLine, or npos.
  size_t FindKey(size_t sectionLine, std::string_view key) const;
  // One past the last line of the section starting at sectionLine.
  size_t SectionEnd(size_t sectionLine) const;
  void InsertLine(size_t at, std::string text);

  std::vector<TLine> m_lines;
};

}  // namespace velantis
