#include "ktbs.h"

MemFile::MemFile(const void* bytes, unsigned long length)
    : bytes_(static_cast<const char*>(bytes)), length_(bytes ? length : 0), position_(0) {}

const char* MemFile::Seek(long offset, int whence) {
  unsigned long base;
  switch (whence) {
    case Begin: base = 0; break;
    case Current: base = position_; break;
    case End: base = length_; break;
    default: return nullptr;
  }
  // Unsigned, so that the distance of the lowest long is exact.
  const unsigned long distance =
      offset < 0 ? 0UL - static_cast<unsigned long>(offset) : static_cast<unsigned long>(offset);
  const unsigned long room = offset < 0 ? base : length_ - base;
  if (distance > room) return nullptr;
  position_ = offset < 0 ? base - distance : base + distance;
  return bytes_ + position_;
}

unsigned long MemFile::Tell() const { return position_; }

unsigned long MemFile::Remaining() const { return length_ - position_; }
