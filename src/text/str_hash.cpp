// str_hash.cpp - text hashes, taken several characters at a time.
#include "str_hash.h"

#include <type_traits>

namespace kt {

namespace {

constexpr std::uint32_t powerOf9(unsigned exponent) {
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

unsigned unitOf(const char* text, unsigned long i, const ByteWeights&) { return byteValue(text, i); }
unsigned unitOf(const char* text, unsigned long i, const WideWeights&) { return loadUnit(text, i, 0); }

// Of the characters below 256. The page where the end of a text is never rises: it has no offset.
const Weight* nearWeights(const ByteWeights& table) { return table.of; }
const Weight* nearWeights(const WideWeights& table) { return table.page[0].weights; }

[[gnu::noinline]] std::uint32_t hashSeveralOrders(const char* text, const WideWeights& table) {
  return hashOrders(WideCursor(text, TextRef::kToTerminator, &table, 0), TextRef::kToTerminator);
}

// As most texts that are hashed are short, the end is looked for on the way.
template <class Table>
[[gnu::always_inline]] inline std::uint32_t hashToZero(const char* text, const Table& table) {
  const Weight* const near = nearWeights(table);
  std::uint32_t h = 0;
  for (unsigned long i = 0;; i += 4) {
    std::uint32_t sum = 0;
    for (unsigned k = 0; k < 4; ++k) {
      const unsigned unit = unitOf(text, i + k, table);
      if (unit == 0) return h * powerOf9(k) + sum;
      Weight weight;
      if constexpr (std::is_same_v<Table, ByteWeights>) {
        weight = near[unit];
      } else {
        if (unit < 256) [[likely]]
          weight = near[unit];
        else
          weight = weightOf(table, unit);
        if (weight == kSeveralOrders) [[unlikely]]
          return hashSeveralOrders(text, table);
      }
      sum = sum * 9u + weight;
    }
    h = h * powerOf9(4) + sum;
  }
}

}  // namespace

std::uint32_t hashTerminated(const char* text, const ByteWeights& table) { return hashToZero(text, table); }
std::uint32_t hashTerminated(const char* text, const WideWeights& table) { return hashToZero(text, table); }

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
