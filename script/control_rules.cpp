// Control structures: a statement that starts with a keyword is rewritten
// into the keyword node with its parts as children, as the rule table says.
//
//   for      (init; test; step) body
//   if       (test) body [else body]
//   while    (test) body
//   do       body while (test)
//   function name (parameters) body
//   return   expression
//
// A body that is not a "{}" block takes the rest of its statement, wrapped
// into a new block of one statement; that statement gets the rules at once
// and may take an "else" from the statement that follows, so "else if"
// chains work and an "else" belongs to the nearest "if", as in C.
#include <vector>

#include "script/grouping.h"
#include "script/script_error.h"

namespace velantis {

namespace {

enum class TNamePart { None, Word, Rest };
enum class TSecondPart { None, Optional, Required };

struct TControlRule {
  int32_t keyword;
  TNamePart name;
  bool paren;
  size_t parenStatements;  // 0: any contents
  bool body;
  TSecondPart second;
  int32_t secondKeyword;
  bool secondIsItem;
  bool secondBody;
};

constexpr TControlRule kRules[] = {
    {kTokFor, TNamePart::None, true, 3, true, TSecondPart::None, kTokNull, false, false},
    {kTokIf, TNamePart::None, true, 0, true, TSecondPart::Optional, kTokElse, false, true},
    {kTokWhile, TNamePart::None, true, 0, true, TSecondPart::None, kTokNull, false, false},
    {kTokDo, TNamePart::None, false, 0, true, TSecondPart::Required, kTokWhile, true, false},
    {kTokFunctionDecl, TNamePart::Word, true, 0, true, TSecondPart::None, kTokNull, false, false},
    {kTokReturn, TNamePart::Rest, false, 0, false, TSecondPart::None, kTokNull, false, false},
};

// A keyword token that no rule has rewritten yet (rewritten ones have parts).
bool StartsWith(const TTokenNode& statement, int32_t keyword) {
  return statement.kind == kTokLinea && !statement.children.empty() &&
         statement.children[0]->kind == keyword && statement.children[0]->children.empty();
}

void ApplyRules(TTokenNode& statement, TTokenList& list, size_t next);

bool HasStatements(const TTokenNode& group, size_t count) {
  if (group.children.size() != count) return false;
  for (const auto& child : group.children)
    if (child->kind != kTokLinea) return false;
  return true;
}

class TRuleApplication {
public:
  TRuleApplication(const TControlRule& rule, TTokenNode& statement, TTokenList& list, size_t next)
      : m_rule(rule), m_tokens(std::move(statement.children)), m_list(list), m_next(next) {
    m_keyword = std::move(m_tokens[0]);
    m_pos = 1;
    statement.children.clear();
    Run();
    m_keyword->end = m_keyword->children.back()->end;
    statement.children.push_back(std::move(m_keyword));
  }

private:
  const TControlRule& m_rule;
  TTokenList m_tokens;
  TTokenList& m_list;
  size_t m_next;
  std::unique_ptr<TTokenNode> m_keyword;
  size_t m_pos = 0;

  bool AtEnd() const { return m_pos >= m_tokens.size(); }

  [[noreturn]] void Fail() const {
    throw TScriptError(kSyntaxError, AtEnd() ? *m_keyword : *m_tokens[m_pos]);
  }

  std::unique_ptr<TTokenNode> Take(int32_t kind) {
    if (AtEnd() || m_tokens[m_pos]->kind != kind) Fail();
    return std::move(m_tokens[m_pos++]);
  }

  // The tokens from here to the end of the statement, as one statement.
  std::unique_ptr<TTokenNode> TakeRest() {
    if (AtEnd()) Fail();
    auto statement = MakeToken(kTokLinea, m_tokens[m_pos]->start, m_tokens.back()->end);
    for (; m_pos < m_tokens.size(); ++m_pos) statement->children.push_back(std::move(m_tokens[m_pos]));
    return statement;
  }

  void Add(std::unique_ptr<TTokenNode> part) { m_keyword->children.push_back(std::move(part)); }

  void TakeBody() {
    if (!AtEnd() && m_tokens[m_pos]->kind == kTokBlock) return Add(std::move(m_tokens[m_pos++]));
    auto statement = TakeRest();
    auto block = MakeToken(kTokBlock, statement->start, statement->end);
    block->children.push_back(std::move(statement));
    ApplyRules(*block->children[0], m_list, m_next);
    Add(std::move(block));
  }

  // The second keyword in this statement or, after a body that ended the
  // statement, first in the next one (if ... ; else ...).
  bool TakeSecondKeyword() {
    if (!AtEnd()) {
      if (m_tokens[m_pos]->kind != m_rule.secondKeyword) return false;
      ++m_pos;
      return true;
    }
    if (m_rule.second != TSecondPart::Optional || m_next >= m_list.size() ||
        !StartsWith(*m_list[m_next], m_rule.secondKeyword))
      return false;
    TTokenList& following = m_list[m_next]->children;
    for (size_t i = 1; i < following.size(); ++i) m_tokens.push_back(std::move(following[i]));
    m_list.erase(m_list.begin() + static_cast<std::ptrdiff_t>(m_next));
    return true;
  }

  void Run() {
    if (m_rule.name == TNamePart::Word) Add(Take(kTokWord));
    if (m_rule.name == TNamePart::Rest) Add(TakeRest());
    if (m_rule.paren) {
      auto group = Take(kTokGroup);
      if (m_rule.parenStatements && !HasStatements(*group, m_rule.parenStatements))
        throw TScriptError(kSyntaxError, *group);
      Add(std::move(group));
    }
    if (m_rule.body) TakeBody();
    if (m_rule.second != TSecondPart::None) {
      if (TakeSecondKeyword()) {
        if (m_rule.secondIsItem) Add(Take(kTokGroup));
        if (m_rule.secondBody) TakeBody();
      } else if (m_rule.second == TSecondPart::Required) {
        Fail();
      }
    }
    if (!AtEnd()) Fail();
  }
};

void ApplyRules(TTokenNode& statement, TTokenList& list, size_t next) {
  for (const TControlRule& rule : kRules)
    if (StartsWith(statement, rule.keyword)) TRuleApplication(rule, statement, list, next);
}

void Walk(TTokenNode& node, const TControlRule& rule) {
  for (auto& child : node.children) Walk(*child, rule);
  for (size_t i = 0; i < node.children.size(); ++i)
    if (StartsWith(*node.children[i], rule.keyword))
      TRuleApplication(rule, *node.children[i], node.children, i + 1);
}

}  // namespace

void ApplyControlRules(TTokenNode& root) {
  for (const TControlRule& rule : kRules) Walk(root, rule);
}

}  // namespace velantis
