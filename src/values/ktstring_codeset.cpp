// ktstring_codeset.cpp - relabelling and converting strings between code sets.
#include "string_edit.h"
#include "text/text_units.h"

namespace {

bool sizesDiffer(unsigned char a, unsigned char b) { return KtCodeSet::CharSizeOf(a) != KtCodeSet::CharSizeOf(b); }

// Makes target the first count characters of source in code set `code`; false when memory ran out.
bool mapInto(KtString& target, const KtString& source, unsigned char code, unsigned long count, int overflowLine) {
  const unsigned char oldSet = target.codeSet;
  target.codeSet = code;
  // A source of code set 0 would be taken as it stands: it is named by the set that stands in for it.
  const unsigned char sourceSet = source.codeSet == 0 ? KtCodeSet::Get(0).Code() : source.codeSet;
  if (kt::rebuild(target,
                  {.source = source.buffer, .sourceSet = sourceSet, .count = count, .overflowLine = overflowLine})) {
    return true;
  }
  target.codeSet = oldSet;
  return false;
}

// The text in code set `code`, through a new block.
void convert(KtString& s, unsigned char code) {
  KtString converted(code, s.language);
  if (mapInto(converted, s, code, s.Len(), kt::kOverflowLine)) s.Destruct(converted);
}

}  // namespace

int KtString::SetCodeSetCode(unsigned char code) {
  if (sizesDiffer(code, codeSet)) return KtERR_BAD_CODESET;
  codeSet = code;
  return 0;
}

void KtString::SetCodeSet(unsigned char code) {
  if (buffer != nullptr && sizesDiffer(code, codeSet)) {
    convert(*this, code);
  } else {
    codeSet = code;
  }
}

int KtString::MapToCodeSet(unsigned char code) {
  if (code == 0) return KtERR_BAD_CODESET;
  if (code == codeSet) return 0;
  if (buffer != nullptr && !sizesDiffer(code, codeSet)) {
    kt::mapUnits(buffer, code, buffer, codeSet, bufferSize / CharSize());
  }
  SetCodeSet(code);
  return 0;
}

int KtString::CopyMapped(const KtString& source, unsigned char code, int count) {
  if (this == &source) return KtERR_BAD_CODESET;
  if (!mapInto(*this, source, code, kt::countOf(count, source.Len()), kt::kCopyOverflowLine)) return 0;
  language = source.language;
  return buffer == nullptr ? 0 : bufferSize / CharSize() - 1;
}
