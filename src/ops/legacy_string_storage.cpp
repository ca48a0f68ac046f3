// legacy_string_storage.cpp - the string storage of the legacy table: one record of texts for a whole run.
#include "kttypops.h"
#include "ops/string_record.h"
#include "ops/string_storage.h"
#include "text/copy_text.h"

#include <ktbs.h>

namespace kt {
namespace {

// Characters that the older form keeps of a string: all up to a zero, since it spends no bytes on a code set.
unsigned long olderLength(const KtString& s) {
  const unsigned long width = s.CharSize();
  return unitLength(s.StrGet(), width, std::max(s.bufferSize / width, 1ul) - 1);
}

// What a record still takes.
struct OlderRoom {
  unsigned long left = kLongestLength;
  // The bytes of a text, terminator included, as far as they fit.
  unsigned long take(const KtString& s) {
    const unsigned long bytes = std::min(olderLength(s) + 1, left);
    left -= bytes;
    return bytes;
  }
  unsigned long used() const { return kLongestLength - left; }
};

// bytes: with the terminator.
void writeOlder(unsigned char* out, const KtString& s, unsigned long bytes) {
  if (s.CharSize() == 2) {
    mapUnits(reinterpret_cast<char*>(out), narrowSet(), s.StrGet(), s.codeSet, bytes - 1);
  } else {
    copyText(out, s.StrGet(), bytes - 1);
  }
  out[bytes - 1] = kOlderEnd;
}

unsigned long olderSize(const KtString* strings, unsigned long count) {
  if (count == 0) return 0;
  OlderRoom room;
  for (unsigned long i = 0; i < count && room.left != 0; ++i) room.take(strings[i]);
  return room.used() + kLengthBytes;
}

unsigned long diskSize(const void* data, unsigned char format, unsigned long count) {
  const Record first = recordAt(data, format);
  if (!first.isOlder()) return StringSizeGet(data, 0, format, count);
  const bool isKey = (format & kIndexKeyForm) != 0;
  return isKey ? olderKeySize(first, seenCodeSet(narrowSet(), format), count) : first.size();
}

}  // namespace

unsigned long legacyStringStore(void* dst, const void* src, unsigned char format, unsigned long count) {
  if (count == 0) return 0;
  const auto* strings = static_cast<const KtString*>(src);
  auto* out = static_cast<unsigned char*>(dst);
  OlderRoom room;
  for (unsigned long i = 0; i < count && room.left != 0; ++i) {
    unsigned char* at = out + kLengthBytes + room.used();
    writeOlder(at, strings[i], room.take(strings[i]));
  }
  writeLength(out, room.used(), lowCode(format));
  return room.used() + kLengthBytes;
}

unsigned long legacyStringSizeGet(const void* data, unsigned char givenFormat, unsigned char format,
                                  unsigned long count) {
  if (count == 0) return 0;
  if (!isMemoryForm(givenFormat)) return diskSize(data, format, count);
  if ((format & kIndexKeyForm) != 0) return StringSizeGet(data, givenFormat, format, count);
  return olderSize(static_cast<const KtString*>(data), count);
}

unsigned long legacyStringSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long count) {
  const char* here = file == nullptr ? nullptr : file->Seek(0, MemFile::Current);
  if (count == 0 || here == nullptr || file->Remaining() < kLengthBytes) return 0;
  const Record first = recordAt(here, format);
  if (first.size() > file->Remaining()) return 0;
  return first.isOlder() ? diskSize(here, format, count) : stringSizeGetFromMemFile(file, format, count);
}

}  // namespace kt
