#include "places.h"

#include "../../common/csv.h"

#include <map>
#include <random>

namespace atlas::bench {
namespace {

// Of the standard library only the engine gives the same numbers everywhere.
class Random {
public:
  explicit Random(unsigned seed) : engine_(seed) {}
  unsigned below(unsigned bound) { return static_cast<unsigned>(engine_() % bound); }

private:
  std::mt19937 engine_;
};

// Copies of a city are called otherwise, so that names spread over the whole alphabet.
std::string varied(const std::string& name, std::size_t copy, Random& random) {
  static const char* const kWords[] = {"Alt-",   "Bad ",  "East ", "Fort ",  "Kirk",
                                       "Lower ", "Nova ", "Port ", "Upper ", "Villa "};
  if (copy == 0) return name;
  std::string made = kWords[random.below(10)];
  made.append(name);
  if (copy > 10) made.append(1, ' ').append(std::to_string(copy));
  return made;
}

Day anyDay(Random& random) {
  return {static_cast<short>(static_cast<int>(random.below(2600)) - 600), static_cast<char>(1 + random.below(12)),
          static_cast<char>(1 + random.below(28))};
}

}  // namespace

Places makePlaces(const std::string& folder, std::size_t count, unsigned seed) {
  const auto cities = examples::readCsvFile(folder + "/cities.csv");
  Places made;
  std::map<std::string, unsigned> countries;
  Random random(seed);
  for (std::size_t i = 0; i < count; ++i) {
    const auto& city = cities[1 + i % (cities.size() - 1)];
    const auto found = countries.emplace(city.at(1), static_cast<unsigned>(countries.size()));
    if (found.second) made.countries.push_back(city.at(1));
    const unsigned population =
        static_cast<unsigned>(std::stoul(city.at(2))) / (1 + random.below(20)) + random.below(1000);
    made.places.push_back({varied(city.at(0), i / (cities.size() - 1), random), found.first->second, population,
                           anyDay(random), std::stod(city.at(3)), std::stof(city.at(4))});
  }
  return made;
}

}  // namespace atlas::bench
