#include "batch.h"

#include "comparators.h"

#include <algorithm>
#include <cstring>

namespace atlas {
namespace {

constexpr unsigned long kMostEntryBytes = 256UL << 20;  // of one index, before they are written

Buffer bufferOf(const MDB_val& val) {
  const auto* bytes = static_cast<const unsigned char*>(val.mv_data);
  return {bytes, bytes + val.mv_size};
}

bool isSame(MDB_cmp_func* order, const MDB_val& a, const MDB_val& b) { return order(&a, &b) == 0; }

// Keys that bytes decide: those of up to eight, most significant first, as their big-endian form is; of others a hash.
std::uint64_t rankOf(char type, Bytes stored, Bytes key) {
  constexpr unsigned char kBigEndianKey = 0x82;
  std::uint64_t rank = 0;
  if (key.size <= sizeof rank) {
    unsigned char ordered[sizeof rank] = {};
    manager().Translate(type, ordered, kBigEndianKey, sizeof ordered, stored.address(), kStored, stored.size, 1);
    for (const unsigned char byte : ordered) rank = rank << 8 | byte;
    return rank;
  }
  for (unsigned long i = 0; i < key.size; i += sizeof rank) {
    std::uint64_t word = 0;
    std::memcpy(&word, key.data + i, std::min(sizeof word, key.size - i));
    rank = (rank ^ word) * 0x9E3779B97F4A7C15U;
    rank ^= rank >> 32;
  }
  return rank & 0xFFFFFFFFU;  // enough to tell keys apart, and soon sorted
}

}  // namespace

void EntryBatch::add(char type, Bytes stored, ObjId id) {
  constexpr std::size_t kMostPerEntry = kLongestKey + kStoredObjId;
  if (bytes_.size() < used_ + kMostPerEntry) bytes_.resize(std::max(2 * bytes_.size(), used_ + kMostPerEntry));
  unsigned char* const key = bytes_.data() + used_;
  const unsigned long keySize = storedKeyAt(key, type, stored);
  storeObjId(key + keySize, id);
  entries_.push_back(
      {rankOf(type, stored, {key, keySize}), static_cast<std::uint32_t>(used_), static_cast<std::uint32_t>(keySize)});
  used_ += keySize + kStoredObjId;
}

bool EntryBatch::hasSameBytes(const Entry& a, const Entry& b) const {
  return a.rank == b.rank && a.keySize == b.keySize &&
         std::memcmp(bytes_.data() + a.at, bytes_.data() + b.at, a.keySize) == 0;
}

// By one byte after the other, the last one first; bytes in which all ranks agree cost nothing.
void EntryBatch::sortByRank() {
  std::uint64_t different = 0;
  for (const Entry& entry : entries_) different |= entry.rank ^ entries_[0].rank;
  std::vector<Entry> sorted(entries_.size());
  for (unsigned shift = 0; shift < 64; shift += 8) {
    if ((different >> shift & 0xFF) == 0) continue;
    std::size_t begins[257] = {};
    for (const Entry& entry : entries_) ++begins[(entry.rank >> shift & 0xFF) + 1];
    for (std::size_t i = 1; i < std::size(begins); ++i) begins[i] += begins[i - 1];
    for (const Entry& entry : entries_) sorted[begins[entry.rank >> shift & 0xFF]++] = entry;
    entries_.swap(sorted);
  }
}

void EntryBatch::group() {
  groups_.clear();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (groups_.empty() || !hasSameBytes(entries_[groups_.back().first], entries_[i])) groups_.push_back({i, i});
    groups_.back().end = i + 1;
  }
}

// A merge sort of what stands in order already: keys that their bytes have sorted take one pass or two.
void EntryBatch::sortGroups(MDB_cmp_func* order) {
  const auto isBefore = [&](const Group& a, const Group& b) {
    const MDB_val x = keyOf(a), y = keyOf(b);
    return order(&x, &y) < 0;
  };
  std::vector<std::size_t> runs;  // where each begins
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    if (i == 0 || isBefore(groups_[i], groups_[i - 1])) runs.push_back(i);
  }
  runs.push_back(groups_.size());
  std::vector<Group> merged(groups_.size());
  while (runs.size() > 2) {
    std::vector<std::size_t> fewer;
    for (std::size_t i = 0; i + 1 < runs.size(); i += 2) {
      const auto at = [&](std::size_t run) {
        return groups_.begin() + static_cast<std::ptrdiff_t>(runs[std::min(run, runs.size() - 1)]);
      };
      std::merge(at(i), at(i + 1), at(i + 1), at(i + 2), merged.begin() + static_cast<std::ptrdiff_t>(runs[i]),
                 isBefore);
      fewer.push_back(runs[i]);
    }
    fewer.push_back(groups_.size());
    runs.swap(fewer);
    groups_.swap(merged);
  }
}

void EntryBatch::put(Cursor& cursor, const Entry* first, const Entry* end, bool append) {
  const MDB_val keyVal = keyOf(*first);
  const Bytes key = bytesOf(keyVal);
  cursor.put(key, idOf(*first), append ? MDB_APPEND : MDB_NODUPDATA);
  if (end == first + 1) return;
  ids_.clear();
  for (const Entry* entry = first + 1; entry != end; ++entry) {
    const Bytes id = idOf(*entry);
    ids_.insert(ids_.end(), id.data, id.data + id.size);
  }
  // New ids follow all that are there.
  cursor.putMany(key, ids_.data(), kStoredObjId, static_cast<unsigned long>(end - first - 1), MDB_APPENDDUP);
}

void EntryBatch::write(const Txn& txn, Tree tree, MDB_cmp_func* order) {
  sortByRank();
  group();
  sortGroups(order);
  Cursor cursor(txn, tree);
  MDB_val last, data;
  bool append = !cursor.move(MDB_LAST, last, data);
  const Buffer lastKey = append ? Buffer() : bufferOf(last);
  std::vector<Entry> equal;  // in bytes, or as the type compares
  for (std::size_t i = 0; i < groups_.size();) {
    const MDB_val key = keyOf(groups_[i]);
    const MDB_val end = valOf(lastKey);
    append = append || order(&key, &end) > 0;
    equal.clear();
    std::size_t next = i;
    for (bool isEqual = true; isEqual; isEqual = next < groups_.size() && isSame(order, key, keyOf(groups_[next]))) {
      const Group& group = groups_[next++];
      equal.insert(equal.end(), entries_.data() + group.first, entries_.data() + group.end);
    }
    if (next > i + 1) std::sort(equal.begin(), equal.end(), [](const Entry& a, const Entry& b) { return a.at < b.at; });
    put(cursor, equal.data(), equal.data() + equal.size(), append);
    i = next;
  }
  entries_.clear();
  used_ = 0;
}

unsigned char* Batch::prepare(const ClassSchema& cls, unsigned long size, Counters& counters) {
  if (block_.cls() != &cls || !block_.fits(size)) endBlock(counters);
  if (block_.isEmpty()) block_.begin(cls, counters.nextObject);
  return block_.room(size);
}

ObjId Batch::accept(const ClassSchema& cls, unsigned long size, Counters& counters) {
  for (const auto& index : *indexes_) {
    if (index->class_ == &cls && !hasPlace(index->field().type, stored(index->field_))) {
      throw Mistake("the value of " + index->name() + " has no place in an index");
    }
  }
  const ObjId id = objIdOf(counters.nextObject, counters.nextBlock);
  bool isFull = false;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Index& index = *(*indexes_)[i];
    if (index.class_ != &cls) continue;
    entries_[i].add(index.field().type, stored(index.field_), id);
    isFull = isFull || entries_[i].bytes() > kMostEntryBytes;
  }
  block_.accept(size);
  ++counters.nextObject;
  ++counters.objects[cls.place];
  if (isFull) writeEntries();
  return id;
}

void Batch::endBlock(Counters& counters) {
  if (block_.isEmpty()) return;
  unsigned char key[sizeof(BlockId)];
  BlockId number = static_cast<BlockId>(counters.nextBlock);
  manager().Store(KT_ID_BlockId, key, &number, kStored, 1);
  Cursor cursor(*txn_, objects_);
  block_.storeAt(static_cast<unsigned char*>(cursor.reserve(Bytes(key, sizeof key), block_.storedSize(), MDB_APPEND)));
  ++counters.nextBlock;
  block_.begin(*block_.cls(), counters.nextObject);
}

void Batch::write(Counters& counters) {
  endBlock(counters);
  writeEntries();
}

void Batch::writeEntries() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Index& index = *(*indexes_)[i];
    if (!entries_[i].isEmpty()) entries_[i].write(*txn_, index.tree_, comparatorOf(index.field().type));
  }
}

}  // namespace atlas
