// ktstring_rebuild.cpp - the rebuild behind every change of a string.
//
// Every change is: keep a head, put a source part (or one character repeated) behind it, keep a tail. The result is
// that of building it in a fresh block filled with zeros; where the old block has the right size it is built in place.
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
constexpr unsigned long kTrimmedBlock = 512;  // larger blocks are given back in part when the text shrinks
constexpr unsigned char kBigEndianCode = 2;

// Where the parts go, in bytes of the string's own code set.
struct Layout {
  unsigned long width;
  unsigned long head;      // kept in front
  unsigned long at;        // where the source goes
  unsigned long tailFrom;  // in the old text
  unsigned long tailTo;
  unsigned long tail;      // bytes kept behind
  unsigned long size;      // of the new text, terminator included
  bool gaps;               // some bytes are covered by no part: they are zeros
};

bool startsEmpty(const TextEdit& edit) {
  return edit.source == nullptr || unitAt(edit.source, 0, KtCodeSet::CharSizeOf(edit.sourceSet)) == 0;
}

unsigned long long sizeOf(const TextEdit& edit, unsigned long width, unsigned long oldSize) {
  const unsigned long long part = 1ull * edit.count * width;
  switch (edit.mode) {
    case Mode::kOverwrite: return oldSize + part * edit.repeat - part;
    case Mode::kInsert: return part * edit.repeat + (oldSize == 0 ? width : oldSize);
    default: return part * edit.repeat + width + 1ull * edit.pos * width;
  }
}

unsigned long clipped(unsigned long long value) {
  return static_cast<unsigned long>(std::min<unsigned long long>(value, kLargestOffset));
}

Layout layoutOf(const KtString& s, const TextEdit& edit) {
  Layout l{};
  const unsigned long old = s.bufferSize;
  l.width = s.CharSize();
  const unsigned long part = clipped(1ull * edit.count * l.width);
  l.at = clipped(1ull * edit.pos * l.width);
  l.size = checkedSize(sizeOf(edit, l.width, old), edit.overflowLine) & ~(l.width - 1);
  l.head = std::min({l.at, old, l.size});
  if (edit.mode == Mode::kOverwrite) {
    l.tailFrom = clipped(1ull * l.at + part);
    l.tailTo = clipped(l.at + 1ull * part * edit.repeat);
  } else if (edit.mode == Mode::kInsert) {
    l.tailFrom = l.at;
    l.tailTo = clipped(1ull * l.at + part);
  }
  if (edit.mode != Mode::kRebuild && l.tailFrom < old && l.tailTo < l.size) {
    l.tail = std::min(old - l.tailFrom, l.size - l.tailTo);
  }
  l.gaps = l.at > l.head || (edit.repeat != 1 && (edit.count != 1 || edit.mode == Mode::kInsert));
  return l;
}

}  // namespace

}  // namespace kt
