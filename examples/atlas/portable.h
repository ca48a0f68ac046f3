// portable.h - all objects of a database in one stream of a fixed byte order, readable on every host and without LMDB.
//
// Numbers are big-endian, fields stored in code kPortable. portable.md shows the stream byte by byte.
#ifndef EXAMPLES_ATLAS_PORTABLE_H
#define EXAMPLES_ATLAS_PORTABLE_H

#include "record.h"

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace atlas {

// DISK: the format code of every field in a portable stream.
constexpr unsigned char kPortable = 2;

// CRC-32 as in ISO 3309 (polynomial 0x04C11DB7, reflected, all ones before and after): that of "123456789" is CBF43926.
class Crc32 {
public:
  void add(const void* bytes, unsigned long count);
  std::uint32_t value() const { return ~state_; }

private:
  std::uint32_t state_ = 0xFFFFFFFFU;
};

// Writes a stream. Failures of the stream itself are for the owner to see.
class PortableWriter {
public:
  // counts: of the objects of each class of the schema.
  PortableWriter(std::ostream& out, const Schema& schema, unsigned char language,
                 const std::vector<unsigned long long>& counts);
  // Objects come in the order of their numbers.
  void add(ObjId id, const Draft& draft);
  void end();

private:
  void put(const void* bytes, unsigned long count);
  void putNumber(unsigned long long number, unsigned long bytes);

  std::ostream& out_;
  Crc32 crc_;
  Buffer object_;
};

// Reads a stream, and holds one object at a time. Every call throws Mistake when the stream is cut short, altered,
// longer than it should be, or of a version that is not known. Only a next() that answers false has seen it all, and
// the checksum: what came before may be wrong.
class PortableReader {
public:
  // origin: of messages. Reads up to the first object.
  PortableReader(std::istream& in, const std::string& origin);
  PortableReader(const PortableReader&) = delete;
  PortableReader& operator=(const PortableReader&) = delete;

  const Schema& schema() const { return schema_; }
  unsigned char language() const { return language_; }
  unsigned long long count(const ClassSchema& cls) const { return counts_[cls.place]; }  // as the stream tells

  // False at the end. The id and the values are valid until the next call.
  bool next();
  ObjId id() const { return id_; }
  const Draft& values() const { return drafts_[class_]; }
  Draft& values() { return drafts_[class_]; }

private:
  void readHeader();
  void readCounts();
  void readFields(Draft& draft);
  void readEnd();
  void get(void* bytes, unsigned long count);
  void getObject(unsigned long count);
  unsigned long long getNumber(unsigned long bytes);
  [[noreturn]] void fail(const std::string& problem) const;

  std::istream& in_;
  std::string origin_;
  unsigned long long at_ = 0;  // bytes read
  Crc32 crc_;
  Schema schema_;
  unsigned char language_ = 0;
  std::vector<unsigned long long> counts_;  // of each class, by its place
  std::vector<unsigned long long> read_;
  std::vector<Draft> drafts_;  // one for each class
  std::size_t class_ = 0;      // place of the object's
  ObjId id_;
  Buffer object_;  // bytes of its fields
};

}  // namespace atlas

#endif
