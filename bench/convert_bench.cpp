// Converting text between 8-bit code sets, beside iconv: short names, and one long text.
#include "bench_job.h"
#include "name_data.h"

#include <iconv.h>
#include <cstring>

namespace kt::bench {
namespace {

constexpr unsigned char kFrom = 2, kTo = 11;  // ISO 8859-2 to Windows-1250: not one letter range stays in place
constexpr long kLongText = 32000;

struct ConvertData {
  std::vector<KtString> texts;
  KtString target{kTo, kLanguage};
  std::vector<char> room = std::vector<char>(kLongText + 1);
  iconv_t peer = iconv_open("CP1250", "ISO-8859-2");

  ~ConvertData() { iconv_close(peer); }
};

void convertTexts(ConvertData& data) {
  for (const KtString& text : data.texts) {
    data.target.CopyMapped(text, kTo, 65535);
    keep(data.target.buffer);
  }
}

std::size_t iconvOne(ConvertData& data, const KtString& text) {
  char* in = text.buffer;
  char* out = data.room.data();
  std::size_t inLeft = text.bufferSize, outLeft = data.room.size();  // the terminator included, as in the string
  iconv(data.peer, &in, &inLeft, &out, &outLeft);
  return data.room.size() - outLeft;
}

void iconvTexts(ConvertData& data) {
  for (const KtString& text : data.texts) keep(iconvOne(data, text));
}

// The same bytes.
bool sameBytes(ConvertData& data) {
  for (const KtString& text : data.texts) {
    data.target.CopyMapped(text, kTo, 65535);
    const std::size_t bytes = iconvOne(data, text);
    if (bytes != data.target.bufferSize || std::memcmp(data.room.data(), data.target.buffer, bytes) != 0) return false;
  }
  return true;
}

std::unique_ptr<ConvertData> names() {
  auto data = std::make_unique<ConvertData>();
  data->texts = cityNames(kFrom, kBatch).texts;
  return data;
}

std::unique_ptr<ConvertData> longText() {
  auto data = std::make_unique<ConvertData>();
  KtString text(kFrom, kLanguage);
  const Names names = cityNames(kFrom);
  for (std::size_t i = 0; text.Len() + names.texts[i].Len() <= kLongText; ++i) text += names.texts[i];
  data->texts.push_back(text);
  return data;
}

void addJobs() {
  Job<ConvertData>("convert_8bit_names", 0, kBatch, 0, names, sameBytes)
      .contestant("kttm", convertTexts)
      .contestant("iconv", iconvTexts);
  Job<ConvertData>("convert_8bit_text", 0, kLongText, kLongText, longText, sameBytes)
      .contestant("kttm", convertTexts)
      .contestant("iconv", iconvTexts);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
