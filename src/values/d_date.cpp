// d_date.cpp - d_Date from the clock and from other dates.
#include "d_date.h"

#include "d_timestamp.h"
#include "ktdatetime.h"

d_Date::d_Date() : d_Date(KtDate()) {}
d_Date::d_Date(const d_Timestamp& timestamp) : d_Date(timestamp.date) {}
d_Date::d_Date(const KtDate& date) : year(date.year), month(date.month), day(date.day) {}
d_Date::d_Date(const KtDateTime& dateTime) : d_Date(dateTime.date) {}
d_Date& d_Date::operator=(const d_Timestamp& timestamp) { return *this = timestamp.date; }
d_Date& d_Date::operator=(const KtDate& date) { return *this = d_Date(date); }
d_Date& d_Date::operator=(const KtDateTime& dateTime) { return *this = d_Date(dateTime); }

d_Date d_Date::current() { return {}; }
