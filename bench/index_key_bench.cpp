// Making index keys of names: bytes that sort by memcmp.
#include "bench_job.h"
#include "name_data.h"

#include <kttm.h>

#include <clocale>
#include <cstdint>
#include <cstring>

#if defined(KT_HAVE_ICU)
#include <unicode/ucol.h>
#endif

namespace kt::bench {
namespace {

constexpr unsigned char kMemory = 8;
constexpr unsigned char kIndexKey = 0x82;
constexpr std::size_t kRoom = 512;  // the longest key that the stores behind us take, and a bit

// Four bytes a character, and six more.
unsigned long roomFor(const KtString& text) { return text.bufferSize / text.CharSize() * 4ul + 2; }

struct KeyData {
  Names names;
  KtTypeMgr manager{12};
  char key[kRoom];

  unsigned long makeKey(KtString& text) {
    return manager.Translate(KT_ID_KtString, key, kIndexKey, roomFor(text), &text, kMemory, sizeof text, 1);
  }
};

void makeKeys(KeyData& data) {
  for (KtString& text : data.names.texts) keep(data.makeKey(text));
}

#if defined(KT_HAVE_ICU)
void makeIcuKeys(KeyData& data) {
  static UErrorCode status = U_ZERO_ERROR;
  static UCollator* const collator = ucol_open("en", &status);
  for (const std::u16string& name : data.names.utf16)
    keep(ucol_getSortKey(collator, reinterpret_cast<const UChar*>(name.data()), static_cast<int>(name.size()),
                         reinterpret_cast<std::uint8_t*>(data.key), kRoom));
}
#endif

// A locale that collates; null where the machine has none (scripts/bench makes one).
locale_t collatingLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "en_US.UTF-8", nullptr);
  return locale;
}

void makeLibraryKeys(KeyData& data) {
  for (const std::string& name : data.names.utf8) keep(strxfrm_l(data.key, name.c_str(), kRoom, collatingLocale()));
}

// Keys sort as the strings do under the operator that compares order by order.
bool keysSort(KeyData& data) {
  std::string last;
  for (std::size_t i = 0; i < data.names.size(); ++i) {
    const unsigned long length = data.makeKey(data.names.texts[i]);
    const std::string key(data.key + 4, length < 4 ? 0 : length - 4);
    if (i != 0) {
      const int byKey = std::memcmp(last.data(), key.data(), std::min(last.size(), key.size()));
      if (sign(byKey) != sign(data.names.texts[i - 1].Compare(data.names.texts[i], -1, KtCMP_BINARY))) return false;
    }
    last = key;
  }
  return true;
}

void addJob(const char* name, unsigned char codeSet) {
  const auto make = [codeSet] {
    auto data = std::make_unique<KeyData>();
    data->names = cityNames(codeSet, kBatch);
    return data;
  };
  Job<KeyData> job(name, 0, kBatch, 0, make, keysSort);
  job.contestant("kttm", makeKeys);
#if defined(KT_HAVE_ICU)
  job.contestant("icu", makeIcuKeys);
#endif
  if (collatingLocale() != locale_t{}) job.contestant("strxfrm", makeLibraryKeys);
}

void addJobs() {
  addJob("index_key_names_8", kLatin1);
  addJob("index_key_names_16", kUnicode);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
