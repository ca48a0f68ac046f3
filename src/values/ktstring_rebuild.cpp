// ktstring_rebuild.cpp - the rebuild behind every change of a string.
//
// Every change is: keep a head, put a source part (or one character repeated) behind it, keep a tail. The result is
// that of building it in a fresh block filled with zeros; where the old block is large enough it is built in place.
#include "string_edit.h"
#include "text/string_block.h"
#include "text/text_units.h"

#include <ktbs.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kt {

namespace {

using Mode = KtString::RebuildMode;

constexpr char kSourceFile[] = "src\\ktstring";
constexpr unsigned long kTrimmedBlock = 512;  // of larger blocks a shrinking text gives back what it no longer needs
constexpr unsigned long kLargestCount = 1ul << 30;  // keeps products of two counts and a width within 64 bits

// Where the parts go, in bytes of the string's own code set. at and the tail offsets may lie beyond size.
struct Layout {
  unsigned long long at = 0;        // of the source part in the new text
  unsigned long long tailFrom = 0;  // of the tail in the old text
  unsigned long long tailTo = 0;    // and in the new one
  unsigned long width = 1;
  unsigned long head = 0;  // bytes kept in front
  unsigned long tail = 0;  // bytes kept behind
  unsigned long size = 0;  // of the new text, terminator included
  bool gaps = false;       // some bytes belong to no part: they are zeros
};

TextEdit boundedEdit(const TextEdit& given) {
  TextEdit edit = given;
  edit.pos = std::min(edit.pos, kLargestCount);
  edit.count = edit.source == nullptr ? 0 : std::min(edit.count, kLargestCount);
  edit.repeat = std::min(edit.repeat, kLargestCount);
  return edit;
}

bool startsEmpty(const TextEdit& edit) {
  return edit.source == nullptr || unitAt(edit.source, 0, KtCodeSet::CharSizeOf(edit.sourceSet)) == 0;
}

unsigned long long newSize(const TextEdit& edit, unsigned long width, unsigned long oldSize) {
  const unsigned long long part = 1ull * edit.count * width;
  const unsigned long long all = part * edit.repeat;
  switch (edit.mode) {
    case Mode::kOverwrite: return oldSize + all < part ? 0 : oldSize + all - part;
    case Mode::kInsert: return all + (oldSize == 0 ? width : oldSize);
    default: return all + width + 1ull * edit.pos * width;
  }
}

Layout layoutOf(const KtString& s, const TextEdit& edit) {
  Layout l;
  const unsigned long old = s.bufferSize;
  l.width = s.CharSize();
  const unsigned long long part = 1ull * edit.count * l.width;
  l.at = 1ull * edit.pos * l.width;
  l.size = checkedSize(newSize(edit, l.width, old), edit.overflowLine) & ~(l.width - 1);
  l.head = static_cast<unsigned long>(std::min<unsigned long long>(l.at, std::min(old, l.size)));
  l.gaps = l.at > l.head || (edit.repeat != 1 && (edit.count != 1 || edit.mode == Mode::kInsert));
  if (edit.mode == Mode::kRebuild) return l;
  const bool overwrites = edit.mode == Mode::kOverwrite;
  l.tailFrom = overwrites ? l.at + part : l.at;
  l.tailTo = l.at + (overwrites ? part * edit.repeat : part);
  if (l.tailFrom < old && l.tailTo < l.size) {
    l.tail = static_cast<unsigned long>(std::min(old - l.tailFrom, l.size - l.tailTo));
  }
  return l;
}

// The source part of an edit, ready to be written in the string's own code set.
class Part {
public:
  Part(const KtString& s, const TextEdit& edit, unsigned long width)
      : edit_(edit), width_(width), sourceWidth_(KtCodeSet::CharSizeOf(edit.sourceSet)), codeSet_(s.codeSet) {
    const bool sameLabel = edit.sourceSet == s.codeSet || edit.sourceSet == 0;
    swap_ = sourceWidth_ == 2 && isSwappedText(edit.storeFlag);
    asItStands_ = sameLabel && sourceWidth_ == width_ && !swap_;
    if (edit.count != 0 && edit.repeat > 1) map(first_, edit.source, 1);
  }

  bool asItStands() const { return asItStands_; }

  void write(char* target, unsigned long room) const {
    if (edit_.count == 0) return;
    if (edit_.repeat == 1) {
      map(target, edit_.source + edit_.srcPos * sourceWidth_, std::min(edit_.count, room));
    } else if (width_ == 1) {
      std::memset(target, first_[0], std::min(edit_.repeat, room));
    } else {
      for (unsigned long i = 0; i < std::min(edit_.repeat, room); ++i) std::memcpy(target + 2 * i, first_, 2);
    }
  }

private:
  void map(char* target, const char* source, unsigned long count) const {
    if (asItStands_) {
      std::memmove(target, source, count * width_);
    } else {
      mapUnits(target, codeSet_, source, edit_.sourceSet, count, swap_);
    }
  }

  const TextEdit& edit_;
  unsigned long width_;
  unsigned long sourceWidth_;
  unsigned char codeSet_;
  bool swap_;
  bool asItStands_;
  char first_[2] = {};
};

// In place nothing may be overwritten that is still to be read: a moving tail, or a conversion, of the own text.
bool fitsInPlace(const KtString& s, const TextEdit& edit, const Layout& l, const Part& part) {
  if (s.buffer == nullptr || l.gaps || blockSize(l.size) > blockSize(s.bufferSize)) return false;
  const bool readsOwn = edit.repeat == 1 && liesIn(s, edit.source);
  return !readsOwn || (part.asItStands() && (l.tail == 0 || l.tailFrom == l.tailTo));
}

bool mayHoldZeroAfter(const KtString& s, const TextEdit& edit, const Layout& l) {
  if (edit.mayHoldZero || l.gaps) return true;
  if (s.buffer == nullptr || !mayHoldZero(s.buffer, s.bufferSize)) return false;
  return edit.mode != Mode::kRebuild || unitLength(s.buffer, l.width, l.head / l.width) < l.head / l.width;
}

// A block for a text of `size` bytes; null after the memory handler was called.
char* newBlock(unsigned long size) {
  char* block = static_cast<char*>(std::malloc(blockSize(size)));
  if (block == nullptr) KtCallMemoryHandler(blockSize(size));
  return block;
}

char* freshBlock(const KtString& s, const Layout& l) {
  char* block = newBlock(l.size);
  if (block == nullptr) return nullptr;
  if (l.gaps) std::memset(block, 0, l.size);
  if (l.head != 0) std::memcpy(block, s.buffer, l.head);
  return block;
}

// Whether the text only becomes longer, by a part from elsewhere.
bool onlyGrows(const KtString& s, const TextEdit& edit, const Layout& l) {
  const bool keepsAll = l.head + l.width >= s.bufferSize && l.tail == 0 && !l.gaps;
  return s.buffer != nullptr && keepsAll && !liesIn(s, edit.source);
}

// The own block in the size that the text needs: mostly it does not move. Null after the memory handler was called.
char* grownBlock(KtString& s, const Layout& l) {
  char* block = static_cast<char*>(std::realloc(s.buffer, blockSize(l.size)));
  if (block == nullptr) {
    KtCallMemoryHandler(blockSize(l.size));
    return nullptr;
  }
  return s.buffer = block;
}

char* blockFor(KtString& s, const TextEdit& edit, const Layout& l, const Part& part) {
  if (fitsInPlace(s, edit, l, part)) return s.buffer;
  return onlyGrows(s, edit, l) ? grownBlock(s, l) : freshBlock(s, l);
}

bool assignByRebuild(KtString& s, const char* source, unsigned char codeSet, unsigned char language,
                     unsigned long count, bool mayHoldZero) {
  const unsigned char oldSet = s.codeSet;
  s.codeSet = codeSet;
  if (!rebuild(s, {.source = source, .sourceSet = codeSet, .count = count, .mayHoldZero = mayHoldZero})) {
    s.codeSet = oldSet;
    return false;
  }
  s.language = language;
  return true;
}

// Makes `block`, which holds a text of `size` bytes, the string's buffer.
void adopt(KtString& s, char* block, unsigned long size, bool note) {
  const unsigned long oldBlock = blockSize(s.bufferSize);
  if (block != s.buffer) {
    std::free(s.buffer);
  } else if (oldBlock > kTrimmedBlock && blockSize(size) < oldBlock) {
    void* trimmed = std::realloc(block, blockSize(size));
    if (trimmed != nullptr) block = static_cast<char*>(trimmed);
  }
  noteMayHoldZero(block, size, note);
  s.buffer = block;
  s.bufferSize = static_cast<std::uint16_t>(size);
}

}  // namespace

unsigned long checkedSize(unsigned long long size, int overflowLine) {
  if (size > kMaxTextBytes) {
    const KtConfig* config = DefaultConfig();
    if (config == nullptr || config->GetShort("stringOverflow", "debug", 1) != 0) {
      KATO_assert("\"String overflow\" && 0", kSourceFile, overflowLine);
    }
  }
  return static_cast<unsigned long>(size & kTextSizeMask);
}

void release(KtString& s) {
  std::free(s.buffer);
  s.buffer = nullptr;
  s.bufferSize = 0;
}

bool rebuild(KtString& s, const TextEdit& given) {
  const TextEdit edit = boundedEdit(given);
  if (edit.mode != Mode::kRebuild && startsEmpty(edit)) return true;
  const Layout l = layoutOf(s, edit);
  if (l.size < l.width) {
    release(s);
    return true;
  }
  if (s.buffer == nullptr && l.size == l.width) return true;
  const Part part(s, edit, l.width);
  const bool note = mayHoldZeroAfter(s, edit, l);
  char* block = blockFor(s, edit, l, part);
  if (block == nullptr) return false;
  if (l.tail != 0) std::memmove(block + l.tailTo, s.buffer + l.tailFrom, l.tail);
  if (l.at < l.size) part.write(block + l.at, static_cast<unsigned long>(l.size - l.at) / l.width);
  std::memset(block + l.size - l.width, 0, l.width);
  adopt(s, block, l.size, note);
  return true;
}

unsigned long appendPosition(const KtString& s) {
  if (s.buffer == nullptr || mayHoldZero(s.buffer, s.bufferSize)) return s.Len();
  const unsigned long units = s.bufferSize / s.CharSize();
  return units == 0 ? 0 : units - 1;
}

namespace {

// What most appends are: bytes as they stand, behind a text without zeros, within its block. False when it is not so.
bool appendInBlock(KtString& s, const char* source, unsigned char sourceSet, unsigned long count) {
  const bool sameLabel = sourceSet == s.codeSet || sourceSet == 0;
  if (!sameLabel || s.CharSize() != 1 || s.buffer == nullptr || s.bufferSize == 0 || count >= kMaxTextBytes)
    return false;
  const unsigned long size = s.bufferSize + count;
  if (size > kMaxTextBytes || blockSize(size) != blockSize(s.bufferSize) || mayHoldZero(s.buffer, s.bufferSize))
    return false;
  std::memmove(s.buffer + s.bufferSize - 1, source, count);
  s.buffer[size - 1] = 0;
  noteMayHoldZero(s.buffer, size, false);
  s.bufferSize = static_cast<std::uint16_t>(size);
  return true;
}

}  // namespace

bool append(KtString& s, const char* source, unsigned char sourceSet, unsigned long count) {
  if (count == 0) return true;
  if (appendInBlock(s, source, sourceSet, count)) return true;
  return rebuild(s, {.source = source, .sourceSet = sourceSet, .pos = appendPosition(s), .count = count});
}

bool assign(KtString& s, const char* source, unsigned char codeSet, unsigned char language, unsigned long count,
            bool mayHoldZero) {
  const unsigned long width = KtCodeSet::CharSizeOf(codeSet);
  const unsigned long size = (count + 1) * width;
  const bool ordinary =
      count < kMaxTextBytes / width && (s.buffer == nullptr ? count != 0 : blockSize(size) == blockSize(s.bufferSize));
  if (!ordinary) return assignByRebuild(s, source, codeSet, language, count, mayHoldZero);
  char* block = s.buffer == nullptr ? newBlock(size) : s.buffer;
  if (block == nullptr) return false;
  if (count != 0) std::memmove(block, source, count * width);
  std::memset(block + count * width, 0, width);
  noteMayHoldZero(block, size, mayHoldZero);
  s.buffer = block;
  s.bufferSize = static_cast<std::uint16_t>(size);
  s.codeSet = codeSet;
  s.language = language;
  return true;
}

bool assignText(KtString& s, const char* text, unsigned long n) {
  const unsigned char set = narrowSet();
  const unsigned char language = KtLanguageContext::GetDefaultLanguage();
  const bool staysSmall = s.buffer != nullptr && s.bufferSize < kSmallestBlock && n + 1 < kSmallestBlock;
  if (!staysSmall) return assign(s, text, set, language, n);
  if (n != 0) std::memmove(s.buffer, text, n);
  s.buffer[n] = '\0';
  noteMayHoldZero(s.buffer, n + 1, false);
  s.bufferSize = static_cast<std::uint16_t>(n + 1);
  s.codeSet = set;
  s.language = language;
  return true;
}

KtString slice(const KtString& s, unsigned long pos, unsigned long count) {
  KtString part(s.codeSet, s.language);
  rebuild(part, {.source = s.buffer, .sourceSet = s.codeSet, .srcPos = pos, .count = count});
  return part;
}

}  // namespace kt

void KtString::Rebuild(const char* source, unsigned char sourceCodeSet, unsigned long pos, unsigned long srcPos,
                       unsigned long count, unsigned long repeat, RebuildMode mode, unsigned char storeFlag) {
  const unsigned long width = KtCodeSet::CharSizeOf(sourceCodeSet);
  const bool holdsZero = source != nullptr && kt::unitLength(source + srcPos * width, width, count) < count;
  kt::rebuild(*this, {source, sourceCodeSet, pos, srcPos, count, repeat, mode, storeFlag, holdsZero});
}
