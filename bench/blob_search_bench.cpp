// Searching a blob for needles of 4, 16 and 256 bytes: in random bytes, in text, and in one letter repeated.
#include "bench_job.h"

#include <kttm.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <string.h>  // memmem

namespace kt::bench {
namespace {

#if defined(__GLIBC__)

constexpr std::size_t kHay = 1 << 20;

struct SearchData {
  KtBlob hay;
  std::vector<KtBlob> needles;
};

std::string randomBytes() {
  std::mt19937 random(11);
  std::string bytes(kHay, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

std::string text() {
  std::ifstream file(KTTM_BENCH_DATA "/cities.csv", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (bytes.empty()) bytes = "no data, ";
  while (bytes.size() < kHay) bytes += bytes;
  return bytes.substr(0, kHay);
}

std::string oneLetter() { return std::string(kHay, 'a'); }

KtBlob blobOf(const std::string& bytes) { return KtBlob(bytes.data(), static_cast<long>(bytes.size())); }

// Needles that are not there but begin, or end, like much that is; one changed byte in each.
std::unique_ptr<SearchData> searches(std::string (*makeHay)(), std::size_t length) {
  const std::string hay = makeHay();
  auto data = std::make_unique<SearchData>();
  data->hay = blobOf(hay);
  for (const std::size_t part : {1u, 2u, 3u}) {
    std::string needle = hay.substr(kHay * part / 4, length);
    std::size_t changed = (part - 1) * (length - 1) / 2;
    while (hay.find(needle) != std::string::npos) {
      needle[changed] = static_cast<char>(needle[changed] ^ 0x10);
      changed = (changed + 1) % length;
    }
    data->needles.push_back(blobOf(needle));
  }
  return data;
}

void searchKttm(SearchData& data) {
  for (const KtBlob& needle : data.needles) keep(data.hay.Search(needle));
}

void searchMemmem(SearchData& data) {
  for (const KtBlob& needle : data.needles)
    keep(memmem(data.hay.Seek(0, 1), static_cast<std::size_t>(data.hay.Length()), needle.Seek(0, 1),
                static_cast<std::size_t>(needle.Length())));
}

bool agree(SearchData& data) {
  for (const KtBlob& needle : data.needles) {
    const void* found = memmem(data.hay.Seek(0, 1), static_cast<std::size_t>(data.hay.Length()), needle.Seek(0, 1),
                               static_cast<std::size_t>(needle.Length()));
    const long expected = found == nullptr ? 65535 : static_cast<const char*>(found) - data.hay.Seek(0, 1);
    if (data.hay.Search(needle) != expected) return false;
  }
  return true;
}

void addHay(const char* name, std::string (*makeHay)()) {
  for (const long length : {4L, 16L, 256L}) {
    const auto make = [=] { return searches(makeHay, static_cast<std::size_t>(length)); };
    Job<SearchData>(std::string("search_blob_") + name, length, 3, 3 * static_cast<long>(kHay), make, agree)
        .contestant("kttm", searchKttm)
        .contestant("memmem", searchMemmem);
  }
}

void addJobs() {
  addHay("random", randomBytes);
  addHay("text", text);
  addHay("one_letter", oneLetter);
}

const Registration registration(addJobs);

#endif

}  // namespace
}  // namespace kt::bench
