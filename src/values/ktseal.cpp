// ktseal.cpp - the conversions of KtSeal.
#include "ktseal.h"

#include "ktobjid.h"
#include "ktstring.h"

void KtSeal::ConvertFrom(const KtObjId& id) {
  highWord = id.high;
  middleWord = static_cast<std::uint16_t>(id.low >> 16);
  lowWord = static_cast<std::uint16_t>(id.low);
}

void KtSeal::ConvertFrom(const KtInt64& number) {
  highWord = static_cast<std::uint16_t>(number.high);
  middleWord = static_cast<std::uint16_t>(number.low >> 16);
  lowWord = static_cast<std::uint16_t>(number.low);
}

void KtSeal::ConvertTo(KtInt64& number) const {
  number.low = static_cast<std::uint32_t>(middleWord) << 16 | lowWord;
  number.high = highWord;
}

KtString& KtSeal::PrintToKtString(KtString& out) const {
  KtInt64 number;
  ConvertTo(number);
  return number.PrintToKtString(out, "%S");
}

void KtSeal::ScanFromKtString(const KtString& in) {
  KtInt64 number;
  ConvertTo(number);
  number.ScanFromKtString(in, "%S");
  ConvertFrom(number);
}
