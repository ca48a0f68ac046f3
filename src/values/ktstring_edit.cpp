// ktstring_edit.cpp - appending, inserting, cutting, filling, trimming, rewriting.
#include "ktstring.h"

#include "ktstriter.h"
#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using Mode = KtString::RebuildMode;

constexpr unsigned char kFirstBeyondAscii = 0x80;  // below, all code sets are alike

// Puts one unit of the string's own code set behind a text of oldSize bytes, in a block that has the room.
template <class Unit>
inline void putBehind(KtString& s, unsigned long oldSize, Unit unit) {
  const Unit pair[2] = {unit, 0};
  std::memcpy(s.buffer + oldSize - sizeof(Unit), pair, sizeof pair);
  s.bufferSize = static_cast<std::uint16_t>(oldSize + sizeof(Unit));
}

// Appends one unit of the string's own code set; false, and nothing is changed, where that takes more than the string's
// own block. 15 of 16 times the new end lies in the same 16 bytes of the block: nothing else is to be known then.
template <class Unit>
inline bool appendUnit(KtString& s, Unit unit) {
  const unsigned long oldSize = s.bufferSize;
  const unsigned long size = oldSize + sizeof(Unit);
  if (oldSize == 0 || oldSize % sizeof(Unit) != 0 || size > kt::kMaxTextBytes || kt::mayHoldZero(s.buffer, oldSize))
    return false;
  if (kt::notePosition(size) != kt::notePosition(oldSize)) {
    if (kt::startsBlock(size)) return false;
    kt::noteMayHoldZero(s.buffer, size, false);
  }
  putBehind(s, oldSize, unit);
  return true;
}

const char* bytesOf(const unsigned short* text) { return reinterpret_cast<const char*>(text); }

// The whole content becomes head characters of the old one and n copies of a character.
void fillBehind(KtString& s, unsigned long head, unsigned long n, char ch) {
  kt::rebuild(
      s, {.source = &ch, .sourceSet = kt::narrowSet(), .pos = head, .count = 1, .repeat = n, .mayHoldZero = ch == 0});
}

void fillBehind(KtString& s, unsigned long head, unsigned long n, unsigned short ch) {
  kt::rebuild(s, {.source = bytesOf(&ch),
                  .sourceSet = kt::wideSet(),
                  .pos = head,
                  .count = 1,
                  .repeat = n,
                  .mayHoldZero = ch == 0});
}

bool isSpaceAt(const KtString& s, unsigned long pos) {
  return KtChar(kt::unitAt(s.buffer, pos, s.CharSize()), kt::characterLabel(s), s.language).IsSpace() != 0;
}

// What stands behind an inner zero does not outlive a rewriting.
void dropBehindZero(KtString& s) {
  if (s.buffer != nullptr && kt::mayHoldZero(s.buffer, s.bufferSize)) kt::rebuild(s, {.pos = s.Len()});
}

void mapCase(KtString& s, const unsigned char* table, unsigned short (KtCodeSet::*map)(unsigned short) const) {
  if (s.buffer == nullptr) return;
  if (s.CharSize() == 1) {
    for (unsigned long i = 0; i < s.bufferSize; ++i) {
      s.buffer[i] = static_cast<char>(table[static_cast<unsigned char>(s.buffer[i])]);
    }
    return;
  }
  const KtCodeSet& set = KtCodeSet::Get(s.codeSet);
  for (unsigned long i = 0; i < s.bufferSize / 2u; ++i) {
    kt::putUnit(s.buffer, i, 2, (set.*map)(kt::unitAt(s.buffer, i, 2)));
  }
}

}  // namespace

KtString& KtString::operator+=(const KtString& other) {
  kt::append(*this, other.buffer, other.codeSet, other.Len());
  return *this;
}

KtString& KtString::Append(char ch) {
  const auto byte = static_cast<unsigned char>(ch);
  if (byte == 0) return *this;
  const bool isOwn = byte < kFirstBeyondAscii || codeSet == KtLanguageContext::GetDefault8CodeSet();
  if (isOwn && CharSize() == 1 && appendUnit(*this, ch)) return *this;
  kt::append(*this, &ch, kt::narrowSet(), 1);
  return *this;
}

KtString& KtString::operator+=(unsigned short ch) {
  if (ch == 0 || (CharSize() == 2 && appendUnit(*this, ch))) return *this;
  kt::append(*this, bytesOf(&ch), kt::wideSet(), 1);
  return *this;
}

KtString& KtString::operator+=(const char* text) {
  kt::append(*this, text, kt::narrowSet(), text == nullptr ? 0 : std::strlen(text));
  return *this;
}

KtString& KtString::operator+=(const unsigned short* text) {
  kt::append(*this, bytesOf(text), kt::wideSet(), text == nullptr ? 0 : kt::unitLength(text));
  return *this;
}

KtString operator+(const KtString& a, const KtString& b) {
  KtString sum(a);
  // The copy of an emptied string has no buffer either.
  const bool isCopied = sum.buffer != nullptr || a.Len() == 0;
  if (!isCopied || !kt::append(sum, b.buffer, b.codeSet, b.Len())) kt::release(sum);
  return sum;
}

KtString& KtString::Insert(const KtString& s, unsigned short pos) {
  if (pos > Len()) return *this;
  kt::rebuild(*this, {.source = s.buffer, .sourceSet = s.codeSet, .pos = pos, .count = s.Len(), .mode = Mode::kInsert});
  return *this;
}

KtString& KtString::Replace(const KtString& s, unsigned short pos) {
  const unsigned long length = Len();
  if (pos >= length) return *this;
  const unsigned long count = std::min<unsigned long>(s.Len(), length - pos);
  kt::rebuild(*this,
              {.source = s.buffer, .sourceSet = s.codeSet, .pos = pos, .count = count, .mode = Mode::kOverwrite});
  return *this;
}

KtString& KtString::Cut(unsigned short pos, int n) {
  const unsigned long length = Len();
  if (pos >= length) return *this;
  const unsigned long count = kt::countOf(n, length - pos);
  if (count == 0) return *this;
  const unsigned long rest = pos + count;
  kt::rebuild(*this, {.source = buffer, .sourceSet = codeSet, .pos = pos, .srcPos = rest, .count = length - rest});
  return *this;
}

KtString& KtString::Fill(unsigned short n, char ch) {
  fillBehind(*this, 0, n, ch);
  return *this;
}

KtString& KtString::Fill(unsigned short n, unsigned short ch) {
  fillBehind(*this, 0, n, ch);
  return *this;
}

KtString& KtString::Expand(unsigned short n, char ch) {
  const unsigned long length = Len();
  if (n > length) fillBehind(*this, length, n - length, ch);
  return *this;
}

KtString& KtString::Expand(unsigned short n, unsigned short ch) {
  const unsigned long length = Len();
  if (n > length) fillBehind(*this, length, n - length, ch);
  return *this;
}

KtString& KtString::LeftTrim() {
  const unsigned long length = Len();
  unsigned long spaces = 0;
  while (spaces < length && isSpaceAt(*this, spaces)) ++spaces;
  if (spaces != 0)
    kt::rebuild(*this, {.source = buffer, .sourceSet = codeSet, .srcPos = spaces, .count = length - spaces});
  return *this;
}

// The terminator counts as a space: of length + 1 characters those stay that are in front of the run of spaces.
KtString& KtString::RightTrim() {
  const unsigned long length = Len();
  unsigned long kept = length;
  while (kept != 0 && isSpaceAt(*this, kept - 1)) --kept;
  if (kept != length) kt::rebuild(*this, {.pos = kept});
  return *this;
}

KtString& KtString::Trim() { return LeftTrim().RightTrim(); }

KtString& KtString::Transform(KtCharOperation& op) {
  if (buffer == nullptr) return *this;
  const unsigned long room = 2ul * bufferSize;
  char* rewritten = static_cast<char*>(std::malloc(room));
  if (rewritten == nullptr) {
    KtCallMemoryHandler(room);
    return *this;
  }
  KtStringIterator it(buffer, kt::characterLabel(*this), language, 1, Len());
  const unsigned long units = it.Transform(op, rewritten, room) / CharSize();
  kt::rebuild(*this, {.source = rewritten, .sourceSet = codeSet, .count = units == 0 ? 0 : units - 1});
  std::free(rewritten);
  return *this;
}

// As Transform with a KtLowerCaseOperation, which never changes the number of characters.
KtString& KtString::ToLower() {
  dropBehindZero(*this);
  mapCase(*this, KtCodeSet::Get(codeSet).ToLowerTable(), &KtCodeSet::ToLower);
  return *this;
}

KtString& KtString::ToUpper() {
  dropBehindZero(*this);
  mapCase(*this, KtCodeSet::Get(codeSet).ToUpperTable(), &KtCodeSet::ToUpper);
  return *this;
}

KtString KtString::Copy(unsigned short pos, int n) const {
  const unsigned long length = Len();
  if (pos >= length) return KtString(codeSet, language);
  return kt::slice(*this, pos, kt::countOf(n, length - pos));
}

KtString KtString::Left(unsigned short n) const { return kt::slice(*this, 0, std::min(n, Len())); }

KtString KtString::Right(unsigned short n) const {
  const unsigned long length = Len();
  const unsigned long count = std::min<unsigned long>(n, length);
  return kt::slice(*this, length - count, count);
}
