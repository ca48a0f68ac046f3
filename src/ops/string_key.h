// string_key.h - index keys of strings: collation keys of four bytes a character that sort by memcmp.
//
//   0     2  L, the bytes that follow this field, in the byte order of the format code
//   2     1  code set
//   3     1  language
//   4  L-4  the key words of the characters, big-endian under every format code; under code set 0 the bytes themselves
//   L     2  how the key ends: 00 FF the whole text, 00 00 a null, FF FF a text that goes on (the key was cut)
//
// From offset 4 on, over the shorter of two keys of one collation kind (or both of code set 0), memcmp gives the order
// of the strings under operator 0x100: no key word begins with 0, so an end sorts before every continuation, a null
// before every end, and what was cut behind what it is a beginning of.
#ifndef KT_OPS_STRING_KEY_H
#define KT_OPS_STRING_KEY_H

#include "ops/string_record.h"

namespace kt {

constexpr unsigned long kKeyWord = 4;              // DISK: bytes of one character's key
constexpr Weight kSeveralOrdersMark = 0xFF000000;  // DISK: plus code times 256, of a character with several orders

// Key words are big-endian under every format code.
inline void storeKeyWord(unsigned char* at, Weight word) {
  if constexpr (std::endian::native == std::endian::little) {
    word = word << 24 | (word & 0xFF00u) << 8 | (word >> 8 & 0xFF00u) | word >> 24;
  }
  std::memcpy(at, &word, sizeof word);
}

inline Weight loadKeyWord(const unsigned char* at) {
  return Weight{at[0]} << 24 | Weight{at[1]} << 16 | Weight{at[2]} << 8 | at[3];
}

// The code of the keys that belong to values in a form; those of strings in memory follow the host.
constexpr unsigned char keyCode(unsigned char format) { return isMemoryForm(format) ? kMemoryLayout : lowCode(format); }

// --- writing ------------------------------------------------------------------------------------------------------

// Writes the key of a text into at most `room` bytes; a key that is too long is cut between two characters. goesOn: the
// text is only the beginning of the string. Returns the bytes written; 0 where not even an empty key has room.
unsigned long writeIndexKey(unsigned char* out, unsigned long room, const TextRef& text, bool goesOn,
                            unsigned char code);

// --- reading ------------------------------------------------------------------------------------------------------

struct IndexKey {
  const unsigned char* body = nullptr;  // at offset 4
  unsigned long bytes = 0;              // of key words, or of raw text, all within the key
  unsigned char codeSet = 0;
  unsigned char language = 0;
  bool isCut = false;

  bool isRaw() const { return codeSet == 0; }
  bool isNull() const { return language == 254 || (codeSet == kNullCodeSet && language == 0); }
  TextRef rawText() const { return {reinterpret_cast<const char*>(body), bytes, codeSet, language, 1}; }
};

// Copies a key under another byte order, or cut shorter. As writeIndexKey.
unsigned long copyIndexKey(unsigned char* out, unsigned long room, const IndexKey& key, unsigned char code);

// Walks a run of keys; see string_run.h. A key longer than the run counts as cut there.
class KeyRun {
public:
  using Item = IndexKey;

  KeyRun(const void* keys, unsigned long length, unsigned char format)
      : at_(static_cast<const unsigned char*>(keys)), left_(knownLength(length)), code_(lowCode(format)) {}

  bool next(IndexKey& key);
  bool more() const { return left_ >= kLeastRest; }

private:
  const unsigned char* at_;
  unsigned long left_;
  unsigned char code_;
};

// The weights of a key with words, as the cursor of the text would give them.
class KeyCursor {
public:
  explicit KeyCursor(const IndexKey& key)
      : at_(key.body), end_(key.body + key.bytes), kind_(collationKind(key.language)) {}

  Weight next();
  Weight significant() const { return firstSignificant(kind_); }

private:
  Weight firstOfSeveral(Weight word);

  const unsigned char* at_;
  const unsigned char* end_;
  unsigned char kind_;
  unsigned char pendingCount_ = 0;
  Weight pending_[KtUnicodeProps::kMaxOrders];  // the next one last
};

// Calls use(cursor) with the cursor that the key's form asks for.
template <class Use>
decltype(auto) withKeyCursor(const IndexKey& key, Use&& use) {
  if (key.isRaw()) return use(ByteCursor(key.rawText(), key.bytes, collationKind(key.language)));
  return use(KeyCursor(key));
}

}  // namespace kt

#endif
