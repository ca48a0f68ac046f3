// string_ops.cpp - life, conversion and text forms of strings.
#include "ops/string_ops.h"

#include "ops/string_array.h"
#include "values/append_whole.h"
#include "values/null_text.h"
#include "values/string_edit.h"

namespace kt {
namespace {

KtString* stringsAt(void* values) { return static_cast<KtString*>(values); }

// Appends a part of a format, as it lies.
void appendFormat(KtString& out, const char* from, const char* to) {
  append(out, from, narrowSet(), static_cast<unsigned long>(to - from));
}

bool isNullText(const KtString& text) { return text.EqualsIgnoreLanguage(nullPrintString()) != 0; }

}  // namespace

KtTypeConvertData* StringArrayOps::convertTo(void* values, unsigned long count) {
  const KtString* strings = stringsAt(values);
  return convertToStrings(count, [strings](unsigned long i) { return strings[i]; });
}

namespace {

void printText(KtString& out, const KtString& value, const char* format) {
  const char* from = format;  // of what is not yet appended
  bool isPrinted = false;
  for (const char* at = format; *at != 0;) {
    const bool isText = at[0] == '%' && at[1] == 's' && !isPrinted;
    const bool isPercent = at[0] == '%' && at[1] == '%';
    if (!isText && !isPercent) {
      ++at;
      continue;
    }
    appendFormat(out, from, isText ? at : at + 1);
    if (isText) out += value;
    isPrinted = isPrinted || isText;
    at += 2;
    from = at;
  }
  appendFormat(out, from, from + std::strlen(from));
}

[[gnu::noinline]] KtString& printWhole(KtString& out, const KtString& value, const char* format) {
  const AppendWhole whole(out);
  const LastingFormat lasting(out, format);
  printText(out, value, lasting.text());
  return out;
}

}  // namespace

KtString& printString(KtString& out, const KtString* value, const char* format) {
  if (value == nullptr) return out;
  if (format == nullptr || std::strcmp(format, "%s") == 0) return out += *value;
  return printWhole(out, *value, format);
}

template <class Kind>
void* StringRowOps<Kind>::convertFrom(KtTypeConvertData* data, unsigned long count) {
  return makeFilled<StringArrayOps>(count, [data](void* values, unsigned long i) {
    const KtString* string = stringAt(data, i);
    if (string != nullptr && (Kind::kHasNull || !string->IsNullValue())) {
      at(values)[i] = *string;
    } else if (Kind::kHasNull) {
      at(values)[i].SetNullValue();
    }
  });
}

template <class Kind>
int StringRowOps<Kind>::isNull(void* value) {
  return Kind::kHasNull ? stringsAt(value)->IsNullValue() : 0;
}

template <class Kind>
int StringRowOps<Kind>::setNull(void* value) {
  return stringsAt(value)->SetNullValue();
}

template <class Kind>
KtString& StringRowOps<Kind>::print(KtString& out, void* values, const char* format, unsigned long) {
  if (values == nullptr || isNull(values) == 0) return printString(out, stringsAt(values), format);
  out = nullPrintString();
  return out;
}

template <class Kind>
void* StringRowOps<Kind>::scan(void* values, KtString& in, const char*, unsigned long) {
  if (values == nullptr) return nullptr;
  if (Kind::kHasNull && isNullText(in)) {
    setNull(values);
  } else {
    *stringsAt(values) = in;
  }
  return values;
}

template <class Kind>
void* StringRowOps<Kind>::defaultValue(unsigned long count, int asNull) {
  if (!Kind::kHasNull || asNull == 0) return convertEmptyStrings(&convertFrom, count);
  KtString* values = createStrings(count);
  for (unsigned long i = 0; values != nullptr && i < count; ++i) values[i].SetNullValue();
  return values;
}

#define KT_INSTANTIATE(Kind) template struct StringRowOps<Kind>;
KT_FOR_STRING_KINDS(KT_INSTANTIATE)

}  // namespace kt
