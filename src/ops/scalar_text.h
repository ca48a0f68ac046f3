// scalar_text.h - printing and scanning the plain scalars under a format that comes from outside.
//
// Printing replaces `out` (characters: all `count` of them as one text; other scalars: the first value, whatever count
// is); a null pointer to values prints nothing. Scanning sets the first value (characters: up to `count` of them) and
// leaves it unchanged where the text does not match. Formats: see text/number_format.h; a null one stands for the format
// of the row that the function is named after, also in the rows that share the function.
//
// The scan...Value functions scan one value and tell whether the text matched; their pointers, the format among them, are not null.
#ifndef KT_OPS_SCALAR_TEXT_H
#define KT_OPS_SCALAR_TEXT_H

class KtString;

namespace kt {

KtString& printChars(KtString& out, void* values, const char* format, unsigned long count);
void* scanChars(void* values, KtString& in, const char* format, unsigned long count);
bool scanCharValue(void* value, const KtString& in, const char* format);
KtString& printShort(KtString& out, void* values, const char* format, unsigned long count);
void* scanShort(void* values, KtString& in, const char* format, unsigned long count);
bool scanShortValue(void* value, const KtString& in, const char* format);
KtString& printLong(KtString& out, void* values, const char* format, unsigned long count);
void* scanLong(void* values, KtString& in, const char* format, unsigned long count);
bool scanLongValue(void* value, const KtString& in, const char* format);
KtString& printFloat(KtString& out, void* values, const char* format, unsigned long count);
void* scanFloat(void* values, KtString& in, const char* format, unsigned long count);
bool scanFloatValue(void* value, const KtString& in, const char* format);
// A format that begins with "ldex" prints mantissa and binary exponent, which loses nothing.
KtString& printDouble(KtString& out, void* values, const char* format, unsigned long count);
void* scanDouble(void* values, KtString& in, const char* format, unsigned long count);
bool scanDoubleValue(void* value, const KtString& in, const char* format);

}  // namespace kt

#endif
