// samples.h - the rows of the type table with sample values, and the places where a row breaks a law by design.
//
// A new row joins the law suite by one entry in samples.cpp.
#ifndef KT_TESTS_LAWS_SAMPLES_H
#define KT_TESTS_LAWS_SAMPLES_H

#include <kttm.h>

#include <string>
#include <vector>

namespace kt_laws {

// One value, made by the type manager alone.
struct Sample {
  enum Source { kNull, kText, kBytes, kScan };

  const char* name;
  Source source;
  std::string content;           // what ConvertFrom takes; hex bytes of format code 2; what a scan takes
  const char* format = nullptr;  // of a scan
  bool isEqual = false;          // to the sample before, by the row's order
};

// A finding of `law` on `sample` ("*": any; "": of the whole row) that is meant to be. Only findings that contain
// `where` are excused. An exception without a finding is reported: none outlives its reason.
struct Exception {
  const char* law;
  const char* sample;
  const char* where;
  const char* reason;
};

struct Row {
  char id;
  const char* stem;
  const char* format;           // prints without loss, and scans so unless scanFormat does; null: there is none
  std::vector<Sample> samples;  // in ascending order
  std::vector<Exception> exceptions;
  unsigned char highBits = 0xF0;  // of the format code, that storage does not read
  const char* scanFormat = nullptr;
  unsigned long version = 12;   // of the manager
  bool readsWholeRuns = false;  // whatever lengths are told
};

const std::vector<Row>& rows();

}  // namespace kt_laws

#endif
