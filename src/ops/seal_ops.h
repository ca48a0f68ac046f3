// seal_ops.h - the row of KtSeal.
#ifndef KT_OPS_SEAL_OPS_H
#define KT_OPS_SEAL_OPS_H

#include "ktseal.h"
#include "ops/class_text.h"
#include "ops/scalar_ops.h"
#include "ops/scalar_values.h"

namespace kt {

// DISK: three 16-bit words, the highest first, each big-endian, in every format code.
struct SealValue : ClassText<KtSeal> {
  using Memory = KtSeal;
  static constexpr bool kEqualBytes = true;
  static constexpr unsigned long elementSize(unsigned char) { return sizeof(KtSeal); }
  // For compare code 1 is a disk form; hash takes it as memory.
  static constexpr bool direct(unsigned char code) { return code == kMemoryForm; }
  static long compareDirect(const unsigned char* a, const unsigned char* b) {
    return readValue<KtSeal>(a) != readValue<KtSeal>(b);
  }
  // The difference of the first bytes that differ.
  static long compareDisk(unsigned char, const unsigned char* a, const unsigned char* b) {
    unsigned i = 0;
    while (i + 1 < sizeof(KtSeal) && a[i] == b[i]) ++i;
    return a[i] - b[i];
  }
  static unsigned long store(void* dst, const void* src, unsigned char, unsigned long n) {
    return ShortStore(dst, src, kBigEndian, kWords * n);
  }
  static unsigned long load(void* dst, const void* src, unsigned char f, unsigned long n) {
    return store(dst, src, f, n);
  }
  static unsigned long fileSize(unsigned char, unsigned long count) { return sizeof(KtSeal) * count; }
  static double number(unsigned char code, const unsigned char* p) {
    const auto seal = loadValue<SealValue>(code, p);
    return (seal.highWord * 65536.0 + seal.middleWord) * 65536.0 + seal.lowWord;
  }
  // A value's word is the exclusive or of its three 16-bit words.
  static std::uint32_t hashWords(unsigned char code, const unsigned char* p, unsigned long n) {
    const bool native = code == kMemoryForm || code == kMemoryLayout;
    return WordValue::hashWords(native ? kMemoryForm : kBigEndian, p, kWords * n);
  }
  static void print(KtString& out, void* value, const char*) { readValue<KtSeal>(value).PrintToKtString(out); }
  static bool scan(void* value, const KtString& in, const char*) {
    auto seal = readValue<KtSeal>(value);
    seal.ScanFromKtString(in);
    std::memcpy(value, &seal, sizeof seal);
    return true;
  }

private:
  static constexpr unsigned long kWords = 3;
};

struct SealOps : ScalarOps<SealValue, PlainArrays<KtSeal, true>> {
  // The lengths are not looked at: count seals are compared.
  static long compare(unsigned char format, unsigned long, void* a, unsigned long, void* b, unsigned short,
                      unsigned long count, int& status) {
    return compareOperation<SealValue>(format, 0, a, 0, b, count, status);
  }
};

}  // namespace kt

#endif
