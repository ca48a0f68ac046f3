#include "values/datetime_text.h"

#include "text/string_block.h"
#include "text/text_units.h"
#include "values/narrow_text.h"
#include "values/null_text.h"
#include "values/string_edit.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

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
[[gnu::noinline]] char* putNumber(char* at, int number, int digits) {
  unsigned magnitude = number < 0 ? 0u - static_cast<unsigned>(number) : static_cast<unsigned>(number);
  if (number < 0) *at++ = '-';
  int length = digits;
  for (unsigned limit = digits == 2 ? 100 : digits == 3 ? 1000 : 10000; magnitude >= limit; limit *= 10) ++length;
  for (char* end = at + length; end != at; magnitude /= 10) *--end = static_cast<char>('0' + magnitude % 10);
  return at + length;
}

inline char* putPair(char* at, int number) {
  if (static_cast<unsigned>(number) >= 100) [[unlikely]]
    return putNumber(at, number, 2);
  std::memcpy(at, kDigitPairs.text + 2 * number, 2);
  return at + 2;
}

inline char* putYear(char* at, int year) {
  if (static_cast<unsigned>(year) >= 10000) [[unlikely]]
    return putNumber(at, year, 4);
  const unsigned century = static_cast<unsigned>(year) / 100;
  std::memcpy(at, kDigitPairs.text + 2 * century, 2);
  std::memcpy(at + 2, kDigitPairs.text + 2 * (static_cast<unsigned>(year) - 100 * century), 2);
  return at + 4;
}

// Anywhere, even where the "%" belongs to the directive before.
bool holdsHalfDay(const char* format) {
  for (char last = 0; *format != '\0'; last = *format++) {
    if (last == '%' && (*format == 'p' || *format == 'P')) return true;
  }
  return false;
}

// What a directive prints, by its letter: which part of a value, and where a field of two digits lies in it.
struct Directives {
  static constexpr unsigned char kDate = 0x40;
  static constexpr unsigned char kTime = 0x80;
  static constexpr unsigned char kField = 0x07;  // its offset; 0: no such field

  unsigned char of[256];
  constexpr Directives() : of() {
    constexpr unsigned char kTimeAt = offsetof(KtDateTime, time);
    for (const char letter : {'a', 'A', 'b', 'B', 'y', 'Y'}) at(letter) = kDate;
    for (const char letter : {'I', 'p', 'P'}) at(letter) = kTime;
    for (const char letter : {'d', 'e'}) at(letter) = kDate | offsetof(KtDate, day);
    at('m') = kDate | offsetof(KtDate, month);
    at('H') = kTime | (kTimeAt + offsetof(KtTime, hour));
    at('M') = kTime | (kTimeAt + offsetof(KtTime, minute));
    at('S') = kTime | (kTimeAt + offsetof(KtTime, second));
  }

private:
  constexpr unsigned char& at(char letter) { return of[static_cast<unsigned char>(letter)]; }
};
constexpr Directives kDirectives;

class Printer {
public:
  static constexpr unsigned long kValueSize = 7;
  static constexpr long kLongestNumber = 6;
  static constexpr long kLongest = 9;  // "Wednesday", "September"

  Printer(const void* value, const char* format, FromClock fromClock)
      : value_(static_cast<const signed char*>(value)),
        missing_(partOf(fromClock)),
        format_(format),
        next_(format),
        isDone_(*format == '\0') {}
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  // Nothing is left of the format.
  bool isDone() const { return isDone_; }

  // Goes on printing to where `at` points, up to `end` at most: how far it came. A room of kLongest takes something.
  [[gnu::always_inline]] inline char* print(char* at, const char* end) {
    const char* format = next_;
    const char* const last = end - kLongestNumber;
    for (; *format != '\0' && at <= last; ++format) {
      if (*format != '%') {
        *at++ = *format;
        continue;
      }
      const char letter = format[1];
      const unsigned char kind = kDirectives.of[static_cast<unsigned char>(letter)];
      if ((kind & missing_) != 0) [[unlikely]] {
        readClock();
      }
      if ((kind & Directives::kField) != 0) {
        at = putPair(at, value_[kind & Directives::kField]);
      } else if (letter == 'Y') {
        at = putYear(at, year());
      } else {
        if (letter == '\0') continue;
        if ((letter == 'A' || letter == 'B') && end - at < kLongest) break;
        at = put(at, letter);
      }
      ++format;
    }
    next_ = format;
    isDone_ = *format == '\0';  // now: the format may lie in the text that is about to change
    return at;
  }

private:
  static constexpr unsigned char partOf(FromClock fromClock) {
    if (fromClock == FromClock::kNothing) return 0;
    return fromClock == FromClock::kDate ? Directives::kDate : Directives::kTime;
  }

  // The part that the value lacks.
  [[gnu::noinline]] void readClock() {
    std::memcpy(static_cast<void*>(&completed_), value_, kValueSize);
    if (missing_ == Directives::kDate) {
      completed_.date.Today();
    } else {
      completed_.time.Now();
    }
    value_ = reinterpret_cast<const signed char*>(&completed_);
    missing_ = 0;
  }

  int year() const {
    std::int16_t year;
    std::memcpy(&year, value_, sizeof year);
    return year;
  }
  int month() const { return value_[offsetof(KtDate, month)]; }
  int day() const { return value_[offsetof(KtDate, day)]; }
  int hour() const { return value_[offsetof(KtDateTime, time)]; }

  // 1 to 12 where am or pm is printed too, else 0 to 12.
  int hourOfTwelve(int hour) const {
    if (hour > 12) return hour - 12;
    return hour == 0 && holdsHalfDay(format_) ? 12 : hour;
  }

  static char* putName(char* at, const Name& name, bool isShort) {
    std::memcpy(at, name.text, kShortName);
    if (isShort) return at + kShortName;
    std::memcpy(at + kShortName, name.text + kShortName, name.length - kShortName);
    return at + name.length;
  }

  static char* putMonth(char* at, int month, bool isShort) {
    const auto index = static_cast<unsigned>(month) - 1;
    return index < 12 ? putName(at, kMonths[index], isShort) : putNumber(at, month, 3);
  }

  static char* putHalfDay(char* at, char half, char m) {
    *at++ = half;
    *at++ = m;
    return at;
  }

  char* put(char* at, char letter) const {
    switch (letter) {
      case 'a':
      case 'A': return putName(at, weekdayOf(KtDate(year(), month(), day())), letter == 'a');
      case 'b':
      case 'B': return putMonth(at, month(), letter == 'b');
      case 'I': return putPair(at, hourOfTwelve(hour()));
      case 'p': return putHalfDay(at, hour() >= 12 ? 'p' : 'a', 'm');
      case 'P': return putHalfDay(at, hour() >= 12 ? 'P' : 'A', 'M');
      case 'y': return putPair(at, year() % 100);
      default: *at++ = letter; return at;
    }
  }

  const signed char* value_;
  KtDateTime completed_{KtDate(0, 0, 0), KtTime(0, 0, 0)};
  unsigned char missing_;  // the part that the clock gives, until it was read
  const char* format_;
  const char* next_;
  bool isDone_;
};

// Prints behind the text as far as its block goes, unless the characters need a conversion or the text holds the format.
inline void printInBlock(KtString& out, Printer& printer, const char* format) {
  const unsigned long size = out.bufferSize;
  if (size == 0 || out.codeSet != narrowSet() || mayHoldZero(out.buffer, size)) return;
  const auto isWithin = [&out](const char* p) {
    return !std::less<>()(p, out.buffer) && std::less<>()(p, out.buffer + out.bufferSize);
  };
  if (isWithin(format)) return;
  char* const begin = out.buffer + size - 1;
  const unsigned long block = blockSize(size);
  // A block always has a byte to spare behind the terminator.
  const char* const end = out.buffer + (block < kMaxTextBytes ? block - 2 : kMaxTextBytes - 1);
  char* const at = printer.print(begin, end);
  if (at == begin) return;
  const unsigned long newSize = size + static_cast<unsigned long>(at - begin);
  *at = '\0';
  noteMayHoldZero(out.buffer, newSize, false);
  out.bufferSize = static_cast<std::uint16_t>(newSize);
}

[[gnu::noinline]] void printByPieces(KtString& out, Printer& printer) {
  char piece[256];
  while (!printer.isDone()) {
    const char* end = printer.print(piece, piece + sizeof piece);
    append(out, piece, narrowSet(), static_cast<unsigned long>(end - piece));
  }
}

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

KtString& printDateTime(KtString& out, const void* value, const char* format, FromClock fromClock) {
  constexpr signed char kNullPart[] = {-128, -128, -128, -128, -128};  // of the time, and month and day of the date
  const auto* fields = static_cast<const signed char*>(value);
  if (fields[2] == kNullPart[0] && std::memcmp(fields + 2, kNullPart, sizeof kNullPart) == 0) {
    std::int16_t year;
    std::memcpy(&year, value, sizeof year);
    if (year == -32768) return out = nullPrintString();
  }
  Printer printer(value, format, fromClock);
  printInBlock(out, printer, format);
  if (!printer.isDone()) printByPieces(out, printer);
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
