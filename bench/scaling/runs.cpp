#include "runs.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace kt::scaling {
namespace {

constexpr std::size_t kPage = 4096;

// A text that the type converts to a value of usual length.
const char* textFor(char id) {
  switch (id) {
    case KT_ID_KtString:
    case KT_ID_KtIString:
    case KT_ID_KtCaseIString:
    case KT_ID_KtBlob: return "Abenberg, Mittelfranken";
    case KT_ID_KtObjId: return "(1-42#7)";
    case KT_ID_KtClassId: return "(9v1)";
    case KT_ID_KtRef: return "(5:1-42#7, 9)";
    case KT_ID_KtDateTime: return "2453550:45296";
    case KT_ID_KtBoolean: return "true";
    case KT_ID_d_Date: return "2005-06-28";
    case KT_ID_d_Time: return "14:05:09.25+02:00";
    case KT_ID_d_Timestamp: return "2005-06-28 14:05:09.25+02:00";
    default: return "1234";
  }
}

}  // namespace

Block::Block(std::size_t size, Place place) : bytes_(new char[size + 2 * kPage]()), size_(size) {
  const std::size_t toPage = kPage - reinterpret_cast<std::uintptr_t>(bytes_.get()) % kPage;
  data_ = bytes_.get() + toPage + place;
}

Runs::Runs(Manager& manager, char id, unsigned long count) : manager_(manager), id_(id), count_(count) {
  makeValues();
  for (std::size_t i = 0; i < std::size(kForms); ++i) disk[i] = stored(a, kForms[i]);
  otherDisk = stored(b, kDisk);
  endDisk = stored(end, kDisk);
  const auto isShorter = [](const Block& x, const Block& y) { return x.size() < y.size(); };
  room = Block(std::max_element(std::begin(disk), std::end(disk), isShorter)->size(), Block::kRecordRoom);
  keys = Block(manager.DiskLenGet(id, a.data(), kKey, count, kMemory), Block::kRecordRoom);
  oneKey = Block(manager.DiskLenGet(id, a.data(), kKey, 1, kMemory), Block::kRecords);
  manager.Translate(id, oneKey.data(), kKey, oneKey.size(), a.data(), kMemory, 0, 1);
  texts.reset(manager.ConvertTo(id, a.data(), count));
  oldText = count <= kTextSize ? manager.ConvertToKtStringOld(a.data(), id, count) : nullptr;
  line.Fill(static_cast<unsigned short>(std::min(count, kTextSize)), '1');
}

Runs::~Runs() {
  if (oldText != nullptr) manager_.Delete(KT_ID_KtString, oldText, 1);
  for (const Block* run : {&a, &b, &end, &target}) manager_.DestructorPtrGet(id_)(run->data(), count_, 0);
}

void Runs::assign(const Block& run, void* value) const { manager_.AssignmentPtrGet(id_)(run.data(), value, count_, 1); }

void Runs::makeValues() {
  const std::size_t each = manager_.MemLenGet(id_, 1), all = count_ * each;
  for (Block* run : {&a, &b, &end}) *run = Block(all, Block::kValues);
  for (Block* run : {&target, &raw}) *run = Block(all, Block::kValueRoom);
  for (const Block* run : {&a, &b, &end, &target}) manager_.ConstructorPtrGet(id_)(run->data(), count_, 0);

  KtString text(textFor(id_));
  KtTypeConvertData holder(KT_ID_KtString, 1, &text, nullptr);
  void* value = manager_.ConvertFrom(id_, &holder, 1);
  holder.typeManager = nullptr;
  for (const Block* run : {&a, &b, &end}) assign(*run, value);
  manager_.Delete(id_, value, 1);
  void* other = manager_.DefaultValue(id_, 1, 0);
  manager_.AssignmentPtrGet(id_)(end.data() + all - each, other, 1, 0);
  manager_.Delete(id_, other, 1);
  if (manager_.Cmp(id_, a.data(), end.data(), KtCMP_NO_WILDCARDS, count_, kMemory) != 0) return;
  std::fprintf(stderr, "%s: the text in textFor stands for the default value\n", manager_.NameGet(id_, nullptr));
  std::exit(1);
}

Block Runs::stored(const Block& run, unsigned char form) const {
  Block bytes(manager_.DiskLenGet(id_, run.data(), form, count_, kMemory), Block::kRecords);
  manager_.Store(id_, bytes.data(), run.data(), form, count_);
  return bytes;
}

}  // namespace kt::scaling
