#include "operations.h"

namespace kt::scaling {
namespace {

// --- limits -----------------------------------------------------------------------------------------------------------

constexpr unsigned long kAll = ~0ul;

bool isString(char id) { return id == KT_ID_KtString || id == KT_ID_KtIString || id == KT_ID_KtCaseIString; }
bool isCharacter(char id) { return id == KT_ID_char || id == KT_ID_KtByte; }

unsigned long fillText(const KtString& oneText) { return kTextSize / (oneText.Len() + 1ul); }

unsigned long printedTexts(Manager& m, char id) {
  const Runs one(m, id, 1);
  KtString text;
  return fillText(m.PrintToKtString(id, text, one.a.data(), nullptr, 1));
}

unsigned long convertedTexts(Manager& m, char id) { return fillText(*Runs(m, id, 1).texts->GetString(0)); }

constexpr Limit kWholeRun = {[](Manager&, char) { return kAll; }, ""};
constexpr Limit kOneString = {[](Manager&, char id) { return isString(id) ? 1 : kAll; }, "value a call"};
constexpr Limit kPrinted = {printedTexts, "values fill a text"};
constexpr Limit kConverted = {convertedTexts, "values fill a text"};
// A scan sets one value, whatever the count: a text does not tell where a value ends and the next begins. Characters need
// no such mark.
constexpr Limit kScanned = {[](Manager&, char id) { return isCharacter(id) ? kTextSize : 1; }, "values a call"};

// --- operations of several steps ----------------------------------------------------------------------------------------

void construct(Manager& m, char id, Runs& r) {
  m.ConstructorPtrGet(id)(r.raw.data(), r.count(), 0);
  m.DestructorPtrGet(id)(r.raw.data(), r.count(), 0);
}

void copy(Manager& m, char id, Runs& r) {
  m.CopyPtrGet(id)(r.raw.data(), r.a.data(), r.count(), 0);
  m.DestructorPtrGet(id)(r.raw.data(), r.count(), 0);
}

void isNull(Manager& m, char id, Runs& r) {
  const std::size_t size = m.MemLenGet(id, 1);
  for (unsigned long i = 0; i < r.count(); ++i) m.IsNullValue(id, r.a.data() + i * size);
}

void setNull(Manager& m, char id, Runs& r) {
  const std::size_t size = m.MemLenGet(id, 1);
  for (unsigned long i = 0; i < r.count(); ++i) m.SetNullValue(id, r.target.data() + i * size);
}

void sizeOfFile(Manager& m, char id, Runs& r) {
  MemFile file(r.disk[0].data(), r.disk[0].size());
  m.DiskLenGetFromMemFile(id, &file, kDisk, r.count());
}

template <int form>
void store(Manager& m, char id, Runs& r) {
  m.Store(id, r.room.data(), r.a.data(), kForms[form], r.count());
}

template <int form>
void load(Manager& m, char id, Runs& r) {
  m.Load(id, r.target.data(), r.disk[form].data(), kForms[form], r.count());
}

void compareDisk(Manager& m, char id, Runs& r, const Block& other) {
  int status;
  m.Cmp(id, r.disk[0].size(), r.disk[0].data(), other.size(), other.data(), KtCMP_NO_WILDCARDS, r.count(), kDisk,
        status);
}

void hash(Manager& m, char id, Runs& r) {
  int status;
  m.Hash(id, 0, r.a.data(), r.count(), kMemory, status);
}

void hashDisk(Manager& m, char id, Runs& r) {
  int status;
  m.Hash(id, r.disk[0].size(), r.disk[0].data(), r.count(), kDisk, status);
}

void estimate(Manager& m, char id, Runs& r) {
  auto* const key = reinterpret_cast<unsigned char*>(r.oneKey.data());
  const auto length = static_cast<unsigned char>(r.oneKey.size());
  KtIdxBounds range{key, key, length, length}, bounds;
  unsigned short flags = KtBOUND_EQUAL;
  m.EvalAndBound(id, &range, flags, r.disk[0].data(), kDisk, r.count(), &bounds, nullptr);
  KtFreeIdxBounds(&bounds);
}

// --- from form to form --------------------------------------------------------------------------------------------------

void toDisk(Manager& m, char id, Runs& r) {
  m.Translate(id, r.room.data(), kDisk, r.room.size(), r.a.data(), kMemory, 0, r.count());
}

void toMemory(Manager& m, char id, Runs& r) {
  m.Translate(id, r.target.data(), kMemory, r.a.size(), r.disk[0].data(), kDisk, r.disk[0].size(), r.count());
}

void toKeys(Manager& m, char id, Runs& r) {
  m.Translate(id, r.keys.data(), kKey, r.keys.size(), r.a.data(), kMemory, 0, r.count());
}

void memoryToMemory(Manager& m, char id, Runs& r) {
  m.Translate(id, r.target.data(), kMemory, r.a.size(), r.a.data(), kMemory, r.a.size(), r.count());
}

void diskToDisk(Manager& m, char id, Runs& r) {
  m.Translate(id, r.room.data(), kDisk, r.room.size(), r.disk[0].data(), kDisk, r.disk[0].size(), r.count());
}

// --- text ---------------------------------------------------------------------------------------------------------------

void convertToOld(Manager& m, char id, Runs& r) {
  m.Delete(KT_ID_KtString, m.ConvertToKtStringOld(r.a.data(), id, r.count()), 1);
}

// The conversion empties the text that it is given.
void convertFromOld(Manager& m, char id, Runs& r) {
  KtString text(*r.oldText);
  m.Delete(id, m.ConvertFromKtStringOld(&text, id, r.count()), r.count());
}

void print(Manager& m, char id, Runs& r) {
  KtString out;
  m.PrintToKtString(id, out, r.a.data(), nullptr, r.count());
}

void scan(Manager& m, char id, Runs& r) {
  m.ScanFromKtString(id, r.target.data(), isCharacter(id) ? r.line : *r.texts->GetString(0), nullptr, r.count());
}

}  // namespace

const std::vector<Operation>& operations() {
  using M = Manager;
  using R = Runs;
  static const std::vector<Operation> all = {
      {"create", [](M& m, char id, R& r) { m.Delete(id, m.Create(id, r.count()), r.count()); }, &kWholeRun},
      {"default", [](M& m, char id, R& r) { m.Delete(id, m.DefaultValue(id, r.count(), 0), r.count()); }, &kWholeRun},
      {"construct", construct, &kWholeRun},
      {"copy", copy, &kWholeRun},
      {"assign", [](M& m, char id, R& r) { m.AssignmentPtrGet(id)(r.target.data(), r.a.data(), r.count(), 0); },
       &kWholeRun},
      {"fill", [](M& m, char id, R& r) { m.AssignmentPtrGet(id)(r.target.data(), r.a.data(), r.count(), 1); },
       &kWholeRun},
      {"is_null", isNull, &kWholeRun},
      {"set_null", setNull, &kWholeRun},
      {"size", [](M& m, char id, R& r) { m.DiskLenGet(id, r.a.data(), kDisk, r.count(), kMemory); }, &kWholeRun},
      {"size_null", [](M& m, char id, R& r) { m.DescriptorGet(id).NullSizeGet(r.count()); }, &kWholeRun},
      {"size_disk", [](M& m, char id, R& r) { m.DiskLenGet(id, r.disk[0].data(), kDisk, r.count(), kDisk); },
       &kWholeRun},
      {"size_file", sizeOfFile, &kWholeRun},
      {"store_big", store<0>, &kWholeRun},
      {"store_little", store<1>, &kWholeRun},
      {"store_memory", store<2>, &kWholeRun},
      {"store_short", store<3>, &kWholeRun},
      {"load_big", load<0>, &kWholeRun},
      {"load_little", load<1>, &kWholeRun},
      {"load_memory", load<2>, &kWholeRun},
      {"load_short", load<3>, &kWholeRun},
      {"compare",
       [](M& m, char id, R& r) { m.Cmp(id, r.a.data(), r.b.data(), KtCMP_NO_WILDCARDS, r.count(), kMemory); },
       &kWholeRun},
      {"compare_end",
       [](M& m, char id, R& r) { m.Cmp(id, r.a.data(), r.end.data(), KtCMP_NO_WILDCARDS, r.count(), kMemory); },
       &kWholeRun},
      {"compare_disk", [](M& m, char id, R& r) { compareDisk(m, id, r, r.otherDisk); }, &kWholeRun},
      {"compare_disk_end", [](M& m, char id, R& r) { compareDisk(m, id, r, r.endDisk); }, &kWholeRun},
      {"hash", hash, &kWholeRun},
      {"hash_disk", hashDisk, &kWholeRun},
      {"estimate", estimate, &kWholeRun},
      {"to_disk", toDisk, &kWholeRun},
      {"to_memory", toMemory, &kOneString},
      {"to_keys", toKeys, &kWholeRun},
      {"memory_to_memory", memoryToMemory, &kWholeRun},
      {"disk_to_disk", diskToDisk, &kWholeRun},
      {"convert_to", [](M& m, char id, R& r) { delete m.ConvertTo(id, r.a.data(), r.count()); }, &kWholeRun},
      {"convert_from",
       [](M& m, char id, R& r) { m.Delete(id, m.ConvertFrom(id, r.texts.get(), r.count()), r.count()); }, &kWholeRun},
      {"convert_to_old", convertToOld, &kConverted},
      {"convert_from_old", convertFromOld, &kConverted},
      {"print", print, &kPrinted},
      {"scan", scan, &kScanned},
  };
  return all;
}

}  // namespace kt::scaling
