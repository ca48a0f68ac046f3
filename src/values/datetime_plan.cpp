#include "values/datetime_plan.h"

#if defined(KT_FOR_AVX2)

#include "values/datetime_names.h"

#include <immintrin.h>
#include <algorithm>

namespace kt {
namespace {

constexpr unsigned kPairs = 8;  // century, year of the century, month, day, hour, minute, second, none
constexpr unsigned char kNoDigit = 0x80;

// What a plan says, place by place, before it is cut into vectors.
struct Places {
  unsigned length = 0;
  unsigned char digit[DateTimePlan::kMost];
  char between[DateTimePlan::kMost];

  bool isFull(unsigned more) const { return length + more > DateTimePlan::kMost; }
  void put(unsigned char whichDigit, char character) {
    digit[length] = whichDigit;
    between[length++] = character;
  }
  // Two digits of a pair that does not stand there yet.
  bool putPair(unsigned pair, std::uint32_t& used) {
    const std::uint32_t bits = 3u << 2 * pair;
    if (isFull(2) || (used & bits) != 0) return false;
    used |= bits;
    put(static_cast<unsigned char>(2 * pair), '0');
    put(static_cast<unsigned char>(2 * pair + 1), '0');
    return true;
  }
};

// False where the format holds anything else.
bool takeFormat(const char* format, Places& places, std::uint32_t& used) {
  for (; *format != '\0'; ++format) {
    if (*format != '%') {
      if (places.isFull(1)) return false;
      places.put(kNoDigit, *format);
    } else if (*++format == 'Y') {
      if (!places.putPair(0, used) || !places.putPair(1, used)) return false;
    } else {
      const unsigned pair = kPairFields.of[static_cast<unsigned char>(*format)];
      if (pair == 0 || !places.putPair(pair, used)) return false;
    }
  }
  return used != 0;
}

bool fillPlan(DateTimePlan& plan, const char* format) {
  const unsigned long size = std::strlen(format) + 1;
  Places places;
  std::uint32_t used = 0;
  if (size > sizeof plan.format || !takeFormat(format, places, used)) return false;
  std::memcpy(plan.format, format, size);
  plan.length = static_cast<unsigned char>(places.length);
  plan.written = std::max(plan.length, static_cast<unsigned char>(DateTimePlan::kHalf));
  plan.usedDigits = used;
  plan.usedFields = 0;
  for (unsigned pair = 0; pair < kPairs; ++pair)
    if ((used >> 2 * pair & 3) != 0) plan.usedFields |= std::uint64_t{0xFF} << 8 * pair;
  std::fill_n(plan.toText, DateTimePlan::kMost, kNoDigit);
  std::fill_n(plan.between, DateTimePlan::kMost, '\0');
  std::fill_n(plan.fromText, DateTimePlan::kMost, kNoDigit);
  const unsigned second = plan.written - DateTimePlan::kHalf;  // where the second half that is printed begins
  for (unsigned place = 0; place < places.length; ++place) {
    if (place < DateTimePlan::kHalf) {
      plan.toText[place] = places.digit[place];
      plan.between[place] = places.between[place];
    }
    if (place >= second) {
      plan.toText[DateTimePlan::kHalf + place - second] = places.digit[place];
      plan.between[DateTimePlan::kHalf + place - second] = places.between[place];
    }
    if (places.digit[place] == kNoDigit) continue;
    const unsigned half = place / DateTimePlan::kHalf;
    plan.fromText[half * DateTimePlan::kHalf + places.digit[place]] =
        static_cast<unsigned char>(place % DateTimePlan::kHalf);
  }
  return true;
}

template <class T>
KT_FOR_AVX2 inline __m128i sixteenAt(const T* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

}  // namespace

bool makePlan(DateTimePlan& plan, const char* format) {
  unsigned char unused = DateTimePlan::kUnused;
  if (!plan.state.compare_exchange_strong(unused, DateTimePlan::kInWork)) return false;
  const bool isMade = fillPlan(plan, format);
  plan.state.store(isMade ? DateTimePlan::kReady : DateTimePlan::kNone, std::memory_order_release);
  return isMade;
}

KT_FOR_AVX2 char* printVector(char* at, const unsigned char* value, const DateTimePlan& plan) {
  std::uint16_t year;
  std::uint32_t monthToMinute;
  std::memcpy(&year, value, sizeof year);
  std::memcpy(&monthToMinute, value + sizeof year, sizeof monthToMinute);
  const unsigned century = year / 100u, ofCentury = year % 100u;
  const std::uint64_t fields =
      std::min(century, 255u) | ofCentury << 8 | std::uint64_t{monthToMinute} << 16 | std::uint64_t{value[6]} << 48;
  const __m128i pairs = _mm_cvtepu8_epi16(_mm_cvtsi64_si128(static_cast<long long>(fields)));
  const auto isLarge = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpgt_epi16(pairs, _mm_set1_epi16(99))));
  if ((isLarge & plan.usedDigits) != 0) return nullptr;
  const __m128i tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
  const __m128i ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
  const __m128i digits = _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
  const __m128i front = _mm_add_epi8(_mm_shuffle_epi8(digits, sixteenAt(plan.toText)), sixteenAt(plan.between));
  const __m128i back = _mm_add_epi8(_mm_shuffle_epi8(digits, sixteenAt(plan.toText + DateTimePlan::kHalf)),
                                    sixteenAt(plan.between + DateTimePlan::kHalf));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(at), front);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(at + plan.written - DateTimePlan::kHalf), back);
  return at + plan.length;
}

KT_FOR_AVX2 bool scanVector(const char* text, const DateTimePlan& plan, std::uint64_t start, unsigned char* value) {
  const __m128i zero = _mm_set1_epi8('0');
  const __m128i front = _mm_sub_epi8(sixteenAt(text), zero);
  const __m128i back = _mm_sub_epi8(sixteenAt(text + DateTimePlan::kHalf), zero);
  const __m128i digits = _mm_or_si128(_mm_shuffle_epi8(front, sixteenAt(plan.fromText)),
                                      _mm_shuffle_epi8(back, sixteenAt(plan.fromText + DateTimePlan::kHalf)));
  const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
  if (_mm_movemask_epi8(isDigit) != 0xFFFF) return false;
  const __m128i pairs = _mm_maddubs_epi16(digits, _mm_set1_epi16(10 | 1 << 8));
  const auto bytes = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(pairs, pairs)));
  const std::uint64_t year = (bytes & 255) * 100 + (bytes >> 8 & 255);
  const std::uint64_t fields = (bytes & ~std::uint64_t{0xFFFF}) | year;
  const std::uint64_t result = (fields & plan.usedFields) | (start & ~plan.usedFields);
  std::memcpy(value, &result, sizeof result);
  return true;
}

}  // namespace kt

#endif
