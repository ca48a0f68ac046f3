// blob_search.h - finding a run of bytes in another.
#ifndef KT_BLOB_SEARCH_H
#define KT_BLOB_SEARCH_H

namespace kt {

constexpr unsigned long kBytesNotFound = ~0ul;

// The first place of the needle, or kBytesNotFound. Time in proportion to both lengths; pure.
unsigned long findBytes(const unsigned char* hay, unsigned long hayLength, const unsigned char* needle,
                        unsigned long needleLength);

}  // namespace kt

#endif
