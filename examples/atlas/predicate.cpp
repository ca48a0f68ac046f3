#include "predicate.h"

#include "utf8_width.h"

#include <utility>

namespace atlas {

namespace {

// --- the message --------------------------------------------------------------------------------------------------

std::size_t charactersIn(std::string_view text) {
  std::size_t characters = 0;
  for (; !text.empty(); ++characters) text.remove_prefix(firstCharacter(text).bytes);
  return characters;
}

// Moves a cut back so that it splits no character.
std::size_t characterStart(std::string_view text, std::size_t cut) {
  std::size_t start = cut < 4 ? 0 : cut - 4;
  for (std::size_t next = start; next <= cut && next < text.size(); next += firstCharacter(text.substr(next)).bytes) {
    start = next;
  }
  return start;
}

// The text around the position and a caret under it; of a long text what fits in a line.
std::string underlined(std::string_view text, std::size_t position) {
  constexpr std::size_t kBefore = 60, kBehind = 40;  // bytes
  const std::size_t from = position > kBefore ? characterStart(text, position - kBefore) : 0;
  const bool isCutBehind = text.size() - position > kBehind;
  const std::size_t to = isCutBehind ? characterStart(text, position + kBehind) : text.size();
  const std::string before = std::string(from != 0 ? "..." : "").append(printable(text.substr(from, position - from)));
  const std::string behind = printable(text.substr(position, to - position)) + (isCutBehind ? "..." : "");
  return std::string("  ") + before + behind + "\n  " + std::string(displayWidth(before), ' ') + "^";
}

std::string message(std::string_view text, std::size_t position, const std::string& reason) {
  const std::size_t column = charactersIn(text.substr(0, position)) + 1;
  return std::string("column ") + std::to_string(column) + ": " + reason + "\n" + underlined(text, position);
}

// --- words --------------------------------------------------------------------------------------------------------

enum class TokenKind { kEnd, kWord, kQuoted, kOperator, kOpen, kClose };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string text;  // of a quoted text what stands between the quotes, resolved
  std::size_t position = 0;
};

bool isSpace(char ch) { return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r'; }
bool isControl(char ch) { return static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F; }
bool isLetter(char ch) { return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || ch == '_'; }
bool isDigit(char ch) { return ch >= '0' && ch <= '9'; }
bool endsWord(char ch) {
  return isSpace(ch) || isControl(ch) || std::string_view("()\"'=<>!").find(ch) != std::string_view::npos;
}

// ASCII only, whatever the locale.
bool isKeyword(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char small = word[i] >= 'A' && word[i] <= 'Z' ? static_cast<char>(word[i] - 'A' + 'a') : word[i];
    if (small != keyword[i]) return false;
  }
  return true;
}

bool isAnyKeyword(std::string_view word) {
  for (const char* keyword : {"and", "or", "not", "like", "is", "null", "between"}) {
    if (isKeyword(word, keyword)) return true;
  }
  return false;
}

bool isFieldName(std::string_view word) {
  if (word.empty() || !isLetter(word[0]) || isAnyKeyword(word)) return false;
  for (const char ch : word) {
    if (!isLetter(ch) && !isDigit(ch)) return false;
  }
  return true;
}

class Lexer {
public:
  explicit Lexer(std::string_view text) : text_(text) {}

  Token next() {
    while (at_ < text_.size() && isSpace(text_[at_])) ++at_;
    Token token;
    token.position = at_;
    if (at_ == text_.size()) return token;
    const char ch = text_[at_];
    if (ch == '(' || ch == ')') return symbol(token, ch == '(' ? TokenKind::kOpen : TokenKind::kClose, 1);
    if (ch == '"' || ch == '\'') return quoted(token);
    if (isControl(ch)) throw PredicateError(text_, at_, "a control character cannot stand here");
    if (endsWord(ch)) return comparisonSign(token);
    while (at_ < text_.size() && !endsWord(text_[at_])) token.text += text_[at_++];
    token.kind = TokenKind::kWord;
    return token;
  }

private:
  Token symbol(Token& token, TokenKind kind, std::size_t length) {
    token.kind = kind;
    token.text = std::string(text_.substr(at_, length));
    at_ += length;
    return std::move(token);
  }

  Token comparisonSign(Token& token) {
    for (const char* sign : {"<=", ">=", "!=", "<>", "=", "<", ">"}) {
      const std::string_view wanted(sign);
      if (text_.substr(at_, wanted.size()) == wanted) return symbol(token, TokenKind::kOperator, wanted.size());
    }
    throw PredicateError(text_, at_, "\"!\" stands only before \"=\"; a condition is turned around by \"not\"");
  }

  Token quoted(Token& token) {
    const char quote = text_[at_++];
    token.kind = TokenKind::kQuoted;
    while (at_ < text_.size()) {
      const char ch = text_[at_];
      const char following = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
      if (ch == '\0') throw PredicateError(text_, at_, "a zero byte cannot stand in a value");
      const bool isDoubled = ch == quote && following == quote;
      const bool isEscaped = ch == '\\' && (following == quote || following == '\\');
      if (ch == quote && !isDoubled) {
        ++at_;
        return std::move(token);
      }
      token.text += isDoubled || isEscaped ? following : ch;
      at_ += isDoubled || isEscaped ? 2 : 1;
    }
    throw PredicateError(text_, token.position, "this quote is never closed");
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

// --- sentences ----------------------------------------------------------------------------------------------------

class Parser {
public:
  explicit Parser(std::string_view text) : text_(text), lexer_(text), token_(lexer_.next()) {}

  Predicate parse() {
    Predicate predicate = disjunction();
    if (token_.kind != TokenKind::kEnd) throw unexpected("\"and\", \"or\" or the end");
    return predicate;
  }

private:
  PredicateError unexpected(const std::string& expected) const {
    std::string found = "the end";
    if (token_.kind == TokenKind::kQuoted)
      found = "a quoted text";
    else if (token_.kind != TokenKind::kEnd)
      found = std::string("\"") + printable(token_.text.substr(0, 40)) + "\"";
    return PredicateError(text_, token_.position, std::string("expected ") + expected + ", not " + found);
  }

  Token take() { return std::exchange(token_, lexer_.next()); }
  bool sees(const char* keyword) const { return token_.kind == TokenKind::kWord && isKeyword(token_.text, keyword); }
  bool accept(const char* keyword) {
    const bool isThere = sees(keyword);
    if (isThere) take();
    return isThere;
  }

  using Rule = Predicate (Parser::*)();

  // One part, or several with the keyword between them.
  Predicate joined(Predicate::Kind kind, const char* keyword, Rule part) {
    Predicate first = (this->*part)();
    if (!sees(keyword)) return first;
    Predicate all;
    all.kind = kind;
    all.parts.push_back(std::move(first));
    while (accept(keyword)) all.parts.push_back((this->*part)());
    return all;
  }

  Predicate disjunction() { return joined(Predicate::Kind::kOr, "or", &Parser::conjunction); }
  Predicate conjunction() { return joined(Predicate::Kind::kAnd, "and", &Parser::negation); }

  Predicate negation() {
    const bool isNested = sees("not") || token_.kind == TokenKind::kOpen;
    if (!isNested) return comparison();
    descend(token_.position);
    Predicate result = accept("not") ? negated(negation()) : parenthesised();
    --depth_;
    return result;
  }

  void descend(std::size_t position) {
    if (depth_ == kDeepestNesting) {
      throw PredicateError(text_, position,
                           "nested too deeply, at most " + std::to_string(kDeepestNesting) + " levels");
    }
    ++depth_;
  }

  static Predicate negated(Predicate inner) {
    Predicate result;
    result.kind = Predicate::Kind::kNot;
    result.parts.push_back(std::move(inner));
    return result;
  }

  Predicate parenthesised() {
    take();
    Predicate inner = disjunction();
    if (token_.kind != TokenKind::kClose) throw unexpected("\"and\", \"or\" or \")\"");
    take();
    return inner;
  }

  Predicate comparison() {
    if (token_.kind != TokenKind::kWord || !isFieldName(token_.text)) throw unexpected("a field, \"not\" or \"(\"");
    Predicate result;
    const Token field = take();
    result.comparison.field = {field.text, field.position};
    if (!compare(result.comparison)) return result;
    descend(field.position);  // its "not" is a level as any other
    --depth_;
    return negated(std::move(result));
  }

  // What follows the field. True when a "not" in it turns the comparison around.
  bool compare(Comparison& comparison) {
    if (token_.kind == TokenKind::kOperator) {
      comparison.op = sign(take().text);
      comparison.values.push_back(value());
      return false;
    }
    if (accept("is")) return nullTest(comparison);
    const bool isNegated = accept("not");
    if (accept("like")) {
      comparison.op = Operator::kLike;
      comparison.values.push_back(value());
    } else if (accept("between")) {
      between(comparison);
    } else {
      throw unexpected(isNegated ? "\"like\" or \"between\"" : "a comparison");
    }
    return isNegated;
  }

  bool nullTest(Comparison& comparison) {
    const bool isNegated = accept("not");
    if (!accept("null")) throw unexpected(isNegated ? "\"null\"" : "\"null\" or \"not null\"");
    comparison.op = Operator::kIsNull;
    return isNegated;
  }

  void between(Comparison& comparison) {
    comparison.op = Operator::kBetween;
    comparison.values.push_back(value());
    if (!accept("and")) throw unexpected("\"and\" and the upper value");
    comparison.values.push_back(value());
  }

  Piece value() {
    const bool isValue =
        token_.kind == TokenKind::kQuoted || (token_.kind == TokenKind::kWord && !isAnyKeyword(token_.text));
    if (sees("null")) throw unexpected("a value (null is found by \"is null\")");
    if (!isValue) throw unexpected("a value");
    const Token taken = take();
    return {taken.text, taken.position};
  }

  static Operator sign(const std::string& text) {
    if (text == "<>") return Operator::kNotEqual;
    Operator op = Operator::kEqual;
    while (text != operatorText(op)) op = static_cast<Operator>(static_cast<int>(op) + 1);
    return op;
  }

  std::string_view text_;
  Lexer lexer_;
  Token token_;
  int depth_ = 0;
};

// --- the canonical form -------------------------------------------------------------------------------------------

std::string quotedText(const std::string& text) {
  std::string quoted = "\"";
  for (const char ch : text) {
    if (ch == '"' || ch == '\\') quoted += '\\';
    quoted += ch;
  }
  return quoted + '"';
}

std::string comparisonText(const Comparison& comparison) {
  std::string text = comparison.field.text + " " + operatorText(comparison.op);
  for (std::size_t i = 0; i < comparison.values.size(); ++i) {
    text += i == 0 ? " " : " and ";
    text += quotedText(comparison.values[i].text);
  }
  return text;
}

// How strongly a kind binds; what binds less than its surroundings needs parentheses. A part of the same kind as the
// whole was in parentheses when it was read, and stays so.
int strength(Predicate::Kind kind) {
  switch (kind) {
    case Predicate::Kind::kOr: return 0;
    case Predicate::Kind::kAnd: return 1;
    case Predicate::Kind::kNot: return 2;
    case Predicate::Kind::kComparison: break;
  }
  return 3;
}

std::string partText(const Predicate& part, int least) {
  const std::string text = canonicalText(part);
  return strength(part.kind) < least ? std::string("(") + text + ")" : text;
}

}  // namespace

const char* operatorText(Operator op) {
  static constexpr const char* kTexts[] = {"=", "!=", "<", "<=", ">", ">=", "like", "between", "is null"};
  return kTexts[static_cast<int>(op)];
}

PredicateError::PredicateError(std::string_view text, std::size_t position, const std::string& reason)
    : std::runtime_error(message(text, position, reason)), position_(position) {}

Predicate parsePredicate(std::string_view text) { return Parser(text).parse(); }

std::string canonicalText(const Predicate& predicate) {
  if (predicate.kind == Predicate::Kind::kComparison) return comparisonText(predicate.comparison);
  if (predicate.kind == Predicate::Kind::kNot) return std::string("not ") + partText(predicate.parts[0], 2);
  const char* keyword = predicate.kind == Predicate::Kind::kAnd ? " and " : " or ";
  std::string text = partText(predicate.parts[0], strength(predicate.kind) + 1);
  for (std::size_t i = 1; i < predicate.parts.size(); ++i) {
    text += keyword;
    text += partText(predicate.parts[i], strength(predicate.kind) + 1);
  }
  return text;
}

}  // namespace atlas
