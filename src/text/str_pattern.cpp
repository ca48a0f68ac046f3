// str_pattern.cpp - wildcards in byte patterns and in the three-level comparison.
#include "str_pattern.h"

#include "str_levels.h"

namespace kt {

namespace {

constexpr unsigned short kDefaultCharacters[] = {42, 63, 92};  // "*", "?", "\" in every code set

std::atomic<unsigned short> wildcardOrders[3][2];  // alphabetic, ideographic; 0: not asked for yet

int byteAt(const TextRef& ref, unsigned long index) {
  return index < ref.limit ? static_cast<unsigned char>(ref.text[index]) : 0;
}

}  // namespace

unsigned wildcardOrder(Wildcard wildcard, unsigned char kind) {
  const bool ideographic = kind >= KtUnicodeProps::kIdeographicKind;
  std::atomic<unsigned short>& kept = wildcardOrders[static_cast<int>(wildcard)][ideographic];
  unsigned short order = kept.load(std::memory_order_relaxed);
  if (order != 0) return order;
  const unsigned char kindAsked = ideographic ? KtUnicodeProps::kIdeographicKind : static_cast<unsigned char>(1);
  const unsigned short found = KtUnicodeProps::Order(kDefaultCharacters[static_cast<int>(wildcard)], kindAsked);
  // Exchanged only from 0, so that an order set meanwhile stays.
  return kept.compare_exchange_strong(order, found, std::memory_order_relaxed) ? found : order;
}

void setWildcardOrders(Wildcard wildcard, unsigned short alphabetic, unsigned short ideographic) {
  wildcardOrders[static_cast<int>(wildcard)][0].store(alphabetic, std::memory_order_relaxed);
  wildcardOrders[static_cast<int>(wildcard)][1].store(ideographic, std::memory_order_relaxed);
}

long matchBytePattern(const TextRef& a, const TextRef& b, unsigned long length) {
  unsigned long text = 0, pattern = 0;
  unsigned long restartText = 0, restartPattern = 0;  // restartPattern 0: no "*" yet
  for (;;) {
    if (text == length) return 0;
    int wanted = byteAt(b, pattern);
    if (wanted == '*') {
      while (wanted == '*') wanted = byteAt(b, ++pattern);
      if (wanted == 0) return 0;
      restartText = text;
      restartPattern = pattern;
      continue;
    }
    const int found = byteAt(a, text);
    if (wanted == '?' && found == 0) return -1;
    if (wanted == '?' || wanted == found) {
      if (found == 0) return 0;
      ++text;
      ++pattern;
      continue;
    }
    // At the end of the text a later restart would find even less to match.
    if (restartPattern == 0 || found == 0) return found - wanted;
    text = ++restartText;
    pattern = restartPattern;
  }
}

namespace {

constexpr Weight kNoWeight = 0xFFFFFFFFu;  // no character has it: a wildcard that is turned off

enum class ItemKind { kKey, kAsterisk, kQuestion };

// What the pattern asks for next.
struct Item {
  ItemKind kind;
  Weight key;     // 0: the end
  int ignorable;  // the last ignorable order kept on the way to it, or 0
};

struct PatternRules {
  unsigned cmpOp;
  unsigned long length;
  int* report;
  bool strict;  // after an asterisk, ignorable orders must agree as well
};

// One comparison of text A with pattern B.
//
// Until the first asterisk this is the plain three-level comparison. From there on the keys must agree under the
// equality mask, which leaves free only the bits that the result ignores: the differences of case and diacritics stay
// those from before the first asterisk, whichever continuation is taken. So continuations differ only in where they
// are, and only the last asterisk need be resumed: when what lies between two asterisks matched at its first possible
// place, the second asterisk may skip to wherever a later place would have led. That bounds the time by the product of
// the two lengths and needs no list.
template <class A, class B>
class PatternMatch {
public:
  PatternMatch(const A& a, const B& b, const PatternRules& rules)
      : a_(a), b_(b), rules_(rules), resume_{a, b, 0, false} {
    if ((rules.cmpOp & kIgnoreCase) != 0) equalityMask_ &= ~kCaseMask;
    if ((rules.cmpOp & kIgnoreDiacritics) != 0) equalityMask_ &= ~kDiacriticMask;
    if ((rules.cmpOp & kNoWildcards) != 0) return;
    asterisk_ = collationKey(wildcardOrder(Wildcard::kAsterisk, b.kind()), b.kind());
    question_ = collationKey(wildcardOrder(Wildcard::kQuestion, b.kind()), b.kind());
    escape_ = collationKey(wildcardOrder(Wildcard::kEscape, b.kind()), b.kind());
  }

  long run() {
    for (;;) {
      const std::int32_t failure = step(nextItem());
      if (matched_) return differences_.result(rules_.cmpOp);
      if (failure != 0 && !resume()) return failure;
    }
  }

  // After run: the text matched, but for ignorable orders.
  bool onlyIgnorablesDiffer() const {
    return matched_ && starred_ && differences_.ignorable != 0 && differences_.ofLetters(rules_.cmpOp) == 0;
  }

private:
  // An escape before a wildcard (or before another escape) makes that an ordinary character and vanishes; elsewhere it
  // is an ordinary character itself.
  bool takeEscaped(Weight& weight) {
    if (weight != escape_) return false;
    B ahead = b_;
    const Weight following = ahead.next();
    if (following != asterisk_ && following != question_ && following != escape_) return false;
    b_ = ahead;
    weight = following;
    return true;
  }

  Item nextItem() {
    int kept = 0;
    for (;;) {
      Weight weight = b_.next();
      if (!takeEscaped(weight)) {
        if (weight == asterisk_) return {ItemKind::kAsterisk, weight, kept};
        if (weight == question_) return {ItemKind::kQuestion, weight, kept};
      }
      if (weight == 0 || weight >= b_.significant()) return {ItemKind::kKey, weight, kept};
      if (const int order = ignorableOrder(weight); !isDropped(order, rules_.cmpOp)) kept = order;
    }
  }

  // Each of the following answers 0, or a difference that fails the current path.
  std::int32_t step(const Item& item) {
    if (item.kind == ItemKind::kKey) return matchKey(item);
    if (fresh_) saveNextPlace();
    const std::int32_t failure = item.ignorable != 0 ? pairIgnorables(item.ignorable) : 0;
    if (failure != 0) return failure;
    return item.kind == ItemKind::kQuestion ? matchAny(item) : startAsterisk();
  }

  std::int32_t startAsterisk() {
    resume_ = {a_, b_, differences_.ignorable, true};
    starred_ = fresh_ = true;
    return 0;
  }

  std::int32_t matchAny(const Item& item) {
    if (takeCharacter(a_) != 0) return 0;
    return reported(0, item.key);
  }

  std::int32_t matchKey(const Item& item) {
    Weight key = a_.next();
    int ignorable = skipIgnorables(a_, key, rules_.cmpOp);
    if (fresh_) {
      fresh_ = false;
      matched_ = item.key == 0 && item.ignorable == 0;  // an asterisk at the end takes all the rest
      if (matched_) return 0;
      resume_.a = a_;
      resume_.a.dropPending();
      resume_.open = key != 0;
      if (item.ignorable == 0) ignorable = 0;  // the asterisk took them
    }
    if (const std::int32_t failure = noteIgnorable(ignorable - item.ignorable)) return failure;
    const std::int32_t failure = compareKeys(key, item.key);
    matched_ = failure == 0 && key == 0;
    return failure;
  }

  std::int32_t compareKeys(Weight k1, Weight k2) {
    const std::int32_t primary = reported(k1, k2);
    if (primary != 0) return primary;
    if (!starred_) {
      differences_.note(k1, k2);
      return 0;
    }
    if (((k1 ^ k2) & equalityMask_) == 0) return 0;
    const std::int32_t tertiary = tertiaryDifference(k1, k2);
    return tertiary != 0 ? tertiary : secondaryDifference(k1, k2);
  }

  std::int32_t reported(Weight k1, Weight k2) {
    const std::int32_t primary = primaryDifference(k1, k2);
    const bool within = (k1 != 0 || a_.position() < rules_.length) && (k2 != 0 || b_.position() < rules_.length);
    if (rules_.report != nullptr && within) *rules_.report = primary;
    return primary;
  }

  std::int32_t noteIgnorable(std::int32_t difference) {
    if (rules_.strict && starred_) return difference;
    differences_.noteIgnorable(difference);
    return 0;
  }

  // A wildcard may take ignorable orders of the text too. Those that stand in the pattern before it are matched first:
  // ignorable orders of the text are taken up to the wanted one, or all that follow here when there is none.
  std::int32_t pairIgnorables(int wanted) {
    int found = 0;
    while (found != wanted) {
      A ahead = a_;
      const Weight weight = ahead.next();
      if (weight == 0 || weight >= a_.significant()) break;
      a_ = ahead;
      if (const int order = ignorableOrder(weight); !isDropped(order, rules_.cmpOp)) found = order;
    }
    return noteIgnorable(found - wanted);
  }

  // A whole character that the operator does not drop; 0 at the end.
  Weight takeCharacter(A& cursor) {
    Weight weight = cursor.next();
    while (weight != 0 && weight < cursor.significant() && isDropped(ignorableOrder(weight), rules_.cmpOp))
      weight = cursor.next();
    cursor.dropPending();
    return weight;
  }

  void saveNextPlace() {
    resume_.a = a_;
    resume_.open = takeCharacter(resume_.a) != 0;
    fresh_ = false;
  }

  bool resume() {
    if (!resume_.open) return false;
    a_ = resume_.a;
    b_ = resume_.b;
    differences_.ignorable = resume_.ignorable;
    fresh_ = true;
    return true;
  }

  // The next continuation of the last asterisk.
  struct Resumption {
    A a;
    B b;
    std::int32_t ignorable;
    bool open;
  };

  A a_;
  B b_;
  PatternRules rules_;
  Resumption resume_;
  LevelDifferences differences_;
  Weight equalityMask_ = 0xFFFFFFFFu;
  Weight asterisk_ = kNoWeight;
  Weight question_ = kNoWeight;
  Weight escape_ = kNoWeight;
  bool starred_ = false;
  bool fresh_ = false;  // at the first step of a continuation
  bool matched_ = false;
};

}  // namespace

long comparePattern(const TextRef& a, const TextRef& b, unsigned cmpOp, unsigned long length, int* report) {
  return withCursors(a, b, length, [&](auto& x, auto& y) -> long {
    using Match = PatternMatch<std::remove_cvref_t<decltype(x)>, std::remove_cvref_t<decltype(y)>>;
    Match first(x, y, {cmpOp, length, report, false});
    const long result = first.run();
    if (!first.onlyIgnorablesDiffer()) return result;
    // The first continuation that matches may differ in spaces or symbols where a later one does not.
    Match strict(x, y, {cmpOp, length, nullptr, true});
    return strict.run() == 0 ? 0 : result;
  });
}

}  // namespace kt
