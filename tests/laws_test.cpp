// The laws over all rows of the type table and their samples, and audits of the table that must find no guilty row.
#include "laws/laws.h"

#include "laws/values.h"
#include "table/type_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <set>
#include <string>
#include <string_view>

namespace kt_laws {
namespace {

using Names = std::set<std::string>;

struct Case {
  const Row* row;
  const Sample* sample;  // null: the row as a whole

  std::string name() const { return sample == nullptr ? row->stem : std::string(row->stem) + "_" + sample->name; }
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name(); }

bool excuses(const Exception& e, const Law& law, const Sample* sample, const Finding& finding) {
  const std::string_view name = e.sample;
  const bool isMeant =
      name == "*" || name == finding.other || name == finding.third || name == (sample == nullptr ? "" : sample->name);
  return std::string_view(e.law) == law.name && isMeant && finding.text.find(e.where) != std::string::npos;
}

void expectHolds(const Law& law, const Case& c) {
  Findings findings;
  law.check(*c.row, c.sample, findings);
  for (const Finding& finding : findings) {
    const auto isExcused = [&](const Exception& e) { return excuses(e, law, c.sample, finding); };
    if (std::none_of(c.row->exceptions.begin(), c.row->exceptions.end(), isExcused)) ADD_FAILURE() << finding.text;
  }
}

std::vector<Case> allSamples() {
  std::vector<Case> cases;
  for (const Row& row : rows()) {
    for (const Sample& sample : row.samples) cases.push_back({&row, &sample});
  }
  return cases;
}

std::vector<Case> allRows() {
  std::vector<Case> cases;
  for (const Row& row : rows()) cases.push_back({&row, nullptr});
  return cases;
}

std::string nameOf(const testing::TestParamInfo<Case>& info) { return info.param.name(); }

class Laws : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(All, Laws, testing::ValuesIn(allSamples()), nameOf);
TEST_P(Laws, store_load) { expectHolds(kStoreLoad, GetParam()); }
TEST_P(Laws, sizes) { expectHolds(kSizes, GetParam()); }
TEST_P(Laws, translate) { expectHolds(kTranslate, GetParam()); }
TEST_P(Laws, order) { expectHolds(kOrder, GetParam()); }
TEST_P(Laws, total_order) { expectHolds(kTotalOrder, GetParam()); }
TEST_P(Laws, hash) { expectHolds(kHash, GetParam()); }
TEST_P(Laws, hash_spreads) { expectHolds(kHashSpreads, GetParam()); }
TEST_P(Laws, estimate) { expectHolds(kEstimate, GetParam()); }
TEST_P(Laws, convert) { expectHolds(kConvert, GetParam()); }
TEST_P(Laws, print_scan) { expectHolds(kPrintScan, GetParam()); }

class RowLaws : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(All, RowLaws, testing::ValuesIn(allRows()), nameOf);
TEST_P(RowLaws, null) { expectHolds(kNull, GetParam()); }
TEST_P(RowLaws, runs) { expectHolds(kRuns, GetParam()); }
TEST_P(RowLaws, overrun) { expectHolds(kOverrun, GetParam()); }

// --- audits: the right answer is no rows ----------------------------------------------------------------------------

// Whether the exception excuses anything at all.
bool isNeeded(const Row& row, const Exception& e) {
  for (const Law* law : {&kStoreLoad, &kSizes, &kTranslate, &kOrder, &kTotalOrder, &kHash, &kHashSpreads, &kEstimate,
                         &kConvert, &kPrintScan, &kNull, &kRuns, &kOverrun}) {
    if (std::string_view(e.law) != law->name) continue;
    std::vector<const Sample*> samples = {nullptr};
    if (*e.sample != '\0') samples.clear();
    for (const Sample& sample : row.samples) {
      if (*e.sample == '*' || std::string_view(e.sample) == sample.name) samples.push_back(&sample);
    }
    for (const Sample* sample : samples) {
      Findings findings;
      law->check(row, sample, findings);
      for (const Finding& finding : findings) {
        if (excuses(e, *law, sample, finding)) return true;
      }
    }
  }
  return false;
}

TEST(LawAudit, every_exception_is_needed) {
  Names guilty;
  for (const Row& row : rows()) {
    for (const Exception& e : row.exceptions) {
      if (!isNeeded(row, e)) guilty.insert(std::string(row.stem) + " " + e.law + " " + e.sample + " " + e.where);
    }
  }
  EXPECT_EQ(guilty, Names{});
}

// Rows of the table for which `isGuilty` holds.
template <class IsGuilty>
Names guiltyRows(IsGuilty isGuilty) {
  Names guilty;
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const KtTypeDescriptor& row = *kt::currentTypeTable()[id];
    if (isGuilty(row)) guilty.insert(row.Name);
  }
  if (isGuilty(*kt::legacyTypeTable()[KT_ID_KtString])) guilty.insert("legacy KtString");
  return guilty;
}

TEST(LawAudit, every_row_has_samples_and_a_null_among_them_where_it_knows_null) {
  Names sampled;
  for (const Row& row : rows()) {
    const KtTypeMgr& mgr = managerOf(row);
    const auto isNull = [](const Sample& sample) { return sample.source == Sample::kNull; };
    const bool hasNull = std::any_of(row.samples.begin(), row.samples.end(), isNull);
    if (row.samples.size() > 2 && hasNull == (mgr.SupportsNullValue(row.id) != 0))
      sampled.insert(mgr.NameGet(row.id, nullptr));
  }
  sampled.insert("illegal");
  sampled.insert("legacy KtString");
  EXPECT_EQ(guiltyRows([&](const KtTypeDescriptor& row) { return sampled.count(row.Name) == 0; }), Names{});
}

// fuzz_make_seeds writes all seeds of a row at once: one of them tells.
TEST(LawAudit, every_row_has_fuzz_seeds) {
  Names guilty;
  for (const Row& row : rows()) {
    if (!std::ifstream(std::string(KT_TESTS_DIR "/../fuzz/corpus/row_load/") + row.stem)) guilty.insert(row.stem);
  }
  EXPECT_EQ(guilty, Names{}) << "run fuzz_make_seeds fuzz/corpus";
}

TEST(LawAudit, no_mandatory_operation_is_missing_and_no_text_operation_is_alone) {
  EXPECT_EQ(guiltyRows([](const KtTypeDescriptor& r) {
              const bool isComplete = r.Create && r.Delete && r.Store && r.Load && r.NullSizeGet && r.SizeGet &&
                                      r.SizeGetFromMemFile && r.Compare && r.EvalAndBound && r.Hash && r.Constructor &&
                                      r.Destructor && r.Assignment && r.Copy && r.Translate && r.IsNull &&
                                      r.DefaultValue && r.Format && *r.Format != '\0';
              return !isComplete || !r.ConvertTo != !r.ConvertFrom || !r.PrintToKtString != !r.ScanFromKtString ||
                     r.Reserved != nullptr;
            }),
            Names{});
}

TEST(LawAudit, sizes_and_flags_agree) {
  const auto isGuilty = [](const KtTypeDescriptor& r) {
    if (r.IsFixed > 1 || (r.MemLen == 0) != (std::string_view(r.Name) == "illegal")) return true;
    if (r.IsFixed == 0) return r.MemLen % sizeof(void*) != 0;
    for (unsigned char format = 0; format < 16; ++format) {
      const unsigned long one = r.SizeGet(nullptr, 8, format, 1);
      if (one > r.MemLen || r.SizeGet(nullptr, 8, format, 17) != 17 * one || r.SizeGet(nullptr, 8, format, 0) != 0)
        return true;
    }
    return r.NullSizeGet(17) != r.SizeGet(nullptr, 8, 0, 17);
  };
  EXPECT_EQ(guiltyRows(isGuilty), Names{});
}

TEST(LawAudit, a_row_that_cannot_set_null_never_sees_it) {
  const auto isGuilty = [](const KtTypeDescriptor& r) {
    if (r.SetNull != nullptr || r.IsFixed == 0) return false;
    for (const int fill : {0x00, 0x01, 0x80, 0xFF}) {
      alignas(8) unsigned char value[16];
      std::fill(std::begin(value), std::end(value), static_cast<unsigned char>(fill));
      if (r.IsNull(value) != 0) return true;
    }
    return false;
  };
  EXPECT_EQ(guiltyRows(isGuilty), Names{});
}

}  // namespace
}  // namespace kt_laws
