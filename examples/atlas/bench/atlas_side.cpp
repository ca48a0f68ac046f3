#include "contestant.h"

#include "../database.h"

#include <cstring>
#include <filesystem>
#include <optional>

namespace atlas::bench {
namespace {

constexpr char kSchema[] = R"(
class country 1
  field code       KtCaseIString index
class place 2
  field name       KtString      index
  field country    KtRef         index references country by code
  field population KtDWord       index
  field founded    KtDate        index
  field latitude   double
  field longitude  float
)";
enum Fields : std::size_t { kName, kCountry, kPopulation, kFounded, kLatitude, kLongitude };

template <class T>
T& in(Value& value) {
  return *static_cast<T*>(value.data());
}

Day dayOf(const KtDate& date) { return {date.year, date.month, date.day}; }
KtDate dateOf(Day day) { return {day.year, day.month, day.day}; }

class Atlas : public Contestant {
public:
  std::string name() const override { return "atlas"; }
  void load(const Places& places, const std::string& file) override;
  void open(const std::string& file) override;
  unsigned long run(const Query& query) override;
  std::vector<Hit> hits(const Query& query) override;

private:
  std::optional<IndexScan> scan(const Query& query);
  IndexScan between(std::size_t field, const Value& low, const Value& high) const;
  template <class Visit>
  void visit(const Query& query, Visit visit);

  std::unique_ptr<Database> database_;
  const ClassSchema* class_ = nullptr;
  // Made once, as statements are prepared once.
  std::optional<Draft> low_, high_, place_;
  std::vector<ObjId> countries_;
  unsigned long firstPlace_ = 0;
};

void Atlas::load(const Places& places, const std::string& file) {
  database_.reset();
  const auto database =
      Database::create({.file = file, .mapSize = 0, .language = std::nullopt}, Schema::parse(kSchema, "places"));
  const auto& classes = database->schema().classes();
  Draft country(classes[0]);
  countries_.clear();
  for (const std::string& code : places.countries) {
    in<KtString>(country[0]) = stringOf(code, database->language());
    countries_.push_back(database->add(country));
  }
  Draft place(classes[1]);
  auto& ref = in<KtRef>(place[kCountry]);
  ref.database = 1;
  ref.classNumber = classes[0].number;
  firstPlace_ = places.countries.size() + 1;
  for (const Place& each : places.places) {
    in<KtString>(place[kName]) = stringOf(each.name, database->language());
    ref = countries_[each.country];
    in<KtDWord>(place[kPopulation]) = each.population;
    in<KtDate>(place[kFounded]) = dateOf(each.founded);
    in<double>(place[kLatitude]) = each.latitude;
    in<float>(place[kLongitude]) = each.longitude;
    database->add(place);
  }
  database->commit();
}

void Atlas::open(const std::string& file) {
  database_ = Database::openForReading({.file = file, .mapSize = 0, .language = std::nullopt});
  class_ = &database_->schema().classes()[1];
  low_.emplace(*class_);
  high_.emplace(*class_);
  place_.emplace(*class_);
}

IndexScan Atlas::between(std::size_t field, const Value& low, const Value& high) const {
  const Field& schema = class_->fields[field];
  const IndexRange range{indexKey(schema.type, low.stored()), indexKey(schema.type, high.stored())};
  return database_->index(*class_, schema)->scan(range.bounds());
}

std::optional<IndexScan> Atlas::scan(const Query& query) {
  Draft& low = *low_;
  Draft& high = *high_;
  switch (query.kind) {
    case Kind::kPopulation:
      in<KtDWord>(low[kPopulation]) = query.least;
      in<KtDWord>(high[kPopulation]) = query.greatest;
      return between(kPopulation, low[kPopulation], high[kPopulation]);
    case Kind::kFounded:
      in<KtDate>(low[kFounded]) = dateOf(query.first);
      in<KtDate>(high[kFounded]) = dateOf(query.last);
      return between(kFounded, low[kFounded], high[kFounded]);
    case Kind::kName:
      in<KtString>(low[kName]) = stringOf(query.from, database_->language());
      in<KtString>(high[kName]) = stringOf(query.to, database_->language());
      return between(kName, low[kName], high[kName]);
    case Kind::kCountry:
      in<KtRef>(low[kCountry]) = countries_[query.country];
      in<KtRef>(low[kCountry]).database = 1;
      in<KtRef>(low[kCountry]).classNumber = 1;
      return between(kCountry, low[kCountry], low[kCountry]);
  }
  return std::nullopt;
}

// Calls visit(record) for every hit. The keys of names may be cut, so names are compared again; the upper one is excluded.
template <class Visit>
void Atlas::visit(const Query& query, Visit visit) {
  auto found = scan(query);
  const bool isByName = query.kind == Kind::kName;
  const Buffer low = isByName ? (*low_)[kName].stored() : Buffer(),
               high = isByName ? (*high_)[kName].stored() : Buffer();
  while (found->next()) {
    const Record record = database_->get(found->id());
    if (isByName && !found->isBetween()) {
      const Bytes name = record.fieldBytes(kName);
      if (compare(KT_ID_KtString, name, low) < 0 || compare(KT_ID_KtString, name, high) >= 0) continue;
    }
    visit(record);
  }
}

unsigned long Atlas::run(const Query& query) {
  unsigned long sum = 0;
  Draft& place = *place_;
  visit(query, [&](const Record& record) {
    for (const std::size_t field : {kName, kPopulation, kFounded, kLatitude})
      place[field].load(record.fieldBytes(field));
    const KtString& name = in<KtString>(place[kName]);
    sum += name.Len() + static_cast<unsigned char>(name.StrGet()[0]) + in<KtDWord>(place[kPopulation]);
    sum += static_cast<unsigned long>(dayOf(in<KtDate>(place[kFounded])).number());
    sum += in<double>(place[kLatitude]) > 0 ? 1 : 0;
  });
  return sum;
}

std::vector<Hit> Atlas::hits(const Query& query) {
  std::vector<Hit> hits;
  Draft place(*class_);
  visit(query, [&](const Record& record) {
    place.load(record);
    hits.push_back({static_cast<unsigned long>(numberOf(record.id())) - firstPlace_, utf8Of(in<KtString>(place[kName])),
                    in<KtDWord>(place[kPopulation]), dayOf(in<KtDate>(place[kFounded])).number(),
                    in<double>(place[kLatitude])});
  });
  return hits;
}

}  // namespace

std::unique_ptr<Contestant> makeAtlas() { return std::make_unique<Atlas>(); }

}  // namespace atlas::bench
