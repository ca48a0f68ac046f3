// ktoption.h - the options word of the process.
#ifndef KTOPTION_H
#define KTOPTION_H

#include "ktapi.h"

// The options word, 0 at load; callers set it through the reference. Bit 0 makes the `int` and `short` conversions of
// KtString read decimal numbers only. Process-wide and unguarded: set it before concurrent use begins.
KTTM_API int& ___KtTypeMgrOptions();

#endif
