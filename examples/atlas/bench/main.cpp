// atlas_bench - atlas and SQLite side by side: the same places loaded, the same ranges asked for, in one run.
#include "contestant.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <random>

namespace atlas::bench {
namespace {

struct Options {
  std::string data;
  std::string folder = std::filesystem::temp_directory_path().string();
  std::size_t objects = 100000;
  unsigned seed = 2005;
  int rounds = 7;
  bool keep = false;  // the databases stay
  bool wall = false;  // the clock on the wall instead of the time of the processor
};

double now(bool wall) {
  timespec time;
  clock_gettime(wall ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// Queries of one kind, all of about a hundred hits or, for countries, what they have.
using QuerySet = std::vector<Query>;
constexpr std::size_t kQueries = 100;
constexpr std::size_t kHits = 100;
constexpr std::size_t kLeastAgreed = 50;  // of names
constexpr char kRangeOfNames[] = "range of names", kFewNames[] = "few names";

// Ranges of a hundred neighbours in order; isBefore(a, b) orders places, fill(query, first, last) says what is asked.
template <class IsBefore, class Fill>
QuerySet rangeQueries(std::vector<Place> places, std::mt19937& random, IsBefore isBefore, Fill fill) {
  std::sort(places.begin(), places.end(), isBefore);
  QuerySet queries;
  for (std::size_t i = 0; i < kQueries; ++i) {
    const std::size_t at = random() % (places.size() - kHits);
    fill(queries.emplace_back(), places[at], places[at + kHits - 1]);
  }
  return queries;
}

QuerySet populationQueries(const Places& places, std::mt19937& random) {
  return rangeQueries(
      places.places, random, [](const Place& a, const Place& b) { return a.population < b.population; },
      [](Query& query, const Place& first, const Place& last) {
        query.kind = Kind::kPopulation;
        query.least = first.population;
        query.greatest = last.population;
      });
}

QuerySet foundedQueries(const Places& places, std::mt19937& random) {
  return rangeQueries(
      places.places, random, [](const Place& a, const Place& b) { return a.founded.number() < b.founded.number(); },
      [](Query& query, const Place& first, const Place& last) {
        query.kind = Kind::kFounded;
        query.first = first.founded;
        query.last = last.founded;
      });
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool beginsWith(const std::string& name, const std::string& prefix) {
  return name.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), name.begin(), [](char a, char b) { return lower(a) == lower(b); });
}

// Beginnings of names, of so many plain letters and with so many hits. Collations disagree where names have marks, blanks
// or symbols behind the same letters: such beginnings are left out, see agreed().
QuerySet nameQueries(const Places& places, std::mt19937& random, std::size_t letters, std::size_t least,
                     std::size_t most) {
  std::map<std::string, std::size_t> hits;
  for (const Place& place : places.places) {
    std::string prefix = place.name.substr(0, letters);
    std::transform(prefix.begin(), prefix.end(), prefix.begin(), lower);
    const bool plain = std::all_of(prefix.begin(), prefix.end(), [](char c) { return c >= 'a' && c < 'z'; });
    if (plain && prefix.size() == letters) ++hits[prefix];
  }
  QuerySet queries;
  for (const auto& [prefix, count] : hits) {
    if (count < least || count > most) continue;
    Query query;
    query.kind = Kind::kName;
    query.from = query.to = prefix;
    ++query.to.back();
    queries.push_back(query);
  }
  std::shuffle(queries.begin(), queries.end(), random);
  if (queries.size() > 4 * kQueries) queries.resize(4 * kQueries);
  return queries;
}

QuerySet countryQueries(const Places& places) {
  QuerySet queries;
  for (unsigned country = 0; country < places.countries.size(); ++country) {
    Query query;
    query.kind = Kind::kCountry;
    query.country = country;
    queries.push_back(query);
  }
  return queries;
}

bool asksFor(const Query& query, const Place& place) {
  switch (query.kind) {
    case Kind::kPopulation: return place.population >= query.least && place.population <= query.greatest;
    case Kind::kFounded:
      return place.founded.number() >= query.first.number() && place.founded.number() <= query.last.number();
    case Kind::kName: return beginsWith(place.name, query.from);
    case Kind::kCountry: break;
  }
  return place.country == query.country;
}

// What the query must give, found by looking at every place.
std::vector<Hit> expected(const Places& places, const Query& query) {
  std::vector<Hit> hits;
  for (std::size_t i = 0; i < places.places.size(); ++i) {
    const Place& place = places.places[i];
    if (asksFor(query, place))
      hits.push_back({i, place.name, place.population, place.founded.number(), place.latitude});
  }
  return hits;
}

std::vector<Hit> sorted(std::vector<Hit> hits) {
  std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.number < b.number; });
  return hits;
}

class Comparison {
public:
  explicit Comparison(const Options& options)
      : options_(options), places_(makePlaces(options.data, options.objects, options.seed)) {
    contestants_.push_back(makeAtlas());
    contestants_.push_back(makeSqlite());
    if (auto icu = makeSqliteIcu()) contestants_.push_back(std::move(icu));
  }

  int run() {
    makeQueries();
    for (int round = 0; round < options_.rounds; ++round) loadAll();
    for (std::size_t i = 0; i < contestants_.size(); ++i) contestants_[i]->open(fileOf(i));
    if (!keepAgreed()) return 1;
    for (int round = 0; round < options_.rounds; ++round) {
      for (const auto& [name, queries] : queries_) askAll(name, queries);
    }
    printTable();
    return 0;
  }

private:
  std::string fileOf(std::size_t contestant) const {
    return options_.folder + "/atlas_bench_" + std::to_string(getpid()) + "_" + std::to_string(contestant);
  }

  void remove(std::size_t contestant) const {
    for (const char* end : {"", "-lock", "-journal"}) std::filesystem::remove(fileOf(contestant) + end);
  }

  void makeQueries() {
    std::mt19937 random(options_.seed);
    queries_["range of numbers"] = populationQueries(places_, random);
    queries_["range of dates"] = foundedQueries(places_, random);
    queries_[kRangeOfNames] = nameQueries(places_, random, 3, 20, 200);
    queries_[kFewNames] = nameQueries(places_, random, 4, 1, 20);
    queries_["reference"] = countryQueries(places_);
  }

  // Every round begins with another contestant.
  template <class Run>
  void inTurn(const std::string& job, Run run) {
    for (std::size_t i = 0; i < contestants_.size(); ++i) {
      const std::size_t contestant = (i + turn_) % contestants_.size();
      const double before = now(options_.wall);
      run(contestant);
      times_[job][contestant].push_back(now(options_.wall) - before);
    }
    ++turn_;
  }

  void loadAll() {
    for (std::size_t i = 0; i < contestants_.size(); ++i) remove(i);
    inTurn("load", [&](std::size_t i) { contestants_[i]->load(places_, fileOf(i)); });
  }

  void askAll(const std::string& job, const QuerySet& queries) {
    inTurn(job, [&](std::size_t i) {
      for (const Query& query : queries) sum_ = sum_ + contestants_[i]->run(query);
    });
  }

  // Leaves the queries whose hits are alike everywhere, down to the fields. All must be, but for names.
  bool keepAgreed() {
    for (auto& [name, queries] : queries_) {
      const std::size_t before = queries.size();
      std::erase_if(queries, [&](const Query& query) { return !agreed(query); });
      hits_[name] = 0;
      if (queries.size() > kQueries && name != "reference") queries.resize(kQueries);
      for (const Query& query : queries) hits_[name] += expected(places_, query).size();
      std::printf("%-18s %4zu queries, %7lu hits\n", name.c_str(), queries.size(), hits_[name]);
      const bool isOfNames = name == kRangeOfNames || name == kFewNames;
      if (isOfNames ? queries.size() >= kLeastAgreed : queries.size() == before) continue;
      std::printf("%s: the contestants disagree\n", name.c_str());
      return false;
    }
    return true;
  }

  bool agreed(const Query& query) {
    const std::vector<Hit> wanted = expected(places_, query);
    return std::all_of(contestants_.begin(), contestants_.end(),
                       [&](const auto& contestant) { return sorted(contestant->hits(query)) == wanted; });
  }

  // The median of the rounds' ratios: what disturbs a round disturbs both sides.
  double ratio(const std::string& job, std::size_t peer) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < times_[job][0].size(); ++i) ratios.push_back(times_[job][peer][i] / times_[job][0][i]);
    return median(ratios);
  }

  void printRow(const std::string& job, std::size_t peer, double ours, double theirs, const char* unit, double ratio,
                double goal, bool reached) const {
    std::printf("%-18s %-14s %9.2f %9.2f %s %6.2f  %4.1f %s\n", job.c_str(), contestants_[peer]->name().c_str(), ours,
                theirs, unit, ratio, goal, reached ? "ok" : "short");
  }

  void printTable() {
    std::printf("\n%-18s %-14s %9s %9s    %6s  goal\n", "job", "peer", "atlas", "peer", "ratio");
    for (std::size_t peer = 1; peer < contestants_.size(); ++peer) {
      for (const auto& [job, times] : times_) {
        const double goal = job == "load" ? 1.5 : 2;
        printRow(job, peer, median(times.at(0)) * 1e3, median(times.at(peer)) * 1e3, "ms", ratio(job, peer), goal,
                 ratio(job, peer) >= goal);
      }
      const double ours = size(0), theirs = size(peer);
      printRow("file size", peer, ours, theirs, "MB", ours / theirs, 1.3, ours <= 1.3 * theirs);
    }
    for (std::size_t i = 0; i < contestants_.size() && !options_.keep; ++i) remove(i);
  }

  double size(std::size_t contestant) const {
    return static_cast<double>(std::filesystem::file_size(fileOf(contestant))) / 1e6;
  }

  Options options_;
  Places places_;
  std::vector<std::unique_ptr<Contestant>> contestants_;
  std::map<std::string, QuerySet> queries_;
  std::map<std::string, unsigned long> hits_;
  std::map<std::string, std::map<std::size_t, std::vector<double>>> times_;  // by job and contestant, round by round
  std::size_t turn_ = 0;
  volatile unsigned long sum_ = 0;
};

}  // namespace
}  // namespace atlas::bench

int main(int argc, char** argv) {
  atlas::bench::Options options;
  CLI::App app("Compares atlas with SQLite: loading, ranges through indexes, file sizes.");
  app.add_option("DATA", options.data, "the folder that holds cities.csv")->required();
  app.add_option("--folder", options.folder, "where the databases are made")->capture_default_str();
  app.add_option("--objects", options.objects, "places to load")->capture_default_str();
  app.add_option("--seed", options.seed)->capture_default_str();
  app.add_option("--rounds", options.rounds, "repetitions")->capture_default_str();
  app.add_flag("--keep", options.keep, "leave the databases where they are");
  app.add_flag("--wall", options.wall, "measure the clock on the wall, not the time of the processor");
  CLI11_PARSE(app, argc, argv);
  try {
    return atlas::bench::Comparison(options).run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "atlas_bench: %s\n", error.what());
    return 2;
  }
}
