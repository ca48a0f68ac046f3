// ktmbs.h - conversion between strings and multi-byte text in UTF-8.
#ifndef KTMBS_H
#define KTMBS_H

#include "ktstring.h"

// Multi-byte text is UTF-8 with sequences of one to six bytes a character; characters on the string side have 16 bits.
//
// Range:  a decoded value loses all but its low 16 bits (0x10041, in four bytes, becomes 0x41). Surrogates are characters
//         like any other: each takes three bytes, there are no pairs. Over-long sequences are bad sequences.
// Null:   a null string counts as the text that it holds, none after SetNullValue; decoding into it leaves it null, since
//         the language stays. A null pointer as input or output gives 0 where nothing else is said.
// Size:   encoding writes 1 byte below 0x80, 2 below 0x800, else 3. At most 32,768 bytes are decoded into a string.
// Text:   code sets 0 to 5: text of bytes below 128 is its own multi-byte text. Other text stands for the characters that
//         its code set maps it to (KtCodeSet::ToUnicode).
// Status: -1 bad sequence, -2 input too long; a negative byte count says how much was written before room ran out.
// Owner:  the caller owns all buffers; one that KtString2MultiByteString makes is from malloc, to be freed with free().
//         When memory runs out the memory handler is called and the result is -1; strings stay valid (empty).
// Threads: pure but for their output; may run concurrently. Input and output buffers must not overlap, a string and the
//         text decoded into it may.

// Decodes one character from at most n bytes. Returns the bytes used (1 to 6), 0 when in is null, -1 when n is 0, when the
// sequence is bad or when it is longer than n. out may be null: the character is then only measured.
KTTM_API int KtMultiByte2WChar(unsigned short* out, char* in, unsigned int n);

// Encodes one character; the caller provides 3 bytes. Returns the bytes written (1 to 3), 0 when out is null.
KTTM_API int KtWChar2MultiByte(char* out, unsigned short ch);

// Decodes inBytes bytes, zeros included, into at most outCount characters, without a terminator; decoding ends quietly
// when out is full. Returns the characters decoded, 0 for a null pointer or a count below 1, or -1 for a bad sequence
// (out is then undefined up to outCount).
KTTM_API int KtMultiByteStr2WCharStr(unsigned short* out, int outCount, char* in, int inBytes);

// Decodes at most n bytes into out, which gets code set 253 and keeps its language. Decoding ends before a character 0
// (a zero byte or a sequence whose low 16 bits are 0), at the end of the n bytes, at a bad sequence or when 32,768 bytes
// are consumed. Nothing behind a zero byte is read, so that n may exceed a terminated text. out always holds what was
// decoded until then; text beyond the largest size of a string overflows as if appended 256 characters at a time.
// Returns the bytes consumed; 0 for null or n below 1 (out is emptied); -1 bad sequence; -2 when 32,768 bytes or more
// were consumed, even if the text ended there.
KTTM_API long KtMBS2KtString(const char* in, KtString& out, long n);

// Encodes s into out, which has room for size bytes. Returns the bytes written, terminator not counted, or, when the next
// character does not fit, minus the bytes written (0 when that is the first one); 0 when size is below 1 or out is null.
// - Text of code sets 0 to 5 whose first `size` bytes are all below 128 is copied: the room behind it is filled with
//   zeros; longer text is cut, the result is size, and there is no terminator.
// - All other text gets a terminator where there is room for one; bytes behind it are not touched.
KTTM_API long KtString2KtMBS(const KtString& s, char* out, long size);

// The bytes that the first n characters of s (all of them when there are fewer) take, without a terminator; 0 when n is 0.
// In code sets 0 to 5 text of bytes below 128 gives the length of the whole text, whatever n.
KTTM_API long KtMBSLength(const KtString& s, unsigned short n);

// KtMBS2KtString over the text of s (as bytes, whatever its code set) and its length in characters. out may be s.
KTTM_API long KtMultiByteString2KtString(const KtString& s, KtString& out);

// The same as KtMBS2KtString.
KTTM_API long KtMultiByteString2KtString(const char* in, KtString& out, long n);

// Encodes s into the caller's buffer of `size` bytes or, when out is null or size is below 1, into a new one.
// A new buffer: out is the text with its terminator, size its bytes with the terminator; returns the bytes without it.
//   When memory runs out: out null, size 0, result -1.
// The caller's buffer: a positive result of KtString2KtMBS is returned as it stands, so that the text has a terminator
//   only where there was room for one, and plain text of code sets 0 to 5 is cut to size. An empty text is terminated
//   and gives 0. Text that does not fit gives -1, and size becomes the bytes needed, terminator not included.
KTTM_API long KtString2MultiByteString(const KtString& s, char*& out, long& size);

#endif
