// string_storage.cpp - storing, loading and sizing runs of strings in their current disk form.
#include "ops/string_storage.h"

#include "kttypops.h"
#include "ops/string_record.h"
#include "text/copy_text.h"
#include "text/string_block.h"
#include "values/string_edit.h"
#include "values/string_take.h"

#include <ktbs.h>

#include <cstddef>

namespace kt {
namespace {

constexpr unsigned long kResultMask = 0xFFFF;
constexpr unsigned long kLongestStored = 65532;  // bufferSize of the longest text that a record can hold
constexpr unsigned long kLongestTaken = 65532;   // bytes that takeText takes

const KtString* stringsAt(const void* values) { return static_cast<const KtString*>(values); }

constexpr unsigned long kWholeMove = kSmallestBlock;  // bytes; the block behind a string is never smaller
constexpr unsigned long kRecordsOfMove = (kWholeMove + kEmptyRecord - 1) / kEmptyRecord;  // that take as much, at least

// What stands around the characters. Returns the place behind the record.
inline unsigned char* putFrame(unsigned char* out, const KtString& s, unsigned long bytes, unsigned char code) {
  static_assert(offsetof(KtString, language) == offsetof(KtString, codeSet) + 1 && kLanguageAt == kCodeSetAt + 1);
  static constexpr unsigned char kEnd[] = {kTextEnd, kCurrentMark};
  writeLength(out, bytes + kEmptyLength, code);
  std::memcpy(out + kCodeSetAt, &s.codeSet, 2);
  std::memcpy(out + kTextAt + bytes, kEnd, sizeof kEnd);
  return out + kTextAt + bytes + sizeof kEnd;
}

[[gnu::noinline]] unsigned char* storeAny(unsigned char* out, const KtString& s, unsigned char code) {
  const unsigned long bytes = storedTextBytes(s);
  if (s.bufferSize > kLongestStored) checkedSize(kLongestLength + 1, kOverflowLine);
  if (s.CharSize() == 2 && unitsAreSwapped(code)) {
    ShortStore(out + kTextAt, s.buffer, unitOrder(code), bytes / 2);
    if (bytes % 2 != 0) out[kTextAt + bytes - 1] = static_cast<unsigned char>(s.buffer[bytes - 1]);  // half a character
  } else {
    copyText(out + kTextAt, s.buffer, bytes);
  }
  return putFrame(out, s, bytes, code);
}

// Where kRecordsOfMove records follow, so that what the one move of a short text writes too much will be written over.
inline unsigned char* storeBeforeOthers(unsigned char* out, const KtString& s, unsigned char code) {
  const unsigned long charSize = s.CharSize();
  const unsigned long bytes = s.bufferSize - charSize;  // very many where there is no terminator
  if (s.buffer == nullptr || bytes > kWholeMove || (charSize == 2 && unitsAreSwapped(code)))
    return storeAny(out, s, code);
  std::memcpy(out + kTextAt, s.buffer, kWholeMove);
  return putFrame(out, s, bytes, code);
}

void becomeEmpty(KtString& s, unsigned char codeSet, unsigned char language) {
  release(s);
  s.codeSet = codeSet;
  s.language = language;
}

// As an assignment of the text would.
void takeOlder(KtString& s, const char* text, unsigned long bytes) {
  const unsigned char language = KtLanguageContext::GetDefaultLanguage();
  if (bytes == 0) {
    becomeEmpty(s, narrowSet(), language);
  } else if (bytes <= kLongestTaken) {
    takeText(s, text, bytes, narrowSet(), language);
  } else {
    assign(s, text, narrowSet(), language, bytes);
  }
}

void takeSwapped(KtString& s, const Record& record, unsigned long units, unsigned char code) {
  const unsigned char oldSet = s.codeSet;
  s.codeSet = record.codeSet();
  const bool done = rebuild(s, {.source = record.text(),
                                .sourceSet = record.codeSet(),
                                .count = units,
                                .storeFlag = unitOrder(code),
                                .mayHoldZero = true});
  if (done) {
    s.language = record.language();
  } else {
    s.codeSet = oldSet;
  }
}

void loadOne(KtString& s, const Record& record, unsigned char code) {
  if (record.length < kEmptyLength) {
    takeOlder(s, nullptr, 0);
    return;
  }
  const unsigned long charSize = KtCodeSet::CharSizeOf(record.codeSet());
  const unsigned long bytes = record.textBytes() & ~(charSize - 1);
  if (bytes == 0) {
    becomeEmpty(s, record.codeSet(), record.language());
  } else if (charSize == 2 && unitsAreSwapped(code)) {
    takeSwapped(s, record, bytes / 2, code);
  } else {
    takeText(s, record.text(), bytes, record.codeSet(), record.language());
  }
}

void loadOlder(KtString* strings, const Record& record, unsigned long count) {
  OlderTexts texts(record);
  for (unsigned long i = 0; i < count; ++i) {
    unsigned long bytes;
    const char* text = texts.take(bytes);
    takeOlder(strings[i], text, bytes);
  }
}

// `data` bytes of a string under code set k, as they grow when they become an index key.
unsigned long keyBytes(unsigned long data, unsigned char stored, unsigned char format) {
  if ((format & kIndexKeyForm) == 0) return data;
  const unsigned char codeSet = seenCodeSet(stored, format);
  if (codeSet == 0 || codeSet == kNullCodeSet) return data;
  return data * (KtCodeSet::CharSizeOf(codeSet) == 1 ? 4 : 2);
}

unsigned long sizeInMemory(const KtString* strings, unsigned char format, unsigned long count) {
  unsigned long total = 0;
  for (unsigned long i = 0; i < count; ++i) {
    const unsigned long data = storedTextBytes(strings[i]) + 2;
    total += keyBytes(data, strings[i].codeSet, format) + kTextAt;
  }
  return total;
}

// An older record under the bit of index keys: told as the current one of the same length that it is taken for, unless
// the keys of its texts take more.
unsigned long olderSizeAsKeys(const Record& record, unsigned char format, unsigned long count) {
  const unsigned char taken = record.length != 0 ? record.codeSet() : 0;
  return std::max(keyBytes(record.length, taken, format) + kLengthBytes,
                  olderKeySize(record, seenCodeSet(0, format), count));
}

// Walks records within `available` bytes; a record that does not fit ends the walk.
unsigned long sizeOnDisk(const unsigned char* data, unsigned long available, unsigned char format,
                         unsigned long count) {
  unsigned long total = 0;
  for (unsigned long i = 0; i < count && available >= kLengthBytes; ++i) {
    const Record record = recordAt(data, format);
    if (record.size() > available) break;
    if (record.isOlder()) {  // it is the whole run
      return (format & kIndexKeyForm) == 0 ? record.size() : total + olderSizeAsKeys(record, format, count - i);
    }
    total += keyBytes(record.length, record.codeSet(), format) + kLengthBytes;
    data += record.size();
    available -= record.size();
  }
  return total;
}

}  // namespace

unsigned long olderKeySize(const Record& record, unsigned char codeSet, unsigned long count) {
  OlderTexts texts(record);
  const unsigned long growth = codeSet != 0 ? 4 : 1;
  unsigned long total = 0;
  for (unsigned long i = 0; i < count && (i == 0 || !texts.atEnd()); ++i) {
    unsigned long bytes;
    texts.take(bytes);
    total += (bytes + 2) * growth + kTextAt;
  }
  return total;
}

unsigned long stringNullSizeGet(unsigned long count) { return count * kEmptyRecord; }

unsigned long stringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count) {
  const char* bytes = file == nullptr ? nullptr : file->Seek(0, MemFile::Current);
  const auto* here = reinterpret_cast<const unsigned char*>(bytes);
  return here != nullptr ? sizeOnDisk(here, file->Remaining(), format, count) : 0;
}

}  // namespace kt

unsigned long StringStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  const KtString* strings = kt::stringsAt(src);
  const unsigned char code = kt::lowCode(format);
  auto* out = static_cast<unsigned char*>(dst);
  unsigned long i = 0;
  for (; i + kt::kRecordsOfMove < count; ++i) out = kt::storeBeforeOthers(out, strings[i], code);
  for (; i < count; ++i) out = kt::storeAny(out, strings[i], code);
  return static_cast<unsigned long>(out - static_cast<unsigned char*>(dst)) & kt::kResultMask;
}

unsigned long StringLoad(void* dst, const void* src, unsigned char format, unsigned long count) {
  if (count == 0) return 0;
  auto* strings = static_cast<KtString*>(dst);
  const kt::Record first = kt::recordAt(src, format);
  if (first.isOlder()) {
    kt::loadOlder(strings, first, count);
    return first.size() & kt::kResultMask;
  }
  const auto* at = static_cast<const unsigned char*>(src);
  for (unsigned long i = 0; i < count; ++i) {
    const kt::Record record = kt::recordAt(at, format);
    kt::loadOne(strings[i], record, kt::lowCode(format));
    at += record.size();
  }
  return static_cast<unsigned long>(at - static_cast<const unsigned char*>(src)) & kt::kResultMask;
}

unsigned long StringSizeGet(const void* data, unsigned char givenFormat, unsigned char format, unsigned long count) {
  if (kt::isMemoryForm(givenFormat)) return kt::sizeInMemory(kt::stringsAt(data), format, count);
  return kt::sizeOnDisk(static_cast<const unsigned char*>(data), kt::kUnknownLength, format, count);
}
