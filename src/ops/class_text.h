// class_text.h - the text forms of values whose class prints and scans them. A description takes what it does not bring
// along itself.
#ifndef KT_OPS_CLASS_TEXT_H
#define KT_OPS_CLASS_TEXT_H

#include "ktstring.h"
#include "ops/scalar_values.h"

#include <cstring>

namespace kt {

template <class Class>
struct ClassText {
  static void print(KtString& out, void* value, const char* format) {
    readValue<Class>(value).PrintToKtString(out, format);
  }
  static bool scan(void* value, const KtString& in, const char* format) {
    auto scanned = readValue<Class>(value);
    scanned.ScanFromKtString(in, format);
    std::memcpy(value, &scanned, sizeof scanned);
    return true;
  }

  // A conversion gives what is printed without a format, and reads that.
  static KtString toText(const Class& v) {
    KtString text;
    v.PrintToKtString(text);
    return text;
  }
  static Class fromText(const KtString& s) {
    Class value;
    value.ScanFromKtString(s);
    return value;
  }
};

}  // namespace kt

#endif
