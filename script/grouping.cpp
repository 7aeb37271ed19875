// Choices the language leaves open:
// - an empty statement or item (";;", "f(a,)") is dropped;
// - brackets may nest kMaxNesting deep; one more is "Syntax Error" at its
//   opener.
#include "script/grouping.h"

#include <vector>

#include "script/script_error.h"

namespace velantis {

namespace {

int32_t CloserOf(int32_t opener) {
  switch (opener) {
    case kTokOpenBrace: return kTokCloseBrace;
    case kTokOpenParen: return kTokCloseParen;
    case kTokOpenBracket: return kTokCloseBracket;
    default: return kTokNull;
  }
}

int32_t GroupKindOf(int32_t opener) {
  switch (opener) {
    case kTokOpenBrace: return kTokBlock;
    case kTokOpenParen: return kTokGroup;
    default: return kTokBracketGroup;
  }
}

bool IsCloser(int32_t kind) {
  return kind == kTokCloseBrace || kind == kTokCloseParen || kind == kTokCloseBracket;
}

std::unique_ptr<TTokenNode> MatchBrackets(TTokenList tokens) {
  auto root = MakeToken(kTokBlock, 0, 0);
  std::vector<std::unique_ptr<TTokenNode>> open;  // the openers, each collecting its contents
  auto current = [&]() -> TTokenNode& { return open.empty() ? *root : *open.back(); };
  for (auto& token : tokens) {
    if (CloserOf(token->kind)) {
      if (static_cast<int>(open.size()) >= kMaxNesting) throw TScriptError(kSyntaxError, *token);
      open.push_back(std::move(token));
    } else if (IsCloser(token->kind)) {
      if (open.empty() || CloserOf(open.back()->kind) != token->kind)
        throw TScriptError(kSyntaxError, *token);
      auto group = std::move(open.back());
      open.pop_back();
      group->kind = GroupKindOf(group->kind);
      group->end = token->end;
      current().children.push_back(std::move(group));
    } else {
      current().children.push_back(std::move(token));
    }
  }
  if (!open.empty()) throw TScriptError(kSyntaxError, *open.back());
  if (!root->children.empty()) root->end = root->children.back()->end;
  return root;
}

bool Contains(const TTokenList& list, int32_t kind) {
  for (const auto& token : list)
    if (token->kind == kind) return true;
  return false;
}

// The tokens between separators become nodes of the given kind.
void Split(TTokenNode& node, int32_t separator, int32_t pieceKind) {
  TTokenList pieces;
  std::unique_ptr<TTokenNode> piece;
  for (auto& token : node.children) {
    if (token->kind == separator) {
      if (piece) pieces.push_back(std::move(piece));
      continue;
    }
    if (!piece) piece = MakeToken(pieceKind, token->start, token->end);
    piece->end = token->end;
    piece->children.push_back(std::move(token));
  }
  if (piece) pieces.push_back(std::move(piece));
  node.children = std::move(pieces);
}

void SplitSeparators(TTokenNode& node) {
  for (auto& child : node.children) SplitSeparators(*child);
  if (node.kind == kTokBlock || Contains(node.children, kTokSemicolon))
    Split(node, kTokSemicolon, kTokLinea);
  if (Contains(node.children, kTokComma)) Split(node, kTokComma, kTokItem);
  for (auto& child : node.children)
    if (child->kind == kTokLinea && Contains(child->children, kTokComma))
      Split(*child, kTokComma, kTokItem);
}

void MarkCallGroups(TTokenNode& node) {
  for (size_t i = 0; i < node.children.size(); ++i) {
    TTokenNode& child = *node.children[i];
    MarkCallGroups(child);
    if (child.kind == kTokGroup && i > 0 &&
        (node.children[i - 1]->kind == kTokWord || node.children[i - 1]->kind == kTokDotWord))
      child.kind = kTokCall;
  }
}

bool IsDeclaration(const TTokenNode& statement) {
  return statement.kind == kTokLinea && statement.children.size() == 1 &&
         statement.children[0]->kind == kTokFunctionDecl;
}

void CollectDeclarations(TTokenNode& root) {
  auto functions = MakeToken(kTokFunctions, root.start, root.end);
  TTokenList kept;
  for (auto& statement : root.children) {
    if (IsDeclaration(*statement)) functions->children.push_back(std::move(statement));
    else kept.push_back(std::move(statement));
  }
  root.children = std::move(kept);
  if (!functions->children.empty()) root.children.push_back(std::move(functions));
}

}  // namespace

std::unique_ptr<TTokenNode> GroupTokens(TTokenList tokens) {
  auto root = MatchBrackets(std::move(tokens));
  SplitSeparators(*root);
  ApplyControlRules(*root);
  MarkCallGroups(*root);
  CollectDeclarations(*root);
  return root;
}

}  // namespace velantis
