// string_hash_op.cpp - the hash function of the string types.
#include "ops/string_key.h"
#include "ops/string_run.h"
#include "ops/string_run_ops.h"
#include "text/str_hash.h"

#include <ktbs.h>

namespace kt {
namespace {

constexpr char kSourceFile[] = "src\\kttypcmp";
constexpr int kSizeLine = 551;
constexpr unsigned char kNullMark = 0x80;  // the bit that makes language 126 of a null's 254

void checkSize(const TextRef& text) {
  const unsigned size = KtCodeSet::CharSizeOf(text.codeSet);
  if (size != 1 && size != 2) KATO_assert("(CSSize1 == 1) || (CSSize1 == 2)", kSourceFile, kSizeLine);
}

// DISK: hashes may be stored in hash indexes.
constexpr std::uint32_t hashStep(std::uint32_t h, std::uint32_t value) { return h * 9u + value; }

template <class Cursor>
std::uint32_t hashOrders(Cursor cursor) {
  std::uint32_t h = 0;
  while (const Weight weight = cursor.next()) h = hashStep(h, weight);
  return h;
}

// What no operator lets two equal texts differ in: their letters and digits without case and diacritic.
template <class Cursor>
std::uint32_t hashPrimary(Cursor cursor) {
  std::uint32_t h = 0;
  while (const Weight weight = cursor.next())
    if (weight >= cursor.significant()) h = hashStep(h, weight & ~kLevelMask);
  return h;
}

// A null whose language is marked hashes as the text that it holds, which is empty unless somebody filled it.
unsigned char hashedLanguage(unsigned char language) { return static_cast<unsigned char>(language & ~kNullMark); }

// The law of the hash of a kind: collation keys, or the primary ones for those whose operators ignore more.
template <class Kind>
std::uint32_t hashOne(TextRef text) {
  checkSize(text);
  if constexpr (Kind::kHashesPrimaryOnly) {
    return withCursor(text, TextRef::kToTerminator, [](const auto& cursor) { return hashPrimary(cursor); });
  } else {
    if (text.isNull()) text.language = hashedLanguage(text.language);
    return hashText(text, -1);
  }
}

template <class Kind>
std::uint32_t hashOne(const IndexKey& key) {
  if constexpr (Kind::kHashesPrimaryOnly) {
    return withKeyCursor(key, [](const auto& cursor) { return hashPrimary(cursor); });
  } else {
    // A null's key holds no text.
    if (key.isNull() || key.isRaw()) return hashOne<Kind>(key.rawText());
    return hashOrders(KeyCursor(key));
  }
}

template <class Kind, class Run>
std::uint32_t hashRun(Run run, unsigned long count, int& status) {
  std::uint32_t h = 0;
  typename Run::Item item;
  for (unsigned long i = 0; i < count; ++i) {
    if (!run.next(item)) {
      status = KtERR_OVERRUN;
      break;
    }
    if constexpr (std::is_same_v<Run, KeyRun>) {
      if (item.isCut) status = KtERR_OVERRUN;
    }
    h ^= hashOne<Kind>(item);
  }
  return h;
}

}  // namespace

template <class Kind>
unsigned long hashStrings(unsigned char format, unsigned long length, void* values, unsigned long count, int& status) {
  status = 0;
  if (isMemoryForm(format)) return hashRun<Kind>(MemoryRun<Kind>(values, length), count, status);
  if ((format & kIndexKeyForm) != 0) return hashRun<Kind>(KeyRun(values, length, format), count, status);
  return hashRun<Kind>(RecordRun<Kind>(values, length, format), count, status);
}

#define KT_INSTANTIATE(Kind) \
  template unsigned long hashStrings<Kind>(unsigned char, unsigned long, void*, unsigned long, int&);
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt
