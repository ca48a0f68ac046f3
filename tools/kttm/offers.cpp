#include "offers.h"

#include "values.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <type_traits>

namespace tool {
namespace {

constexpr unsigned short kAllFlags = 0xFFFF;

// Values that differ, as far as the type can make them: its default value and what these texts convert to, the last of
// them for identities.
std::vector<Values> samplesOf(const Type& type) {
  std::vector<Values> samples;
  if (!type.hasValues) return samples;
  samples.emplace_back(type, 1);
  for (const char* text : {"1", "2", "(9-2#4)"}) {
    KtString string(text);
    KtTypeConvertData holder(KT_ID_KtString, 1, &string, nullptr);
    void* probe = manager().ConvertFrom(type.id, &holder, 1);
    holder.data = nullptr;
    if (probe == nullptr) continue;
    manager().Delete(type.id, probe, 1);
    samples.push_back(Values::converted(type, string));
  }
  return samples;
}

struct Probe {
  const Type& type;
  const std::vector<Values>& samples;

  template <class Test>
  bool any(Test test) const {
    return std::any_of(samples.begin(), samples.end(), [&](const Values& value) { return test(value.at(0)); });
  }
};

// Not null and not the illegal row's.
template <auto kGetter>
bool differs(const Probe& probe) {
  const auto function = (manager().*kGetter)(probe.type.id);
  return function != nullptr && function != (manager().*kGetter)(KT_ID_illegal);
}

template <auto kExchange>
bool exchangeDiffers(const Probe& probe) {
  const auto function = (manager().*kExchange)(probe.type.id, nullptr);
  return function != nullptr && function != (manager().*kExchange)(KT_ID_illegal, nullptr);
}

bool makesValues(const Probe& probe) {
  void* value = manager().Create(probe.type.id, 1);
  if (value != nullptr) manager().Delete(probe.type.id, value, 1);
  return value != nullptr;
}

bool hasDefault(const Probe& probe) { return probe.type.hasValues; }

bool tellsSize(const Probe& probe) {
  return probe.any([&](void* value) { return storedSize(probe.type.id, value, kAnyDiskForm, 1) > 0; });
}

bool tellsSizeInFile(const Probe& probe) {
  return probe.any([&](void* value) {
    const Bytes bytes = stored(probe.type.id, value, kAnyDiskForm, 1);
    MemFile file(bytes.data(), bytes.size());
    return manager().DiskLenGetFromMemFile(probe.type.id, &file, kAnyDiskForm, 1) > 0;
  });
}

bool hashes(const Probe& probe) {
  return probe.any([&](void* value) {
    int status = 0;
    return manager().Hash(probe.type.id, 0, value, 1, kMemoryForm, status) != 0;
  });
}

unsigned short flagsAfterEstimate(const Probe& probe, Bytes& key, float& share) {
  unsigned short flags = kAllFlags;
  KtIdxBounds bounds;
  share = manager().EvalAndBound(probe.type.id, nullptr, flags, key.data(), 0, 1, &bounds, nullptr);
  KtFreeIdxBounds(&bounds);
  return flags;
}

// An estimate that does nothing answers 0 and leaves the flags alone; every other one masks them, or answers more.
bool estimates(const Probe& probe) {
  return probe.any([&](void* value) {
    Bytes key = stored(probe.type.id, value, 0, 1);
    float share = 0;
    return flagsAfterEstimate(probe, key, share) != kAllFlags || share > 0;
  });
}

bool convertsTo(const Probe& probe) {
  return probe.any([&](void* value) { return conversionOf(probe.type, value).has_value(); });
}

bool convertsFrom(const Probe& probe) { return probe.samples.size() > 1; }

bool translates(const Probe& probe) {
  return probe.any([&](void* value) {
    Bytes bytes(storedSize(probe.type.id, value, kAnyDiskForm, 1));
    return manager().Translate(probe.type.id, bytes.data(), kAnyDiskForm, bytes.size(), value, kMemoryForm,
                               manager().MemLenGet(probe.type.id, 1), 1) > 0;
  });
}

struct Question {
  const char* operation;
  bool (*offered)(const Probe&);
};

constexpr Question kQuestions[] = {
    {"Create", makesValues},
    {"Delete", makesValues},
    {"Store", differs<&KtTypeMgr::StorePtrGet>},
    {"Load", differs<&KtTypeMgr::LoadPtrGet>},
    {"SizeGet", tellsSize},
    {"SizeGetFromMemFile", tellsSizeInFile},
    {"Compare", differs<&KtTypeMgr::CmpFuncPtrGet>},
    {"EvalAndBound", estimates},
    {"Hash", hashes},
    {"ConvertTo", convertsTo},
    {"ConvertFrom", convertsFrom},
    {"Constructor", differs<&KtTypeMgr::ConstructorPtrGet>},
    {"Destructor", differs<&KtTypeMgr::DestructorPtrGet>},
    {"Assignment", differs<&KtTypeMgr::AssignmentPtrGet>},
    {"Copy", differs<&KtTypeMgr::CopyPtrGet>},
    {"Translate", translates},
    {"IsNull", differs<&KtTypeMgr::IsNullPtrGet>},
    // A row without values may hold a function that only declines.
    {"SetNull", [](const Probe& probe) { return probe.type.hasValues && probe.type.hasNull; }},
    {"PrintToKtString", exchangeDiffers<&KtTypeMgr::ExchangePrintToKtStringFunc>},
    {"ScanFromKtString", exchangeDiffers<&KtTypeMgr::ExchangeScanFromKtStringFunc>},
    {"DefaultValue", hasDefault},
};

}  // namespace

std::vector<Offer> offersOf(const Type& type) {
  const std::vector<Values> samples = samplesOf(type);
  const Probe probe{.type = type, .samples = samples};
  std::vector<Offer> offers;
  std::transform(std::begin(kQuestions), std::end(kQuestions), std::back_inserter(offers),
                 [&](const Question& question) {
                   return Offer{.operation = question.operation, .offered = question.offered(probe)};
                 });
  return offers;
}

}  // namespace tool
