// datetime_print.cpp - printing dates and times by a format.
#include "text/string_block.h"
#include "text/text_units.h"
#include "values/append_short.h"
#include "values/append_whole.h"
#include "values/datetime_names.h"
#include "values/datetime_plan.h"
#include "values/datetime_text.h"
#include "values/null_text.h"
#include "values/string_edit.h"

#include <cstdint>
#include <cstring>

namespace kt {
namespace {

constexpr Name kNoDay = named("no day");

const Name& weekdayOf(const KtDate& date) {
  const auto day = static_cast<unsigned>(date.DayOfTheDate());
  return day < 7 ? kWeekdays[day] : kNoDay;
}

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

inline char* putTwo(char* at, unsigned number) {
  std::memcpy(at, kDigitPairs.text[number], 2);
  return at + 2;
}

inline char* putPair(char* at, int number) {
  const auto pair = static_cast<unsigned>(number);
  return pair < 100 ? putTwo(at, pair) : putNumber(at, number, 2);
}

// Anywhere, even where the "%" belongs to the directive before.
bool holdsHalfDay(const char* format) {
  for (char last = 0; *format != '\0'; last = *format++) {
    if (last == '%' && (*format == 'p' || *format == 'P')) return true;
  }
  return false;
}

constexpr long kLongestNumber = 6;

// A negative one is very large.
inline unsigned storedYear(const unsigned char* value) {
  std::uint16_t year;
  std::memcpy(&year, value, sizeof year);
  return year;
}

struct Progress {
  char* at;
  const char* format;
};

// The fields of a value, by their places in it. Where the year begins, which no field of two digits does, stands what is
// no number of two digits: that is what a directive without such a field finds.
struct PairValues {
  explicit PairValues(const unsigned char* value) {
    std::memcpy(of, value, sizeof of);
    of[0] = kNone;
  }
  unsigned at(unsigned char letter) const { return of[kPairFields.of[letter]]; }

  static constexpr unsigned char kNone = 255;
  unsigned char of[sizeof(KtDateTime)];
};

// Numbers of two digits, years of four, and the characters between them, which is what most formats hold: goes on while
// `at` leaves room for a number, up to something else or the end of the format.
[[gnu::always_inline]] inline Progress printPlain(char* at, const char* end, const char* format,
                                                  const unsigned char* value) {
  const PairValues pairs(value);
  const char* const last = end - kLongestNumber;
  while (at <= last) {
    if (*format != '%') [[unlikely]] {
      if (*format == '\0') break;
      *at++ = *format++;
      continue;
    }
    const auto letter = static_cast<unsigned char>(format[1]);
    unsigned number = pairs.at(letter);
    if (number >= 100) [[unlikely]] {
      const unsigned year = storedYear(value);
      if (letter != 'Y' || year >= 10000) break;
      const unsigned century = year / 100;
      at = putTwo(at, century);
      number = year - 100 * century;
    }
    putTwo(at, number);
    // What most often follows is one character; there is room: no number has as many digits as the longest.
    const char next = format[2];
    if (next == '%' || next == '\0') {
      at += 2;
      format += 2;
    } else {
      at[2] = next;
      at += 3;
      format += 3;
    }
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
      case 'Y': return putNumber(at, year(), 4);  // one of four digits is printed above
      case 'y': return putPair(at, year() % 100);
      default: *at++ = letter; return at;
    }
  }

  const unsigned char* value_;
  const char* format_;
  const char* next_;
};

const unsigned char* fieldsOf(const void* value) { return static_cast<const unsigned char*>(value); }

// Whether characters can be put behind the text, up to blockEnd(), as they are.
inline bool takesCharacters(const KtString& out) {
  return out.bufferSize != 0 && out.codeSet == narrowSet() && !mayHoldZero(out.buffer, out.bufferSize);
}

// A block always has a byte to spare behind the terminator.
inline const char* blockEnd(const KtString& out) {
  const unsigned long block = blockSize(out.bufferSize);
  return out.buffer + (block < kMaxTextBytes ? block - 2 : kMaxTextBytes - 1);
}

// A piece of what is printed.
struct Piece {
  bool appendTo(KtString& out) const { return append(out, text, narrowSet(), length); }
  // False where nothing is left.
  bool take(Printer& printer) {
    length = static_cast<unsigned long>(printer.print(text, text + sizeof text) - text);
    return !printer.isDone();
  }

  unsigned long length = 0;
  char text[256];
};

[[gnu::noinline]] bool appendPieces(KtString& out, Piece& piece, Printer& printer) {
  KtString whole(narrowSet(), out.language);
  bool isMore = true;
  while (isMore && piece.appendTo(whole)) isMore = piece.take(printer);
  return !isMore && piece.appendTo(whole) && append(out, whole.buffer, narrowSet(), appendPosition(whole));
}

// Appends what is left, wherever that has room: as a whole, or nothing and false when memory runs out.
inline bool appendRest(KtString& out, Printer& printer) {
  Piece piece;
  return piece.take(printer) ? appendPieces(out, piece, printer) : piece.appendTo(out);
}

[[gnu::noinline]] KtString& printElsewhere(KtString& out, const void* value, const char* format) {
  Printer printer(value, format, format);
  appendRest(out, printer);
  return out;
}

// Behind what of the format was put behind the text already. Without memory that is taken back.
[[gnu::noinline]] KtString& printRest(KtString& out, const void* value, const char* format, Progress plain) {
  Printer printer(value, format, plain.format);
  const unsigned long old = out.bufferSize;
  grow(out, printer.print(plain.at, blockEnd(out)));
  if (!printer.isDone() && !appendRest(out, printer)) grow(out, out.buffer + old - 1);
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

KtString& printByOwnText(KtString& out, const void* value, const char* format);

// Directive by directive.
[[gnu::noinline]] KtString& printByWalk(KtString& out, const void* value, const char* format) {
  if (isNull(value)) [[unlikely]]
    return setToNullText(out);
  if (liesIn(out, format)) [[unlikely]]
    return printByOwnText(out, value, format);
  if (!takesCharacters(out)) [[unlikely]]
    return printElsewhere(out, value, format);
  const Progress plain = printPlain(out.buffer + out.bufferSize - 1, blockEnd(out), format, fieldsOf(value));
  if (*plain.format != '\0') return printRest(out, value, format, plain);
  grow(out, plain.at);
  return out;
}

// The format lies in the text that grows.
[[gnu::noinline]] KtString& printByOwnText(KtString& out, const void* value, const char* format) {
  const LastingFormat lasting(out, format);
  return printByWalk(out, value, lasting.text());
}

}  // namespace

const char* weekdayName(const KtDate& date) { return weekdayOf(date).text; }

KtString& printDateTime(KtString& out, const void* value, const char* format) {
  const DateTimePlan* const plan = findPlan(format);
  if (plan == nullptr || !takesCharacters(out)) return printByWalk(out, value, format);
  char* const at = out.buffer + out.bufferSize - 1;
  char* const end = printByPlan(*plan, at, blockEnd(out), fieldsOf(value));
  if (end == nullptr) return printByWalk(out, value, format);
  grow(out, end);
  return out;
}

KtString& printDateTime(KtString& out, const KtDateTime& value, const char* format, FromClock fromClock) {
  if (!asksFor(format, fromClock)) return printDateTime(out, &value, format);
  const KtDateTime whole = completed(value, fromClock);
  return printDateTime(out, &whole, format);
}

}  // namespace kt
