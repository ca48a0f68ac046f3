// string_key.cpp - writing and reading index keys, each in one pass.
#include "ops/string_key.h"

#include "text/copy_text.h"

#include <ktbs.h>

namespace kt {
namespace {

enum class End { kWhole, kNull, kGoesOn };

// DISK: the two bytes behind the key words.
constexpr unsigned char kEnds[][2] = {{0x00, 0xFF}, {0x00, 0x00}, {0xFF, 0xFF}};
constexpr unsigned long kEndBytes = 2;

constexpr unsigned char kLatin1 = 1;
constexpr unsigned char kUnicode = 253;

// Under the new order a Unicode text of the characters below 256 has the key of the same text in ISO 8859-1. The key
// words do not differ, so that keys of both orders sort alike. Asked once a process.
bool isNewUnicodeOrder() {
  static const bool isNew = [] {
    const KtConfig* config = DefaultConfig();
    return config == nullptr || config->GetShort("oldIndexUnicodeOrder", nullptr, 0) == 0;
  }();
  return isNew;
}

// What was written of a text.
struct Written {
  unsigned long bytes;
  bool whole;
  bool isLatin1 = false;  // as far as it was written
};

Written writeRaw(unsigned char* out, unsigned long room, const TextRef& text) {
  if (text.text == nullptr) return {0, true};
  const unsigned long bytes = unitLength(text.text, 1, std::min(text.limit, room));
  copyText(out, text.text, bytes);
  return {bytes, bytes == text.limit || text.text[bytes] == 0};
}

// Writes words from one table of 256, of the characters i to count, until one has no word there: it is none of the 256,
// it has several orders, or the text ends. Returns the index of that character.
template <class UnitAt>
inline unsigned long writeFromTable(unsigned char* out, unsigned long i, unsigned long count, const Weight* weights,
                                    UnitAt unitAt) {
  for (; i < count; ++i) {
    const unsigned unit = unitAt(i);
    if (unit > 255) break;
    const Weight weight = weights[unit];
    if (weight <= kSeveralOrders) break;
    storeKeyWord(out + i * kKeyWord, weight);
  }
  return i;
}

[[gnu::always_inline]] inline Written writeWords(unsigned char* out, unsigned long room, const ByteCursor& cursor) {
  const unsigned long count = std::min(cursor.limit(), room / kKeyWord);
  const char* const text = cursor.data();
  const unsigned long i = writeFromTable(out, 0, count, cursor.table()->of,
                                         [text](unsigned long at) { return unsigned{unitAt(text, at, 1)}; });
  return {i * kKeyWord, i == cursor.limit() || cursor.weightAt(i) == 0};
}

// Most characters are below 256 and in the host's order. The page where the end of a text is never rises: it has no
// offset.
[[gnu::always_inline]] inline Written writeWords(unsigned char* out, unsigned long room, const WideCursor& cursor) {
  const char* const text = cursor.data();
  const int rotation = cursor.rotation();
  const Weight* const near = cursor.table()->page[0].weights;
  const unsigned long count = std::min(cursor.limit(), room / kKeyWord);
  unsigned all = 0;
  unsigned long i = 0;
  for (;; ++i) {
    if (rotation == 0)
      i = writeFromTable(out, i, count, near, [text](unsigned long at) { return loadUnit(text, at, 0); });
    if (i == cursor.limit()) return {i * kKeyWord, true, all < 256};
    const unsigned unit = loadUnit(text, i, rotation);
    const Weight weight = weightOf(*cursor.table(), unit);
    if (weight == 0 || i == count) return {i * kKeyWord, weight == 0, all < 256};
    all |= unit;
    storeKeyWord(out + i * kKeyWord, weight != kSeveralOrders ? weight : kSeveralOrdersMark | unit << 8);
  }
}

// Whether a Unicode text has no character of 256 or above from `start` on; four are looked at in one step.
[[gnu::noinline]] bool isLatin1From(unsigned long start, const TextRef& text) {
  constexpr std::uint64_t kHighBytes = 0xFF00FF00FF00FF00u;
  constexpr std::uint64_t kOnes = 0x0001000100010001u;
  const int rotation = unitRotation(text.flag);
  const std::uint64_t beyond = kHighBytes >> rotation;
  unsigned long i = start;
  for (; i + 4 <= text.limit; i += 4) {
    std::uint64_t four;
    std::memcpy(&four, text.text + 2 * i, sizeof four);
    if ((four & beyond) != 0 || ((four - kOnes) & ~four & kOnes << 15) != 0) break;
  }
  while (i < text.limit && loadUnit(text.text, i, rotation) - 1 < 255) ++i;
  return i >= text.limit || loadUnit(text.text, i, rotation) == 0;
}

// Whether the key is that of the text in ISO 8859-1: cut or not, that is up to the whole text.
inline bool isLatin1Key(const TextRef& text, const Written& written, bool goesOn) {
  if (!written.isLatin1 || goesOn || text.codeSet != kUnicode || !isNewUnicodeOrder()) return false;
  return written.whole || isLatin1From(written.bytes / kKeyWord, text);
}

// The room of key words in a key of at most `room` bytes, which is at least an empty key.
unsigned long bodyRoom(unsigned long room) { return std::min(room, kLongestLength + kLengthBytes) - kEmptyRecord; }

unsigned long finishKey(unsigned char* out, unsigned long bytes, unsigned char codeSet, unsigned char language, End end,
                        unsigned char code) {
  writeLength(out, bytes + kEmptyLength, code);
  out[kCodeSetAt] = codeSet;
  out[kLanguageAt] = language;
  std::memcpy(out + kTextAt + bytes, kEnds[static_cast<int>(end)], kEndBytes);
  return bytes + kEmptyRecord;
}

template <class WriteBody>
[[gnu::always_inline]] inline unsigned long writeKey(unsigned char* out, unsigned long room, const TextRef& text,
                                                     bool goesOn, unsigned char code, WriteBody writeBody) {
  const Written written = writeBody(out + kTextAt, bodyRoom(room));
  const unsigned char codeSet = isLatin1Key(text, written, goesOn) ? kLatin1 : text.codeSet;
  const End end = written.whole && !goesOn ? End::kWhole : End::kGoesOn;
  return finishKey(out, written.bytes, codeSet, text.language, end, code);
}

// Also notes the tables of texts that are usual from now on.
[[gnu::noinline]] unsigned long writeUnusualKey(unsigned char* out, unsigned long room, const TextRef& text,
                                                bool goesOn, unsigned char code) {
  if (text.isNull()) return finishKey(out, 0, text.codeSet, text.language, End::kNull, code);
  noteUsualTables(text.codeSet, text.language);
  return writeKey(out, room, text, goesOn, code, [&](unsigned char* body, unsigned long free) {
    if (text.codeSet == 0) return writeRaw(body, free, text);
    return withCursor(text, TextRef::kToTerminator, [&](const auto& cursor) { return writeWords(body, free, cursor); });
  });
}

}  // namespace

unsigned long writeIndexKey(unsigned char* out, unsigned long room, const TextRef& text, bool goesOn,
                            unsigned char code) {
  if (room < kEmptyRecord) return 0;
  const unsigned codes = text.language * 256u + text.codeSet;
  if (const ByteWeights* table = usualByteWeights(codes)) {
    return writeKey(out, room, text, goesOn, code, [&](unsigned char* body, unsigned long free) {
      return writeWords(body, free, ByteCursor(text.text, text.limit, table));
    });
  }
  if (const WideWeights* table = usualWideWeights(codes)) {
    return writeKey(out, room, text, goesOn, code, [&](unsigned char* body, unsigned long free) {
      return writeWords(body, free, WideCursor(text.text, text.limit, table, unitRotation(text.flag)));
    });
  }
  return writeUnusualKey(out, room, text, goesOn, code);
}

unsigned long copyIndexKey(unsigned char* out, unsigned long room, const IndexKey& key, unsigned char code) {
  if (room < kEmptyRecord) return 0;
  const unsigned long unit = key.isRaw() ? 1 : kKeyWord;
  const unsigned long bytes = std::min(key.bytes, bodyRoom(room) & ~(unit - 1));
  if (bytes != 0) std::memmove(out + kTextAt, key.body, bytes);
  const End whole = key.isNull() ? End::kNull : End::kWhole;
  return finishKey(out, bytes, key.codeSet, key.language, key.isCut || bytes < key.bytes ? End::kGoesOn : whole, code);
}

bool KeyRun::next(IndexKey& key) {
  if (left_ < kLeastRest) return false;
  const unsigned long length = readLength(at_, code_);
  const unsigned long size = std::min(length + kLengthBytes, left_);
  key.body = at_ + kTextAt;
  // Damaged lengths leave no room for code set and language, and nothing may be read behind them.
  const bool hasFields = length >= kEmptyLength;
  key.codeSet = hasFields ? at_[kCodeSetAt] : 0;
  key.language = hasFields ? at_[kLanguageAt] : 0;
  const bool isInside = hasFields && size == length + kLengthBytes;
  key.isCut = !isInside || at_[length] != kTextEnd;
  // Without its own end the key has what there is, up to its length and that of the run.
  const unsigned long there = size > kTextAt ? size - kTextAt : 0;
  key.bytes = !hasFields ? 0 : isInside ? length - kEmptyLength : std::min(there, length - kEmptyLength);
  if (key.isNull()) key.bytes = 0;
  if (!key.isRaw()) key.bytes &= ~(kKeyWord - 1);
  at_ += size;
  left_ -= size;
  return true;
}

Weight KeyCursor::next() {
  if (pendingCount_ != 0) return pending_[--pendingCount_];
  if (at_ == end_) return 0;
  const Weight word = loadKeyWord(at_);
  at_ += kKeyWord;
  return word < kSeveralOrdersMark ? word : firstOfSeveral(word);
}

Weight KeyCursor::firstOfSeveral(Weight word) {
  unsigned short orders[KtUnicodeProps::kMaxOrders];
  const unsigned count = KtUnicodeProps::Orders(static_cast<unsigned short>(word >> 8), kind_, orders);
  if (count < 2) return word;
  for (unsigned i = 1; i < count; ++i) pending_[count - 1 - i] = collationKey(orders[i], kind_);
  pendingCount_ = static_cast<unsigned char>(count - 1);
  return collationKey(orders[0], kind_);
}

}  // namespace kt
