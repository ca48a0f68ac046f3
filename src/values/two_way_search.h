// two_way_search.h - a search that is linear in the worst case and needs no memory, but slow where bytes differ early.
#ifndef KT_TWO_WAY_SEARCH_H
#define KT_TWO_WAY_SEARCH_H

namespace kt {

// The first place of the needle (one byte at least), or kBytesNotFound.
unsigned long findTwoWay(const unsigned char* hay, unsigned long hayLength, const unsigned char* needle,
                         unsigned long needleLength);

}  // namespace kt

#endif
