#include "values/datetime_text.h"

#include "text/text_units.h"
#include "values/narrow_text.h"
#include "values/null_text.h"
#include "values/string_edit.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace kt {
namespace {

struct Name {
  const char* text;
  unsigned length;
};

template <unsigned kSize>
constexpr Name named(const char (&text)[kSize]) {
  return {text, kSize - 1};
}

// The spelling of the first two is part of every stored text: it stays.
constexpr Name kMonths[] = {named("Januar"),    named("Februar"), named("March"),    named("April"),
                            named("May"),       named("June"),    named("July"),     named("August"),
                            named("September"), named("October"), named("November"), named("December")};
constexpr Name kWeekdays[] = {named("Monday"), named("Tuesday"),  named("Wednesday"), named("Thursday"),
                              named("Friday"), named("Saturday"), named("Sunday")};
constexpr Name kNoDay = named("no day");
constexpr unsigned kShortName = 3;

const Name& weekdayOf(const KtDate& date) {
  const auto day = static_cast<unsigned>(date.DayOfTheDate());
  return day < 7 ? kWeekdays[day] : kNoDay;
}

// --- printing -------------------------------------------------------------------------------------------------------

struct DigitPairs {
  char text[200];
  constexpr DigitPairs() : text() {
    for (unsigned i = 0; i < 200; ++i) text[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  }
};
constexpr DigitPairs kDigitPairs;

// A number with at least `digits` digits, as "%0<digits>.<digits>d" prints it. At most 6 characters.
char* putNumber(char* at, int number, int digits) {
  unsigned magnitude = number < 0 ? 0u - static_cast<unsigned>(number) : static_cast<unsigned>(number);
  if (number < 0) *at++ = '-';
  int length = digits;
  for (unsigned limit = digits == 2 ? 100 : digits == 3 ? 1000 : 10000; magnitude >= limit; limit *= 10) ++length;
  for (char* end = at + length; end != at; magnitude /= 10) *--end = static_cast<char>('0' + magnitude % 10);
  return at + length;
}

inline char* putPair(char* at, int number) {
  if (static_cast<unsigned>(number) >= 100) return putNumber(at, number, 2);
  std::memcpy(at, kDigitPairs.text + 2 * number, 2);
  return at + 2;
}

inline char* putYear(char* at, int year) {
  if (static_cast<unsigned>(year) >= 10000) return putNumber(at, year, 4);
  return putPair(putPair(at, year / 100), year % 100);
}

inline char* putName(char* at, const Name& name, unsigned length) {
  std::memcpy(at, name.text, length);
  return at + length;
}

// Anywhere, even where the "%" belongs to the directive before.
bool holdsHalfDay(const char* format) {
  for (char last = 0; *format != '\0'; last = *format++) {
    if (last == '%' && (*format == 'p' || *format == 'P')) return true;
  }
  return false;
}

class Printer {
public:
  Printer(KtString& out, const KtDateTime& value, FromClock fromClock)
      : out_(out), date_(&value.date), time_(&value.time), fromClock_(fromClock), at_(buffer_) {}

  void print(const char* format) {
    format_ = format;
    for (; *format != '\0'; ++format) {
      if (at_ > buffer_ + sizeof buffer_ - kLongest) flush();
      if (*format != '%') {
        *at_++ = *format;
        continue;
      }
      if (*++format == '\0') break;
      at_ = put(at_, *format);
    }
    flush();
  }

private:
  static constexpr unsigned kLongest = 16;  // no directive prints more

  void flush() {
    append(out_, buffer_, narrowSet(), static_cast<unsigned long>(at_ - buffer_));
    at_ = buffer_;
  }

  const KtDate& date() {
    if (fromClock_ == FromClock::kDate) {
      clock_.date.Today();
      date_ = &clock_.date;
      fromClock_ = FromClock::kNothing;
    }
    return *date_;
  }

  const KtTime& time() {
    if (fromClock_ == FromClock::kTime) {
      clock_.time.Now();
      time_ = &clock_.time;
      fromClock_ = FromClock::kNothing;
    }
    return *time_;
  }

  // 1 to 12 where am or pm is printed too, else 0 to 12.
  int hourOfTwelve() {
    const int hour = time().hour;
    if (hour > 12) return hour - 12;
    return hour == 0 && holdsHalfDay(format_) ? 12 : hour;
  }

  char* putWeekday(char* at, bool isShort) {
    const Name& name = weekdayOf(date());
    return putName(at, name, isShort ? kShortName : name.length);
  }

  char* putMonth(char* at, bool isShort) {
    const auto index = static_cast<unsigned>(date().month) - 1;
    if (index >= 12) return putNumber(at, date().month, 3);
    return putName(at, kMonths[index], isShort ? kShortName : kMonths[index].length);
  }

  char* putHalfDay(char* at, char morning, char afternoon, char m) {
    *at++ = time().hour >= 12 ? afternoon : morning;
    *at++ = m;
    return at;
  }

  char* put(char* at, char directive) {
    switch (directive) {
      case 'a': return putWeekday(at, true);
      case 'A': return putWeekday(at, false);
      case 'b': return putMonth(at, true);
      case 'B': return putMonth(at, false);
      case 'd':
      case 'e': return putPair(at, date().day);
      case 'H': return putPair(at, time().hour);
      case 'I': return putPair(at, hourOfTwelve());
      case 'M': return putPair(at, time().minute);
      case 'm': return putPair(at, date().month);
      case 'p': return putHalfDay(at, 'a', 'p', 'm');
      case 'P': return putHalfDay(at, 'A', 'P', 'M');
      case 'S': return putPair(at, time().second);
      case 'Y': return putYear(at, date().year);
      case 'y': return putPair(at, date().year % 100);
      default: *at++ = directive; return at;
    }
  }

  KtString& out_;
  const KtDate* date_;
  const KtTime* time_;
  FromClock fromClock_;
  KtDateTime clock_{KtDate(0, 0, 0), KtTime(0, 0, 0)};
  const char* format_ = nullptr;
  char* at_;
  char buffer_[256];
};

// --- scanning -------------------------------------------------------------------------------------------------------

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

  // The bytes of the value, in one register: read as a whole, a value written field by field would wait for its fields.
  std::uint64_t packed() const {
    constexpr bool kBigHost = std::endian::native == std::endian::big;
    std::uint64_t bytes = 0;
    unsigned place = 0;
    const auto put = [&](int field, unsigned size) {
      const std::uint64_t mask = (1u << 8 * size) - 1;
      const unsigned shift = kBigHost ? 64 - 8 * (place + size) : 8 * place;
      bytes |= (static_cast<std::uint64_t>(field) & mask) << shift;
      place += size;
    };
    put(year, 2);
    for (const int field : {month, day, hour, minute, second}) put(field, 1);
    return bytes;
  }
  bool isZero() const { return (year | month | day | hour | minute | second) == 0; }
  bool isValid() const { return KtDate(year, month, day).IsDate() && KtTime(hour, minute, second).IsTime(); }
};

class Scanner {
public:
  Scanner(const NarrowText& text, const Fields& start) : at_(text.begin()), end_(text.end()), fields_(start) {}

  [[gnu::always_inline]] inline Fields scan(const char* format) {
    for (; *format != '\0'; ++format) {
      if (*format != '%') {
        skip(1);
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
    unsigned number = 0;
    bool isPlain = end_ - at_ >= kWidth;
    for (int i = 0; isPlain && i < kWidth; ++i) {
      const unsigned digit = static_cast<unsigned char>(at_[i]) - unsigned{'0'};
      isPlain = digit < 10;
      number = 10 * number + digit;
    }
    field = static_cast<Field>(isPlain ? static_cast<int>(number) : unusualNumber(at_, end_, kWidth, field));
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
  Fields fields_;
  bool isAfternoon_ = false;
  bool isMorning_ = false;
};

constexpr Fields kNullFields = {-32768, -128, -128, -128, -128, -128};

// The scanned fields become those of a value by finish(fields), in one function, so that they need not leave the
// registers.
template <class Finish>
inline std::uint64_t scanFrom(const KtString& in, const char* format, const Fields& start, Finish finish) {
  const NarrowText text(in);
  if (text.beginsWith(NarrowText(nullPrintString()))) return kNullFields.packed();
  return finish(Scanner(text, start).scan(format));
}

}  // namespace

const char* weekdayName(const KtDate& date) { return weekdayOf(date).text; }

KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format, FromClock fromClock) {
  if (value.IsNullValue()) return out = nullPrintString();
  Printer(out, value, fromClock).print(format);
  return out;
}

void scanDateTime(const KtString& in, const char* format, void* value) {
  const std::uint64_t bytes = scanFrom(in, format, Fields(), [](const Fields& fields) {
    return fields.isValid() || fields.isZero() ? fields.packed() : Fields().packed();
  });
  std::memcpy(value, &bytes, sizeof bytes);
}

KtDateTime scanDateTime(const KtString& in, const char* format) {
  std::uint64_t bytes;
  scanDateTime(in, format, &bytes);
  return std::bit_cast<KtDateTime>(bytes);
}

KtDateTime scanPeriod(const KtString& in, const char* format) {
  Fields start;
  start.day = 0;
  return std::bit_cast<KtDateTime>(scanFrom(in, format, start, [](const Fields& fields) { return fields.packed(); }));
}

}  // namespace kt
