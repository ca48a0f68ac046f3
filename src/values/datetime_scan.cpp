// datetime_scan.cpp - scanning dates and times by a format.
#include "text/string_block.h"
#include "values/datetime_names.h"
#include "values/datetime_plan.h"
#include "values/datetime_text.h"
#include "values/narrow_text.h"
#include "values/null_text.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kt {
namespace {

bool isBlank(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

// As sscanf reads "%<width>d": blanks in front do not count, a sign does; without digits the old number stays.
[[gnu::noinline]] int unusualNumber(const char* p, const char* end, long width, int old) {
  while (p != end && isBlank(*p)) ++p;
  const char* stop = end - p < width ? end : p + width;
  const bool isNegative = p != stop && *p == '-';
  if (p != stop && (*p == '-' || *p == '+')) ++p;
  const char* digits = p;
  int number = 0;
  for (; p != stop && *p >= '0' && *p <= '9'; ++p) number = 10 * number + (*p - '0');
  if (p == digits) return old;
  return isNegative ? -number : number;
}

// Of the names the one whose first three letters come next, or kCount.
template <unsigned kCount>
unsigned nameAt(const char* p, const char* end, const Name (&names)[kCount]) {
  unsigned i = end - p < static_cast<long>(kShortName) ? kCount : 0;
  while (i < kCount && std::memcmp(p, names[i].text, kShortName) != 0) ++i;
  return i;
}

// Behind the letters that agree with the name.
const char* behindName(const char* p, const char* end, const Name& name) {
  for (const char* letter = name.text; *letter != '\0' && p != end && *p == *letter; ++letter) ++p;
  return p;
}

// Numbers are cut to their fields as they are stored, and judged then.
struct Fields {
  std::int16_t year = 0;
  std::int8_t month = 1, day = 1, hour = 0, minute = 0, second = 0;

  bool isZero() const { return (year | month | day | hour | minute | second) == 0; }
};
static_assert(sizeof(Fields) == sizeof(KtDateTime) && offsetof(Fields, second) == kTimeAt + offsetof(KtTime, second));

// Where scanning goes on: in the text, counted from its end, and in the format.
struct Scanned {
  long at;
  const char* format;
};

constexpr unsigned kNoDigits = 1u << 31;

// The number that kWidth digits at p make, or kNoDigits.
template <unsigned kWidth>
inline unsigned digitsAt(const char* p) {
  unsigned number = 0;
  for (unsigned i = 0; i < kWidth; ++i) {
    const unsigned digit = static_cast<unsigned char>(p[i]) - unsigned{'0'};
    if (digit > 9) return kNoDigits;
    number = 10 * number + digit;
  }
  return number;
}

// Fields of digits and what stands between, which is what most formats hold: goes on up to something else or the end of
// the format. Each field is written by itself: nothing waits for the others.
[[gnu::always_inline]] inline Scanned scanPlain(const char* end, long at, const char* format, unsigned char* fields) {
  while (*format != '\0') {
    if (*format == '%') {
      const auto letter = static_cast<unsigned char>(format[1]);
      if (const unsigned char field = kPairFields.of[letter]; field != 0) {
        const unsigned number = at > -2 ? kNoDigits : digitsAt<2>(end + at);
        if (number == kNoDigits) break;
        fields[field] = static_cast<unsigned char>(number);
        at += 2;
      } else if (letter == 'Y') {
        const unsigned number = at > -4 ? kNoDigits : digitsAt<4>(end + at);
        if (number == kNoDigits) break;
        const auto year = static_cast<std::int16_t>(number);
        std::memcpy(fields, &year, sizeof year);
        at += 4;
      } else {
        break;
      }
      format += 2;
      if (*format == '%') continue;
      if (*format == '\0') break;
    }
    at += at != 0;
    ++format;
  }
  return {at, format};
}

class Scanner {
public:
  // The text lies before `end`.
  Scanner(const char* end, const Scanned& start, const Fields& fields)
      : at_(end + start.at), end_(end), format_(start.format), fields_(fields) {}

  Fields scan() {
    for (const char* format = format_; *format != '\0'; ++format) {
      if (*format != '%') {
        at_ += at_ != end_;
      } else if (*++format == '\0') {
        break;
      } else {
        take(*format);
      }
    }
    if (isAfternoon_ && fields_.hour < 12) {
      fields_.hour = static_cast<std::int8_t>(fields_.hour + 12);
    } else if (isMorning_ && fields_.hour == 12) {
      fields_.hour = 0;
    }
    return fields_;
  }

private:
  void skip(long count) { at_ = end_ - at_ < count ? end_ : at_ + count; }

  // Nearly always there are just the digits.
  template <int kWidth, class Field>
  void number(Field& field) {
    if (end_ - at_ >= kWidth) [[likely]] {
      unsigned number = 0;
      int i = 0;
      for (; i < kWidth; ++i) {
        const unsigned digit = static_cast<unsigned char>(at_[i]) - unsigned{'0'};
        if (digit >= 10) break;
        number = 10 * number + digit;
      }
      if (i == kWidth) [[likely]] {
        field = static_cast<Field>(number);
        at_ += kWidth;
        return;
      }
    }
    field = static_cast<Field>(unusualNumber(at_, end_, kWidth, field));
    skip(kWidth);
  }

  void weekday() {
    const unsigned index = nameAt(at_, end_, kWeekdays);
    if (index < 7) at_ = behindName(at_, end_, kWeekdays[index]);
  }

  void month() {
    const unsigned index = nameAt(at_, end_, kMonths);
    if (index == 12) return number<3>(fields_.month);
    fields_.month = static_cast<std::int8_t>(index + 1);
    at_ = behindName(at_, end_, kMonths[index]);
  }

  void yearOfCentury() {
    number<2>(fields_.year);
    fields_.year = static_cast<std::int16_t>(fields_.year + 1900);
  }

  void halfDay() {
    if (at_ == end_) return;
    isAfternoon_ = isAfternoon_ || *at_ == 'P' || *at_ == 'p';
    isMorning_ = isMorning_ || *at_ == 'A' || *at_ == 'a';
    skip(2);
  }

  [[gnu::always_inline]] inline void take(char directive) {
    switch (directive) {
      case 'a':
      case 'A': return weekday();
      case 'b':
      case 'B': return month();
      case 'd':
      case 'e': return number<2>(fields_.day);
      case 'H':
      case 'I': return number<2>(fields_.hour);
      case 'M': return number<2>(fields_.minute);
      case 'm': return number<2>(fields_.month);
      case 'p':
      case 'P': return halfDay();
      case 'S': return number<2>(fields_.second);
      case 'Y': return number<4>(fields_.year);
      case 'y': return yearOfCentury();
      default: return skip(1);
    }
  }

  const char* at_;
  const char* end_;
  const char* format_;
  Fields fields_;
  bool isAfternoon_ = false;
  bool isMorning_ = false;
};

constexpr Fields kNullFields = {-32768, -128, -128, -128, -128, -128};

Fields readFields(const unsigned char* value) {
  Fields fields;
  std::memcpy(static_cast<void*>(&fields), value, sizeof fields);
  return fields;
}

std::uint64_t bitsOf(const Fields& fields) {
  std::uint64_t bits;
  std::memcpy(&bits, &fields, sizeof bits);
  return bits;
}

void writeFields(unsigned char* value, const Fields& fields) { std::memcpy(value, &fields, sizeof fields); }

[[gnu::noinline]] void scanRest(const char* end, const Scanned& start, unsigned char* value) {
  writeFields(value, Scanner(end, start, readFields(value)).scan());
}

// Any text by any format.
[[gnu::noinline]] Found scanAny(const KtString& in, const char* format, const Fields& start, unsigned char* value) {
  if (beginsWithNullText(in)) {
    writeFields(value, kNullFields);
    return Found::kNull;
  }
  const NarrowText text(in);
  if (!text.isThere()) return Found::kNoMemory;
  writeFields(value, start);
  scanRest(text.end(), {-static_cast<long>(text.length()), format}, value);
  return Found::kFields;
}

// Whether the bytes of the text are its characters, and surely not those of the null text.
inline bool isPlain(const KtString& in) {
  return differAtOnce(in, nullPrintString()) && !mayHoldZero(in.buffer, in.bufferSize);
}

// A text whose bytes are its characters, directive by directive.
[[gnu::noinline]] void scanByWalk(const KtString& in, const char* format, const Fields& start, unsigned char* value) {
  writeFields(value, start);
  const long length = in.bufferSize - 1L;
  const char* const end = in.buffer + length;
  const Scanned plain = scanPlain(end, -length, format, value);
  if (*plain.format != '\0') scanRest(end, plain, value);
}

// Into a value that starts as what the fields are that the format does not name, or stays as it was where memory ran out.
[[gnu::always_inline]] inline Found scanFields(const KtString& in, const char* format, const Fields& start,
                                               unsigned char* value) {
  const DateTimePlan* const plan = findPlan(format);
  if (!isPlain(in)) [[unlikely]]
    return scanAny(in, format, start, value);
  static_assert(kSmallestBlock >= kPlanBytes);
  const bool isDone = plan != nullptr && scanByPlan(*plan, in.buffer, in.bufferSize - 1ul, bitsOf(start), value);
  if (!isDone) scanByWalk(in, format, start, value);
  return Found::kFields;
}

// As KtDate::IsDate, without day numbers: the end of a month is nothing that could be predicted.
inline bool isDate(int year, int month, int day) {
  static constexpr std::int8_t kDays[] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 0) return KtDate(year, month, day).IsDate() != 0;
  if (static_cast<unsigned>(month) > 12 || day < 1 || day > kDays[month]) return false;
  return month != 2 || day != 29 || (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0));
}

// Reads byte by byte, as the walk wrote the fields: whatever is wider has to wait for them.
inline bool isValid(const unsigned char* value) {
  const auto part = [value](unsigned place) { return static_cast<std::int8_t>(value[place]); };
  std::int16_t year;
  std::memcpy(&year, value, sizeof year);
  return isDate(year, part(2), part(3)) && KtTime(part(4), part(5), part(6)).IsTime();
}

[[gnu::noinline]] void makeValid(unsigned char* value) {
  if (!readFields(value).isZero()) writeFields(value, Fields());
}

}  // namespace

bool scanDateTime(const KtString& in, const char* format, void* value) {
  auto* const fields = static_cast<unsigned char*>(value);
  const Found found = scanFields(in, format, Fields(), fields);
  if (found == Found::kFields && !isValid(fields)) makeValid(fields);
  return found != Found::kNoMemory;
}

bool scanPeriod(const KtString& in, const char* format, KtDateTime& value) {
  Fields start;
  start.day = 0;
  unsigned char fields[sizeof value];
  if (scanFields(in, format, start, fields) == Found::kNoMemory) return false;
  value = std::bit_cast<KtDateTime>(fields);
  return true;
}

}  // namespace kt
