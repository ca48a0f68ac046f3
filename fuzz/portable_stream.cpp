// Reads the input as a portable file of the example atlas, as it comes and with a checksum that fits it: every stream is
// refused with a message that names it, or read to its end, and then written again as the same bytes.
#include "portable.h"

#include "error.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

namespace {

constexpr std::size_t kChecksumSize = 4;

void require(bool condition, const char* law) {
  if (condition) return;
  std::fprintf(stderr, "broken: %s\n", law);
  std::abort();
}

std::string withChecksum(std::string bytes) {
  if (bytes.size() < kChecksumSize) return bytes;
  bytes.resize(bytes.size() - kChecksumSize);
  atlas::Crc32 crc;
  crc.add(bytes.data(), bytes.size());
  for (unsigned shift = 32; shift != 0; shift -= 8) bytes += static_cast<char>(crc.value() >> (shift - 8) & 0xFF);
  return bytes;
}

// What a writer makes of all that a reader says.
std::string copied(std::istream& in) {
  atlas::PortableReader reader(in, "input");
  std::vector<unsigned long long> counts;
  for (const atlas::ClassSchema& cls : reader.schema().classes()) counts.push_back(reader.count(cls));
  std::ostringstream out;
  atlas::PortableWriter writer(out, reader.schema(), reader.language(), counts);
  while (reader.next()) {
    const atlas::Draft& values = reader.values();
    for (std::size_t i = 0; i < values.size(); ++i) values[i].text(values.cls().fields[i]);
    writer.add(reader.id(), values);
  }
  writer.end();
  return out.str();
}

void run(const std::string& bytes) {
  std::istringstream in(bytes);
  try {
    require(copied(in) == bytes, "what was read is written as the same bytes");
  } catch (const atlas::Mistake& refusal) {
    require(std::string(refusal.what()).rfind("input: ", 0) == 0, "a refusal names the stream");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string fitting = withChecksum(bytes);
  run(bytes);
  if (fitting != bytes) run(fitting);
  return 0;
}
