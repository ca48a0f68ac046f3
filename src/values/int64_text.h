// int64_text.h - scanning 64-bit integers.
#ifndef KT_INT64_TEXT_H
#define KT_INT64_TEXT_H

#include "ktint64.h"

namespace kt {

// As KtInt64::ScanFromKtString. False, and the number is as it was, when memory ran out.
bool scanInt64(KtInt64& number, const KtString& in, const char* format);

}  // namespace kt

#endif
