#include "explain.h"

#include "columns.h"

#include <cstdio>
#include <cstring>

namespace atlas {

std::string storedText(const Database& database, const Field& field, Bytes stored) {
  if (const std::optional<Record> target = database.follow(field, stored)) return target->text(field.references->field);
  Value value(field.type);
  value.load(stored);
  return value.text(field);
}

std::string fieldText(const Database& database, const Record& record, std::size_t field) {
  return storedText(database, record.cls().fields[field], record.fieldBytes(field));
}

namespace {

// A character with the order of one word of an index key; see docs/formats/index-keys.md.
KtString characterOf(const unsigned char* word) {
  const unsigned order = static_cast<unsigned>(word[1] << 8 | word[2]);
  constexpr unsigned char kSeveralOrders = 0xFF;
  if (word[0] == kSeveralOrders) return KtString(static_cast<unsigned short>(order));
  const unsigned letterCase = word[3] >> 5 & 3u, diacritic = word[3] & 0x1Fu;
  const auto whole = static_cast<unsigned short>(order | letterCase << 12 | diacritic << 7);
  unsigned char ch = 0;
  constexpr int kWithDiacritic = 1;
  KtConvertOrderToChar(whole, word[0], ch, kWithDiacritic, nullptr);
  return KtString(static_cast<char>(ch));
}

// Bounds above all texts with a beginning hold the highest order that may be ignored, which is no character's.
bool isFiller(const unsigned char* word) {
  constexpr int kHighestIgnorable = 16127;
  return (word[1] << 8 | word[2]) == kHighestIgnorable;
}

std::string wordsText(Bytes key) {
  constexpr unsigned long kHead = 4, kEnd = 2, kWord = 4;
  KtString text(253, 0);  // Unicode
  for (unsigned long at = kHead; at + kWord + kEnd <= key.size; at += kWord) {
    if (!isFiller(key.data + at)) text += characterOf(key.data + at);
  }
  const bool isCut = key.size >= kEnd && key.data[key.size - 2] == 0xFF;
  std::string quoted(1, '"');
  quoted.append(utf8Of(text)).append(isCut ? "\"..." : "\"");
  return quoted;
}

}  // namespace

std::string boundText(const Database& database, const Index& index, Bytes key) {
  const Field& field = index.field();
  const bool isKeyOfWords = manager().IsFixed(field.type) == 0;
  return isKeyOfWords ? wordsText(key) : storedText(database, field, key);
}

namespace {

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.5f", value);
  return text;
}

std::string boundsText(const Database& database, const Candidate& candidate) {
  const KtIdxBounds& bounds = *candidate.bounds;
  std::string text;
  if (bounds.lowKey != nullptr) {
    text = "from " + boundText(database, *candidate.index, {bounds.lowKey, bounds.lowKeyLength});
  }
  if (bounds.highKey != nullptr) {
    text += text.empty() ? "to " : " to ";
    text += boundText(database, *candidate.index, {bounds.highKey, bounds.highKeyLength});
  }
  return text.empty() ? "none" : text;
}

std::string choiceText(const Plan& plan) {
  if (plan.usesIndex) return "index " + plan.candidates[0].index->name();
  return std::string("all objects: ") +
         (plan.candidates.empty() ? "no part of the predicate is for an index" : "no index excludes enough");
}

}  // namespace

std::string explanation(const Database& database, const ClassSchema& cls, const std::string& predicate,
                        const Plan& plan, const Work& work) {
  std::string text = "predicate: " + predicate + "\n";
  text += "class:     " + cls.name + ", " + std::to_string(database.count(cls)) + " objects\n";
  text += "choice:    " + choiceText(plan) + "\n";
  text += "work:      " + std::to_string(work.keys) + " keys scanned, " + std::to_string(work.objects) +
          " objects fetched, " + std::to_string(work.matches) + " rows matched\n";
  if (plan.candidates.empty()) return text;
  const std::vector<double> actual = actualSelectivity(database, cls, plan.candidates);
  Columns table({"index", "estimated", "actual", "bounds"});
  for (std::size_t i = 0; i < plan.candidates.size(); ++i) {
    const Candidate& candidate = plan.candidates[i];
    table.add(
        {candidate.index->name(), number(candidate.estimate), number(actual[i]), boundsText(database, candidate)});
  }
  return text + table.text();
}

}  // namespace atlas
