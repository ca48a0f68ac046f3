// Terminated texts and string objects, through the public functions: KtStrCmp and HashString read nothing behind the
// terminator, agree with the members of the class and with twins that take one key after the other; Find, ReplaceAll and
// KtSplitList do what a loop over Compare and Copy does.
#include "slow_hash.h"
#include "string_input.h"

#include <optional>
#include <string>

using namespace kt_fuzz;

namespace {

constexpr unsigned short kOrder = KtCMP_NO_WILDCARDS | KtCMP_BINARY;  // with either no pattern acts

// The meaningful codes often, every other one too.
unsigned char codeSetOf(std::uint8_t byte) {
  constexpr unsigned char kUsual[] = {1, 253, 0, 10, 5, 2, 1, 253, 254, 255, 12, 240};
  return byte < 96 ? kUsual[byte % sizeof kUsual] : byte;
}
unsigned char languageOf(std::uint8_t byte) {
  constexpr unsigned char kUsual[] = {0, 1, 2, 3, 4, 20, 0, 1};
  return byte < 96 ? kUsual[byte % sizeof kUsual] : byte;
}

struct Text {
  unsigned char codeSet, language, flag;
  Bytes bytes;  // without terminator, no character 0

  Text(unsigned char set, unsigned char lang, unsigned char order, const Bytes& raw)
      : codeSet(set), language(lang), flag(order) {
    for (std::size_t i = 0; i + size() <= raw.size(); i += size()) {
      if (raw[i] == 0 && (size() == 1 || raw[i + 1] == 0)) break;
      bytes.insert(bytes.end(), raw.begin() + static_cast<std::ptrdiff_t>(i),
                   raw.begin() + static_cast<std::ptrdiff_t>(i + size()));
    }
  }

  // Compared and hashed, code set 255 is the default 8-bit set.
  std::size_t size() const { return codeSet < 225 || codeSet == 255 ? 1 : 2; }
  std::size_t count() const { return bytes.size() / size(); }
  bool isNull() const { return language == 254 || (codeSet == 254 && language == 0); }
  unsigned short at(std::size_t i) const {
    if (size() == 1) return bytes[i];
    std::uint16_t host;
    std::memcpy(&host, &bytes[2 * i], sizeof host);
    if (flag == 1 || flag == 8 || flag == 255) return host;
    const bool bigEndian = flag == 2;
    return static_cast<unsigned short>(bytes[2 * i + bigEndian] | bytes[2 * i + !bigEndian] << 8);
  }
  std::u16string unicode() const {
    const KtCodeSet& set = KtCodeSet::Get(codeSet != 255 ? codeSet : KtLanguageContext::GetDefault8CodeSet());
    std::u16string text;
    for (std::size_t i = 0; i < count(); ++i) text += static_cast<char16_t>(set.ToUnicode(at(i)));
    return text;
  }

  Block terminated(const Bytes& behind = {}) const {
    Bytes all = bytes;
    all.resize(all.size() + size());
    all.insert(all.end(), behind.begin(), behind.end());
    return Block(all);
  }
  // A string in code set 255 has 16-bit units.
  KtString string() const {
    KtString s(codeSet, language);
    const Block block(bytes);
    const unsigned long characters = bytes.size() / s.CharSize();
    if (characters != 0)
      s.Rebuild(reinterpret_cast<const char*>(block.get()), codeSet, 0, 0, characters, 1,
                KtString::RebuildMode::kRebuild, flag);
    return s;
  }
};

struct Case {
  Text a, b;
  unsigned short cmpOp;
  short length;
};

int signOf(long value) { return value < 0 ? -1 : value > 0; }

// --- comparing ----------------------------------------------------------------------------------------------------

long compare(const Text& a, const Block& x, const Text& b, const Block& y, const Case& c, int* report = nullptr) {
  return KtStrCmp(a.codeSet, a.language, reinterpret_cast<const char*>(x.get()), b.codeSet, b.language,
                  reinterpret_cast<const char*>(y.get()), c.cmpOp, c.length, a.flag, report);
}

// Order by order, at most `length` characters of each; none where that does not decide.
std::optional<int> slowBinaryOrder(const Case& c) {
  const bool isRaw = c.a.codeSet == 0 && c.b.codeSet == 0;
  if ((c.cmpOp & KtCMP_BINARY) == 0 || isRaw || c.a.isNull() || c.b.isNull()) return std::nullopt;
  if (c.length == 0 || c.length < -1) return 0;
  const auto keys = [&c](const Text& text) {
    const std::size_t most = c.length < 0 ? std::u16string::npos : static_cast<std::size_t>(c.length);
    return kt_test::slowKeys(text.unicode().substr(0, most), text.language);
  };
  const auto x = keys(c.a), y = keys(c.b);
  // Not by the relations of vectors, which some standard libraries have wrong on big-endian hosts.
  const auto isLess = [](unsigned long k, unsigned long l) { return k < l; };
  if (std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end(), isLess)) return -1;
  return std::lexicographical_compare(y.begin(), y.end(), x.begin(), x.end(), isLess) ? 1 : 0;
}

void checkCompare(const Case& c, const Bytes& behind) {
  const Block x = c.a.terminated(), y = c.b.terminated();
  const long result = compare(c.a, x, c.b, y, c);
  int report = 0;
  require(compare(c.a, x, c.b, y, c, &report) == result);
  require(compare(c.a, c.a.terminated(behind), c.b, c.b.terminated(behind), c) == result);
  if ((c.cmpOp & kOrder) != 0) require(signOf(compare(c.b, y, c.a, x, c)) == -signOf(result));
  if (const auto expected = slowBinaryOrder(c)) require(signOf(result) == *expected);
  require(compare(c.a, x, c.a, x, {c.a, c.a, static_cast<unsigned short>(c.cmpOp | kOrder), c.length}) == 0);
  if (c.a.codeSet == 255 || c.b.codeSet == 255 || c.cmpOp == KtCMP_DEFAULT) return;
  require(c.a.string().Compare(c.b.string(), c.length, c.cmpOp) == result);
}

// --- hashing ------------------------------------------------------------------------------------------------------

unsigned long hash(const Text& text, const Block& block, short length) {
  return HashString(text.codeSet, text.language, reinterpret_cast<char*>(block.get()), length, text.flag);
}

unsigned long slowHash(const Text& text, short length) {
  if (text.isNull()) return 0xFEFE7575;
  if (length == 0 || length < -1) return 0;
  const auto count = static_cast<std::size_t>(length < 0 ? 0 : length);
  if (text.codeSet != 0) return kt_test::slowHash(text.unicode(), text.language, count);
  std::uint32_t h = 0;
  for (std::size_t i = 0; i < text.count() && (count == 0 || i < count); ++i) h = h * 9 + text.bytes[i];
  return h;
}

void checkHash(const Case& c, const Bytes& behind) {
  for (const Text* text : {&c.a, &c.b})
    for (const short length : {short{-1}, c.length}) {
      const unsigned long result = hash(*text, text->terminated(), length);
      require(result == hash(*text, text->terminated(behind), length) && result == slowHash(*text, length));
    }
  // By its bytes beside another set's characters: docs/decisions.
  if ((c.a.codeSet == 0) != (c.b.codeSet == 0)) return;
  const Block x = c.a.terminated(), y = c.b.terminated();
  if (compare(c.a, x, c.b, y, {c.a, c.b, kOrder, -1}) == 0) require(hash(c.a, x, -1) == hash(c.b, y, -1));
}

// --- searching ----------------------------------------------------------------------------------------------------

bool isSame(const KtString& a, const KtString& b) {
  const std::size_t bytes = std::size_t{1} * a.Len() * a.CharSize();
  return a.codeSet == b.codeSet && a.language == b.language && a.Len() == b.Len() &&
         std::memcmp(a.StrGet(), b.StrGet(), bytes) == 0;
}

int slowFind(const KtString& text, const KtString& pattern, unsigned pos, unsigned short cmpOp) {
  if (text.buffer == nullptr || pattern.buffer == nullptr) return -1;
  const unsigned length = pattern.Len();
  for (; pos + length <= text.Len(); ++pos) {
    const KtString part = text.Copy(static_cast<unsigned short>(pos), static_cast<int>(length));
    if (part.Compare(pattern, static_cast<short>(length), cmpOp) == 0) return static_cast<int>(pos);
  }
  return -1;
}

// As the default operator has it, which takes no wildcards.
KtString slowReplace(const KtString& text, const KtString& from, const KtString& to, unsigned short pos) {
  KtString result = text.Left(pos);
  unsigned at = pos;
  while (at < text.Len()) {
    const bool isFound = slowFind(text, from, at, KtCMP_NO_WILDCARDS) == static_cast<int>(at);
    result += isFound ? to : text.Copy(static_cast<unsigned short>(at), 1);
    at += isFound ? from.Len() : 1u;
  }
  return result;
}

KtString slowTrim(const KtString& s) {
  int from = 0, end = s.Len();
  while (from < end && s[from].IsSpace() != 0) ++from;
  while (from < end && s[end - 1].IsSpace() != 0) --end;
  return s.Copy(static_cast<unsigned short>(from), end - from);
}

// Items lie one behind the other, a character of each separator between them, and all together are the list.
void checkSplit(const KtString& text, const KtString& separator) {
  KtString list = text, item("old");
  const bool skipsFirst = !separator.IsEmpty() && slowFind(text, separator, 0, KtCMP_NO_WILDCARDS) == 0;
  unsigned from = skipsFirst ? 1 : 0;
  for (unsigned short pos = 0; from < text.Len();) {
    require(KtSplitList(list, item, separator, pos) == 0 && pos > from && isSame(list, text));
    const unsigned end = pos - 1u;
    const int found = separator.IsEmpty() ? -1 : slowFind(text, separator, from, KtCMP_NO_WILDCARDS);
    require(end == (found < 0 ? text.Len() : static_cast<unsigned>(found)));
    require(isSame(item, slowTrim(text.Copy(static_cast<unsigned short>(from), static_cast<int>(end - from)))));
    from = pos;
    if (from < text.Len()) continue;
    const KtString last = item;
    require(KtSplitList(list, item, separator, pos) == KtERR_END_OF_LIST && isSame(item, last));
  }
}

void checkSearch(const Case& c, unsigned short pos) {
  const KtString text = c.a.string(), pattern = c.b.string();
  const unsigned short cmpOp = c.cmpOp | KtCMP_NO_WILDCARDS;
  if (cmpOp != KtCMP_DEFAULT) require(text.Find(pattern, pos, cmpOp) == slowFind(text, pattern, pos, cmpOp));
  const int found = text.Find(pattern, pos, c.cmpOp);
  require(found == -1 || (found >= pos && found + pattern.Len() <= text.Len()));
  // A piece of the text is found where it was taken, or before.
  const KtString piece = text.Copy(pos, 2);
  if (!piece.IsEmpty()) require(static_cast<unsigned>(text.Find(piece, 0, cmpOp)) <= pos);

  if (!pattern.IsEmpty() && pos <= text.Len()) {
    KtString replaced = text;
    require(isSame(replaced.ReplaceAll(pattern, piece, pos), slowReplace(text, pattern, piece, pos)));
    replaced = text;
    require(isSame(replaced.ReplaceAll(pattern, pattern, pos), slowReplace(text, pattern, pattern, pos)));
  }
  checkSplit(text, pattern);
  checkSplit(text, piece);
}

// --- editing ------------------------------------------------------------------------------------------------------

void checkEdits(const Case& c, unsigned short pos) {
  const KtString text = c.a.string(), other = c.b.string();
  const unsigned short length = text.Len();
  const KtString left = text.Left(pos), right = text.Copy(pos);
  KtString s = left;
  require(isSame(s += right, text) && isSame(text.Right(right.Len()), right));

  s = text;
  s.Insert(other, pos);
  if (pos > length) require(isSame(s, text));
  if (pos <= length) {
    const KtString middle = s.Copy(pos, other.Len());
    require(s.Len() == length + other.Len() && isSame(s.Left(pos), left));
    require(isSame(s.Cut(pos, other.Len()), text));
    require(isSame(s.Replace(other, pos).Left(pos), left) && s.Len() == length);
    require(isSame(s.Copy(pos, other.Len()), middle.Left(right.Len())));
  }
  // The other text may be the text itself.
  KtString same = text;
  s = text;
  require(isSame(s.Insert(s, pos), same.Insert(text, pos)) && isSame(s.ReplaceAll(s, s, pos), same));
  require(isSame(s.Trim(), slowTrim(same)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned char setA = codeSetOf(input.byte()), languageA = languageOf(input.byte());
  const unsigned char setB = codeSetOf(input.byte()), languageB = languageOf(input.byte());
  const auto cmpOp = static_cast<unsigned short>(input.byte() | input.byte() << 8);
  const auto length = static_cast<short>(static_cast<signed char>(input.byte()));
  const unsigned char flag = input.byte();
  const unsigned short pos = input.byte();
  const Text first(setA, languageA, flag, input.take(input.byte()));
  const Bytes behind = input.take(3);
  const Case c{first, Text(setB, languageB, flag, input.rest()), cmpOp, length};
  checkCompare(c, behind);
  checkHash(c, behind);
  checkSearch(c, pos);
  checkEdits(c, pos);
  return 0;
}
