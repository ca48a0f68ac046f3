// KtTypeMgr: the operations that travel through text, and the null fallbacks that use it.
#include "kttypmgr.h"

#include "module/manager_row.h"
#include "ops/scalar_text.h"
#include "table/type_table.h"
#include "text/text_units.h"
#include "values/null_text.h"
#include "values/string_edit.h"

namespace {

// The string row of the manager's own table.
KtTypeDescriptor& stringRow(const kt::TypeTable table) { return *table[KT_ID_KtString]; }

// Elements one by one, with commas between them.
[[gnu::noinline]] KtString& printList(const KtTypeMgr& manager, char id, KtPrintToKtStringFunc print, KtString& out,
                                      void* values, const char* format, unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) {
    KtString text;
    out += print(text, manager.GetArrayElement(id, values, i, count), format, 1);
    if (i + 1 < count) out += ',';
  }
  return out;
}

}  // namespace

KtTypeConvertData::~KtTypeConvertData() {
  if (typeManager != nullptr && data != nullptr) {
    typeManager->Delete(typeId, data, static_cast<unsigned long>(count));
    data = nullptr;
  }
  count = 0;
  typeId = KtNO_TYPE;
}

KtTypeConvertData* KtTypeMgr::ConvertTo(char id, void* values, unsigned long count) {
  const KtConvertToFunc convertTo = Row(id).ConvertTo;
  KtTypeConvertData* holder = convertTo == nullptr ? nullptr : convertTo(values, count);
  if (holder != nullptr) holder->typeManager = this;
  return holder;
}

void* KtTypeMgr::ConvertFrom(char id, KtTypeConvertData* data, unsigned long count) {
  if (data != nullptr) data->typeManager = this;
  const KtConvertFromFunc convertFrom = Row(id).ConvertFrom;
  return convertFrom == nullptr ? nullptr : convertFrom(data, count);
}

KtString& KtTypeMgr::PrintToKtString(char id, KtString& out, void* values, const char* format,
                                     unsigned long count) const {
  const KtTypeDescriptor& row = Row(id);
  const KtPrintToKtStringFunc print = row.PrintToKtString;
  if (print == nullptr) return out;
  if (format == nullptr) format = row.Format;
  // Characters print as one text, also where one of their rows has got another function. The illegal row prints nothing
  // at all, so no commas either.
  const bool asOneText = count < 2 || print == kt::printChars || row.MemLen == 0;
  return asOneText ? print(out, values, format, count) : printList(*this, id, print, out, values, format, count);
}

void* KtTypeMgr::ScanFromKtString(char id, void* values, KtString& in, const char* format, unsigned long count) const {
  const KtTypeDescriptor& row = Row(id);
  if (row.ScanFromKtString == nullptr) return values;
  return row.ScanFromKtString(values, in, format == nullptr ? row.Format : format, count);
}

const KtString& KtTypeMgr::GetNullPrintString() { return kt::nullPrintString(); }

void KtTypeMgr::SetNullPrintString(const KtString& text) { kt::setNullPrintString(text); }

int KtTypeMgr::SetNullValue(char id, void* value) {
  const KtTypeDescriptor& row = Row(id);
  if (row.SetNull != nullptr) {
    const int result = row.SetNull(value);
    if (result != KtERR_NOT_APPLICABLE) return result;
  }
  if (row.Assignment != nullptr) {
    void* text = stringRow(table_).Create(1);
    if (text == nullptr) return 0;
    void* converted = nullptr;
    {
      KtTypeConvertData holder(KT_ID_KtString, 1, text, this);
      converted = row.ConvertFrom == nullptr ? nullptr : row.ConvertFrom(&holder, 1);
    }
    if (converted != nullptr) {
      row.Assignment(value, converted, 1, 1);
      row.Delete(converted, 1);
    }
  } else if (row.ScanFromKtString != nullptr) {
    KtString zero = kt::zeroText();
    row.ScanFromKtString(value, zero, row.Format, 1);
  }
  return 0;
}

namespace {

// A character that no string of the holder contains: the first of the codes 1 to 254, or ",".
char findSeparator(const KtTypeConvertData& holder, unsigned long count) {
  for (int code = 1; code < 255; ++code) {
    const KtString separator(static_cast<char>(code));
    bool found = false;
    for (unsigned long i = 0; i < count && !found; ++i) {
      const KtString* text = holder.GetString(static_cast<int>(i));
      if (text == nullptr) return static_cast<char>(code);
      found = text->Find(separator, 0, KtCMP_BINARY | KtCMP_NO_WILDCARDS) >= 0;
    }
    if (!found) return static_cast<char>(code);
  }
  return ',';
}

constexpr unsigned short kExactly = KtCMP_BINARY | KtCMP_NO_WILDCARDS;

// The pieces of a text in turn. Not cut off one by one: that would move the rest of the text for each.
class Pieces {
public:
  Pieces(const KtString& text, const KtString& separator) : text_(text), separator_(separator) {}

  // The text before the next separator; empty when there is none.
  KtString take() {
    KtString piece(text_.codeSet, text_.language);
    const int end = text_.Find(separator_, at_, kExactly);
    if (end < 0) return piece;
    const unsigned long length = static_cast<unsigned long>(end) - at_;
    const char* from = text_.StrGet() + at_ * static_cast<unsigned long>(text_.CharSize());
    if (length != 0) piece.Rebuild(from, text_.codeSet, 0, 0, length, 1, KtString::RebuildMode::kRebuild);
    at_ = static_cast<unsigned short>(end + 1);
    return piece;
  }

private:
  const KtString& text_;
  const KtString& separator_;
  unsigned short at_ = 0;
};

unsigned long countPieces(const KtString& text, const KtString& separator) {
  unsigned long pieces = 1;
  int at = text.Find(separator, 0, kExactly);
  while (at >= 0) {
    ++pieces;
    at = text.Find(separator, static_cast<unsigned short>(at + 1), kExactly);
  }
  return pieces;
}

}  // namespace

KtString* KtTypeMgr::ConvertToKtStringOld(void* values, char id, unsigned long count) {
  KtTypeConvertData* holder = ConvertTo(id, values, count);
  if (holder == nullptr) return nullptr;
  auto* joined = static_cast<KtString*>(stringRow(table_).Create(1));
  const char separator = findSeparator(*holder, count);
  bool isWhole = joined != nullptr;
  for (unsigned long i = 0; isWhole && i < count; ++i) {
    const KtString* text = holder->GetString(static_cast<int>(i));
    if (text != nullptr) isWhole = kt::append(*joined, text->buffer, text->codeSet, text->Len());
    isWhole = isWhole && kt::append(*joined, &separator, kt::narrowSet(), 1);
  }
  delete holder;
  if (isWhole || joined == nullptr) return joined;
  // Without one of its separators the text would be one of other values.
  stringRow(table_).Delete(joined, 1);
  return nullptr;
}

void* KtTypeMgr::ConvertFromKtStringOld(KtString* text, char id, unsigned long count) {
  const KtConvertFromFunc convertFrom = Row(id).ConvertFrom;
  if (convertFrom == nullptr) return nullptr;
  const KtString separator = text->IsEmpty() ? KtString(',') : text->Right(1);
  const unsigned long pieces = countPieces(*text, separator);
  auto* strings = static_cast<KtString*>(stringRow(table_).Create(pieces));
  if (strings == nullptr) return nullptr;
  Pieces rest(*text, separator);
  for (unsigned long i = 0; i < pieces; ++i) {
    KtString piece = rest.take();
    strings[i].Destruct(piece);
  }
  *text = text->Left(0);
  KtTypeConvertData holder(KT_ID_KtString, pieces, strings, this);
  return convertFrom(&holder, count);
}
