// The worked examples of docs/formats.md: each is stored, sized and loaded here, and its bytes stand in the document.
#include <kttm.h>

#include <gtest/gtest.h>

#include "string_bytes.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace kt_test;

struct Example {
  int id;
  std::vector<const char*> texts;  // as strings convert to values; of a blob its bytes; nullptr for null
  unsigned char format;
  const char* disk;
};

const Example kExamples[] = {
    {KT_ID_char, {"65"}, 0, "41"},
    {KT_ID_short, {"-2"}, 2, "FF FE"},
    {KT_ID_short, {"-2"}, 0, "FE FF"},
    {KT_ID_KtDWord, {"16909060"}, 2, "01 02 03 04"},
    {KT_ID_KtDWord, {"16909060"}, 0, "04 03 02 01"},
    {KT_ID_BlockId, {"16909060"}, 0, "04 03 02 01"},
    {KT_ID_float, {"1.5"}, 2, "3F C0 00 00"},
    {KT_ID_float, {"1.5"}, 0, "00 00 C0 3F"},
    {KT_ID_double, {"-2"}, 2, "C0 00 00 00 00 00 00 00"},
    {KT_ID_double, {"-2"}, 0, "00 00 00 00 00 00 00 C0"},
    {KT_ID_int, {"-2"}, 4, "FE FF"},
    {KT_ID_unsigned, {"65537"}, 4, "01 00"},
    {KT_ID_KtNull_long, {"5", nullptr}, 0, "00 05 00 00 00 01 00 00 00 00"},
    {KT_ID_KtNull_double, {"1.5"}, 2, "00 3F F8 00 00 00 00 00 00"},
    {KT_ID_KtNull_int, {"5"}, 4, "00 05 00"},
    {KT_ID_KtNull_char, {"65", nullptr}, 8, "41 00 00 01"},
    {KT_ID_KtInt64, {"4294967298"}, 2, "00 00 00 02 00 00 00 01"},
    {KT_ID_KtInt64, {"4294967298"}, 0, "02 00 00 00 01 00 00 00"},
    {KT_ID_KtInt64, {"-2"}, 2, "FF FF FF FE FF FF FF FF"},
    {KT_ID_KtInt64, {"-2"}, 0, "FE FF FF FF FF FF FF FF"},
    {KT_ID_KtBoolean, {"FALSE", "TRUE", "{NULL}"}, 2, "00 01 FF"},
    {KT_ID_KtObjId, {"(1-42#7)"}, 2, "00 00 00 07 00 00 00 2A 00 01"},
    {KT_ID_KtObjId, {"(1-42#7)"}, 8, "07 00 00 00 2A 00 00 00 01 00"},
    {KT_ID_KtRef, {"(5:0-2#3, 9)"}, 2, "00 00 00 03 00 00 00 02 00 00 00 05 00 09"},
    {KT_ID_KtRef, {"(5:0-2#3, 9)"}, 1, "03 00 00 00 02 00 00 00 00 00 05 00 09 00"},
    {KT_ID_KtClassId, {"(9v1)"}, 2, "00 09 00 01"},
    {KT_ID_KtClassId, {"(9v1)"}, 1, "09 00 01 00"},
    {KT_ID_KtClassId, {nullptr}, 0, "FF FF FF FF"},
    {KT_ID_KtBlob, {nullptr, "ab"}, 2, "00 00 00 0A FF FF FF FF 00 00 00 02 61 62"},
    {KT_ID_KtBlob, {nullptr, "ab"}, 1, "0A 00 00 00 FF FF FF FF 02 00 00 00 61 62"},
    {KT_ID_KtBlob, {""}, 2, "00 00 00 04 00 00 00 00"},
    {KT_ID_KtBlob, {""}, 0, "04 00 00 00 00 00 00 00"},
    {KT_ID_KtBlob, {}, 0, "00 00 00 00"},
    {KT_ID_KtSeal, {"188897262065272"}, 0, "AB CD 12 34 56 78"},
    {KT_ID_KtSeal, {"188897262065272"}, 2, "AB CD 12 34 56 78"},
    {KT_ID_KtSeal, {"1"}, 8, "00 00 00 00 00 01"},
};

void* makeBlobs(KtTypeMgr& mgr, const Example& example) {
  auto* blobs = static_cast<KtBlob*>(mgr.Create(KT_ID_KtBlob, example.texts.size()));
  for (std::size_t i = 0; i < example.texts.size(); ++i) {
    const char* text = example.texts[i];
    if (text == nullptr) blobs[i].SetNullValue();
    if (text != nullptr) blobs[i].SetTo(text, static_cast<long>(std::strlen(text)));
  }
  return blobs;
}

void* makeValues(KtTypeMgr& mgr, const Example& example) {
  if (example.id == KT_ID_KtBlob) return makeBlobs(mgr, example);
  std::vector<KtString> strings;
  for (const char* text : example.texts) {
    strings.emplace_back(text == nullptr ? "" : text);
    if (text == nullptr) strings.back().SetNullValue();
  }
  KtTypeConvertData holder(KT_ID_KtString, strings.size(), strings.data(), nullptr);
  void* values = mgr.ConvertFrom(static_cast<char>(example.id), &holder, strings.size());
  holder.typeManager = nullptr;  // the strings stay ours
  return values;
}

// The document without what only lines its columns up.
std::string documentText() {
  std::ifstream file(KT_TESTS_DIR "/../docs/formats.md");
  std::string text, line;
  while (std::getline(file, line)) {
    for (const char ch : line)
      if (ch != ' ' || text.empty() || text.back() != ' ') text += ch;
    text += '\n';
  }
  return text;
}

TEST(Formats, documented_examples_are_what_is_stored) {
  KtTypeMgr mgr(12);
  for (const Example& example : kExamples) {
    const auto id = static_cast<char>(example.id);
    SCOPED_TRACE(std::string(mgr.NameGet(id, nullptr)) + ": " + example.disk);
    const unsigned long count = example.texts.size();
    const Bytes expected = hex(example.disk);
    void* values = makeValues(mgr, example);
    EXPECT_EQ(mgr.DiskLenGet(id, values, example.format, count, 8), expected.size());
    Block target(Bytes(expected.size(), 0xEE));
    EXPECT_EQ(mgr.Store(id, target.get(), values, example.format, count), expected.size());
    EXPECT_EQ(Bytes(target.get(), target.get() + target.size), expected);

    void* loaded = mgr.Create(id, count);
    EXPECT_EQ(mgr.Load(id, loaded, target.get(), example.format, count), expected.size());
    Block again(Bytes(expected.size(), 0xEE));
    mgr.Store(id, again.get(), loaded, example.format, count);
    EXPECT_EQ(Bytes(again.get(), again.get() + again.size), expected);
    mgr.Delete(id, loaded, count);
    mgr.Delete(id, values, count);
  }
}

// Types that store alike share their examples.
TEST(Formats, every_type_has_an_example) {
  const std::set<std::string> elsewhere = {"KtString", "KtIString",   "KtCaseIString",  // string_storage_test.cpp
                                           "KtDate",   "KtTime",      "KtDateTime",    "d_Date",
                                           "d_Time",   "d_Timestamp", "d_Interval",  // date_ops_test.cpp
                                           "illegal"};
  const std::string nullable = "KtNull_";  // mark and scalar in every one
  const KtTypeMgr mgr(12);
  std::set<std::string> guilty;
  for (int i = 0; i < KtTYPE_COUNT; ++i) {
    const auto id = static_cast<char>(i);
    const std::string name = mgr.NameGet(id, nullptr);
    const auto storesAlike = [&](const Example& example) {
      return mgr.StorePtrGet(static_cast<char>(example.id)) == mgr.StorePtrGet(id);
    };
    if (elsewhere.count(name) != 0 || name.compare(0, nullable.size(), nullable) == 0) continue;
    if (std::none_of(std::begin(kExamples), std::end(kExamples), storesAlike)) guilty.insert(name);
  }
  EXPECT_EQ(guilty, std::set<std::string>{});
}

TEST(Formats, the_document_shows_the_bytes_of_every_example) {
  const std::string document = documentText();
  for (const Example& example : kExamples) {
    if (example.id == KT_ID_char) continue;  // one byte shows nothing
    EXPECT_NE(document.find(example.disk), std::string::npos) << example.disk;
  }
}

}  // namespace
