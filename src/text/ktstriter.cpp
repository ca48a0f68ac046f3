// ktstriter.cpp - the string iterator.
#include "ktstriter.h"

#include "text_units.h"

namespace {

constexpr unsigned char kDefault8 = 255;
constexpr unsigned short kMoreOrders = 0xFFFF;  // of an order page under an alphabetic kind

// Writes characters behind each other and keeps room for the terminator.
class UnitWriter {
public:
  UnitWriter(char* target, unsigned long size, unsigned long width)
      : target_(target), room_(size / width - 1), width_(width) {}

  // All of them, or none where they do not fit. The character 0 would end the text: it is dropped.
  bool write(const KtChar* characters, int count) {
    if (static_cast<unsigned long>(count) > room_ - written_) {
      return false;
    }
    for (int i = 0; i < count; ++i) {
      if (characters[i].code != 0) {
        kt::putUnit(target_, written_++, width_, characters[i].code);
      }
    }
    return true;
  }

  unsigned long finish() {
    kt::putUnit(target_, written_, width_, 0);
    return (written_ + 1) * width_;
  }

private:
  char* target_;
  unsigned long room_;
  unsigned long width_;
  unsigned long written_ = 0;
};

int clippedCount(int count) {
  if (count < 0) {
    return 0;
  }
  return count > KtCharOperation::kMaxCharacters ? KtCharOperation::kMaxCharacters : count;
}

}  // namespace

KtStringIterator::KtStringIterator(const char* text, unsigned char codeSet, unsigned char language, unsigned char flag,
                                   unsigned long length)
    : text_(text),
      length_(text == nullptr ? 0 : length),
      position_(0),
      pendingCount_(0),
      codeSet_(codeSet == kDefault8 ? kt::narrowSet() : codeSet),
      language_(language),
      flag_(flag) {
  set_ = &KtCodeSet::Get(codeSet_);
  kind_ = KtUnicodeProps::CollationKind(language_);
}

unsigned short KtStringIterator::Unit() const {
  if (position_ >= length_) {
    return 0;
  }
  const std::uint16_t unit = kt::unitAt(text_, position_, set_->CharSize());
  return set_->CharSize() == 2 && kt::isSwappedText(flag_) ? kt::swapped(unit) : unit;
}

int KtStringIterator::AtEnd() const { return Unit() == 0; }

KtChar KtStringIterator::Get() const { return {Unit(), codeSet_, language_}; }

KtChar KtStringIterator::GetNext() {
  const KtChar ch = Get();
  Next();
  return ch;
}

int KtStringIterator::Next() {
  pendingCount_ = 0;
  if (AtEnd()) {
    return 0;
  }
  ++position_;
  return 1;
}

int KtStringIterator::Previous() {
  pendingCount_ = 0;
  if (position_ == 0) {
    return 0;
  }
  --position_;
  return 1;
}

unsigned short KtStringIterator::GetNextOrder() {
  if (pendingCount_ == 0) {
    const unsigned short unit = Unit();
    if (unit == 0) {
      return 0;
    }
    if (const unsigned short* orders = set_->Orders(kind_)) {
      ++position_;
      return orders[unit];
    }
    const KtUnicodeProps::Page& page = KtUnicodeProps::OrderPages(kind_)[unit >> 8];
    const auto order = static_cast<unsigned short>(page.orders[unit & 0xFF] + page.offset);
    if (order != kMoreOrders || kind_ >= KtUnicodeProps::kIdeographicKind) {
      ++position_;
      return order;
    }
    pendingCount_ = static_cast<unsigned char>(KtUnicodeProps::Orders(unit, kind_, pending_));
  }
  const unsigned short order = pending_[0];
  pending_[0] = pending_[1];
  pending_[1] = pending_[2];
  if (--pendingCount_ == 0) {
    ++position_;
  }
  return order;
}

unsigned long KtStringIterator::Transform(KtCharOperation& op, char* target, unsigned long size) {
  const unsigned long width = set_->CharSize();
  if (size < width) {
    return 0;
  }
  UnitWriter writer(target, size, width);
  for (; AtEnd() == 0; Next()) {
    const KtChar none(0, codeSet_, language_);
    KtChar out[KtCharOperation::kMaxCharacters] = {none, none};
    if (!writer.write(out, clippedCount(op.Apply(Get(), out)))) {
      break;
    }
  }
  return writer.finish();
}
