// The token node: one record for everything from a single symbol to the whole
// program. Loading rewrites a flat list of them into a tree; start and end
// (offsets of the first and the last character in the script text) survive
// every rewrite and point the user at the place of an error.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velantis {

// The numeric codes are stable: the debugger prints them ("tipo=N") for a
// kind without a name. 15 and 46 are not assigned.
enum TTokenKind : int32_t {
  kTokNull = 0,
  kTokWord = 1,
  kTokNum = 2,
  kTokAlfanum = 3,
  kTokOpenParen = 4,
  kTokCloseParen = 5,
  kTokString = 6,
  kTokSemicolon = 7,
  kTokOpenBrace = 8,
  kTokCloseBrace = 9,
  kTokOpenBracket = 10,
  kTokCloseBracket = 11,
  kTokDot = 12,
  kTokComma = 13,
  kTokSym = 14,
  kTokMinus = 16,
  kTokPlus = 17,
  kTokMul = 18,
  kTokDiv = 19,
  kTokMod = 20,
  kTokAnd = 21,
  kTokOr = 22,
  kTokIncrement = 23,
  kTokDecrement = 24,
  kTokAssign = 25,
  kTokAddAssign = 26,
  kTokSubAssign = 27,
  kTokMulAssign = 28,
  kTokDivAssign = 29,
  kTokShiftLeft = 30,
  kTokShiftRight = 31,
  kTokNot = 32,
  kTokEqual = 33,
  kTokGreater = 34,
  kTokLess = 35,
  kTokGreaterEqual = 36,
  kTokLessEqual = 37,
  kTokNotEqual = 38,
  kTokBlock = 39,
  kTokGroup = 40,
  kTokBracketGroup = 41,
  kTokLinea = 42,
  kTokItem = 43,
  kTokDotWord = 44,
  kTokCall = 45,
  kTokFor = 47,
  kTokWhile = 48,
  kTokIf = 49,
  kTokElse = 50,
  kTokDo = 51,
  kTokReturn = 52,
  kTokFunctionDecl = 53,
  kTokFunctions = 54,
};

struct TResolvedExpression;

struct TTokenNode {
  int32_t kind = kTokNull;
  std::string text;
  std::vector<std::unique_ptr<TTokenNode>> children;
  int start = 0;
  int end = 0;
  // The expression this node holds, resolved at its first evaluation.
  mutable std::shared_ptr<const TResolvedExpression> resolved;

  TTokenNode() = default;
  TTokenNode(int32_t k, std::string t, int s, int e) : kind(k), text(std::move(t)), start(s), end(e) {}
};

using TTokenList = std::vector<std::unique_ptr<TTokenNode>>;

std::unique_ptr<TTokenNode> MakeToken(int32_t kind, int start, int end, std::string text = {});

// The kind's printed text, "tipo=N" for a kind without a name.
std::string KindText(int32_t kind);
// The kind's text, then a blank and the node's text when it has one.
std::string PrintNode(const TTokenNode& node);
// The node and then its descendants, each followed by a blank.
std::string PrintTree(const TTokenNode& node);

}  // namespace velantis
