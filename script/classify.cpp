// Loading, steps 2 to 6: raw runs become numbers, identifiers and operators;
// adjacent strings and decimal points are joined; keywords are recognised.
//
// Choices the language leaves open:
// - an "x" in second place makes a hexadecimal number whatever the first
//   digit ("1x5" reads as 0x5); "0x" alone is 0;
// - a number text is read as a double when it is evaluated (see
//   NumberValue): a hexadecimal number joined to a fraction reads as a
//   hexadecimal fraction ("0x1.8" is 1.5).
#include <cctype>
#include <string_view>
#include <utility>

#include "script/scanner.h"
#include "script/script_error.h"

namespace velantis {

namespace {

constexpr std::pair<std::string_view, int32_t> kOperators[] = {
    {"-", kTokMinus},         {"+", kTokPlus},           {"*", kTokMul},
    {"/", kTokDiv},           {"%", kTokMod},            {"&&", kTokAnd},
    {"||", kTokOr},           {"++", kTokIncrement},     {"--", kTokDecrement},
    {"=", kTokAssign},        {"+=", kTokAddAssign},     {"-=", kTokSubAssign},
    {"*=", kTokMulAssign},    {"/=", kTokDivAssign},     {"==", kTokEqual},
    {">", kTokGreater},       {"<", kTokLess},           {">=", kTokGreaterEqual},
    {"<=", kTokLessEqual},    {"<<", kTokShiftLeft},     {">>", kTokShiftRight},
    {"!=", kTokNotEqual},     {"!", kTokNot},
};

constexpr std::pair<std::string_view, int32_t> kKeywords[] = {
    {"for", kTokFor}, {"while", kTokWhile}, {"if", kTokIf},           {"else", kTokElse},
    {"do", kTokDo},   {"return", kTokReturn}, {"function", kTokFunctionDecl},
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

void ClassifyNumber(const TTokenNode& token) {
  bool hex = false;
  for (size_t i = 1; i < token.text.size(); ++i) {
    const char c = token.text[i];
    if (i == 1 && c == 'x') hex = true;
    else if (!(IsDigit(c) || (hex && IsHexDigit(c)))) throw TScriptError(kSyntaxError, token);
  }
}

void ClassifyRun(TTokenNode& token) {
  const char first = token.text[0];
  if (IsDigit(first)) {
    ClassifyNumber(token);
    token.kind = kTokNum;
  } else if (std::isalpha(static_cast<unsigned char>(first)) || first == '_' ||
             static_cast<unsigned char>(first) >= 128) {
    token.kind = kTokWord;
  } else {
    token.kind = kTokSym;
  }
}

int32_t OperatorKind(std::string_view text) {
  for (const auto& [spelling, kind] : kOperators)
    if (spelling == text) return kind;
  return kTokNull;
}

// A two-character run that is no operator is read as two one-character
// operators ("=-" in a=-1); when either half is none, the run is reported
// whole ("?=").
void ClassifyOperators(TTokenList& tokens) {
  for (size_t i = 0; i < tokens.size(); ++i) {
    TTokenNode& token = *tokens[i];
    if (token.kind != kTokSym) continue;
    if (const int32_t kind = OperatorKind(token.text)) {
      token.kind = kind;
      continue;
    }
    if (token.text.size() != 2 || !OperatorKind(token.text.substr(0, 1)) ||
        !OperatorKind(token.text.substr(1)))
      throw TScriptError(kUnknownSymbol + token.text, token);
    auto second = MakeToken(kTokSym, token.end, token.end, token.text.substr(1));
    token.text.resize(1);
    token.end = token.start;
    tokens.insert(tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(second));
    --i;  // look both halves up again
  }
}

void JoinAdjacentStrings(TTokenList& tokens) {
  for (size_t i = 0; i + 1 < tokens.size();) {
    if (tokens[i]->kind == kTokString && tokens[i + 1]->kind == kTokString) {
      tokens[i]->text += tokens[i + 1]->text;
      tokens[i]->end = tokens[i + 1]->end;
      tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1);
    } else {
      ++i;
    }
  }
}

void JoinDecimalPoints(TTokenList& tokens) {
  if (tokens.empty()) return;
  for (const TTokenNode* edge : {tokens.front().get(), tokens.back().get()})
    if (edge->kind == kTokDot) throw TScriptError(kSyntaxError, *edge);
  for (size_t i = 1; i + 1 < tokens.size(); ++i) {
    if (tokens[i]->kind != kTokDot || tokens[i + 1]->kind != kTokNum) continue;
    const auto at = tokens.begin() + static_cast<std::ptrdiff_t>(i);
    TTokenNode& next = *tokens[i + 1];
    if (tokens[i - 1]->kind == kTokNum) {
      TTokenNode& previous = *tokens[i - 1];
      previous.text += "." + next.text;
      previous.end = next.end;
      tokens.erase(at, at + 2);
    } else {
      next.text = "." + next.text;
      next.start = tokens[i]->start;
      tokens.erase(at);
    }
    --i;
  }
}

void ClassifyKeywords(TTokenList& tokens) {
  for (auto& token : tokens) {
    if (token->kind != kTokWord) continue;
    if (token->text == "true" || token->text == "false") {
      const char digit = token->text == "true" ? '1' : '0';
      token->kind = kTokNum;
      token->text.assign(1, digit);
      continue;
    }
    for (const auto& [spelling, kind] : kKeywords)
      if (spelling == token->text) token->kind = kind;
  }
}

}  // namespace

void ClassifyTokens(TTokenList& tokens) {
  for (auto& token : tokens)
    if (token->kind == kTokAlfanum) ClassifyRun(*token);
  ClassifyOperators(tokens);
  JoinAdjacentStrings(tokens);
  JoinDecimalPoints(tokens);
  ClassifyKeywords(tokens);
}

}  // namespace velantis
