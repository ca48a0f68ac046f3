// contestant.h - one database that holds the places: it is loaded, and asked for ranges through its indexes.
#ifndef EXAMPLES_ATLAS_BENCH_CONTESTANT_H
#define EXAMPLES_ATLAS_BENCH_CONTESTANT_H

#include "places.h"

#include <memory>
#include <string>
#include <vector>

namespace atlas::bench {

enum class Kind { kPopulation, kFounded, kName, kCountry };

// What a query asks for; the bounds of its kind count.
struct Query {
  Kind kind = Kind::kPopulation;
  unsigned least = 0, greatest = 0;  // population, both included
  Day first, last;                   // founded, both included
  std::string from, to;              // name; `to` is excluded
  unsigned country = 0;
};

// Fields of one hit, read from the database.
struct Hit {
  unsigned long number = 0;  // of the place, from 0
  std::string name;
  unsigned population = 0;
  long founded = 0;
  double latitude = 0;

  bool operator==(const Hit&) const = default;
};

class Contestant {
public:
  virtual ~Contestant() = default;
  virtual std::string name() const = 0;
  // Makes a new file, with all indexes, in one transaction that is on the disk when it ends.
  virtual void load(const Places& places, const std::string& file) = 0;
  virtual void open(const std::string& file) = 0;
  // Reads the fields of every hit and folds them; comparable only with the contestant's own.
  virtual unsigned long run(const Query& query) = 0;
  // The same hits in full, in any order.
  virtual std::vector<Hit> hits(const Query& query) = 0;
};

std::unique_ptr<Contestant> makeAtlas();
std::unique_ptr<Contestant> makeSqlite();     // names in the order of NOCASE
std::unique_ptr<Contestant> makeSqliteIcu();  // names in that of ICU; null when built without

}  // namespace atlas::bench

#endif
