// columns - the main job of a type manager, on two real tables: columns are runs of values known by a type id alone;
// they are stored, loaded, compared, hashed, sorted and printed without one line that knows a type.
//
// usage: columns COUNTRIES.csv CITIES.csv
#include "table.h"

#include <cstdio>
#include <exception>
#include <set>

namespace {

const std::vector<Column> kCountries = {
    {"name", "KtString"},        {"native_name", "KtString"},       {"capital", "KtString"}, {"area_km2", "double"},
    {"landlocked", "KtBoolean"}, {"neighbours", "KtString"},        {"cca2", "KtString"},    {"cca3", "KtString"},
    {"ccn3", "KtString"},        {"founded", "KtDate", "%Y-%m-%d"},
};
const std::vector<Column> kCities = {
    {"name", "KtString"},   {"country", "KtString"}, {"population", "KtDWord"},
    {"latitude", "double"}, {"longitude", "float"},
};

constexpr unsigned char kBigEndian = 2;
constexpr unsigned char kLittleEndian = 0;

// Characters of a UTF-8 text, as far as columns on a terminal go.
int widthOf(const std::string& utf8) {
  int width = 0;
  for (char ch : utf8) width += (static_cast<unsigned char>(ch) & 0xC0) != 0x80 ? 1 : 0;
  return width;
}

void printPadded(const std::string& utf8, int width) {
  const int padding = width > widthOf(utf8) ? width - widthOf(utf8) : 0;
  std::printf("%s%*s", utf8.c_str(), padding, "");
}

// Stores the run, loads it back into a new one and compares and hashes both; the disk bytes.
unsigned long roundTrip(KtTypeMgr& mgr, const Run& run, unsigned char format, bool& same) {
  std::vector<unsigned char> disk(mgr.DiskLenGet(run.id(), run.data(), format, run.count(), 8));
  mgr.Store(run.id(), disk.data(), run.data(), format, run.count());
  Run back(mgr, run.id(), run.count());
  mgr.Load(run.id(), back.data(), disk.data(), format, run.count());
  int status = 0;
  same = same && mgr.Cmp(run.id(), run.data(), back.data(), KtCMP_NO_WILDCARDS, run.count(), 8) == 0;
  same = same && mgr.Hash(run.id(), 0, run.data(), run.count(), 8, status) ==
                     mgr.Hash(run.id(), disk.size(), disk.data(), run.count(), format, status);
  return disk.size();
}

bool showStorage(KtTypeMgr& mgr, const char* title, const Table& table) {
  std::printf("\n%s: %lu rows\n", title, table.rows());
  std::printf("  %-12s %-9s %8s %9s %9s %6s  %-8s  %s\n", "column", "type", "memory", "big", "little", "nulls", "hash",
              "stored and loaded back");
  bool allSame = true;
  for (std::size_t i = 0; i < table.width(); ++i) {
    const Run& run = table.run(i);
    bool same = true;
    int status = 0;
    const unsigned long big = roundTrip(mgr, run, kBigEndian, same);
    const unsigned long little = roundTrip(mgr, run, kLittleEndian, same);
    std::printf("  %-12s %-9s %8lu %9lu %9lu %6lu  %08lx  %s\n", table.column(i).name, table.column(i).type,
                mgr.MemLenGet(run.id(), 1) * run.count(), big, little, run.nulls(),
                mgr.Hash(run.id(), 0, run.data(), run.count(), 8, status), same ? "equal" : "DIFFERENT");
    allSame = allSame && same;
  }
  return allSame;
}

void showLargest(KtTypeMgr& mgr, const Table& countries, unsigned long rows) {
  const auto order = sortedBy(mgr, countries.run("area_km2"), true);
  std::printf("\nthe largest countries\n");
  for (unsigned long i = 0; i < rows && i < order.size(); ++i) {
    std::printf("  ");
    printPadded(countries.run("name").text(order[i]), 16);
    printPadded(countries.run("native_name").text(order[i]), 28);
    printPadded(countries.run("capital").text(order[i]), 18);
    std::printf("%10s km2   founded %s\n", countries.run("area_km2").text(order[i], "%.0f").c_str(),
                countries.run("founded").text(order[i], "%Y-%m-%d").c_str());
  }
}

struct Language {
  const char* name;
  unsigned char code;
};
constexpr Language kLanguages[] = {{"English", 1}, {"Swedish", 5}, {"Danish", 6}};

// The last rows of a run of names under each language, side by side.
void showCollation(KtTypeMgr& mgr, const std::vector<std::string>& names, unsigned long rows) {
  std::vector<std::vector<std::string>> columns;
  for (const Language& language : kLanguages) {
    Run run(mgr, KT_ID_KtString, names.size());
    for (unsigned long i = 0; i < names.size(); ++i) run.set(i, names[i], language.code);
    std::vector<std::string> column;
    for (unsigned long i : sortedBy(mgr, run)) column.push_back(run.text(i));
    columns.push_back(column);
  }
  std::printf("\nthe last of %zu Nordic cities under each language's rules\n  ", names.size());
  for (const Language& language : kLanguages) printPadded(language.name, 20);
  std::printf("\n");
  for (unsigned long i = names.size() > rows ? names.size() - rows : 0; i < names.size(); ++i) {
    std::printf("  ");
    for (const auto& column : columns) printPadded(column[i], 20);
    std::printf("\n");
  }
}

std::vector<std::string> nordicCities(const Table& cities) {
  const std::set<std::string> nordic = {"SE", "NO", "DK", "FI"};
  std::set<std::string> names;
  for (unsigned long i = 0; i < cities.rows(); ++i) {
    if (nordic.count(cities.run("country").text(i)) != 0) names.insert(cities.run("name").text(i));
  }
  return {names.begin(), names.end()};
}

int run(const char* countriesFile, const char* citiesFile) {
  ___KtTypemgrContext(1);
  KtTypeMgr& mgr = *DefaultTypeMgr();
  bool same = false;
  {
    const Table countries(mgr, countriesFile, kCountries);
    const Table cities(mgr, citiesFile, kCities);
    same = showStorage(mgr, "countries", countries);
    same = showStorage(mgr, "cities", cities) && same;
    showLargest(mgr, countries, 10);
    showCollation(mgr, nordicCities(cities), 16);
  }
  ___KtTypemgrContext(0);
  return same ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: columns COUNTRIES.csv CITIES.csv\n");
    return 2;
  }
  try {
    return run(argv[1], argv[2]);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "columns: %s\n", problem.what());
    return 2;
  }
}
