// str_hash.cpp - text hashes, taken several characters at a time.
#include "str_hash.h"

namespace kt {

namespace {

constexpr std::uint32_t powerOf9(int exponent) {
  std::uint32_t power = 1;
  for (; exponent > 0; --exponent) power *= 9u;
  return power;
}

// h * 9^n plus the sum of valueAt(i) * 9^(n-1-i): the same as one multiplication after the other, but the products of
// a block do not wait for each other.
template <class ValueAt>
std::uint32_t foldByNines(unsigned long n, ValueAt valueAt) {
  std::uint32_t h = 0;
  unsigned long i = 0;
  for (; n - i >= 8; i += 8) {
    const std::uint32_t high = valueAt(i) * powerOf9(7) + valueAt(i + 1) * powerOf9(6) + valueAt(i + 2) * powerOf9(5) +
                               valueAt(i + 3) * powerOf9(4);
    const std::uint32_t low =
        valueAt(i + 4) * powerOf9(3) + valueAt(i + 5) * powerOf9(2) + valueAt(i + 6) * 9u + valueAt(i + 7);
    h = h * powerOf9(8) + (high + low);
  }
  if (n - i >= 4) {
    const std::uint32_t block =
        valueAt(i) * powerOf9(3) + valueAt(i + 1) * powerOf9(2) + valueAt(i + 2) * 9u + valueAt(i + 3);
    h = h * powerOf9(4) + block;
    i += 4;
  }
  for (; i < n; ++i) h = h * 9u + valueAt(i);
  return h;
}

unsigned long countBytes(const char* text, unsigned long limit) {
  if (text == nullptr || limit == 0) return 0;
  if (limit == TextRef::kToTerminator) return std::strlen(text);
  const void* zero = std::memchr(text, 0, limit);
  return zero != nullptr ? static_cast<unsigned long>(static_cast<const char*>(zero) - text) : limit;
}

unsigned long countUnits(const char* text, unsigned long limit) {
  unsigned long n = 0;
  if (text != nullptr)
    while (n < limit && loadUnit(text, n, 0) != 0) ++n;
  return n;
}

std::uint32_t byteValue(const char* text, unsigned long i) { return static_cast<unsigned char>(text[i]); }

template <class Cursor>
std::uint32_t hashOrders(Cursor cursor, unsigned long count) {
  std::uint32_t h = 0;
  for (unsigned long i = 0; i < count; ++i) {
    const Weight weight = cursor.next();
    if (weight == 0 && count == TextRef::kToTerminator) break;
    h = h * 9u + weight;
  }
  return h;
}

std::uint32_t hashWhole(const ByteCursor& cursor) {
  const unsigned long n = countBytes(cursor.data(), cursor.limit());
  return foldByNines(n, [&](unsigned long i) { return cursor.weightAt(i); });
}

std::uint32_t hashWhole(const WideCursor& cursor) {
  const unsigned long n = countUnits(cursor.data(), cursor.limit());
  bool several = false;
  const std::uint32_t h = foldByNines(n, [&](unsigned long i) {
    const Weight weight = cursor.weightAt(i);
    several |= weight == kSeveralOrders;
    return weight;
  });
  return several ? hashOrders(cursor, TextRef::kToTerminator) : h;
}

}  // namespace

std::uint32_t hashText(const TextRef& ref, short length) {
  if (ref.isNull()) return kNullTextHash;
  if (length == 0 || length < -1) return 0;
  const unsigned char codeSet = ref.codeSet != 255 ? ref.codeSet : KtLanguageContext::GetDefault8CodeSet();
  if (codeSet == 0) {
    const unsigned long n = countBytes(ref.text, std::min(ref.limit, lengthLimit(length)));
    return foldByNines(n, [&](unsigned long i) { return byteValue(ref.text, i); });
  }
  return withCursor(ref, TextRef::kToTerminator, [&](const auto& cursor) {
    return length == -1 ? hashWhole(cursor) : hashOrders(cursor, lengthLimit(length));
  });
}

std::uint32_t hashSignedBytes(const char* text, unsigned long limit) {
  return foldByNines(countBytes(text, limit), [&](unsigned long i) {
    return static_cast<std::uint32_t>(std::int32_t{static_cast<signed char>(text[i])});
  });
}

std::uint32_t hashLowBytes(const char* text, unsigned long limit) {
  return foldByNines(countBytes(text, limit), [&](unsigned long i) { return byteValue(text, i) & 127u; });
}

std::uint32_t hashUnits(const char* text, unsigned long limit) {
  return foldByNines(countUnits(text, limit), [&](unsigned long i) { return std::uint32_t{loadUnit(text, i, 0)}; });
}

std::uint32_t hashLowUnits(const char* text, unsigned long limit) {
  return foldByNines(countUnits(text, limit), [&](unsigned long i) { return loadUnit(text, i, 0) & 127u; });
}

}  // namespace kt
