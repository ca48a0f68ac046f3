// ktstriter.h - walks the characters and the collation orders of a text.
#ifndef KTSTRITER_H
#define KTSTRITER_H

#include "ktchar.h"

// KtStringIterator: a cursor over a text that it does not own.
//
// Range:  code set 255 is the default 8-bit set, 0 the native one.
// Null:   a null text is an empty one.
// Order:  orders are those of the code set's characters under the collation kind of the language.
// Size:   the text ends at a zero character or after `length` characters, whichever comes first.
// Disk:   docs/formats/strings.md, Record: flag tells the byte order of 16-bit characters: 1, 8 and 255 the host's (a text
//         in memory), 2 big-endian, every other value little-endian. The text may be unaligned.
// Owner:  the text must outlive the iterator.
// Threads: pure; one iterator belongs to one thread.
class KTTM_API KtStringIterator {
public:
  static constexpr unsigned long kToTerminator = 0xFFFFFFFFul;

  KtStringIterator(const char* text, unsigned char codeSet, unsigned char language, unsigned char flag = 1,
                   unsigned long length = kToTerminator);

  unsigned char CodeSet() const { return codeSet_; }  // after the defaulting of 255
  unsigned char Language() const { return language_; }
  unsigned char CollationKind() const { return kind_; }
  unsigned long Position() const { return position_; }  // in characters from the beginning
  int AtEnd() const;

  KtChar Get() const;  // the character at the position; character 0 at the end
  KtChar GetNext();    // Get, then one step forward
  int Next();          // one step forward; 0 and no step at the end
  int Previous();      // one step back; 0 and no step at the beginning

  // The next collation order; 0 at the end. A character with several orders gives them in turn and is left behind with
  // its last one. Next and Previous drop what is pending.
  unsigned short GetNextOrder();

  // Rewrites the text from the position on through op into `target` (the text's code set, host byte order) of `size`
  // bytes, a terminator included, and returns the bytes written, terminator included. What does not fit is dropped at
  // a character. 0 when there is not even room for the terminator.
  unsigned long Transform(KtCharOperation& op, char* target, unsigned long size);

private:
  unsigned short Unit() const;

  const char* text_;
  const KtCodeSet* set_;
  unsigned long length_;
  unsigned long position_;
  unsigned short pending_[KtUnicodeProps::kMaxOrders];
  unsigned char pendingCount_;
  unsigned char codeSet_;
  unsigned char language_;
  unsigned char kind_;
  unsigned char flag_;
};

#endif
