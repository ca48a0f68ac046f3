#include "run.h"

#include "../common/utf8.h"

#include <stdexcept>

namespace {

constexpr unsigned char kUnicode = 253;
constexpr unsigned char kNeutral = 0;

}  // namespace

void Run::set(unsigned long i, const std::string& utf8, unsigned char language, const char* format) {
  if (utf8.empty()) {
    mgr_.SetNullValue(id_, at(i));
    return;
  }
  KtString in(kUnicode, language);
  if (KtMBS2KtString(utf8.data(), in, static_cast<long>(utf8.size())) < 0) {
    throw std::runtime_error("not UTF-8: " + utf8);
  }
  mgr_.ScanFromKtString(id_, at(i), in, format, 1);
}

void Run::convert(unsigned long i, const std::string& text) {
  KtString string(text.c_str());
  KtTypeConvertData holder(KT_ID_KtString, 1, &string, nullptr);
  void* value = mgr_.ConvertFrom(id_, &holder, 1);
  holder.typeManager = nullptr;  // the string is not the holder's to free
  if (value == nullptr) throw std::bad_alloc();
  mgr_.AssignmentPtrGet(id_)(at(i), value, 1, 0);
  mgr_.Delete(id_, value, 1);
}

std::string Run::text(unsigned long i, const char* format) const {
  KtString out(kUnicode, kNeutral);  // an 8-bit string would lose what its code set lacks
  return examples::utf8Of(mgr_.PrintToKtString(id_, out, at(i), format, 1));
}

unsigned long Run::nulls() const {
  unsigned long nulls = 0;
  for (unsigned long i = 0; i < count_; ++i) nulls += mgr_.IsNullValue(id_, at(i)) != 0 ? 1 : 0;
  return nulls;
}
