// ktstring_find.cpp - searching, replacing what was found, and taking lists apart.
#include "ktstring.h"

#include "string_edit.h"
#include "text/allocation_watch.h"
#include "text/text_units.h"

#include <algorithm>

namespace {

constexpr unsigned long kLongestCompare = 32767;  // characters that one KtStrCmp can be limited to

// Compares a part of a text with a pattern, both at most `length` characters (-1: to their ends).
bool matches(const KtString& s, unsigned long at, const KtString& pattern, unsigned long patternAt,
             unsigned short cmpOp, short length) {
  return KtStrCmp(s.codeSet, s.language, s.buffer + at * s.CharSize(), pattern.codeSet, pattern.language,
                  pattern.buffer + patternAt * pattern.CharSize(), cmpOp, length, 1) == 0;
}

// A pattern as long as a compare can be told goes at once, a longer one in pieces.
bool matchesWhole(const KtString& s, unsigned long at, const KtString& pattern, unsigned long length,
                  unsigned short cmpOp) {
  unsigned long done = 0;
  do {
    const unsigned long piece = std::min(length - done, kLongestCompare);
    if (!matches(s, at + done, pattern, done, cmpOp, static_cast<short>(piece))) return false;
    done += piece;
  } while (done < length);
  return true;
}

int findPattern(const KtString& s, const KtString& pattern, unsigned long pos, unsigned short cmpOp) {
  const unsigned long length = s.Len();
  const unsigned long patternLength = pattern.Len();
  const bool wildcards = (cmpOp & KtCMP_NO_WILDCARDS) == 0;
  KtString prefix(pattern.codeSet, pattern.language);
  if (wildcards) {
    prefix = pattern;
    // Half a pattern would match where the whole one does not.
    if (prefix.Len() != patternLength || !kt::appendAscii(prefix, "*", 1)) return KtERR_NOT_FOUND;
  }
  for (; pos + patternLength <= length; ++pos) {
    const bool found =
        wildcards ? matches(s, pos, prefix, 0, cmpOp, -1) : matchesWhole(s, pos, pattern, patternLength, cmpOp);
    if (found) return static_cast<int>(pos);
  }
  return KtERR_NOT_FOUND;
}

// Appends characters from to end of source.
bool appendPart(KtString& target, const KtString& source, unsigned long from, unsigned long end) {
  return kt::append(target, source.buffer + from * source.CharSize(), source.codeSet, end - from);
}

template <class Char>
KtString& replaceCharacters(KtString& s, Char from, Char to, unsigned short pos) {
  const KtString pattern(from), replacement(to);
  const bool isMade = to == 0 || !replacement.IsEmpty();  // else replacing would delete
  return isMade ? s.ReplaceAll(pattern, replacement, pos) : s;
}

}  // namespace

int KtString::Find(const KtString& pattern, unsigned short pos, unsigned short cmpOp) const {
  if (buffer == nullptr || pattern.buffer == nullptr || pos > Len()) return KtERR_NOT_FOUND;
  return findPattern(*this, pattern, pos, cmpOp == KtCMP_DEFAULT ? GetDefaultCmpOp() : cmpOp);
}

int KtString::Find(char ch, unsigned short pos, unsigned short cmpOp) const { return Find(KtString(ch), pos, cmpOp); }

int KtString::Find(unsigned short ch, unsigned short pos, unsigned short cmpOp) const {
  return Find(KtString(ch), pos, cmpOp);
}

// What follows a replaced piece is searched unchanged: the result is put together piece by piece in a second string
// instead of moving the tail for every match. A search that lacked memory may have missed one.
KtString& KtString::ReplaceAll(const KtString& from, const KtString& to, unsigned short pos) {
  const unsigned long length = Len();
  const unsigned long fromLength = from.Len();
  if (fromLength == 0) return *this;
  const kt::AllocationWatch watch;
  KtString result(codeSet, language);
  unsigned long done = 0;
  int found = Find(from, pos);
  if (found < 0) return *this;
  while (found >= 0) {
    const auto at = static_cast<unsigned long>(found);
    if (!appendPart(result, *this, done, at) || !kt::append(result, to.buffer, to.codeSet, to.Len())) return *this;
    done = std::min(at + fromLength, length);
    found = Find(from, static_cast<unsigned short>(done));
  }
  if (!watch.hasFailed() && appendPart(result, *this, done, length)) Destruct(result);
  return *this;
}

KtString& KtString::ReplaceAll(char from, char to, unsigned short pos) {
  return replaceCharacters(*this, from, to, pos);
}

KtString& KtString::ReplaceAll(unsigned short from, unsigned short to, unsigned short pos) {
  return replaceCharacters(*this, from, to, pos);
}

int KtSplitList(KtString& list, KtString& item, const KtString& separator, unsigned short& pos) {
  const kt::AllocationWatch watch;
  int found = separator.IsEmpty() ? KtERR_NOT_FOUND : list.Find(separator, pos);
  while (found == 0) found = list.Find(separator, ++pos);
  const unsigned long length = list.Len();
  if (pos >= length || watch.hasFailed()) return KtERR_END_OF_LIST;
  const unsigned long end = found < 0 ? length : static_cast<unsigned long>(found);
  KtString next = kt::slice(list, pos, end - pos);
  item = next.Trim();
  pos = static_cast<unsigned short>(end + 1);
  return 0;
}
