// datetime_plan.h - dates and times of digits alone, printed and scanned all fields at once, where the processor has
// vectors of 32 bytes.
//
// A plan tells where in the text each digit stands. Formats that programs use are few and live long: there is a small table
// of plans, a format's address tells its place, and the first format that comes keeps the place for ever. A plan is used
// where the format asked for has its very characters. Formats that find their place taken by another, and those that hold
// more than numbers and characters or a number twice, have none: they are walked directive by directive.
#ifndef KT_DATETIME_PLAN_H
#define KT_DATETIME_PLAN_H

#include "clones.h"

#include <atomic>
#include <cstdint>
#include <cstring>

namespace kt {

constexpr unsigned kPlanBytes = 32;  // at most: of the format with its terminator, and of the text

#if defined(KT_FOR_AVX2)

// A value counts as pairs of digits: century, year of the century, then the fields as they lie. Digit 2 * i is the tens of
// pair i.
struct DateTimePlan {
  static constexpr unsigned kMost = kPlanBytes;
  static constexpr unsigned kHalf = kMost / 2;

  enum State : unsigned char { kUnused, kInWork, kReady, kNone };  // kNone: the format that came first has no plan
  std::atomic<unsigned char> state;
  char format[kMost];
  unsigned char length;           // of the text
  unsigned char written;          // bytes that printing writes: kHalf, or the length if that is more
  std::uint32_t usedDigits;       // two bits a pair
  std::uint64_t usedFields;       // the bytes of a value that the format names, the first one lowest
  unsigned char toText[kMost];    // which digit stands in the first kHalf places, and in those up to the end ...
  char between[kMost];            // ... and what it is added to: '0', or the character that stands there
  unsigned char fromText[kMost];  // for each digit its place in the first kHalf characters, then in the second
};

constexpr unsigned kPlanPlaces = 32;
inline constinit DateTimePlan dateTimePlans[kPlanPlaces] = {};  // filled by the loader: other static objects may print

// Fills an unused place. False where the format has no plan, or another thread is about it.
bool makePlan(DateTimePlan& plan, const char* format);

// The plan of a format, or null. Callable from any thread at once.
inline const DateTimePlan* findPlan(const char* format) {
  if (!hasAvx2()) return nullptr;
  const auto address = reinterpret_cast<std::uintptr_t>(format);
  DateTimePlan& plan = dateTimePlans[(address ^ address >> 5 ^ address >> 10) % kPlanPlaces];
  const unsigned char state = plan.state.load(std::memory_order_acquire);
  if (state == DateTimePlan::kReady) [[likely]]
    return std::strcmp(plan.format, format) == 0 ? &plan : nullptr;
  return state == DateTimePlan::kUnused && makePlan(plan, format) ? &plan : nullptr;
}

// Write plan.written bytes, or nothing and null; read kPlanBytes. For what they say see printByPlan and scanByPlan.
char* printVector(char* at, const unsigned char* value, const DateTimePlan& plan);
bool scanVector(const char* text, const DateTimePlan& plan, std::uint64_t start, unsigned char* value);

#else

struct DateTimePlan {};
constexpr const DateTimePlan* findPlan(const char*) { return nullptr; }

#endif

// Prints the value and returns the end; null, and nothing is written, where there is no room or a field that the format
// names does not have as many digits: a null value's have not. What lies between the end printed and `end` may change.
[[gnu::always_inline]] inline char* printByPlan([[maybe_unused]] const DateTimePlan& plan, [[maybe_unused]] char* at,
                                                [[maybe_unused]] const char* end,
                                                [[maybe_unused]] const unsigned char* value) {
#if defined(KT_FOR_AVX2)
  if (end - at >= plan.written) return printVector(at, value, plan);
#endif
  return nullptr;
}

// Scans a text of which kPlanBytes are readable into the 8 bytes at value: what the format names, the others from `start`.
// False, and the value is as it was, where the text is too short or has not a digit wherever one should stand.
[[gnu::always_inline]] inline bool scanByPlan([[maybe_unused]] const DateTimePlan& plan,
                                              [[maybe_unused]] const char* text, [[maybe_unused]] unsigned long length,
                                              [[maybe_unused]] std::uint64_t start,
                                              [[maybe_unused]] unsigned char* value) {
#if defined(KT_FOR_AVX2)
  if (length >= plan.length) return scanVector(text, plan, start, value);
#endif
  return false;
}

}  // namespace kt

#endif
