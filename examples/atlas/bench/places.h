// places.h - what both databases are loaded with: cities of the world, repeated with variations.
#ifndef EXAMPLES_ATLAS_BENCH_PLACES_H
#define EXAMPLES_ATLAS_BENCH_PLACES_H

#include <string>
#include <vector>

namespace atlas::bench {

struct Day {
  short year = 0;
  char month = 0;
  char day = 0;
  // Days in the order of their numbers.
  long number() const { return (year * 16L + month) * 32L + day; }
};

struct Place {
  std::string name;      // UTF-8
  unsigned country = 0;  // place in Places::countries
  unsigned population = 0;
  Day founded;
  double latitude = 0;
  float longitude = 0;
};

struct Places {
  std::vector<std::string> countries;  // codes of two letters
  std::vector<Place> places;
};

// The same for the same arguments. `folder` has cities.csv. Throws std::runtime_error.
Places makePlaces(const std::string& folder, std::size_t count, unsigned seed);

}  // namespace atlas::bench

#endif
