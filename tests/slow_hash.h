// slow_hash.h - the collation keys of a text one by one, and its hash by them.
#ifndef KT_TESTS_SLOW_HASH_H
#define KT_TESTS_SLOW_HASH_H

#include <ktin.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kt_test {

// The keys of all orders of a Unicode text.
inline std::vector<unsigned long> slowKeys(const std::u16string& text, unsigned char language) {
  const unsigned char kind = KtUnicodeProps::CollationKind(language);
  std::vector<unsigned long> keys;
  for (const char16_t c : text) {
    unsigned short orders[KtUnicodeProps::kMaxOrders];
    const unsigned n = KtUnicodeProps::Orders(c, kind, orders);
    for (unsigned i = 0; i < n; ++i) {
      const unsigned long o = orders[i];
      const bool letter = kind != 20 && o >= 0x4000 && o < 0x8000;
      keys.push_back(kind * 16777216ul + (letter ? (o & 0x407F) * 256 + (o >> 7) % 128 : o * 256));
    }
  }
  return keys;
}

// count 0: all orders, else exactly as many, those behind the end counting as 0. Every factor is written out.
inline unsigned long slowHash(const std::u16string& text, unsigned char language, std::size_t count) {
  std::vector<unsigned long> keys = slowKeys(text, language);
  if (count != 0) keys.resize(count);
  unsigned long long h = 0;
  for (const unsigned long key : keys) h = (h * 9 + key) % 4294967296ull;
  return static_cast<unsigned long>(h);
}

}  // namespace kt_test

#endif
