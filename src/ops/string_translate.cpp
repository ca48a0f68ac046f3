// string_translate.cpp - strings between memory, disk and index keys.
#include "kttypops.h"
#include "ops/string_key.h"
#include "ops/string_run.h"
#include "ops/string_run_ops.h"
#include "ops/string_storage.h"
#include "ops/translate.h"

#include <ktbs.h>

namespace kt {
namespace {

constexpr char kSourceFile[] = "src\\kttypes";
constexpr int kUnsupportedLine = 1509;

// Where a translation writes: never behind its end, zeros where nothing else was written.
struct Target {
  unsigned char* bytes;
  unsigned long length;
  unsigned long written = 0;

  unsigned char* at() const { return bytes + written; }
  unsigned long room() const { return length - written; }
  unsigned long finish() const {
    if (room() != 0) std::memset(at(), 0, room());
    return written;
  }
};

// Appends the keys that writeNext(target) writes, until it writes none.
template <class WriteNext>
unsigned long writeKeys(Target target, unsigned long count, WriteNext writeNext) {
  for (unsigned long i = 0; i < count; ++i) {
    const unsigned long bytes = writeNext(target);
    if (bytes == 0) break;
    target.written += bytes;
  }
  return target.finish();
}

unsigned long keysToKeys(const Target& target, const KeyRun& keys, unsigned long count, unsigned char code) {
  KeyRun run = keys;
  return writeKeys(target, count, [&](const Target& to) {
    IndexKey key;
    return run.next(key) ? copyIndexKey(to.at(), to.room(), key, code) : 0;
  });
}

template <class Kind>
unsigned long memoryToKeys(const Target& target, MemoryRun<Kind> run, unsigned long count, unsigned char code) {
  return writeKeys(target, count, [&](const Target& to) {
    TextRef text;
    return run.next(text) ? writeIndexKey(to.at(), to.room(), text, false, code) : 0;
  });
}

template <class Kind>
unsigned long recordsToKeys(const Target& target, RecordRun<Kind> run, unsigned long count, unsigned char code) {
  return writeKeys(target, count, [&](const Target& to) -> unsigned long {
    TextRef text;
    if (run.next(text)) return writeIndexKey(to.at(), to.room(), text, false, code);
    return run.takeRest(text) ? writeIndexKey(to.at(), to.room(), text, true, code) : 0;
  });
}

// The forms of a translation.
struct Forms {
  unsigned char to;
  unsigned char from;

  bool toKeys() const { return (to & kIndexKeyForm) != 0; }
  bool fromMemory() const { return isMemoryForm(from); }
  bool fromKeys() const { return !fromMemory() && (from & kIndexKeyForm) != 0; }
  bool stores() const { return fromMemory() && !isMemoryForm(to); }
  bool loads() const { return !fromMemory() && !fromKeys() && isMemoryForm(to); }
  unsigned char codeSetBits() const { return (to | from) & kCodeSetBits; }
};

template <class Kind>
unsigned long toKeys(const Target& target, const Forms& forms, void* src, unsigned long srcLength,
                     unsigned long count) {
  const unsigned char code = lowCode(forms.to);
  if (forms.fromMemory()) {
    return memoryToKeys(target, MemoryRun<Kind>(src, 0, forms.codeSetBits()), count, code);
  }
  if (srcLength == 0) return target.finish();
  if (forms.fromKeys()) return keysToKeys(target, KeyRun(src, srcLength, forms.from), count, code);
  const auto seen = static_cast<unsigned char>(lowCode(forms.from) | forms.codeSetBits());
  return recordsToKeys(target, RecordRun<Kind>(src, srcLength, seen), count, code);
}

template <class Kind>
unsigned long store(Target target, const Forms& forms, void* src, unsigned long count) {
  const unsigned long size = Kind::kSizeGet(src, kMemoryForm, 0, count);
  target.finish();
  if (size > target.length) return 0;
  Kind::kStore(target.bytes, src, forms.to, count);
  return size;
}

bool isHeld(const void* record, unsigned long length, unsigned char format) {
  return length >= kLengthBytes && recordAt(record, format).size() <= length;
}

void assignStrings(KtString* to, const KtString* from, unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) to[i] = from[i];
}

unsigned long unsupported() {
  KATO_assert("\"format combination not supported\" && 0", kSourceFile, kUnsupportedLine);
  return 0;
}

// Everything but one string from memory into its key.
template <class Kind>
[[gnu::noinline]] unsigned long translateRun(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                                             unsigned char srcFormat, unsigned long srcLength, unsigned long count) {
  const Forms forms{dstFormat, srcFormat};
  const Target target{static_cast<unsigned char*>(dst), dstLength};
  if (forms.toKeys()) return toKeys<Kind>(target, forms, src, srcLength, count);
  if (forms.stores()) return store<Kind>(target, forms, src, count);
  if (forms.loads() && count == 0) return 0;
  if (forms.loads() && count == 1 && isHeld(src, srcLength, srcFormat)) return StringLoad(dst, src, srcFormat, count);
  if (dstFormat != srcFormat) return unsupported();
  if (!forms.fromMemory()) return copyDiskForm(dst, dstLength, src, srcLength);
  assignStrings(static_cast<KtString*>(dst), static_cast<const KtString*>(src), count);
  return count * sizeof(KtString);
}

}  // namespace

template <class Kind>
unsigned long translateStrings(void* dst, unsigned char dstFormat, unsigned long dstLength, void* src,
                               unsigned char srcFormat, unsigned long srcLength, unsigned long count) {
  const Forms forms{dstFormat, srcFormat};
  if (count != 1 || !forms.toKeys() || !forms.fromMemory())
    return translateRun<Kind>(dst, dstFormat, dstLength, src, srcFormat, srcLength, count);
  TextRef text = textOf(*static_cast<const KtString*>(src), forms.codeSetBits());
  Kind::see(text);
  Target target{static_cast<unsigned char*>(dst), dstLength};
  target.written = writeIndexKey(target.bytes, dstLength, text, false, lowCode(dstFormat));
  return target.finish();
}

#define KT_INSTANTIATE(Kind)                                                                               \
  template unsigned long translateStrings<Kind>(void*, unsigned char, unsigned long, void*, unsigned char, \
                                                unsigned long, unsigned long);
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt
