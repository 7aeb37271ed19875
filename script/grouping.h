// Loading, second half: the classified token list becomes the program tree.
// Errors are thrown as TScriptError pointing at the offending token.
#pragma once

#include "script/token_node.h"

namespace velantis {

// Brackets, separators, control structures, call groups and the "functions"
// node; returns the root block (kind 39).
std::unique_ptr<TTokenNode> GroupTokens(TTokenList tokens);

// Rewrites statements that start with a control keyword (for, if, while, do,
// function, return, in that order) into the keyword node with its parts as
// children, everywhere under root.
void ApplyControlRules(TTokenNode& root);

// Deepest nesting of brackets a script may have: the tree is walked by
// recursion, so the depth is bounded.
inline constexpr int kMaxNesting = 200;

}  // namespace velantis
