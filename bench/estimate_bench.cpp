// Estimates by type id through the manager: what a planner pays for one question about an index. Beside it a histogram of
// 64 steps, the usual other answer, which also has to be built and kept. goals.csv limits the time of one estimate.
#include "bench_job.h"
#include "name_data.h"

#include <kttm.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace kt::bench {
namespace {

constexpr unsigned char kDisk = 2;
constexpr unsigned char kIndexKey = 0x80;
constexpr unsigned short kAtMost = KtBOUND_LESS | KtBOUND_EQUAL;
constexpr std::size_t kWidth = 8;  // bytes of the widest key

struct Range {
  std::vector<unsigned char> low, high;
  KtIdxBounds keys() {
    return {low.data(), high.data(), static_cast<unsigned char>(low.size()), static_cast<unsigned char>(high.size())};
  }
};

float estimate(const KtTypeMgr& manager, char id, KtIdxBounds& range, void* key, unsigned short flags) {
  return manager.EvalAndBound(id, &range, flags, key, kDisk, 1, nullptr, nullptr);
}

// --- numbers ----------------------------------------------------------------------------------------------------------

// The upper ends of steps that hold equally many keys.
class Histogram {
public:
  explicit Histogram(std::vector<double> keys) {
    std::sort(keys.begin(), keys.end());
    for (std::size_t i = 0; i < ends_.size(); ++i) ends_[i] = keys[(i + 1) * keys.size() / ends_.size() - 1];
  }
  float below(double key) const {
    return static_cast<float>(std::lower_bound(ends_.begin(), ends_.end(), key) - ends_.begin()) / 64;
  }

private:
  std::array<double, 64> ends_;
};

using DiskKey = std::array<unsigned char, kWidth>;

struct NumberData {
  char id;
  KtTypeMgr manager{12};
  std::vector<DiskKey> keys;
  std::vector<double> numbers;
  Range range;
  Histogram histogram{{0}};
};

// Keys spread evenly over 100,000 numbers.
template <class Value>
std::unique_ptr<NumberData> numbersOf(char id) {
  auto data = std::make_unique<NumberData>();
  data->id = id;
  const auto stored = [&](long number) {
    Value value(static_cast<Value>(number));
    DiskKey key{};
    data->manager.Store(id, key.data(), &value, kDisk, 1);
    return key;
  };
  std::mt19937 random(17);
  for (int i = 0; i < kBatch; ++i) {
    const long number = static_cast<long>(random() % 100000) + 2400000;
    data->numbers.push_back(static_cast<double>(number));
    data->keys.push_back(stored(number));
  }
  const DiskKey low = stored(2400000), high = stored(2499999);
  data->range = {{low.begin(), low.end()}, {high.begin(), high.end()}};
  data->histogram = Histogram(data->numbers);
  return data;
}

void estimateNumbers(NumberData& data) {
  KtIdxBounds range = data.range.keys();
  float sum = 0;
  for (DiskKey& key : data.keys) sum += estimate(data.manager, data.id, range, key.data(), kAtMost);
  keep(sum);
}

void lookUpNumbers(NumberData& data) {
  float sum = 0;
  for (const double number : data.numbers) sum += data.histogram.below(number);
  keep(sum);
}

// Two steps apart at most: keys are random, and the histogram goes by whole steps.
bool estimatesAlike(NumberData& data) {
  KtIdxBounds range = data.range.keys();
  for (std::size_t i = 0; i < data.keys.size(); ++i) {
    const float share = estimate(data.manager, data.id, range, data.keys[i].data(), kAtMost);
    if (std::abs(share - data.histogram.below(data.numbers[i])) > 2.0F / 64) return false;
  }
  return true;
}

template <class Value>
void addNumbers(const char* job, char id) {
  Job<NumberData>(
      job, 0, kBatch, 0, [id] { return numbersOf<Value>(id); }, estimatesAlike)
      .contestant("kttm", estimateNumbers)
      .contestant("histogram", lookUpNumbers);
}

// --- names that begin with a letter, in the range of all names -----------------------------------------------------------

struct NameEstimateData {
  KtTypeMgr manager{12};
  std::vector<std::vector<unsigned char>> keys;  // "A*" to "Z*"
  Range range;
};

std::vector<unsigned char> storedName(const KtTypeMgr& manager, KtString name, unsigned char form) {
  std::vector<unsigned char> bytes(manager.DiskLenGet(KT_ID_KtString, &name, form, 1, 8));
  bytes.resize(manager.Translate(KT_ID_KtString, bytes.data(), form, bytes.size(), &name, 8, sizeof name, 1));
  return bytes;
}

std::unique_ptr<NameEstimateData> namesOfAll() {
  auto data = std::make_unique<NameEstimateData>();
  Names names = cityNames(kLatin1);
  const auto ends = std::minmax_element(names.texts.begin(), names.texts.end());
  data->range = {storedName(data->manager, *ends.first, kDisk | kIndexKey),
                 storedName(data->manager, *ends.second, kDisk | kIndexKey)};
  for (const char letter : {'A', 'B', 'M', 'Z'}) {
    const char pattern[] = {letter, '*', '\0'};
    data->keys.push_back(storedName(data->manager, KtString(pattern), kDisk));
  }
  return data;
}

void estimateNames(NameEstimateData& data) {
  KtIdxBounds range = data.range.keys();
  float sum = 0;
  for (auto& key : data.keys) sum += estimate(data.manager, KT_ID_KtString, range, key.data(), KtBOUND_EQUAL);
  keep(sum);
}

// A letter selects some names, not all, and less together than all.
bool selectsSome(NameEstimateData& data) {
  KtIdxBounds range = data.range.keys();
  float sum = 0;
  for (auto& key : data.keys) {
    const float share = estimate(data.manager, KT_ID_KtString, range, key.data(), KtBOUND_EQUAL);
    if (!(share > 0 && share < 1)) return false;
    sum += share;
  }
  return sum < 1;
}

void addJobs() {
  addNumbers<std::int32_t>("estimate_long", KT_ID_long);
  addNumbers<double>("estimate_double", KT_ID_double);
  addNumbers<KtDate>("estimate_date", KT_ID_KtDate);
  Job<NameEstimateData>("estimate_names", 0, 4, 0, namesOfAll, selectsSome).contestant("kttm", estimateNames);
}

const Registration registration(addJobs);

}  // namespace
}  // namespace kt::bench
