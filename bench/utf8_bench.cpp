// UTF-8 to text of 16-bit characters and back: ASCII, short names, accented text.
#include "bench_job.h"
#include "name_data.h"

#include <ktmbs.h>

#include <algorithm>
#include <cstring>

#if defined(KT_HAVE_ICU)
#include <unicode/ustring.h>
#endif
#if defined(KT_HAVE_SIMDUTF)
#include <simdutf.h>
#endif

namespace kt::bench {
namespace {

constexpr std::size_t kLongest = 32000;  // bytes: one call takes at most 32,767

// What is converted, one call a text, and room for one result.
struct Utf8Data {
  std::vector<std::string> utf8;
  std::vector<KtString> texts;
  std::vector<unsigned short> units = std::vector<unsigned short>(kLongest + 1);
  std::vector<char> bytes = std::vector<char>(kLongest + 1);
};

void decodeKttm(Utf8Data& data) {
  for (std::string& text : data.utf8)
    keep(KtMultiByteStr2WCharStr(data.units.data(), static_cast<int>(data.units.size()), text.data(),
                                 static_cast<int>(text.size())));
}

void encodeKttm(Utf8Data& data) {
  for (const KtString& text : data.texts)
    keep(KtString2KtMBS(text, data.bytes.data(), static_cast<long>(data.bytes.size())));
}

#if defined(KT_HAVE_ICU)
void decodeIcu(Utf8Data& data) {
  for (const std::string& text : data.utf8) {
    UErrorCode status = U_ZERO_ERROR;
    int length;
    u_strFromUTF8(reinterpret_cast<UChar*>(data.units.data()), static_cast<int>(data.units.size()), &length,
                  text.data(), static_cast<int>(text.size()), &status);
    keep(length);
  }
}

void encodeIcu(Utf8Data& data) {
  for (const KtString& text : data.texts) {
    UErrorCode status = U_ZERO_ERROR;
    int length;
    u_strToUTF8(data.bytes.data(), static_cast<int>(data.bytes.size()), &length,
                reinterpret_cast<const UChar*>(text.buffer), text.bufferSize / 2 - 1, &status);
    keep(length);
  }
}
#endif

#if defined(KT_HAVE_SIMDUTF)
void decodeSimdutf(Utf8Data& data) {
  for (const std::string& text : data.utf8)
    keep(simdutf::convert_utf8_to_utf16(text.data(), text.size(), reinterpret_cast<char16_t*>(data.units.data())));
}

void encodeSimdutf(Utf8Data& data) {
  for (const KtString& text : data.texts)
    keep(simdutf::convert_utf16_to_utf8(reinterpret_cast<const char16_t*>(text.buffer), text.bufferSize / 2u - 1,
                                        data.bytes.data()));
}
#endif

// kttm turns every text into the other form exactly.
bool kttmConverts(Utf8Data& data) {
  for (std::size_t i = 0; i < data.utf8.size(); ++i) {
    std::string& utf8 = data.utf8[i];
    const int count = KtMultiByteStr2WCharStr(data.units.data(), static_cast<int>(data.units.size()), utf8.data(),
                                              static_cast<int>(utf8.size()));
    if (count != data.texts[i].Len() ||
        std::memcmp(data.units.data(), data.texts[i].buffer, data.texts[i].bufferSize - 2u))
      return false;
    const long bytes = KtString2KtMBS(data.texts[i], data.bytes.data(), static_cast<long>(data.bytes.size()));
    if (std::string(data.bytes.data(), bytes < 0 ? 0 : static_cast<std::size_t>(bytes)) != utf8) return false;
  }
  return true;
}

using Convert = void (*)(Utf8Data&);

// A peer goes through all texts and leaves the last one in the room.
[[maybe_unused]] bool peerConverts(Utf8Data& data, Convert decode, Convert encode) {
  std::fill(data.units.begin(), data.units.end(), static_cast<unsigned short>(0));
  std::fill(data.bytes.begin(), data.bytes.end(), '\0');
  decode(data), encode(data);
  const KtString& last = data.texts.back();
  return std::memcmp(data.units.data(), last.buffer, last.bufferSize) == 0 &&
         std::memcmp(data.bytes.data(), data.utf8.back().c_str(), data.utf8.back().size() + 1) == 0;
}

bool convertsAlike(Utf8Data& data) {
#if defined(KT_HAVE_ICU)
  if (!peerConverts(data, decodeIcu, encodeIcu)) return false;
#endif
#if defined(KT_HAVE_SIMDUTF)
  if (!peerConverts(data, decodeSimdutf, encodeSimdutf)) return false;
#endif
  return kttmConverts(data);
}

bool isPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char ch) { return static_cast<signed char>(ch) >= 0; });
}

std::unique_ptr<Utf8Data> dataOf(std::vector<std::string> utf8) {
  auto data = std::make_unique<Utf8Data>();
  data->utf8 = std::move(utf8);
  for (const std::string& text : data->utf8) {
    const std::u16string decodedText = decoded(text);
    data->texts.emplace_back(units(decodedText), static_cast<unsigned short>(decodedText.size()));
  }
  return data;
}

// One text of names, blank between: the plain ones, or those with an accent.
std::unique_ptr<Utf8Data> longText(bool plain) {
  std::string text;
  for (const std::string& name : cityNames(kUnicode).utf8) {
    if (isPlain(name) != plain) continue;
    if (text.size() + name.size() + 1 > kLongest) break;
    text += name;
    text += ' ';
  }
  return dataOf({text});
}

std::unique_ptr<Utf8Data> shortNames() { return dataOf(cityNames(kUnicode, kBatch).utf8); }

struct Subject {
  const char* name;
  long items;
  std::unique_ptr<Utf8Data> (*make)();
};

constexpr Subject kSubjects[] = {{"ascii", kLongest, [] { return longText(true); }},
                                 {"names", kBatch, shortNames},
                                 {"accented", kLongest, [] { return longText(false); }}};

void addJobs() {
  for (const Subject& subject : kSubjects) {
    Job<Utf8Data> decode(std::string("utf8_decode_") + subject.name, 0, subject.items, 0, subject.make, convertsAlike);
    Job<Utf8Data> encode(std::string("utf8_encode_") + subject.name, 0, subject.items, 0, subject.make, convertsAlike);
    decode.contestant("kttm", decodeKttm);
    encode.contestant("kttm", encodeKttm);
#if defined(KT_HAVE_ICU)
    decode.contestant("icu", decodeIcu);
    encode.contestant("icu", encodeIcu);
#endif
#if defined(KT_HAVE_SIMDUTF)
    decode.contestant("simdutf", decodeSimdutf);
    encode.contestant("simdutf", encodeSimdutf);
#endif
  }
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
