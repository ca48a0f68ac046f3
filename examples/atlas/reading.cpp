#include "reading.h"

#include "error.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace atlas {
namespace {

constexpr unsigned char kLatin1 = 1;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimmedFraction(std::string_view text) {
  if (text.find('.') == std::string_view::npos) return text;
  while (text.back() == '0') text.remove_suffix(1);
  if (text.back() == '.') text.remove_suffix(1);
  return text;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Steps over zeros that begin a number.
std::size_t behindZeros(std::string_view text, std::size_t at) {
  if (at > 0 && isDigit(text[at - 1])) return at;
  while (at + 1 < text.size() && text[at] == '0' && isDigit(text[at + 1])) ++at;
  return at;
}

bool sameText(std::string_view a, std::string_view b) {
  if (a == b) return true;
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    i = behindZeros(a, i);
    j = behindZeros(b, j);
    if (lower(a[i++]) != lower(b[j++])) return false;
  }
  return i == a.size() && j == b.size();
}

// The whole text as a finite number.
std::optional<double> numberOf(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool begins = !text.empty() && (isDigit(text[0]) || text[0] == '-' || text[0] == '+' || text[0] == '.');
  if (!begins || *end != '\0' || !std::isfinite(number)) return std::nullopt;
  return number;
}

// A type may hold fewer digits than a text has.
bool sameNumber(const std::string& text, const Value& value) {
  constexpr double kRounding = 1e-6;
  const std::optional<double> wanted = numberOf(text);
  if (!wanted) return false;
  const std::optional<std::string> shown = conversionOf(value);
  const std::optional<double> number = shown ? numberOf(*shown) : std::nullopt;
  if (!number) return false;
  const bool isReal = shown->find_first_of(".e") != std::string::npos;
  return std::fabs(*wanted - *number) <= (isReal ? kRounding * std::fabs(*number) : 0.0);
}

bool saysTheSame(const std::string& text, const Value& value, const Field& field) {
  const std::string shown = value.text(field);
  if (sameText(text, shown) || trimmedFraction(text) == trimmedFraction(shown)) return true;
  // Conversions narrow to signed numbers: the print knows the sign.
  return (text[0] == '-') == (shown[0] == '-') && sameNumber(text, value);
}

// A year before 0 has a sign, which "%Y" does not take: such a date is converted from its day number.
bool readBeforeYear0(Value& value, const std::string& text, const Field& field) {
  int year = 0, month = 0, day = 0, used = 0;
  if (text[0] != '-' || field.format.find("%Y-%m-%d") != 0) return false;
  if (std::sscanf(text.c_str(), "%6d-%2d-%2d%n", &year, &month, &day, &used) != 3) return false;
  const KtDate date(static_cast<short>(year), static_cast<char>(month), static_cast<char>(day));
  if (text.size() != static_cast<std::size_t>(used) || !date.IsDate()) return false;
  convertText(value, std::to_string(date.dayabs()));
  return sameText(text, value.text(field));
}

// A text in quotes, as much of it as a message should hold.
std::string quoted(std::string_view text) {
  constexpr std::size_t kMost = 60;  // bytes
  std::size_t cut = text.size() <= kMost ? text.size() : kMost;
  while (cut < text.size() && cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) --cut;
  return "\"" + std::string(text.substr(0, cut)) + (cut < text.size() ? "...\"" : "\"");
}

[[noreturn]] void refuse(std::string_view text, const Value& value, const Field& field) {
  std::string message = field.typeName + " cannot read " + quoted(text);
  if (!field.format.empty()) message += " under the format " + quoted(field.format);
  throw Mistake(message + ": it would become " + quoted(value.text(field)));
}

}  // namespace

void readScanned(Value& value, std::string_view utf8, const Field& field, unsigned char language) {
  KtString in = stringOf(utf8, language);
  value.clear();
  manager().ScanFromKtString(value.type(), value.data(), in, field.formatOrNull(), 1);
  const std::string text(utf8);
  if (saysTheSame(text, value, field) || readBeforeYear0(value, text, field)) return;
  refuse(text, value, field);
}

void readConverted(Value& value, std::string_view utf8, const Field& field) {
  const std::string text(utf8);
  value.clear();
  convertText(value, text);
  const std::optional<std::string> shown = conversionOf(value);
  if (!shown || (!sameText(text, *shown) && !sameNumber(text, value))) refuse(text, value, field);
}

void convertText(Value& value, const std::string& text) {
  if (text.size() > 0xFFFF - 4) throw Mistake("the text is longer than a string");
  KtString string(text.data(), static_cast<unsigned short>(text.size()));
  string.SetCodeSetCode(kLatin1);
  KtTypeConvertData holder(KT_ID_KtString, 1, &string, nullptr);
  void* converted = manager().ConvertFrom(value.type(), &holder, 1);
  holder.data = nullptr;  // the manager made itself its owner, but the string is ours
  if (converted == nullptr) return;
  manager().AssignmentPtrGet(value.type())(value.data(), converted, 1, 0);
  manager().Delete(value.type(), converted, 1);
}

std::optional<std::string> conversionOf(const Value& value) {
  const std::unique_ptr<KtTypeConvertData> holder(manager().ConvertTo(value.type(), value.data(), 1));
  const KtString* text = holder == nullptr ? nullptr : holder->GetString(0);
  if (text == nullptr || text->IsNullValue() != 0) return std::nullopt;
  return text->CharSize() == 1 ? std::string(text->StrGet(), text->Len()) : utf8Of(*text);
}

}  // namespace atlas
