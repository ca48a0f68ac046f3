#include "comparators.h"

#include <array>
#include <utility>

namespace atlas {
namespace {

// A damaged page may hold empty keys, and to the type manager a length of 0 says nothing about the length.
template <int kId>
int compareKeys(const MDB_val* a, const MDB_val* b) {
  if (a->mv_size == 0 || b->mv_size == 0) return (a->mv_size > b->mv_size) - (a->mv_size < b->mv_size);
  int status = 0;
  const long result = manager().Cmp(static_cast<char>(kId), a->mv_size, a->mv_data, b->mv_size, b->mv_data, kKeyOptions,
                                    1, kStoredKey, status);
  return (result > 0) - (result < 0);  // a long may not fit an int
}

template <int... kIds>
constexpr std::array<MDB_cmp_func*, sizeof...(kIds)> makeTable(std::integer_sequence<int, kIds...>) {
  return {&compareKeys<kIds>...};
}

constexpr auto kTable = makeTable(std::make_integer_sequence<int, KtTYPE_COUNT>());

}  // namespace

MDB_cmp_func* comparatorOf(char type) { return kTable.at(static_cast<unsigned char>(type)); }

}  // namespace atlas
