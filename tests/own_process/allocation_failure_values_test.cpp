// The members of the value classes that take memory, with each of their allocations failing in turn.
#include "failing_allocations/failing_allocations.h"

#include <kttm.h>

#include <ktbs.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using kt_test::Fail;
using kt_test::FailingAllocations;

constexpr Fail kModes[] = {Fail::kOne, Fail::kAllFrom};

// Calls attempt(number, mode), which tells whether an allocation failed, until none does; and that nothing leaks.
template <class Attempt>
void forEachFailure(const std::string& name, Attempt attempt) {
  for (const Fail mode : kModes) {
    bool hasFailed = true;
    for (unsigned long number = 1; hasFailed; ++number) {
      const long live = kt_test::liveBlocks();
      hasFailed = attempt(number, mode);
      EXPECT_EQ(kt_test::liveBlocks(), live) << name << " leaks, allocation " << number;
    }
  }
}

// --- strings ----------------------------------------------------------------------------------------------------------

// What a string is, with nothing allocated.
struct Image {
  explicit Image(const KtString& s)
      : text(s.buffer == nullptr ? "" : std::string(s.buffer, s.bufferSize)), set(s.codeSet), language(s.language) {}
  bool operator==(const Image&) const = default;
  std::string text;
  unsigned char set, language;
};

enum Promise {
  kOldOrNew,  // after a failure the string is what it was, what a step has made of it, or the result is there
  kGivesUp,   // the old text may be gone
};

struct Subject {
  KtString s;      // under test
  KtString other;  // an operand
  KtString made;   // the result of operations that are const
  char* bytes = nullptr;
  long size = 0;
  KtString comma = ",";
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

// What stands behind a zero stays, and is mapped too; the samples are plain letters.
template <int (*kMap)(int)>
Steps mappedBehindZero(const KtString& s, const KtString&) {
  Steps steps(1, s);
  for (unsigned i = 0; i < s.bufferSize; ++i) {
    char& byte = steps[0].buffer[i];
    byte = static_cast<char>(kMap(static_cast<unsigned char>(byte)));
  }
  return steps;
}

// The first of the letters a, the first two, ...
Steps replacedInPart(const KtString& s, const KtString& to) {
  Steps steps;
  KtString now(s);
  for (unsigned short at = 0; at < now.Len();) {
    if (now[at].Unicode() != 'a') {
      ++at;
      continue;
    }
    now.Cut(at, 1).Insert(to, at);
    at = static_cast<unsigned short>(at + to.Len());
    steps.push_back(now);
  }
  return steps;
}

Steps replacedByB(const KtString& s, const KtString&) { return replacedInPart(s, "b"); }

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
  Steps (*steps)(const KtString& s, const KtString& other) = noSteps;
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
    {"+= character", kOldOrNew, [](Subject& x) { x.s += 'c'; }},
    {"+= wide character", kOldOrNew, [](Subject& x) { x.s += static_cast<unsigned short>(0x20AC); }},
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
    {"LeftTrim", kOldOrNew, [](Subject& x) { x.s.LeftTrim(); }},
    {"RightTrim", kOldOrNew, [](Subject& x) { x.s.RightTrim(); }},
    {"Trim", kOldOrNew, [](Subject& x) { x.s.Trim(); }, trimmedAtOneEnd},
    {"Transform", kOldOrNew,
     [](Subject& x) {
       Doubling twice;
       x.s.Transform(twice);
     }},
    {"ToUpper", kOldOrNew, [](Subject& x) { x.s.ToUpper(); }, mappedBehindZero<std::toupper>},
    {"ToLower", kOldOrNew, [](Subject& x) { x.s.ToLower(); }, mappedBehindZero<std::tolower>},
    {"ReplaceAll", kOldOrNew, [](Subject& x) { x.s.ReplaceAll("a", x.other); }, replacedInPart},
    {"ReplaceAll characters", kOldOrNew, [](Subject& x) { x.s.ReplaceAll('a', 'b'); }, replacedByB},
    {"ReplaceAll wide characters", kOldOrNew,
     [](Subject& x) { x.s.ReplaceAll(static_cast<unsigned short>('a'), static_cast<unsigned short>('b')); },
     replacedByB},
    {"SetCodeSet wide", kOldOrNew, [](Subject& x) { x.s.SetCodeSet(253); }},
    {"SetCodeSet narrow", kOldOrNew, [](Subject& x) { x.s.SetCodeSet(2); }},
    {"MapToCodeSet", kOldOrNew, [](Subject& x) { x.s.MapToCodeSet(x.s.CharSize() == 1 ? 253 : 10); }},
    {"CopyMapped", kOldOrNew, [](Subject& x) { x.s.CopyMapped(x.other, 253, -1); }},
    {"Rebuild", kOldOrNew,
     [](Subject& x) { x.s.Rebuild("0123456789", 1, 1, 2, 3, 40, KtString::RebuildMode::kInsert); }},
    {"SetNullValue", kOldOrNew, [](Subject& x) { x.s.SetNullValue(); }},
    {"Destruct", kOldOrNew, [](Subject& x) { x.s.Destruct(x.other); }},
    {"copy", kOldOrNew, [](Subject& x) { x.made = KtString(x.s); }},
    {"+", kOldOrNew, [](Subject& x) { x.made = x.s + x.other; }},
    {"Copy", kOldOrNew, [](Subject& x) { x.made = x.s.Copy(1, 40); }},
    {"Left", kOldOrNew, [](Subject& x) { x.made = x.s.Left(40); }},
    {"Right", kOldOrNew, [](Subject& x) { x.made = x.s.Right(40); }},
    {"Find", kOldOrNew, [](Subject& x) { x.size = x.s.Find(x.other, 0, 0); }},
    {"to int", kOldOrNew, [](Subject& x) { x.size = static_cast<int>(x.s); }},
    {"to double", kOldOrNew, [](Subject& x) { x.size = static_cast<long>(static_cast<double>(x.s)); }},
    {"KtSplitList", kOldOrNew,
     [](Subject& x) {
       unsigned short pos = 0;
       x.size = KtSplitList(x.other, x.s, x.comma, pos);
     },
     itemInPart},
    {"KtMBS2KtString", kGivesUp,
     [](Subject& x) { x.size = KtMBS2KtString(kMultiByte.c_str(), x.s, static_cast<long>(kMultiByte.size())); }},
    {"KtMultiByteString2KtString of itself", kGivesUp,
     [](Subject& x) { x.size = KtMultiByteString2KtString(x.s, x.s); }},
    {"KtString2MultiByteString", kOldOrNew,
     [](Subject& x) { x.size = KtString2MultiByteString(x.s, x.bytes, x.size); }},
    {"KtConvertOrderToString", kOldOrNew, [](Subject& x) { KtConvertOrderToString(24600, 1, x.s); }},
};

std::vector<KtString> strings() {
  const KtString empty, space("  a b  ");
  const KtString small("a small text, 30");
  KtString large, wide(253, 1), withZero("ab"), null, onlyTerminator("x");
  large.Fill(900, 'l') += 'a';
  wide.Fill(90, 'w') += 'a';
  withZero.Rebuild("\0z", 1, 2, 0, 2, 1, KtString::RebuildMode::kRebuild);
  null.SetNullValue();
  onlyTerminator.Cut(0, 1);
  return {empty, space, small, large, wide, withZero, null, onlyTerminator};
}

// Whether the string is one, and may be appended to: the end of the text is known.
void expectValid(KtString s, const std::string& name) {
  ASSERT_EQ(s.buffer == nullptr, s.bufferSize == 0) << name;
  ASSERT_EQ(s.bufferSize % s.CharSize(), 0) << name;
  if (s.buffer != nullptr) {
    for (unsigned i = 0; i < s.CharSize(); ++i) ASSERT_EQ(s.buffer[s.bufferSize - 1 - i], 0) << name;
  }
  const int length = s.Len();
  s += 'x';
  EXPECT_EQ(s.Len(), length + 1) << name;
  EXPECT_EQ(s[length].Unicode(), 'x') << name;
}

struct Expected {
  Image before, after, made;
  std::vector<Image> steps;
};

Expected expectedOf(const StringEdit& edit, const KtString& s, const KtString& other) {
  Subject x{s, other, KtString()};
  const Image before(x.s);
  edit.run(x);
  std::free(x.bytes);
  const Steps steps = edit.steps(s, other);
  return {before, Image(x.s), Image(x.made), std::vector<Image>(steps.begin(), steps.end())};
}

bool isKept(Promise promise, const Expected& expected, const Image& now) {
  if (now == expected.before || now == expected.after) return true;
  if (std::find(expected.steps.begin(), expected.steps.end(), now) != expected.steps.end()) return true;
  return promise == kGivesUp && now.text.empty() && now.language == expected.before.language;
}

bool attempt(const StringEdit& edit, const std::string& name, const KtString& s, const KtString& other,
             const Expected& expected, unsigned long number, Fail mode) {
  Subject x{s, other, KtString()};
  bool hasFailed = false;
  unsigned long handlerCalls = 0;
  {
    FailingAllocations failing(number, mode);
    edit.run(x);
    hasFailed = failing.hasFailed();
    handlerCalls = failing.handlerCalls();
  }
  std::free(x.bytes);
  const Image now(x.s), made(x.made);
  EXPECT_TRUE(isKept(edit.promise, expected, now)) << name << ", allocation " << number << ": " << x.s.StrGet();
  EXPECT_TRUE(made == expected.made || made.text.empty()) << name << ", allocation " << number << " makes a part";
  const bool isWhole = now == expected.after && made == expected.made;
  EXPECT_TRUE(hasFailed || isWhole) << name << " differs without a failure";
  EXPECT_TRUE(isWhole || handlerCalls != 0) << name << ", allocation " << number << ": the handler was not called";
  expectValid(x.s, name);
  expectValid(x.made, name);
  return hasFailed;
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
      {"number", [] { return KtString(-42L); }},
      {"real", [] { return KtString(1e300); }},
  };
  for (const auto& c : cases) {
    FailingAllocations failing(1, Fail::kAllFrom);
    const KtString s = c.make();
    EXPECT_TRUE(s.IsEmpty() && s.bufferSize == 0) << c.name;
    EXPECT_NE(failing.handlerCalls(), 0u) << c.name;
  }
}

TEST(AllocationFailure, tells_that_a_text_has_no_multi_byte_form) {
  const KtString s("text");
  char* bytes = nullptr;
  long size = 99;
  FailingAllocations failing(1, Fail::kAllFrom);
  EXPECT_EQ(KtString2MultiByteString(s, bytes, size), -1);
  EXPECT_TRUE(bytes == nullptr && size == 0);
  KtString decoded("old");
  EXPECT_EQ(KtMBS2KtString(kMultiByte.c_str(), decoded, static_cast<long>(kMultiByte.size())), -1);
}

// --- dates and times ------------------------------------------------------------------------------------------------------

// Behind texts that leave little room in their blocks, no room, none of the kind, or have none.
TEST(AllocationFailure, prints_dates_as_a_whole_or_not_at_all) {
  const KtDateTime value(KtDate(2005, 6, 28), KtTime(12, 34, 56));
  std::string longFormat;
  while (longFormat.size() < 900) longFormat += "%A, %d ";
  const std::string formats[] = {"%Y-%m-%d %H:%M:%S", "%a %e.%b %Y", "%Y-%m-%d on a %A", longFormat};
  std::vector<KtString> texts = strings();
  for (unsigned short length = 0; length < 70; ++length) texts.emplace_back().Fill(length, 't');
  for (const std::string& format : formats) {
    for (const KtString& text : texts) {
      KtString part, whole(text);
      whole += value.PrintToKtString(part, format.c_str());
      forEachFailure(format, [&](unsigned long number, Fail mode) {
        KtString out(text);
        FailingAllocations failing(number, mode);
        value.PrintToKtString(out, format.c_str());
        const bool hasFailed = failing.hasFailed();
        failing.stop();
        EXPECT_EQ(Image(out), Image(hasFailed ? text : whole)) << format << " behind '" << text.StrGet() << "'";
        expectValid(out, format);
        return hasFailed;
      });
    }
  }
}

// --- blobs --------------------------------------------------------------------------------------------------------------

struct BlobEdit {
  const char* name;
  void (*run)(KtBlob& blob, KtBlob& other);
};

void fill(KtBlob& blob) {
  if (blob.Length() != 0) std::memset(blob.Seek(0, 1), 'f', static_cast<unsigned long>(blob.Length()));
}

constexpr BlobEdit kBlobEdits[] = {
    {"=", [](KtBlob& b, KtBlob& other) { b = other; }},
    {"copy", [](KtBlob& b, KtBlob& other) { KtBlob(b).Destroy(other); }},
    {"Destroy", [](KtBlob& b, KtBlob& other) { b.Destroy(other); }},
    {"SetTo", [](KtBlob& b, KtBlob&) { b.SetTo("bytes", 5); }},
    {"SetTo own bytes", [](KtBlob& b, KtBlob&) { b.SetTo(b.Seek(1, 1), 1); }},
    {"Expand",
     [](KtBlob& b, KtBlob&) {
       b.Expand(300);
       fill(b);
     }},
    {"Resize",
     [](KtBlob& b, KtBlob&) {
       b.Resize(300);
       fill(b);
     }},
    {"Append", [](KtBlob& b, KtBlob& other) { b.Append(other); }},
    {"Append itself", [](KtBlob& b, KtBlob&) { b.Append(b); }},
    {"CopyFrom",
     [](KtBlob& b, KtBlob&) {
       KtBlob part = b.CopyFrom(1, 2);
       b.Destroy(part);
     }},
    {"CopyTo", [](KtBlob& b, KtBlob& other) { b.CopyTo(other, 0, 3); }},
    {"Cut", [](KtBlob& b, KtBlob&) { b.Cut(1, 2); }},
};

std::string imageOf(const KtBlob& blob) {
  if (blob.IsNullValue()) return "null";
  std::string image = "=";
  return image.append(blob.Seek(0, 1), static_cast<unsigned long>(blob.Length()));
}

std::vector<KtBlob> blobs() {
  KtBlob large(500L), null;
  fill(large);
  null.SetNullValue();
  return {KtBlob(), null, KtBlob("abc", 3), large};
}

TEST(AllocationFailure, leaves_blobs_as_they_were_or_without_bytes) {
  for (const KtBlob& b : blobs()) {
    for (const KtBlob& with : blobs()) {
      for (const BlobEdit& edit : kBlobEdits) {
        const std::string name = std::string(edit.name) + " of " + imageOf(b) + ", " + imageOf(with);
        KtBlob done(b), operand(with);
        edit.run(done, operand);
        forEachFailure(name, [&](unsigned long number, Fail mode) {
          KtBlob blob(b), other(with);
          FailingAllocations failing(number, mode);
          edit.run(blob, other);
          const bool hasFailed = failing.hasFailed();
          const unsigned long handlerCalls = failing.handlerCalls();
          failing.stop();
          const std::string now = imageOf(blob);
          EXPECT_TRUE(now == imageOf(b) || now == imageOf(done) || now == "=" || now == "null") << name << now;
          EXPECT_TRUE(hasFailed || (now == imageOf(done) && imageOf(other) == imageOf(operand))) << name;
          EXPECT_TRUE(!hasFailed || handlerCalls != 0) << name;
          blob.Append("x", 1);
          EXPECT_EQ(blob.Length() >= 1 && *blob.Seek(blob.Length() - 1, 1) == 'x', true) << name;
          return hasFailed;
        });
      }
    }
  }
}

// --- what the libraries keep for themselves -----------------------------------------------------------------------------

TEST(AllocationFailure, leaves_the_null_print_string_as_it_is) {
  const KtString longer("a null print string that is longer than the smallest block");
  const KtString& null = KtTypeMgr::GetNullPrintString();
  FailingAllocations failing(1, Fail::kAllFrom);
  EXPECT_STREQ(KtTypeMgr::GetNullPrintString().StrGet(), "{NULL}");
  KtTypeMgr::SetNullPrintString(longer);
  EXPECT_STREQ(null.StrGet(), "{NULL}");
  failing.stop();
  KtTypeMgr::SetNullPrintString(longer);
  EXPECT_EQ(null, longer);
  KtTypeMgr::SetNullPrintString("{NULL}");
}

TEST(AllocationFailure, leaves_a_configuration_without_the_new_entry) {
  forEachFailure("SetShort", [](unsigned long number, Fail mode) {
    KtConfig config;
    config.SetShort("old", nullptr, 1);
    FailingAllocations failing(number, mode);
    config.SetShort("new", "qualifier", 2);
    const bool hasFailed = failing.hasFailed();
    EXPECT_EQ(config.GetShort("new", "qualifier", 7), hasFailed ? 7 : 2);
    EXPECT_EQ(config.GetShort("old", nullptr, 7), 1);
    EXPECT_TRUE(!hasFailed || failing.handlerCalls() != 0);
    return hasFailed;
  });
}

TEST(AllocationFailure, leaves_no_default_manager) {
  {
    FailingAllocations failing(1, Fail::kAllFrom);
    ___KtTypemgrContext(1);
    EXPECT_EQ(failing.handlerCalls(), 1u);
  }
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);
  ___KtTypemgrContext(0);
}

}  // namespace
