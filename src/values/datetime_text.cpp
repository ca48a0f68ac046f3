#include "values/datetime_text.h"

#include "text/text_units.h"
#include "values/narrow_text.h"
#include "values/null_text.h"
#include "values/string_edit.h"

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
constexpr Name kMonths[] = {named("Januar"), named("Februar"), named("March"),     named("April"),
                            named("May"),    named("June"),    named("July"),      named("August"),
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

class Printer {
public:
  Printer(KtString& out, const KtDateTime& value, FromClock fromClock)
      : out_(out), value_(value), fromClock_(fromClock), at_(buffer_) {}

  void print(const char* format) {
    isTwelveHour_ = std::strstr(format, "%p") != nullptr || std::strstr(format, "%P") != nullptr;
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
      value_.date.Today();
      fromClock_ = FromClock::kNothing;
    }
    return value_.date;
  }

  const KtTime& time() {
    if (fromClock_ == FromClock::kTime) {
      value_.time.Now();
      fromClock_ = FromClock::kNothing;
    }
    return value_.time;
  }

  // 1 to 12 where am or pm is printed too, else 0 to 12.
  int hourOfTwelve() {
    const int hour = time().hour;
    if (hour > 12) return hour - 12;
    return hour == 0 && isTwelveHour_ ? 12 : hour;
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
  KtDateTime value_;
  FromClock fromClock_;
  bool isTwelveHour_ = false;
  char* at_;
  char buffer_[256];
};

// --- scanning -------------------------------------------------------------------------------------------------------

bool isBlank(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

class Scanner {
public:
  Scanner(const NarrowText& text, int firstDay)
      : at_(text.begin()), end_(text.end()), value_(KtDate(0, 1, firstDay), KtTime(0, 0, 0)) {}

  KtDateTime scan(const char* format) {
    for (; *format != '\0'; ++format) {
      if (*format != '%') {
        skip(1);
      } else if (*++format == '\0') {
        break;
      } else {
        take(*format);
      }
    }
    if (isAfternoon_ && value_.time.hour < 12) {
      value_.time.hour = static_cast<std::int8_t>(value_.time.hour + 12);
    } else if (isMorning_ && value_.time.hour == 12) {
      value_.time.hour = 0;
    }
    return value_;
  }

private:
  void skip(long count) { at_ = end_ - at_ < count ? end_ : at_ + count; }

  // As sscanf reads "%<width>d": blanks in front do not count, a sign does; without digits the field stays.
  template <class Field>
  void number(Field& field, long width) {
    const char* p = at_;
    while (p != end_ && isBlank(*p)) ++p;
    const char* stop = end_ - p < width ? end_ : p + width;
    const bool isNegative = p != stop && *p == '-';
    if (p != stop && (*p == '-' || *p == '+')) ++p;
    const char* digits = p;
    int number = 0;
    for (; p != stop && *p >= '0' && *p <= '9'; ++p) number = 10 * number + (*p - '0');
    if (p != digits) field = static_cast<Field>(isNegative ? -number : number);
    skip(width);
  }

  // The index of the name whose first three letters come next, or -1; consumes the letters that agree.
  template <unsigned kCount>
  int name(const Name (&names)[kCount]) {
    if (end_ - at_ < static_cast<long>(kShortName)) return -1;
    for (unsigned i = 0; i < kCount; ++i) {
      if (std::memcmp(at_, names[i].text, kShortName) != 0) continue;
      for (const char* p = names[i].text; *p != '\0' && at_ != end_ && *at_ == *p; ++p) ++at_;
      return static_cast<int>(i);
    }
    return -1;
  }

  void month() {
    const int index = name(kMonths);
    if (index >= 0) {
      value_.date.month = static_cast<std::int8_t>(index + 1);
    } else {
      number(value_.date.month, 3);
    }
  }

  void yearOfCentury() {
    number(value_.date.year, 2);
    value_.date.year = static_cast<std::int16_t>(value_.date.year + 1900);
  }

  void halfDay() {
    if (at_ == end_) return;
    isAfternoon_ = isAfternoon_ || *at_ == 'P' || *at_ == 'p';
    isMorning_ = isMorning_ || *at_ == 'A' || *at_ == 'a';
    skip(2);
  }

  void take(char directive) {
    switch (directive) {
      case 'a':
      case 'A': name(kWeekdays); return;
      case 'b':
      case 'B': return month();
      case 'd':
      case 'e': return number(value_.date.day, 2);
      case 'H':
      case 'I': return number(value_.time.hour, 2);
      case 'M': return number(value_.time.minute, 2);
      case 'm': return number(value_.date.month, 2);
      case 'p':
      case 'P': return halfDay();
      case 'S': return number(value_.time.second, 2);
      case 'Y': return number(value_.date.year, 4);
      case 'y': return yearOfCentury();
      default: return skip(1);
    }
  }

  const char* at_;
  const char* end_;
  KtDateTime value_;
  bool isAfternoon_ = false;
  bool isMorning_ = false;
};

KtDateTime scanFrom(const KtString& in, const char* format, int firstDay) {
  const NarrowText text(in);
  if (text.beginsWith(NarrowText(nullPrintString()))) {
    KtDateTime null(KtDate(0, 0, 0), KtTime(0, 0, 0));
    null.SetNullValue();
    return null;
  }
  return Scanner(text, firstDay).scan(format);
}

}  // namespace

const char* weekdayName(const KtDate& date) { return weekdayOf(date).text; }

KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format, FromClock fromClock) {
  if (value.IsNullValue()) return out = nullPrintString();
  Printer(out, value, fromClock).print(format);
  return out;
}

KtDateTime scanDateTime(const KtString& in, const char* format) {
  const KtDateTime value = scanFrom(in, format, 1);
  if (value.IsNullValue() || value.IsDaTime() || value == KtDateTime::Null()) return value;
  return {KtDate(0, 1, 1), KtTime(0, 0, 0)};
}

KtDateTime scanPeriod(const KtString& in, const char* format) { return scanFrom(in, format, 0); }

}  // namespace kt
