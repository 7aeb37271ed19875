#include "script/process_runner.h"

namespace velantis {

std::vector<std::string> SplitCommandLine(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false, quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '\\' && i + 1 < line.size()) {
      word += line[++i];
      inWord = true;
    } else if (c == '"') {
      quoted = !quoted;
      inWord = true;  // "" is an empty word
    } else if ((c == ' ' || c == '\t') && !quoted) {
      if (inWord) words.push_back(std::move(word));
      word.clear();
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) words.push_back(std::move(word));
  return words;
}

}  // namespace velantis
