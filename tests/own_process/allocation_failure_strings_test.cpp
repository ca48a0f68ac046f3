// The operations on strings that take memory, with each of their allocations failing in turn.
#include "failing_allocations/failing_allocations.h"
#include "failing_allocations/string_images.h"

#include <kttm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

using kt_test::expectValid;
using kt_test::Fail;
using kt_test::FailingAllocations;
using kt_test::forEachFailure;
using kt_test::Image;
using kt_test::strings;

enum Promise {
  kOldOrNew,  // after a failure the string is what it was, what a step has made of it, or the result is there
  kGivesUp,   // the old text may be gone
};

struct Subject {
  KtString s;      // under test
  KtString other;  // an operand
  KtString made;   // the result of operations that are const
  long answer = 0;
  char* bytes = nullptr;  // the same, from malloc
  long size = 0;
  const KtString comma = ",";
};

using Steps = std::vector<KtString>;

// Of an edit that goes in several steps: what a failure of each may leave.
Steps noSteps(const KtString&, const KtString&) { return {}; }

Steps trimmedAtOneEnd(const KtString& s, const KtString&) {
  Steps steps(2, s);
  steps[0].LeftTrim();
  steps[1].RightTrim();
  return steps;
}

// The first item of the list, not trimmed or at one end; or none.
Steps itemInPart(const KtString&, const KtString& list) {
  unsigned short end = 0;
  while (end < list.Len() && list[end].Unicode() != ',') ++end;
  if (end == 0) return {};
  const KtString item = list.Left(end);
  Steps steps = trimmedAtOneEnd(item, item);
  steps.push_back(item);
  steps.emplace_back(list.codeSet, list.language);
  return steps;
}

struct StringEdit {
  const char* name;
  Promise promise;
  void (*run)(Subject& x);
  long quiet = 0;  // the answer without memory
  Steps (*steps)(const KtString& s, const KtString& other) = noSteps;
};

// While it lives, "*" and "?" are wildcards where no operator is given.
class DefaultWildcards {
public:
  DefaultWildcards() { KtString::SetDefaultCmpOp(0); }
  ~DefaultWildcards() { KtString::SetDefaultCmpOp(old_); }
  DefaultWildcards(const DefaultWildcards&) = delete;
  DefaultWildcards& operator=(const DefaultWildcards&) = delete;

private:
  unsigned short old_ = KtString::GetDefaultCmpOp();
};

class Doubling : public KtCharOperation {
public:
  int Apply(const KtChar& ch, KtChar* out) override {
    out[0] = out[1] = ch;
    return 2;
  }
};

const std::string kMultiByte = "caf\xC3\xA9 " + std::string(700, 'm');

const StringEdit kEdits[] = {
    {"=", kOldOrNew, [](Subject& x) { x.s = x.other; }},
    {"= text", kOldOrNew, [](Subject& x) { x.s = "a text that is longer than the smallest block of a string is"; }},
    {"= wide text", kOldOrNew,
     [](Subject& x) { x.s = reinterpret_cast<const unsigned short*>(u"thirty-two bytes or more"); }},
    {"+=", kOldOrNew, [](Subject& x) { x.s += x.other; }},
    {"+= itself", kOldOrNew, [](Subject& x) { x.s += x.s; }},
    {"+= text", kOldOrNew, [](Subject& x) { x.s += "a text that is longer than the smallest block of a string is"; }},
    {"+= wide text", kOldOrNew,
     [](Subject& x) { x.s += reinterpret_cast<const unsigned short*>(u"thirty-two bytes or more"); }},
    {"+= character", kOldOrNew, [](Subject& x) { x.s += 'c'; }},
    {"+= wide character", kOldOrNew, [](Subject& x) { x.s += static_cast<unsigned short>(0x20AC); }},
    {"+= number", kOldOrNew, [](Subject& x) { x.s += 1234567890; }},
    {"<< string", kOldOrNew, [](Subject& x) { x.s << x.other; }},
    {"<< text", kOldOrNew, [](Subject& x) { x.s << "a text that is longer than the smallest block of a string is"; }},
    {"<< wide text", kOldOrNew,
     [](Subject& x) { x.s << reinterpret_cast<const unsigned short*>(u"thirty-two bytes or more"); }},
    {"<< character", kOldOrNew, [](Subject& x) { x.s << 'c'; }},
    {"<< wide character", kOldOrNew, [](Subject& x) { x.s << static_cast<unsigned short>(0x20AC); }},
    {"<< number", kOldOrNew, [](Subject& x) { x.s << 1234567890L; }},
    {"<< real", kOldOrNew, [](Subject& x) { x.s << -1.23456789012345e-300; }},
    {"+= real", kOldOrNew, [](Subject& x) { x.s += -1.23456789012345e-300; }},
    {"Insert", kOldOrNew, [](Subject& x) { x.s.Insert(x.other, 1); }},
    {"Insert itself", kOldOrNew, [](Subject& x) { x.s.Insert(x.s, 1); }},
    {"Replace", kOldOrNew, [](Subject& x) { x.s.Replace(x.other, 1); }},
    {"Cut", kOldOrNew, [](Subject& x) { x.s.Cut(1, 2); }},
    {"Cut most", kOldOrNew, [](Subject& x) { x.s.Cut(1, 65535); }},
    {"Fill", kOldOrNew, [](Subject& x) { x.s.Fill(100, 'f'); }},
    {"Fill wide", kOldOrNew, [](Subject& x) { x.s.Fill(100, static_cast<unsigned short>(0x20AC)); }},
    {"Expand", kOldOrNew, [](Subject& x) { x.s.Expand(1000, 'e'); }},
    {"Expand wide", kOldOrNew, [](Subject& x) { x.s.Expand(1000, static_cast<unsigned short>(0x20AC)); }},
    {"LeftTrim", kOldOrNew, [](Subject& x) { x.s.LeftTrim(); }},
    {"RightTrim", kOldOrNew, [](Subject& x) { x.s.RightTrim(); }},
    {"Trim", kOldOrNew, [](Subject& x) { x.s.Trim(); }},
    {"Transform", kOldOrNew,
     [](Subject& x) {
       Doubling twice;
       x.s.Transform(twice);
     }},
    {"ToUpper", kOldOrNew, [](Subject& x) { x.s.ToUpper(); }},
    {"ToLower", kOldOrNew, [](Subject& x) { x.s.ToLower(); }},
    {"ReplaceAll", kOldOrNew, [](Subject& x) { x.s.ReplaceAll("a", x.other); }},
    {"ReplaceAll by text", kOldOrNew, [](Subject& x) { x.s.ReplaceAll(x.comma, "text"); }},
    {"ReplaceAll by wide text", kOldOrNew,
     [](Subject& x) { x.s.ReplaceAll("a", reinterpret_cast<const unsigned short*>(u"text")); }},
    {"ReplaceAll under wildcards", kOldOrNew,
     [](Subject& x) {
       const DefaultWildcards wildcards;
       x.s.ReplaceAll(x.comma, x.other);
     }},
    {"ReplaceAll characters", kOldOrNew, [](Subject& x) { x.s.ReplaceAll('a', 'b'); }},
    {"ReplaceAll wide characters", kOldOrNew,
     [](Subject& x) { x.s.ReplaceAll(static_cast<unsigned short>('a'), static_cast<unsigned short>('b')); }},
    {"SetCodeSet wide", kOldOrNew, [](Subject& x) { x.s.SetCodeSet(253); }},
    {"SetCodeSet narrow", kOldOrNew, [](Subject& x) { x.s.SetCodeSet(2); }},
    {"MapToCodeSet", kOldOrNew, [](Subject& x) { x.answer = x.s.MapToCodeSet(x.s.CharSize() == 1 ? 253 : 10); }},
    {"CopyMapped", kOldOrNew, [](Subject& x) { x.answer = x.s.CopyMapped(x.other, 253, -1); }},
    {"Rebuild over a part", kOldOrNew,
     [](Subject& x) { x.s.Rebuild("0123456789", 1, 1, 2, 3, 40, KtString::RebuildMode::kOverwrite); }},
    {"Rebuild with a part more", kOldOrNew,
     [](Subject& x) { x.s.Rebuild("0123456789", 1, 1, 2, 3, 40, KtString::RebuildMode::kInsert); }},
    {"Rebuild up to a part", kOldOrNew,
     [](Subject& x) { x.s.Rebuild("0123456789", 1, 1, 2, 3, 40, KtString::RebuildMode::kRebuild); }},
    {"SetNullValue", kOldOrNew, [](Subject& x) { x.s.SetNullValue(); }},
    {"Destruct", kOldOrNew, [](Subject& x) { x.s.Destruct(x.other); }},
    {"copy", kOldOrNew, [](Subject& x) { x.made = KtString(x.s); }},
    {"+", kOldOrNew, [](Subject& x) { x.made = x.s + x.other; }},
    {"+ text", kOldOrNew, [](Subject& x) { x.made = x.s + "text"; }},
    {"+ wide text", kOldOrNew, [](Subject& x) { x.made = x.s + reinterpret_cast<const unsigned short*>(u"text"); }},
    {"+ character", kOldOrNew, [](Subject& x) { x.made = x.s + 'c'; }},
    {"text +", kOldOrNew, [](Subject& x) { x.made = "text" + x.s; }},
    {"wide character +", kOldOrNew, [](Subject& x) { x.made = static_cast<unsigned short>(0x20AC) + x.s; }},
    {"Copy", kOldOrNew, [](Subject& x) { x.made = x.s.Copy(1, 40); }},
    {"Left", kOldOrNew, [](Subject& x) { x.made = x.s.Left(40); }},
    {"Right", kOldOrNew, [](Subject& x) { x.made = x.s.Right(40); }},
    {"Find", kOldOrNew, [](Subject& x) { x.answer = x.s.Find(x.other, 0, 0); }, -1},
    {"Find character", kOldOrNew, [](Subject& x) { x.answer = x.s.Find('a', 1, 0); }, -1},
    {"Find wide character", kOldOrNew,
     [](Subject& x) { x.answer = x.s.Find(static_cast<unsigned short>('a'), 0, 0x10); }, -1},
    {"to int", kOldOrNew, [](Subject& x) { x.answer = static_cast<int>(x.s); }},
    {"to short", kOldOrNew, [](Subject& x) { x.answer = static_cast<short>(x.s); }},
    {"to long", kOldOrNew, [](Subject& x) { x.answer = static_cast<long>(x.s); }},
    {"to double", kOldOrNew, [](Subject& x) { x.answer = static_cast<long>(static_cast<double>(x.s)); }},
    {"Atol", kOldOrNew, [](Subject& x) { x.answer = x.s.Atol(x.size) + x.size; }, -1},
    {"Strtol", kOldOrNew, [](Subject& x) { x.answer = x.s.Strtol(x.size) + x.size; }, -1},
    {"KtSplitList", kOldOrNew,
     [](Subject& x) {
       unsigned short pos = 0;
       x.answer = KtSplitList(x.other, x.s, x.comma, pos);
     },
     KtERR_END_OF_LIST, itemInPart},
    {"KtSplitList by text", kOldOrNew,
     [](Subject& x) {
       unsigned short pos = 0;
       x.answer = KtSplitList(x.other, x.s, ",", pos);
     },
     KtERR_END_OF_LIST, itemInPart},
    {"KtSplitList under wildcards", kOldOrNew,
     [](Subject& x) {
       const DefaultWildcards wildcards;
       unsigned short pos = 0;
       x.answer = KtSplitList(x.other, x.s, x.comma, pos);
     },
     KtERR_END_OF_LIST, itemInPart},
    {"KtMBS2KtString", kGivesUp,
     [](Subject& x) { x.answer = KtMBS2KtString(kMultiByte.c_str(), x.s, static_cast<long>(kMultiByte.size())); }, -1},
    {"KtMultiByteString2KtString of itself", kGivesUp,
     [](Subject& x) { x.answer = KtMultiByteString2KtString(x.s, x.s); }, -1},
    {"KtString2MultiByteString", kOldOrNew,
     [](Subject& x) { x.answer = KtString2MultiByteString(x.s, x.bytes, x.size); }, -1},
    {"KtConvertOrderToString", kOldOrNew, [](Subject& x) { x.answer = KtConvertOrderToString(24600, 1, x.s); }},
};

// All that an operation gave.
struct Outcome {
  explicit Outcome(Subject& x)
      : now(x.s), made(x.made), answer(x.answer), bytes(x.bytes == nullptr ? "" : std::string("=") + x.bytes) {
    std::free(std::exchange(x.bytes, nullptr));
  }
  bool operator==(const Outcome&) const = default;
  Image now, made;
  long answer;
  std::string bytes;
};

struct Expected {
  Image before;
  Outcome after;
  std::vector<Image> steps;
};

Expected expectedOf(const StringEdit& edit, const KtString& s, const KtString& other) {
  Subject x{s, other, KtString()};
  const Image before(x.s);
  edit.run(x);
  const Steps steps = edit.steps(s, other);
  return {before, Outcome(x), std::vector<Image>(steps.begin(), steps.end())};
}

bool isKept(Promise promise, const Expected& expected, const Image& now) {
  if (now == expected.before || now == expected.after.now) return true;
  if (std::find(expected.steps.begin(), expected.steps.end(), now) != expected.steps.end()) return true;
  return promise == kGivesUp && now.text.empty() && now.language == expected.before.language;
}

bool isWholeOrNone(const StringEdit& edit, const Expected& expected, const Outcome& found) {
  return isKept(edit.promise, expected, found.now) && (found.made == expected.after.made || found.made.text.empty()) &&
         (found.answer == expected.after.answer || found.answer == edit.quiet) &&
         (found.bytes == expected.after.bytes || found.bytes.empty());
}

bool attempt(const StringEdit& edit, const std::string& name, const KtString& s, const KtString& other,
             const Expected& expected, unsigned long number, Fail mode) {
  Subject x{s, other, KtString()};
  FailingAllocations failing(number, mode);
  edit.run(x);
  failing.stop();
  const Outcome found(x);
  EXPECT_TRUE(isWholeOrNone(edit, expected, found)) << name << ", allocation " << number << ": '" << x.s.StrGet()
                                                    << "', '" << x.made.StrGet() << "', " << found.answer;
  EXPECT_TRUE(failing.losses() != 0 || found == expected.after) << name << " differs without a loss";
  EXPECT_EQ(failing.handlerCalls(), failing.losses()) << name << ", allocation " << number;
  expectValid(x.s, name);
  expectValid(x.made, name);
  if (found.now == expected.before) {
    x.other = other;
    x.made = KtString();
    x.size = 0;
    edit.run(x);
    EXPECT_TRUE(Outcome(x) == expected.after) << name << " differs in the next try";
  }
  return failing.hasFailed();
}

TEST(AllocationFailure, leaves_strings_as_they_were) {
  for (const KtString& s : strings()) {
    for (const KtString& other : strings()) {
      for (const StringEdit& edit : kEdits) {
        const std::string name = std::string(edit.name) + " of '" + s.StrGet() + "', '" + other.StrGet() + "'";
        const Expected expected = expectedOf(edit, s, other);
        forEachFailure(name, [&](unsigned long number, Fail mode) {
          return attempt(edit, name, s, other, expected, number, mode);
        });
      }
    }
  }
}

TEST(AllocationFailure, makes_empty_strings) {
  const struct {
    const char* name;
    KtString (*make)();
  } cases[] = {
      {"text", [] { return KtString("text"); }},
      {"character", [] { return KtString('c'); }},
      {"wide character", [] { return KtString(static_cast<unsigned short>(0x20AC)); }},
      {"characters", [] { return KtString("text", 3); }},
      {"wide text", [] { return KtString(reinterpret_cast<const unsigned short*>(u"text")); }},
      {"wide characters", [] { return KtString(reinterpret_cast<const unsigned short*>(u"text"), 3); }},
      {"short number", [] { return KtString(static_cast<short>(-42)); }},
      {"number", [] { return KtString(-42); }},
      {"number without sign", [] { return KtString(42u); }},
      {"long number", [] { return KtString(-42L); }},
      {"long number without sign", [] { return KtString(42ul); }},
      {"real", [] { return KtString(1e300); }},
  };
  for (const auto& c : cases) {
    FailingAllocations failing(1, Fail::kAllFrom);
    const KtString s = c.make();
    EXPECT_TRUE(s.IsEmpty() && s.bufferSize == 0) << c.name;
    EXPECT_EQ(failing.losses(), 1u) << c.name;
    EXPECT_EQ(failing.handlerCalls(), 1u) << c.name;
  }
}

template <class Relation>
void expectEmptyTextsIn(const KtString& s, Relation relation) {
  const auto* const wide = reinterpret_cast<const unsigned short*>(u"no text");
  const auto first = relation(KtString(), s), second = relation(s, KtString());
  FailingAllocations failing(1, Fail::kAllFrom);
  EXPECT_EQ(relation("no text", s), first) << s.StrGet();
  EXPECT_EQ(relation(s, "no text"), second) << s.StrGet();
  EXPECT_EQ(relation(s, wide), second) << s.StrGet();
  EXPECT_EQ(relation(s, 'n'), second) << s.StrGet();
  EXPECT_EQ(failing.handlerCalls(), 4u) << s.StrGet();
}

// Relations make strings of texts: without memory the text is an empty one.
TEST(AllocationFailure, compares_with_empty_texts) {
  for (const KtString& s : strings()) {
    expectEmptyTextsIn(s, std::equal_to<>());
    expectEmptyTextsIn(s, std::not_equal_to<>());
    expectEmptyTextsIn(s, std::less<>());
    expectEmptyTextsIn(s, std::greater<>());
    expectEmptyTextsIn(s, std::less_equal<>());
    expectEmptyTextsIn(s, std::greater_equal<>());
  }
}

// They cannot fail.
TEST(AllocationFailure, asking_a_string_takes_no_memory) {
  constexpr unsigned short kOperators[] = {0, 0x10, 0x70, 0x100};
  for (const KtString& s : strings()) {
    for (const KtString& other : strings()) {
      char bytes[40];
      FailingAllocations failing(1, Fail::kAllFrom);
      for (const unsigned short op : kOperators) s.Compare(other, -1, op);
      s.Find(other, 0, KtCMP_NO_WILDCARDS);
      s.EqualsIgnoreLanguage(other);
      HashKtString(s);
      HashKtString7(s);
      KtMBSLength(s, 65535);
      KtString2KtMBS(s, bytes, sizeof bytes);
      s.Len();
      EXPECT_FALSE(failing.hasFailed()) << s.StrGet();
    }
  }
}

TEST(AllocationFailure, tells_that_a_text_has_no_multi_byte_form) {
  const KtString s("text");
  char* bytes = nullptr;
  long size = 99;
  FailingAllocations failing(1, Fail::kAllFrom);
  EXPECT_EQ(KtString2MultiByteString(s, bytes, size), -1);
  EXPECT_TRUE(bytes == nullptr && size == 0);
}

}  // namespace
