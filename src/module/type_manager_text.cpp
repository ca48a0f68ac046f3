// KtTypeMgr: the operations that travel through text, and the null fallbacks that use it.
#include "kttypmgr.h"

#include "ops/scalar_text.h"
#include "table/type_table.h"
#include "text/format_or.h"
#include "values/append_whole.h"
#include "values/null_text.h"
#include "values/string_edit.h"

namespace {

// The string row of the manager's own table.
KtTypeDescriptor& stringRow(const kt::TypeTable table) { return *table[KT_ID_KtString]; }

// Elements one by one, with commas between them, each text in the code set of what it is appended to.
[[gnu::noinline]] void printList(const KtTypeMgr& manager, char id, KtPrintToKtStringFunc print, KtString& out,
                                 void* values, const char* format, unsigned long count) {
  for (unsigned long i = 0; i < count; ++i) {
    KtString text(out.codeSet, out.language);
    out += print(text, manager.GetArrayElement(id, values, i, count), format, 1);
    if (i + 1 < count) out += ',';
  }
}

// A list whose values or format lie in the text that it is appended to is put together beside it. A list that lacks a
// part for want of memory is no list: out keeps what it had.
[[gnu::noinline]] KtString& appendList(const KtTypeMgr& manager, char id, KtPrintToKtStringFunc print, KtString& out,
                                       void* values, const char* format, unsigned long count) {
  const kt::AppendWhole whole(out);
  if (kt::liesIn(out, format) || kt::liesIn(out, static_cast<const char*>(values))) {
    KtString list(out.codeSet, out.language);
    printList(manager, id, print, list, values, format, count);
    out += list;
  } else {
    printList(manager, id, print, out, values, format, count);
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
  format = kt::formatOr(format, row.Format);
  // Characters print as one text, also where one of their rows has got another function. The illegal row prints nothing
  // at all, so no commas either. Null has no elements to go through: the row knows what to do with it.
  const bool asOneText = count < 2 || print == kt::printChars || row.MemLen == 0 || values == nullptr;
  return asOneText ? print(out, values, format, count) : appendList(*this, id, print, out, values, format, count);
}

void* KtTypeMgr::ScanFromKtString(char id, void* values, KtString& in, const char* format, unsigned long count) const {
  const KtTypeDescriptor& row = Row(id);
  if (row.ScanFromKtString == nullptr) return values;
  return row.ScanFromKtString(values, in, kt::formatOr(format, row.Format), count);
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
