#include "values/datetime_text.h"

#include "text/string_block.h"
#include "text/text_units.h"
#include "values/append_short.h"
#include "values/narrow_text.h"
#include "values/null_text.h"
#include "values/string_edit.h"

#include <bit>
#include <cstddef>
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
  char text[100][2];
  constexpr DigitPairs() : text() {
    for (unsigned i = 0; i < 100; ++i) {
      text[i][0] = static_cast<char>('0' + i / 10);
      text[i][1] = static_cast<char>('0' + i % 10);
    }
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
  std::memcpy(at, kDigitPairs.text[static_cast<unsigned>(number)], 2);
  return at + 2;
}

inline char* putYear(char* at, int year) {
  if (static_cast<unsigned>(year) >= 10000) [[unlikely]]
    return putNumber(at, year, 4);
  const unsigned century = static_cast<unsigned>(year) / 100;
  std::memcpy(at, kDigitPairs.text[century], 2);
  std::memcpy(at + 2, kDigitPairs.text[static_cast<unsigned>(year) - 100 * century], 2);
  return at + 4;
}

// Anywhere, even where the "%" belongs to the directive before.
bool holdsHalfDay(const char* format) {
  for (char last = 0; *format != '\0'; last = *format++) {
    if (last == '%' && (*format == 'p' || *format == 'P')) return true;
  }
  return false;
}

// Where in a value the field of two digits lies that a directive prints, by its letter; 0: it prints something else.
constexpr unsigned char kTimeAt = offsetof(KtDateTime, time);
struct PairFields {
  unsigned char of[256];
  constexpr PairFields() : of() {
    at('d') = at('e') = offsetof(KtDate, day);
    at('m') = offsetof(KtDate, month);
    at('H') = kTimeAt + offsetof(KtTime, hour);
    at('M') = kTimeAt + offsetof(KtTime, minute);
    at('S') = kTimeAt + offsetof(KtTime, second);
  }

private:
  constexpr unsigned char& at(char letter) { return of[static_cast<unsigned char>(letter)]; }
};
constexpr PairFields kPairFields;

constexpr long kLongestNumber = 6;

struct Progress {
  char* at;
  const char* format;
};

// Numbers of two digits, years of four, and the characters between them, which is what most formats hold: goes on while
// `at` leaves room for a number, up to something else or the end of the format.
[[gnu::always_inline]] inline Progress printPlain(char* at, const char* end, const char* format,
                                                  const unsigned char* value) {
  const char* const last = end - kLongestNumber;
  while (at <= last) {
    if (*format != '%') {
      if (*format == '\0') break;
      *at++ = *format++;
      continue;
    }
    const auto letter = static_cast<unsigned char>(format[1]);
    if (const unsigned char field = kPairFields.of[letter]; field != 0) {
      if (value[field] >= 100) break;
      at = putPair(at, value[field]);
    } else if (letter == 'Y') {
      std::uint16_t year;
      std::memcpy(&year, value, sizeof year);
      if (year >= 10000) break;
      at = putYear(at, year);
    } else {
      break;
    }
    format += 2;
    if (*format == '%') continue;
    if (*format == '\0') break;
    *at++ = *format++;  // there is room: no number has as many digits as the longest
  }
  return {at, format};
}

class Printer {
public:
  static constexpr long kLongest = 9;  // "Wednesday", "September"

  // Goes on at `next`, in the format.
  Printer(const void* value, const char* format, const char* next)
      : value_(static_cast<const unsigned char*>(value)), format_(format), next_(next) {}
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  // Nothing is left of the format.
  bool isDone() const { return *next_ == '\0'; }

  // Goes on printing to where `at` points, up to `end` at most: how far it came. A room of kLongest takes something.
  char* print(char* at, const char* end) {
    for (;;) {
      const Progress plain = printPlain(at, end, next_, value_);
      at = plain.at;
      next_ = plain.format;
      if (end - at < kLongestNumber || *next_ == '\0') return at;
      const char letter = next_[1];
      if ((letter == 'A' || letter == 'B') && end - at < kLongest) return at;
      if (letter != '\0') at = put(at, letter);
      next_ += letter == '\0' ? 1 : 2;
    }
  }

private:
  int year() const {
    std::int16_t year;
    std::memcpy(&year, value_, sizeof year);
    return year;
  }
  int part(unsigned long offset) const { return static_cast<signed char>(value_[offset]); }
  int month() const { return part(offsetof(KtDate, month)); }
  int day() const { return part(offsetof(KtDate, day)); }
  int hour() const { return part(kTimeAt); }

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
      case 'd':
      case 'e': return putPair(at, day());
      case 'H': return putPair(at, hour());
      case 'I': return putPair(at, hourOfTwelve(hour()));
      case 'M': return putPair(at, part(kTimeAt + offsetof(KtTime, minute)));
      case 'm': return putPair(at, month());
      case 'p': return putHalfDay(at, hour() >= 12 ? 'p' : 'a', 'm');
      case 'P': return putHalfDay(at, hour() >= 12 ? 'P' : 'A', 'M');
      case 'S': return putPair(at, part(kTimeAt + offsetof(KtTime, second)));
      case 'Y': return putYear(at, year());
      case 'y': return putPair(at, year() % 100);
      default: *at++ = letter; return at;
    }
  }

  const unsigned char* value_;
  const char* format_;
  const char* next_;
};

// Whether characters can be put behind the text, up to blockEnd(), as they are.
inline bool takesCharacters(const KtString& out) {
  return out.bufferSize != 0 && out.codeSet == narrowSet() && !mayHoldZero(out.buffer, out.bufferSize);
}

// A block always has a byte to spare behind the terminator.
inline const char* blockEnd(const KtString& out) {
  const unsigned long block = blockSize(out.bufferSize);
  return out.buffer + (block < kMaxTextBytes ? block - 2 : kMaxTextBytes - 1);
}

// What is left of the format from `next` on.
[[gnu::noinline]] KtString& printRest(KtString& out, const void* value, const char* format, const char* next) {
  Printer printer(value, format, next);
  if (takesCharacters(out)) grow(out, printer.print(out.buffer + out.bufferSize - 1, blockEnd(out)));
  char piece[256];
  while (!printer.isDone()) {
    const char* end = printer.print(piece, piece + sizeof piece);
    append(out, piece, narrowSet(), static_cast<unsigned long>(end - piece));
  }
  return out;
}

bool asksFor(const char* format, FromClock part) {
  const char* const letters = part == FromClock::kDate ? "aAbBdemyY" : "HIMSpP";
  for (; *format != '\0'; ++format) {
    if (*format != '%') continue;
    if (*++format == '\0') return false;
    if (std::strchr(letters, *format) != nullptr) return true;
  }
  return false;
}

KtDateTime completed(const KtDateTime& value, FromClock part) {
  KtDateTime whole = value;
  if (part == FromClock::kDate) {
    whole.date.Today();
  } else {
    whole.time.Now();
  }
  return whole;
}

bool isNull(const void* value) {
  static constexpr unsigned char kMonthToSecond[] = {0x80, 0x80, 0x80, 0x80, 0x80};
  const auto* fields = static_cast<const unsigned char*>(value) + sizeof(std::int16_t);
  if (fields[0] != 0x80 || std::memcmp(fields, kMonthToSecond, sizeof kMonthToSecond) != 0) return false;
  std::int16_t year;
  std::memcpy(&year, value, sizeof year);
  return year == -32768;
}

[[gnu::noinline]] KtString& setToNullText(KtString& out) { return out = nullPrintString(); }

// The format lies in the text that grows.
[[gnu::noinline]] KtString& printByOwnText(KtString& out, const void* value, const char* format) {
  const KtString copy(format);
  return printDateTime(out, value, copy.StrGet());
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

bool writeFields(unsigned char* value, const Fields& fields) {
  std::memcpy(value, &fields, sizeof fields);
  return true;
}

[[gnu::noinline]] bool scanRest(const char* end, const Scanned& start, unsigned char* value) {
  return writeFields(value, Scanner(end, start, readFields(value)).scan());
}

// Any text by any format. False where the text is null.
[[gnu::noinline]] bool scanAny(const KtString& in, const char* format, unsigned char* value) {
  const NarrowText text(in);
  if (!text.beginsWith(NarrowText(nullPrintString())))
    return scanRest(text.end(), {-static_cast<long>(text.length()), format}, value);
  writeFields(value, kNullFields);
  return false;
}

// Whether the bytes of the text are its characters, and surely not those of the null text.
inline bool isPlain(const KtString& in, const KtString& null) {
  if (in.CharSize() != 1 || in.buffer == nullptr || mayHoldZero(in.buffer, in.bufferSize)) return false;
  return null.CharSize() == 1 && null.buffer != nullptr && *null.buffer != '\0' && *null.buffer != *in.buffer;
}

// Into a value that starts as what the fields are that the format does not name. False where the text is null.
[[gnu::always_inline]] inline bool scanFields(const KtString& in, const char* format, const Fields& start,
                                              unsigned char* value) {
  writeFields(value, start);
  if (!isPlain(in, nullPrintString())) [[unlikely]]
    return scanAny(in, format, value);
  const long length = in.bufferSize - 1L;
  const char* const end = in.buffer + length;
  const Scanned plain = scanPlain(end, -length, format, value);
  return *plain.format == '\0' || scanRest(end, plain, value);
}

// As KtDate::IsDate, without day numbers: the end of a month is nothing that could be predicted.
inline bool isDate(int year, int month, int day) {
  static constexpr std::int8_t kDays[] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 0) return KtDate(year, month, day).IsDate() != 0;
  if (static_cast<unsigned>(month) > 12 || day < 1 || day > kDays[month]) return false;
  return month != 2 || day != 29 || (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0));
}

// Reads byte by byte, as the fields were written: whatever is wider has to wait for them.
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

const char* weekdayName(const KtDate& date) { return weekdayOf(date).text; }

KtString& printDateTime(KtString& out, const void* value, const char* format) {
  if (isNull(value)) [[unlikely]]
    return setToNullText(out);
  if (liesIn(out, format)) [[unlikely]]
    return printByOwnText(out, value, format);
  if (!takesCharacters(out)) [[unlikely]]
    return printRest(out, value, format, format);
  const auto [end, next] =
      printPlain(out.buffer + out.bufferSize - 1, blockEnd(out), format, static_cast<const unsigned char*>(value));
  grow(out, end);
  return *next == '\0' ? out : printRest(out, value, format, next);
}

KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format, FromClock fromClock) {
  if (!asksFor(format, fromClock)) return printDateTime(out, &value, format);
  const KtDateTime whole = completed(value, fromClock);
  return printDateTime(out, &whole, format);
}

void scanDateTime(const KtString& in, const char* format, void* value) {
  auto* const fields = static_cast<unsigned char*>(value);
  if (scanFields(in, format, Fields(), fields) && !isValid(fields)) makeValid(fields);
}

KtDateTime scanDateTime(const KtString& in, const char* format) {
  unsigned char value[sizeof(KtDateTime)];
  scanDateTime(in, format, value);
  return std::bit_cast<KtDateTime>(value);
}

KtDateTime scanPeriod(const KtString& in, const char* format) {
  Fields start;
  start.day = 0;
  unsigned char value[sizeof(KtDateTime)];
  scanFields(in, format, start, value);
  return std::bit_cast<KtDateTime>(value);
}

}  // namespace kt
