// Line and key/value helpers shared by the projection definition readers.
#pragma once

#include <string_view>

namespace velantis::projection_file {

inline std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// Calls visit(line, number) for each line of text, without its line end
// ("\r\n", "\n" or "\r"), numbered from 1; stops early when visit returns
// false, and then returns false.
template <class TVisit>
bool ForEachLine(std::string_view text, TVisit&& visit) {
  size_t start = 0;
  int number = 0;
  while (start < text.size()) {
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = text.size();
    if (!visit(text.substr(start, end - start), ++number)) return false;
    start = end;
    if (start < text.size() && text[start] == '\r') ++start;
    if (start < text.size() && text[start] == '\n') ++start;
  }
  return true;
}

inline bool SameKey(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  for (size_t i = 0; i < one.size(); ++i) {
    const auto lower = [](char c) {
      return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    };
    if (lower(one[i]) != lower(other[i])) return false;
  }
  return true;
}

// Splits "key = value" at the first "="; false when there is no "=" or the
// key is empty.
inline bool SplitKeyValue(std::string_view line, std::string_view& key, std::string_view& value) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return false;
  key = TrimBlanks(line.substr(0, equals));
  value = TrimBlanks(line.substr(equals + 1));
  return !key.empty();
}

}  // namespace velantis::projection_file
