#include <algorithm>

#include "built_once.h"
#include "ktin.h"
#include "tables.h"

namespace {

constexpr unsigned char kUnicodeCode = 253;

struct SetName {
  unsigned char code;
  const char* name;
};

// In the order of the generated tables; Unicode, which has none, comes last.
constexpr SetName kSetNames[kt::kEightBitSets + 1] = {
    {1, "ISO 8859-1"},    {2, "ISO 8859-2"},    {3, "ISO 8859-5"},    {4, "ISO 8859-7"},        {5, "ISO 8859-15"},
    {10, "Windows-1252"}, {11, "Windows-1250"}, {12, "Windows-1251"}, {kUnicodeCode, "Unicode"}};

constinit kt::BuiltOnce<unsigned char, 256> mapTables[kt::kEightBitSets][kt::kEightBitSets];
constinit kt::BuiltOnce<unsigned short, 256> orderTables[kt::kEightBitSets][kt::kAlphabeticKinds];

constexpr int indexOf(unsigned char code) {
  for (int i = 0; i < kt::kEightBitSets; ++i) {
    if (kSetNames[i].code == code) return i;
  }
  return KtCodeSet::CharSizeOf(code) == 1 ? 0 : kt::kEightBitSets;
}

}  // namespace

// Makes the sets at compile time, so that loading the library builds nothing.
struct KtCodeSetRegistry {
  static constexpr KtCodeSet make(int i) {
    KtCodeSet set;
    set.code_ = kSetNames[i].code;
    set.name_ = kSetNames[i].name;
    if (i == kt::kEightBitSets) return set;
    set.toUnicode_ = kt::kToUnicode[i];
    set.toLower_ = kt::kSetToLower[i];
    set.toUpper_ = kt::kSetToUpper[i];
    return set;
  }

  KtCodeSet sets[kt::kEightBitSets + 1] = {make(0), make(1), make(2), make(3), make(4),
                                           make(5), make(6), make(7), make(8)};
  unsigned char indexByCode[256] = {};

  constexpr KtCodeSetRegistry() {
    for (int code = 0; code < 256; ++code) {
      indexByCode[code] = static_cast<unsigned char>(indexOf(static_cast<unsigned char>(code)));
    }
  }
};

namespace {

constinit const KtCodeSetRegistry registry;

int slotOf(const KtCodeSet& set) { return registry.indexByCode[set.Code()]; }

}  // namespace

const KtCodeSet& KtCodeSet::Get(unsigned char code) {
  if (code != 0) return registry.sets[registry.indexByCode[code]];
  // Text of code set 0 has one byte a character, so a native set of 16-bit units cannot stand in for it.
  const unsigned char native = KtLanguageContext::GetNativeCodeSet();
  return registry.sets[CharSizeOf(native) == 1 ? registry.indexByCode[native] : 0];
}

unsigned short KtCodeSet::ToUnicode(unsigned short ch) const {
  return toUnicode_ != nullptr ? toUnicode_[ch & 0xFF] : ch;
}

unsigned short KtCodeSet::FromUnicode(unsigned short unicode) const {
  if (toUnicode_ == nullptr || unicode < 0x80) return unicode;
  const int slot = slotOf(*this);
  const unsigned short* first = kt::kFromUnicodeChars + kt::kFromUnicodeStart[slot];
  const unsigned short* last = kt::kFromUnicodeChars + kt::kFromUnicodeStart[slot + 1];
  const unsigned short* found = std::lower_bound(first, last, unicode);
  if (found == last || *found != unicode) return kSubstitute;
  return kt::kFromUnicodeBytes[found - kt::kFromUnicodeChars];
}

unsigned short KtCodeSet::ToLower(unsigned short ch) const {
  return toLower_ != nullptr ? toLower_[ch & 0xFF] : KtUnicodeProps::ToLower(ch);
}

unsigned short KtCodeSet::ToUpper(unsigned short ch) const {
  return toUpper_ != nullptr ? toUpper_[ch & 0xFF] : KtUnicodeProps::ToUpper(ch);
}

const unsigned char* KtCodeSet::MapTable(const KtCodeSet& target) const {
  if (toUnicode_ == nullptr || target.toUnicode_ == nullptr) return nullptr;
  return mapTables[slotOf(*this)][slotOf(target)].get([&](unsigned char* table) {
    // Within one set even the bytes that its code page leaves undefined stay what they are.
    for (unsigned short ch = 0; ch < 256; ++ch) {
      table[ch] = static_cast<unsigned char>(this == &target ? ch : target.FromUnicode(toUnicode_[ch]));
    }
  });
}

const unsigned short* KtCodeSet::Orders(unsigned char kind) const {
  if (toUnicode_ == nullptr || kind >= KtUnicodeProps::kIdeographicKind) return toUnicode_;
  const int row = kind >= 1 && kind <= kt::kAlphabeticKinds ? kind - 1 : 0;
  return orderTables[slotOf(*this)][row].get([&](unsigned short* table) {
    for (int ch = 0; ch < 256; ++ch) table[ch] = KtUnicodeProps::Order(toUnicode_[ch], kind);
  });
}
