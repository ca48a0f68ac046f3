// Parses the input as the predicate of a query: every text is refused at a place inside it or read, and what was read
// prints a form that is read as the same.
#include "predicate.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void require(bool condition, const std::string& text) {
  if (condition) return;
  std::fprintf(stderr, "guilty: %s\n", text.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::string canonical;
  try {
    canonical = atlas::canonicalText(atlas::parsePredicate(text));
  } catch (const atlas::PredicateError& refusal) {
    require(refusal.position() <= size, text);
    require(std::string_view(refusal.what()).find('^') != std::string_view::npos, text);
    return 0;
  }
  try {
    require(atlas::canonicalText(atlas::parsePredicate(canonical)) == canonical, canonical);
  } catch (const atlas::PredicateError&) {
    require(false, canonical);
  }
  return 0;
}
