#include "portable.h"

#include "block.h"
#include "error.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace atlas {
namespace {

// DISK: begins the stream. The line ends and the control character tell of transfers that changed them.
constexpr unsigned char kMagic[] = {'A', 'T', 'L', 'A', 'S', '\r', '\n', 0x1A};
constexpr unsigned kVersion = 1;       // DISK
constexpr unsigned kEndMark = 0xFFFF;  // DISK: in the place of a class number
constexpr unsigned long kIdSize = 10;  // DISK: a KtObjId
constexpr unsigned long kLongestSchema = 1UL << 20;
constexpr unsigned long kPiece = 1UL << 16;  // a length that is wrong must not take all memory
constexpr unsigned char kMemoryForm = 8;

constexpr std::array<std::uint32_t, 256> makeCrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    table[i] = i;
    for (int bit = 0; bit < 8; ++bit) table[i] = (table[i] >> 1) ^ ((table[i] & 1) != 0 ? 0xEDB88320U : 0);
  }
  return table;
}
constexpr std::array<std::uint32_t, 256> kCrcTable = makeCrcTable();

unsigned long portableSize(const Value& value) {
  return manager().DiskLenGet(value.type(), value.data(), kPortable, 1, kMemoryForm);
}

void storePortable(const Draft& draft, Buffer& bytes) {
  unsigned long size = 0;
  for (std::size_t i = 0; i < draft.size(); ++i) size += portableSize(draft[i]);
  bytes.resize(size);
  unsigned char* at = bytes.data();
  for (std::size_t i = 0; i < draft.size(); ++i) {
    manager().Store(draft[i].type(), at, draft[i].data(), kPortable, 1);
    at += portableSize(draft[i]);
  }
}

}  // namespace

void Crc32::add(const void* bytes, unsigned long count) {
  const auto* at = static_cast<const unsigned char*>(bytes);
  for (unsigned long i = 0; i < count; ++i) state_ = (state_ >> 8) ^ kCrcTable[(state_ ^ at[i]) & 0xFF];
}

// --- writing --------------------------------------------------------------------------------------------------------

PortableWriter::PortableWriter(std::ostream& out, const Schema& schema, unsigned char language,
                               const std::vector<unsigned long long>& counts)
    : out_(out) {
  put(kMagic, sizeof kMagic);
  putNumber(kVersion, 2);
  putNumber(language, 1);
  putNumber(0, 1);
  putNumber(schema.text().size(), 4);
  put(schema.text().data(), schema.text().size());
  putNumber(schema.classes().size(), 2);
  for (const ClassSchema& cls : schema.classes()) {
    putNumber(cls.number, 2);
    putNumber(counts[cls.place], 8);
  }
}

void PortableWriter::add(ObjId id, const Draft& draft) {
  unsigned char stored[kIdSize];
  manager().Store(KT_ID_KtObjId, stored, &id, kPortable, 1);
  storePortable(draft, object_);
  putNumber(draft.cls().number, 2);
  put(stored, sizeof stored);
  putNumber(object_.size(), 4);
  put(object_.data(), object_.size());
}

void PortableWriter::end() {
  putNumber(kEndMark, 2);
  putNumber(crc_.value(), 4);
}

void PortableWriter::put(const void* bytes, unsigned long count) {
  crc_.add(bytes, count);
  out_.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
}

void PortableWriter::putNumber(unsigned long long number, unsigned long bytes) {
  unsigned char digits[8];
  for (unsigned long i = 0; i < bytes; ++i) digits[i] = static_cast<unsigned char>(number >> 8 * (bytes - 1 - i));
  put(digits, bytes);
}

// --- reading --------------------------------------------------------------------------------------------------------

PortableReader::PortableReader(std::istream& in, const std::string& origin) : in_(in), origin_(origin) {
  readHeader();
  readCounts();
  for (const ClassSchema& cls : schema_.classes()) drafts_.emplace_back(cls);
}

void PortableReader::readHeader() {
  unsigned char magic[sizeof kMagic];
  in_.read(reinterpret_cast<char*>(magic), sizeof magic);
  if (in_.gcount() != sizeof magic || std::memcmp(magic, kMagic, sizeof magic) != 0) {
    throw Mistake(origin_ + ": this is no export of atlas");
  }
  at_ += sizeof magic;
  crc_.add(magic, sizeof magic);
  const unsigned long long version = getNumber(2);
  if (version != kVersion) {
    throw Mistake(origin_ + ": the export has version " + std::to_string(version) + ", and this atlas reads version " +
                  std::to_string(kVersion));
  }
  language_ = static_cast<unsigned char>(getNumber(1));
  if (getNumber(1) != 0) fail("a byte that should be 0 is not");
  const auto size = static_cast<unsigned long>(getNumber(4));
  if (size > kLongestSchema) fail("the schema is too long");
  getObject(size);
  schema_ = Schema::parse(std::string(object_.begin(), object_.end()), origin_ + ": schema");
}

void PortableReader::readCounts() {
  const auto& classes = schema_.classes();
  if (getNumber(2) != classes.size()) fail("the schema has another number of classes");
  for (const ClassSchema& cls : classes) {
    if (getNumber(2) != cls.number) fail("the schema has other classes");
    counts_.push_back(getNumber(8));
  }
  read_.resize(classes.size());
}

bool PortableReader::next() {
  const auto number = static_cast<unsigned>(getNumber(2));
  if (number == kEndMark) {
    readEnd();
    return false;
  }
  const ClassSchema* cls = schema_.byNumber(number);
  if (cls == nullptr) fail("there is no class " + std::to_string(number));
  class_ = cls->place;
  ++read_[class_];
  const ObjectNumber before = numberOf(id_);
  unsigned char id[kIdSize];
  get(id, sizeof id);
  manager().Load(KT_ID_KtObjId, &id_, id, kPortable, 1);
  if (numberOf(id_) <= before) fail("the objects are not in the order of their numbers");
  getObject(static_cast<unsigned long>(getNumber(4)));
  readFields(drafts_[class_]);
  return true;
}

// What is loaded must be stored as it came: a value that its type would change is none that a database held.
void PortableReader::readFields(Draft& draft) {
  unsigned long from = 0;
  for (std::size_t i = 0; i < draft.size() && from < object_.size(); ++i) {
    const unsigned long left = object_.size() - from;
    const unsigned long size = storedLength(draft[i].type(), {object_.data() + from, left}, kPortable);
    if (size > left) fail("a field ends behind its object");
    manager().Load(draft[i].type(), draft[i].data(), object_.data() + from, kPortable, 1);
    from += size;
  }
  Buffer again;
  storePortable(draft, again);
  if (again != object_) fail("an object is not as its fields are stored");
}

void PortableReader::readEnd() {
  const std::uint32_t computed = crc_.value();
  if (getNumber(4) != computed) fail("the checksum is wrong");
  if (in_.peek() != std::istream::traits_type::eof()) fail("there is more behind the end");
  if (read_ != counts_) fail("the objects are not as many as the header tells");
}

void PortableReader::get(void* bytes, unsigned long count) {
  in_.read(static_cast<char*>(bytes), static_cast<std::streamsize>(count));
  const auto got = static_cast<unsigned long>(in_.gcount());
  at_ += got;
  crc_.add(bytes, got);
  if (got != count) fail(in_.bad() ? "it cannot be read" : "it is cut short");
}

void PortableReader::getObject(unsigned long count) {
  object_.clear();
  while (object_.size() < count) {
    const unsigned long have = object_.size();
    const unsigned long piece = std::min(count - have, kPiece);
    object_.resize(have + piece);
    get(object_.data() + have, piece);
  }
}

unsigned long long PortableReader::getNumber(unsigned long bytes) {
  unsigned char digits[8];
  get(digits, bytes);
  unsigned long long number = 0;
  for (unsigned long i = 0; i < bytes; ++i) number = number << 8 | digits[i];
  return number;
}

void PortableReader::fail(const std::string& problem) const {
  throw Mistake(origin_ + ": the export is damaged at byte " + std::to_string(at_) + ": " + problem);
}

}  // namespace atlas
