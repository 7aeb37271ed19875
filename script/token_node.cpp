#include "script/token_node.h"

#include <array>
#include <utility>

namespace velantis {

namespace {

constexpr std::pair<int32_t, const char*> kKindTexts[] = {
    {kTokNull, "null"},        {kTokWord, "word"},        {kTokNum, "num"},
    {kTokAlfanum, "alfanum"},  {kTokOpenParen, "("},      {kTokCloseParen, ")"},
    {kTokString, "\"string\""}, {kTokSemicolon, ";"},     {kTokOpenBrace, "{"},
    {kTokCloseBrace, "}"},     {kTokOpenBracket, "["},    {kTokCloseBracket, "]"},
    {kTokDot, "."},            {kTokComma, ","},          {kTokSym, "sym"},
    {kTokMinus, "-"},          {kTokPlus, "+"},           {kTokMul, "*"},
    {kTokDiv, "/"},            {kTokMod, "%"},            {kTokAnd, "&&"},
    {kTokOr, "||"},            {kTokIncrement, "++"},     {kTokDecrement, "--"},
    {kTokAssign, "="},         {kTokAddAssign, "+="},     {kTokSubAssign, "-="},
    {kTokMulAssign, "*="},     {kTokDivAssign, "/="},     {kTokNot, "!"},
    {kTokEqual, "=="},         {kTokGreater, ">"},        {kTokLess, "<"},
    {kTokGreaterEqual, ">="},  {kTokLessEqual, "<="},     {kTokNotEqual, "!="},
    {kTokBlock, "{}"},         {kTokGroup, "()"},         {kTokBracketGroup, "[]"},
    {kTokLinea, "linea"},      {kTokItem, "item,"},       {kTokDotWord, "dotword"},
    {kTokCall, "function()"},  {kTokFor, "for"},          {kTokWhile, "while"},
    {kTokIf, "if"},            {kTokElse, "else"},        {kTokDo, "do"},
    {kTokReturn, "return"},    {kTokFunctionDecl, "function decl"},
    {kTokFunctions, "functions"},
};

// The kinds whose text is not already their kind's.
bool HasText(int32_t kind) {
  return kind == kTokWord || kind == kTokNum || kind == kTokAlfanum || kind == kTokString ||
         kind == kTokSym;
}

void AppendTree(const TTokenNode& node, std::string& out) {
  out += PrintNode(node);
  out += ' ';
  for (const auto& child : node.children) AppendTree(*child, out);
}

}  // namespace

std::unique_ptr<TTokenNode> MakeToken(int32_t kind, int start, int end, std::string text) {
  return std::make_unique<TTokenNode>(kind, std::move(text), start, end);
}

std::string KindText(int32_t kind) {
  for (const auto& [code, text] : kKindTexts)
    if (code == kind) return text;
  return "tipo=" + std::to_string(kind);
}

std::string PrintNode(const TTokenNode& node) {
  std::string out = KindText(node.kind);
  if (HasText(node.kind)) out += ' ' + node.text;
  return out;
}

std::string PrintTree(const TTokenNode& node) {
  std::string out;
  AppendTree(node, out);
  return out;
}

}  // namespace velantis
