// block_cache.h - where blocks lie in the map of the file, for as long as a transaction that only reads.
#ifndef EXAMPLES_ATLAS_BLOCK_CACHE_H
#define EXAMPLES_ATLAS_BLOCK_CACHE_H

#include "block.h"

namespace atlas {

// Every block has one place, which it shares with others: finding is a look at it, keeping overwrites what was there.
// Hits of an index are spread over the blocks, and looking each up in the tree would take longer than reading it.
class BlockCache {
public:
  const Block* find(unsigned long id) const {  // null: look it up
    const Slot& slot = slots_[id % kSlots];
    return slot.id == id && id != 0 ? &slot.block : nullptr;
  }
  void keep(unsigned long id, const Block& block) { slots_[id % kSlots] = {id, block}; }

private:
  static constexpr unsigned long kSlots = 4096;
  struct Slot {
    unsigned long id = 0;  // no block has this one
    Block block;
  };
  std::vector<Slot> slots_{kSlots};
};

}  // namespace atlas

#endif
