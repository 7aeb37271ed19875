// Choices the language leaves open:
// - bytes from 128 up count as letters, so identifiers may carry accented
//   characters of the 8-bit text;
// - a string literal without its closing quote is "Syntax Error" at the
//   opening quote.
#include "script/scanner.h"

#include <string>

#include "script/script_error.h"

namespace velantis {

namespace {

bool IsBlank(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }

bool IsWordChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u >= 128;
}

int32_t SingleCharKind(char c) {
  switch (c) {
    case ';': return kTokSemicolon;
    case '(': return kTokOpenParen;
    case ')': return kTokCloseParen;
    case ',': return kTokComma;
    case '.': return kTokDot;
    case '[': return kTokOpenBracket;
    case ']': return kTokCloseBracket;
    case '{': return kTokOpenBrace;
    case '}': return kTokCloseBrace;
    default: return kTokNull;
  }
}

char Unescaped(char c) {
  switch (c) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return c;
  }
}

class TScanner {
public:
  explicit TScanner(std::string_view text) : m_text(text) {}

  TTokenList Run() {
    TTokenList tokens;
    while (SkipBlanksAndComments()) tokens.push_back(NextToken());
    return tokens;
  }

private:
  std::string_view m_text;
  size_t m_pos = 0;

  bool At(size_t i, char c) const { return i < m_text.size() && m_text[i] == c; }

  // False at the end of the text.
  bool SkipBlanksAndComments() {
    while (m_pos < m_text.size()) {
      if (IsBlank(m_text[m_pos])) {
        ++m_pos;
      } else if (At(m_pos, '/') && At(m_pos + 1, '/')) {
        while (m_pos < m_text.size() && m_text[m_pos] != '\n' && m_text[m_pos] != '\r') ++m_pos;
      } else if (At(m_pos, '/') && At(m_pos + 1, '*')) {
        const size_t close = m_text.find("*/", m_pos + 2);
        m_pos = close == std::string_view::npos ? m_text.size() : close + 2;
      } else {
        return true;
      }
    }
    return false;
  }

  std::unique_ptr<TTokenNode> NextToken() {
    const int start = static_cast<int>(m_pos);
    const char c = m_text[m_pos];
    if (const int32_t kind = SingleCharKind(c)) {
      ++m_pos;
      return MakeToken(kind, start, start);
    }
    if (c == '"' || c == '\'') return StringLiteral(c);
    const bool word = IsWordChar(c);
    while (m_pos < m_text.size()) {
      const char d = m_text[m_pos];
      if (IsBlank(d) || d == '"' || d == '\'' || SingleCharKind(d) || IsWordChar(d) != word) break;
      ++m_pos;
    }
    return MakeToken(kTokAlfanum, start, static_cast<int>(m_pos) - 1,
                     std::string(m_text.substr(start, m_pos - start)));
  }

  std::unique_ptr<TTokenNode> StringLiteral(char quote) {
    const int start = static_cast<int>(m_pos++);
    std::string contents;
    while (m_pos < m_text.size() && m_text[m_pos] != quote) {
      if (m_text[m_pos] == '\\' && m_pos + 1 < m_text.size()) {
        contents += Unescaped(m_text[m_pos + 1]);
        m_pos += 2;
      } else {
        contents += m_text[m_pos++];
      }
    }
    if (m_pos >= m_text.size()) throw TScriptError(kSyntaxError, start, start);
    ++m_pos;
    return MakeToken(kTokString, start, static_cast<int>(m_pos) - 1, std::move(contents));
  }
};

}  // namespace

TTokenList ScanScript(std::string_view text) { return TScanner(text).Run(); }

}  // namespace velantis
