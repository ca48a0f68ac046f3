// predicate.h - the text of a query as a tree: comparisons of fields with values, joined by and, or and not.
//
//   predicate   = conjunction { "or" conjunction }
//   conjunction = negation { "and" negation }
//   negation    = "not" negation | "(" predicate ")" | comparison
//   comparison  = field ( "=" | "!=" | "<>" | "<" | "<=" | ">" | ">=" ) value
//               | field [ "not" ] "like" value
//               | field [ "not" ] "between" value "and" value
//               | field "is" [ "not" ] "null"
//
// Keywords are read in any case. A field is a letter or "_" and then letters, digits and "_". A value is a bare word,
// which ends at a space or one of ()"'=<>! and is no keyword, or a text in '...' or "..." that writes its quote doubled or
// behind a backslash and a backslash as two; before anything else a backslash is itself, so that \* reaches `like` whole.
//
// Nothing here knows classes, types or the database: a pure function of bytes, which may be any bytes at all.
#ifndef EXAMPLES_ATLAS_PREDICATE_H
#define EXAMPLES_ATLAS_PREDICATE_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace atlas {

enum class Operator { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual, kLike, kBetween, kIsNull };

const char* operatorText(Operator op);  // as it is written: "=", "<=", "is null"

// A piece of the text: what was read, and the byte at which it begins.
struct Piece {
  std::string text;
  std::size_t position = 0;
};

struct Comparison {
  Piece field;
  Operator op = Operator::kEqual;
  std::vector<Piece> values;  // two for between, none for is null, else one
};

struct Predicate {
  enum class Kind { kComparison, kNot, kAnd, kOr };

  Kind kind = Kind::kComparison;
  Comparison comparison;         // of kComparison
  std::vector<Predicate> parts;  // one of kNot, two and more of kAnd and kOr
};

// Deeper nesting of parentheses and "not" is refused, so that no text exhausts the stack.
constexpr int kDeepestNesting = 100;

// what() is for people: the column, what was expected, the text and a caret under the place.
class PredicateError : public std::runtime_error {
public:
  PredicateError(std::string_view text, std::size_t position, const std::string& reason);

  std::size_t position() const { return position_; }  // in bytes, from 0; the size of the text at its end

private:
  std::size_t position_;
};

// Throws PredicateError when the text is not a predicate.
Predicate parsePredicate(std::string_view text);

// The predicate in one fixed form, which parses to the same tree: every value in double quotes, "<>" as "!=", keywords in
// small letters, and no parentheses but those that the tree needs.
std::string canonicalText(const Predicate& predicate);

}  // namespace atlas

#endif
