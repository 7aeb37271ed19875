#include "app/key_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "app/file_io.h"

namespace velantis {

namespace {

constexpr std::string_view kLineEndCrLf = "\r\n";
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
constexpr size_t kNone = std::string::npos;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto lower = [](unsigned char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : char(c); };
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

// The line without a byte-order mark in front (only the first line can have one).
std::string_view Content(std::string_view line) {
  if (line.substr(0, kUtf8Bom.size()) == kUtf8Bom) line.remove_prefix(kUtf8Bom.size());
  return line;
}

// "[name]" with blanks allowed around the brackets and the name; the first "]"
// closes the name and anything after it is ignored, as Windows does.
std::optional<std::string_view> SectionName(std::string_view line) {
  const std::string_view text = Trim(Content(line));
  if (text.empty() || text.front() != '[') return std::nullopt;
  const size_t close = text.find(']');
  if (close == kNone) return std::nullopt;
  return Trim(text.substr(1, close - 1));
}

// The key of a "key=value" line; comments (";") and lines without "=" have none.
std::optional<std::string_view> KeyName(std::string_view line) {
  const std::string_view text = Trim(Content(line));
  if (text.empty() || text.front() == ';' || SectionName(line)) return std::nullopt;
  const size_t equals = text.find('=');
  if (equals == kNone) return std::nullopt;
  return Trim(text.substr(0, equals));
}

std::string_view ValueOf(std::string_view line) { return Trim(line.substr(line.find('=') + 1)); }

bool HasLineBreak(std::string_view text) { return text.find_first_of("\r\n") != kNone; }

bool ValidName(std::string_view name) { return !HasLineBreak(name) && Trim(name) == name; }

}  // namespace

bool TKeyFile::Load(const std::string& path, std::string& error) {
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) {
    m_lines.clear();
    return true;
  }
  if (!std::filesystem::is_regular_file(path, ec)) {
    error = "Error opening " + path;
    return false;
  }
  std::string bytes;
  if (!ReadWholeFile(path, bytes, error)) return false;
  LoadText(bytes);
  return true;
}

void TKeyFile::LoadText(std::string_view text) {
  m_lines.clear();
  size_t start = 0;
  while (start < text.size()) {
    const size_t stop = text.find_first_of("\r\n", start);
    if (stop == kNone) {
      m_lines.push_back({std::string(text.substr(start)), ""});
      break;
    }
    const size_t endSize = (text[stop] == '\r' && stop + 1 < text.size() && text[stop + 1] == '\n') ? 2 : 1;
    m_lines.push_back({std::string(text.substr(start, stop - start)), std::string(text.substr(stop, endSize))});
    start = stop + endSize;
  }
}

std::string TKeyFile::Text() const {
  std::string text;
  for (const TLine& line : m_lines) text += line.text + line.end;
  return text;
}

bool TKeyFile::Save(const std::string& path, std::string& error) const {
  return WriteFileAtomic(path, Text(), error);
}

size_t TKeyFile::FindSection(std::string_view section) const {
  for (size_t i = 0; i < m_lines.size(); ++i) {
    const auto name = SectionName(m_lines[i].text);
    if (name && SameName(*name, section)) return i;
  }
  return kNone;
}

size_t TKeyFile::SectionEnd(size_t sectionLine) const {
  size_t i = sectionLine + 1;
  while (i < m_lines.size() && !SectionName(m_lines[i].text)) ++i;
  return i;
}

size_t TKeyFile::FindKey(size_t sectionLine, std::string_view key) const {
  const size_t end = SectionEnd(sectionLine);
  for (size_t i = sectionLine + 1; i < end; ++i) {
    const auto name = KeyName(m_lines[i].text);
    if (name && SameName(*name, key)) return i;
  }
  return kNone;
}

std::optional<std::string> TKeyFile::Find(std::string_view section, std::string_view key) const {
  const size_t sectionLine = FindSection(section);
  if (sectionLine == kNone) return std::nullopt;
  const size_t keyLine = FindKey(sectionLine, key);
  if (keyLine == kNone) return std::nullopt;
  return std::string(ValueOf(m_lines[keyLine].text));
}

size_t TKeyFile::GetProfileString(std::string_view section, std::string_view key,
                                  std::string_view defaultText, char* buffer, size_t size) const {
  if (size == 0) return 0;
  const std::optional<std::string> value = Find(section, key);
  const std::string_view text = value ? std::string_view(*value) : defaultText;
  const size_t count = std::min(text.size(), size - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return count;
}

void TKeyFile::InsertLine(size_t at, std::string text) {
  // Only the last line can lack a line end; it needs one once a line follows it.
  if (at == m_lines.size() && !m_lines.empty() && m_lines.back().end.empty())
    m_lines.back().end = kLineEndCrLf;
  m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(at), {std::move(text), std::string(kLineEndCrLf)});
}

bool TKeyFile::WriteProfileString(std::string_view section, std::string_view key, std::string_view value) {
  if (!ValidName(section) || section.find(']') != kNone || !ValidName(key) || key.empty() ||
      key.find('=') != kNone || key.front() == ';' || key.front() == '[' || HasLineBreak(value))
    return false;
  const std::string line = std::string(key) + "=" + std::string(value);

  const size_t sectionLine = FindSection(section);
  if (sectionLine == kNone) {
    if (!m_lines.empty() && !Trim(Content(m_lines.back().text)).empty()) InsertLine(m_lines.size(), "");
    InsertLine(m_lines.size(), "[" + std::string(section) + "]");
    InsertLine(m_lines.size(), line);
    return true;
  }

  const size_t keyLine = FindKey(sectionLine, key);
  if (keyLine != kNone) {
    std::string& text = m_lines[keyLine].text;
    if (ValueOf(text) == Trim(value)) return true;
    // Keep what the user wrote up to the value: the key's spelling and the
    // blanks around "=".
    size_t valueStart = text.find('=') + 1;
    while (valueStart < text.size() && IsBlank(text[valueStart])) ++valueStart;
    text = text.substr(0, valueStart) + std::string(value);
    return true;
  }

  // After the section's last non-blank line, so that the blank lines that
  // separate it from the next section stay where they are.
  size_t at = SectionEnd(sectionLine);
  while (at > sectionLine + 1 && Trim(Content(m_lines[at - 1].text)).empty()) --at;
  InsertLine(at, line);
  return true;
}

}  // namespace velantis
