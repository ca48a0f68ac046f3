// decimal_text.h - the usual doubles in decimal, by integer arithmetic that loses nothing.
//
// The functions write a number as printf writes it by %f, %e or %g with that precision (not negative), rounded half to
// even from the exact value, and return the end. They return null, having written nothing that counts, where the number
// does not fit 64 bits once its last wanted digit stands before the point, or is far below 1: then std::to_chars, which
// gives the same text, takes its time.
#ifndef KT_TEXT_DECIMAL_TEXT_H
#define KT_TEXT_DECIMAL_TEXT_H

namespace kt {

// Room that each of them needs.
constexpr unsigned kDecimalRoom = 64;

// `magnitude` is finite, its sign bit clear.
char* writeFixed(char* at, double magnitude, int precision);
char* writeScientific(char* at, double magnitude, int precision);
char* writeGeneral(char* at, double magnitude, int precision);

}  // namespace kt

#endif
