// odmg_text.cpp - the text forms of the ODMG types: by a format through the record of all dates and times, and without
// loss for conversions.
#include "ktstring.h"
#include "ops/odmg_ops.h"
#include "values/datetime_text.h"
#include "values/narrow_text.h"

#include <cstdio>
#include <cstdlib>

namespace kt {
namespace {

// --- the record that is printed and scanned -----------------------------------------------------------------------------

KtTime universalTime(const d_Time& time) {
  return {time.hour - time.tz_hour, time.minute - time.tz_minute, (time.second * 100 + time.hundredths) / 100};
}

// The scanned time in the zone that the value has.
void setUniversalTime(d_Time& time, const KtTime& scanned) {
  time.hour = static_cast<std::int8_t>(scanned.hour + time.tz_hour);
  time.minute = static_cast<std::int8_t>(scanned.minute + time.tz_minute);
  time.second = scanned.second;
  time.hundredths = 0;
}

// Fields as they are, also those of no day.
KtDate dateOf(const d_Date& date) { return {date.year, date.month, date.day}; }

template <class Memory>
bool put(void* value, const Memory& scanned) {
  std::memcpy(value, &scanned, sizeof scanned);
  return true;
}

// The value with what `set` makes of the text. False, and the value stays, when memory ran out.
template <class Memory, class Set>
bool scanInto(void* value, const KtString& in, const char* format, Set set) {
  KtDateTime scanned = KtDateTime::Null();
  if (!scanDateTime(in, format, &scanned)) return false;
  auto memory = readValue<Memory>(value);
  set(memory, scanned);
  return put(value, memory);
}

// --- conversions --------------------------------------------------------------------------------------------------------

// Numbers that stand in a text one after the other.
class NumberReader {
public:
  explicit NumberReader(const KtString& s) : text_(s), at_(text_.begin()) {}

  // Behind the given character and a sign that the number may have; false, and the field stays, when there is none.
  bool takeAfter(char separator, int& field) { return take(separator) && takeNumber(field); }

  bool takeNumber(int& field) {
    const bool isNegative = take('-');
    const char* digits = at_;
    int number = 0;
    for (; at_ != text_.end() && *at_ >= '0' && *at_ <= '9'; ++at_) {
      if (number < kLimit) number = 10 * number + (*at_ - '0');
    }
    if (at_ == digits) return false;
    field = isNegative ? -number : number;
    return true;
  }

  bool take(char ch) {
    const bool isThere = at_ != text_.end() && *at_ == ch;
    if (isThere) ++at_;
    return isThere;
  }

private:
  static constexpr int kLimit = 100000;  // no field is as large

  NarrowText text_;
  const char* at_;
};

constexpr unsigned kRoom = 64;

// The text of a value, into kRoom bytes, twice as many for both parts; its length.
int write(char* text, const d_Date& date) {
  return std::snprintf(text, kRoom, "%.4d-%.2d-%.2d", date.year, date.month, date.day);
}

// Both fields of a zone have its sign; where they do not, the minutes show theirs.
int write(char* text, const d_Time& time) {
  const int sign = time.tz_hour < 0 || (time.tz_hour == 0 && time.tz_minute < 0) ? -1 : 1;
  return std::snprintf(text, kRoom, "%.2d:%.2d:%.2d.%.2d%c%.2d:%.2d", time.hour, time.minute, time.second,
                       time.hundredths, sign < 0 ? '-' : '+', sign * time.tz_hour, sign * time.tz_minute);
}

int write(char* text, const d_Timestamp& timestamp) {
  const int length = write(text, timestamp.date);
  text[length] = ' ';
  return length + 1 + write(text + length + 1, timestamp.time);
}

template <class Value>
KtString textOf(const Value& value) {
  char text[2 * kRoom];
  write(text, value);
  return KtString(text);
}

d_Date readDate(NumberReader& reader) {
  int year = 0;
  int month = 1;
  int day = 1;
  if (reader.takeNumber(year) && reader.takeAfter('-', month)) reader.takeAfter('-', day);
  return {static_cast<short>(year), static_cast<unsigned short>(month), static_cast<unsigned short>(day)};
}

d_Time readTime(NumberReader& reader) {
  int fields[4] = {};
  int zone[2] = {};
  if (reader.takeNumber(fields[0]) && reader.takeAfter(':', fields[1]) && reader.takeAfter(':', fields[2]))
    reader.takeAfter('.', fields[3]);
  const int sign = reader.take('-') ? -1 : 1;
  if ((sign < 0 || reader.take('+')) && reader.takeNumber(zone[0])) reader.takeAfter(':', zone[1]);
  d_Time time(static_cast<unsigned short>(fields[0]), static_cast<unsigned short>(fields[1]), 0,
              static_cast<short>(sign * zone[0]), static_cast<short>(sign * zone[1]));
  time.second = static_cast<std::int8_t>(fields[2]);
  time.hundredths = static_cast<std::int8_t>(fields[3]);
  return time;
}

}  // namespace

// --- d_Date -------------------------------------------------------------------------------------------------------------

KtString OdmgDateValue::toText(const d_Date& v) { return textOf(v); }

d_Date OdmgDateValue::fromText(const KtString& s) {
  NumberReader reader(s);
  return readDate(reader);
}

void OdmgDateValue::print(KtString& out, void* value, const char* format) {
  printDateTime(out, KtDateTime(dateOf(readValue<d_Date>(value)), KtTime(0, 0, 0)), format);
}

bool OdmgDateValue::scan(void* value, const KtString& in, const char* format) {
  return scanInto<d_Date>(value, in, format, [](d_Date& date, const KtDateTime& scanned) { date = d_Date(scanned); });
}

// --- d_Time -------------------------------------------------------------------------------------------------------------

KtString OdmgTimeValue::toText(const d_Time& v) { return textOf(v); }

d_Time OdmgTimeValue::fromText(const KtString& s) {
  NumberReader reader(s);
  return readTime(reader);
}

void OdmgTimeValue::print(KtString& out, void* value, const char* format) {
  printDateTime(out, KtDateTime(KtDate(0, 1, 1), universalTime(readValue<d_Time>(value))), format);
}

bool OdmgTimeValue::scan(void* value, const KtString& in, const char* format) {
  return scanInto<d_Time>(value, in, format,
                          [](d_Time& time, const KtDateTime& scanned) { setUniversalTime(time, scanned.time); });
}

// --- d_Timestamp ----------------------------------------------------------------------------------------------------------

KtString OdmgTimestampValue::toText(const d_Timestamp& v) { return textOf(v); }

d_Timestamp OdmgTimestampValue::fromText(const KtString& s) {
  NumberReader reader(s);
  const d_Date date = readDate(reader);
  reader.take(' ');
  return {date, readTime(reader)};
}

void OdmgTimestampValue::print(KtString& out, void* value, const char* format) {
  const auto timestamp = readValue<d_Timestamp>(value);
  printDateTime(out, KtDateTime(dateOf(timestamp.date), universalTime(timestamp.time)), format);
}

bool OdmgTimestampValue::scan(void* value, const KtString& in, const char* format) {
  return scanInto<d_Timestamp>(value, in, format, [](d_Timestamp& timestamp, const KtDateTime& scanned) {
    timestamp.date = scanned.date;
    setUniversalTime(timestamp.time, scanned.time);
  });
}

// --- d_Interval -----------------------------------------------------------------------------------------------------------

void OdmgIntervalValue::print(KtString& out, void* value, const char* format) {
  const auto interval = readValue<d_Interval>(value);
  const auto seconds = static_cast<int>(interval.WholeSeconds() % 60);
  printDateTime(out, KtDateTime(KtDate(0, 1, interval.day()), KtTime(interval.hour(), interval.minute(), seconds)),
                format);
}

bool OdmgIntervalValue::scan(void* value, const KtString& in, const char* format) {
  KtDateTime period = KtDateTime::Null();
  if (!scanPeriod(in, format, period)) return false;
  return put(value, static_cast<float>(period.date.day * 86400L + static_cast<long>(period.time)));
}

}  // namespace kt
