// KtTypeMgr: the older conversions, in which the texts of all values are one string.
#include "kttypmgr.h"

#include "table/type_table.h"
#include "text/string_block.h"
#include "text/text_units.h"
#include "values/string_edit.h"

#include <algorithm>
#include <bitset>
#include <memory>

namespace {

// The row of the strings that the manager makes.
KtTypeDescriptor& stringRow(const kt::TypeTable table) { return *table[KT_ID_KtString]; }

// --- joining ----------------------------------------------------------------------------------------------------------

constexpr unsigned long kChunk = 128;  // characters that are converted at once

// Part of a text in the units that it gets in another code set, as appending converts it, and back again.
class Chunk {
public:
  Chunk(const KtString& text, unsigned long at, unsigned char codeSet)
      : count_(std::min<unsigned long>(text.Len() - at, kChunk)), width_(KtCodeSet::CharSizeOf(codeSet)) {
    const char* from = text.buffer + at * text.CharSize();
    const bool asItStands = text.codeSet == 0 && width_ == 1;
    const unsigned char source = asItStands ? codeSet : text.codeSet;
    kt::mapUnits(units_, codeSet, from, source, count_);
    char back[sizeof units_];
    kt::mapUnits(back, source, units_, codeSet, count_);
    isWhole_ = std::equal(back, back + count_ * text.CharSize(), from);
  }

  unsigned long count() const { return count_; }
  std::uint16_t operator[](unsigned long i) const { return kt::unitAt(units_, i, width_); }
  bool isWhole() const { return isWhole_; }  // no character is lost

private:
  char units_[2 * kChunk];
  unsigned long count_;
  unsigned long width_;
  bool isWhole_;
};

// The texts of a holder, as they become parts of a text in a code set.
struct Survey {
  std::bitset<0x10000> units;     // what they are made of
  unsigned long long length = 0;  // of all of them
  bool isWhole = true;

  void add(const KtString& text, unsigned char codeSet) {
    const unsigned long end = text.Len();
    length += end;
    for (unsigned long at = 0; at < end; at += kChunk) {
      const Chunk chunk(text, at, codeSet);
      for (unsigned long i = 0; i < chunk.count(); ++i) units.set(chunk[i]);
      isWhole = isWhole && chunk.isWhole();
    }
  }
};

Survey survey(const KtTypeConvertData& holder, unsigned long count, unsigned char codeSet) {
  Survey all;
  for (unsigned long i = 0; i < count; ++i) {
    const KtString* text = holder.GetString(static_cast<int>(i));
    if (text != nullptr) all.add(*text, codeSet);
  }
  return all;
}

// A character that is none of theirs: the first of the codes 1 to 254, or ",".
char findSeparator(const Survey& texts, unsigned char codeSet) {
  for (int code = 1; code < 255; ++code) {
    const char separator = static_cast<char>(code);
    char unit[2];
    kt::mapUnits(unit, codeSet, &separator, kt::narrowSet(), 1);
    const std::uint16_t stored = kt::unitAt(unit, 0, KtCodeSet::CharSizeOf(codeSet));
    if (stored != 0 && !texts.units.test(stored)) return separator;
  }
  return ',';
}

// Each text of the holder with a separator behind it. False when memory or the room of a string do not suffice: without
// one of its separators the text would be one of other values.
bool join(KtString& joined, const KtTypeConvertData& holder, unsigned long count) {
  Survey texts = survey(holder, count, joined.codeSet);
  if (!texts.isWhole) {
    joined.codeSet = kt::wideSet();
    texts = survey(holder, count, joined.codeSet);
  }
  if ((texts.length + count + 1) * joined.CharSize() > kt::kMaxTextBytes) return false;
  const char separator = findSeparator(texts, joined.codeSet);
  for (unsigned long i = 0; i < count; ++i) {
    const KtString* text = holder.GetString(static_cast<int>(i));
    if (text != nullptr && !kt::append(joined, text->buffer, text->codeSet, text->Len())) return false;
    if (!kt::append(joined, &separator, kt::narrowSet(), 1)) return false;
  }
  return true;
}

// --- taking apart -----------------------------------------------------------------------------------------------------

// The pieces of a text in turn: what stands before each separator, which is the last character of the text. Looked for
// by its number: to a language other characters may equal it.
class Pieces {
public:
  explicit Pieces(const KtString& text) : text_(text), length_(text.Len()), width_(text.CharSize()) {
    separator_ = length_ == 0 ? ',' : kt::unitAt(text.buffer, length_ - 1, width_);
  }

  unsigned long count() const {
    unsigned long separators = 0;
    for (unsigned long i = 0; i < length_; ++i) separators += kt::unitAt(text_.buffer, i, width_) == separator_ ? 1 : 0;
    return separators + 1;
  }

  // The next piece, or nothing behind the last separator. False when memory is exhausted.
  bool take(KtString& piece) {
    piece.codeSet = text_.codeSet;
    piece.language = text_.language;
    const unsigned long from = at_;
    if (from == length_) return true;
    while (kt::unitAt(text_.buffer, at_, width_) != separator_) ++at_;
    return kt::append(piece, text_.buffer + from * width_, text_.codeSet, at_++ - from);
  }

private:
  const KtString& text_;
  unsigned long length_;
  unsigned long width_;
  std::uint16_t separator_;
  unsigned long at_ = 0;
};

}  // namespace

KtString* KtTypeMgr::ConvertToKtStringOld(void* values, char id, unsigned long count) {
  const std::unique_ptr<KtTypeConvertData> holder(ConvertTo(id, values, count));
  if (holder == nullptr) return nullptr;
  auto* joined = static_cast<KtString*>(stringRow(table_).Create(1));
  if (joined == nullptr || join(*joined, *holder, count)) return joined;
  return static_cast<KtString*>(stringRow(table_).Delete(joined, 1));
}

void* KtTypeMgr::ConvertFromKtStringOld(KtString* text, char id, unsigned long count) {
  const KtConvertFromFunc convertFrom = Row(id).ConvertFrom;
  if (convertFrom == nullptr) return nullptr;
  Pieces pieces(*text);
  const unsigned long pieceCount = pieces.count();
  auto* strings = static_cast<KtString*>(stringRow(table_).Create(pieceCount));
  if (strings == nullptr) return nullptr;
  KtTypeConvertData holder(KT_ID_KtString, pieceCount, strings, this);
  for (unsigned long i = 0; i < pieceCount; ++i) {
    if (!pieces.take(strings[i])) return nullptr;
  }
  void* values = convertFrom(&holder, count);
  if (values != nullptr) kt::release(*text);
  return values;
}
