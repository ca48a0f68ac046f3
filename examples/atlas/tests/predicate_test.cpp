// The text of queries: what is read and how, and where all else is refused.
#include "../predicate.h"

#include <gtest/gtest.h>

namespace {

struct Accepted {
  const char* text;
  const char* canonical;
};

TEST(Predicate, reads_sentences) {
  const Accepted kCases[] = {
      // signs, with and without spaces
      {"a=1", R"(a = "1")"},
      {"a<>1 and b!=2", R"(a != "1" and b != "2")"},
      {"a<1 or a<=1 or a>1 or a>=1", R"(a < "1" or a <= "1" or a > "1" or a >= "1")"},
      // words
      {"a like Z*", R"(a like "Z*")"},
      {"a NOT Like '?x'", R"(not a like "?x")"},
      {"a is null", "a is null"},
      {"a is NOT null", "not a is null"},
      {"a between 1 and 2 and b = 3", R"(a between "1" and "2" and b = "3")"},
      {"a not between 1 and 2", R"(not a between "1" and "2")"},
      // values
      {"a = 1919-08-19", R"(a = "1919-08-19")"},
      {"a = -1.5e-7 and b = 12:30:00", R"(a = "-1.5e-7" and b = "12:30:00")"},
      {"a = Zürich", R"(a = "Zürich")"},
      {"a = ''", R"(a = "")"},
      {R"(a = "it's" or a = 'it''s' or a = 'it\'s')", R"(a = "it's" or a = "it's" or a = "it's")"},
      {R"(a = "say ""x""")", R"(a = "say \"x\"")"},
      {R"(a like "\*\\")", R"(a like "\\*\\")"},
      {"a = \"and\"", R"(a = "and")"},
      {"android = order", R"(android = "order")"},
      {"_a1=x\n\t", R"(_a1 = "x")"},
      // binding: not, and, or
      {"a=1 or b=2 and c=3", R"(a = "1" or b = "2" and c = "3")"},
      {"(a=1 or b=2) and c=3", R"((a = "1" or b = "2") and c = "3")"},
      {"not a=1 and b=2", R"(not a = "1" and b = "2")"},
      {"not (a=1 and b=2)", R"(not (a = "1" and b = "2"))"},
      {"NOT not a=1", R"(not not a = "1")"},
      {"((a=1))", R"(a = "1")"},
      {"(a=1 and b=2) and c=3", R"((a = "1" and b = "2") and c = "3")"},
  };
  for (const Accepted& wanted : kCases) {
    const std::string canonical = atlas::canonicalText(atlas::parsePredicate(wanted.text));
    EXPECT_EQ(canonical, wanted.canonical) << wanted.text;
    EXPECT_EQ(atlas::canonicalText(atlas::parsePredicate(canonical)), canonical);
  }
}

struct Refused {
  std::string text;
  std::size_t position;
  const char* reason;  // part of the message
};

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(Predicate, refuses_with_the_place_and_what_was_expected) {
  const Refused kCases[] = {
      {"", 0, R"(expected a field, "not" or "(", not the end)"},
      {"a", 1, "expected a comparison, not the end"},
      {"a =", 3, "expected a value, not the end"},
      {"a = and", 4, R"(expected a value, not "and")"},
      {"a = null", 4, "is null"},
      {"= 1", 0, "expected a field"},
      {"\"a\" = 1", 0, "expected a field, \"not\" or \"(\", not a quoted text"},
      {"1a = 1", 0, "expected a field"},
      {"like = 1", 0, "expected a field"},
      {"a == 1", 3, R"(expected a value, not "=")"},
      {"a ! 1", 2, "stands only before"},
      {"a is 1", 5, R"(expected "null" or "not null", not "1")"},
      {"a is not 1", 9, R"(expected "null")"},
      {"a not = 1", 6, R"(expected "like" or "between")"},
      {"a between 1 or 2", 12, R"(expected "and" and the upper value, not "or")"},
      {"a = 1 b = 2", 6, R"(expected "and", "or" or the end, not "b")"},
      {"a = 1 and", 9, "expected a field"},
      {"(a = 1", 6, "expected \"and\", \"or\" or \")\", not the end"},
      {"a = 1)", 5, "expected \"and\", \"or\" or the end, not \")\""},
      {"a = 'x", 4, "never closed"},
      {R"(a = "x\")", 4, "never closed"},
      {std::string("a = 'x\0'", 8), 6, "zero byte"},
      {"a = 1 \x01", 6, "control character"},
      {repeated("(", 101) + "a=1" + repeated(")", 101), 100, "nested too deeply"},
      {repeated("not ", 100000), 400, "nested too deeply"},
      {repeated("not ", 100) + "a is not null", 400, "nested too deeply"},
  };
  for (const Refused& wanted : kCases) {
    try {
      atlas::parsePredicate(wanted.text);
      ADD_FAILURE() << "accepted: " << wanted.text;
    } catch (const atlas::PredicateError& error) {
      EXPECT_EQ(error.position(), wanted.position) << wanted.text;
      EXPECT_NE(std::string(error.what()).find(wanted.reason), std::string::npos) << error.what();
    }
  }
}

TEST(Predicate, accepts_the_deepest_nesting_and_the_longest_chain) {
  EXPECT_NO_THROW(atlas::parsePredicate(repeated("(", 100) + "a=1" + repeated(")", 100)));
  EXPECT_EQ(atlas::parsePredicate("a=1" + repeated(" and a=1", 100000)).parts.size(), 100001u);
}

TEST(Predicate, points_at_the_column_that_a_terminal_shows) {
  struct {
    const char* text;
    const char* message;
  } const kCases[] = {
      // a combining mark takes no column, a wide character two; the column is counted in characters
      {"a = A\xCC\x8A !",
       "column 8: \"!\" stands only before \"=\"; a condition is turned around by \"not\"\n"
       "  a = A\xCC\x8A !\n        ^"},
      {"a = 東京 )", "column 8: expected \"and\", \"or\" or the end, not \")\"\n  a = 東京 )\n           ^"},
      {"a\n= \xFF )", "column 7: expected \"and\", \"or\" or the end, not \")\"\n  a = ? )\n        ^"},
  };
  for (const auto& wanted : kCases) {
    try {
      atlas::parsePredicate(wanted.text);
      ADD_FAILURE() << "accepted: " << wanted.text;
    } catch (const atlas::PredicateError& error) {
      EXPECT_STREQ(error.what(), wanted.message);
    }
  }
}

}  // namespace
