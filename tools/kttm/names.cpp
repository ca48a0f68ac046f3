#include "names.h"

#include "error.h"
#include "terminal.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>

namespace tool {
namespace {

constexpr unsigned long kTableVersion = 12;        // the current type table
constexpr unsigned long kGreatestPlainCode = 253;  // the language and code set 254 mark null texts

// Letters in lower case and digits, nothing else: "ISO 8859-1" and "iso_8859-1" are one name.
std::string simplified(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c >= 'A' && c <= 'Z') result += static_cast<char>(c - 'A' + 'a');
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) result += c;
  }
  return result;
}

bool isNumber(const std::string& text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

std::optional<unsigned> find(const std::vector<Name>& names, const std::string& text) {
  const auto found = std::find_if(names.begin(), names.end(),
                                  [&](const Name& name) { return simplified(name.text) == simplified(text); });
  if (found == names.end()) return std::nullopt;
  return found->value;
}

std::string listed(const std::vector<Name>& names) {
  std::string result;
  for (const Name& name : names) result += (result.empty() ? "" : ", ") + std::string(name.text);
  return result;
}

unsigned parseNamed(const std::vector<Name>& names, const std::string& text, unsigned long greatest,
                    const std::string& what) {
  if (isNumber(text)) return static_cast<unsigned>(parseNumber(text, 0, greatest, what));
  if (const auto value = find(names, text)) return *value;
  throw Error("unknown " + what + " " + quoted(text) + "; known are " + listed(names) + " and the numbers 0 to " +
              std::to_string(greatest));
}

// The code sets by their own names, and a few that are usual elsewhere.
const std::vector<Name>& codeSetNames() {
  static const std::vector<Name> names = [] {
    std::vector<Name> all{{"native", 0},  {"latin1", 1},   {"latin2", 2},  {"cyrillic", 3},
                          {"greek", 4},   {"latin9", 5},   {"cp1252", 10}, {"cp1250", 11},
                          {"cp1251", 12}, {"utf-16", 253}, {"ucs-2", 253}, {"unicode", 253}};
    for (unsigned code = 1; code <= kGreatestPlainCode; ++code) {
      const KtCodeSet& set = KtCodeSet::Get(static_cast<unsigned char>(code));
      if (set.Code() == code && !find(all, set.Name())) all.push_back({set.Name(), code});
    }
    return all;
  }();
  return names;
}

[[noreturn]] void throwUnknownType(const std::string& text) {
  std::string hint = "`kttm types` lists them";
  for (int id = 0; id < KtTYPE_COUNT; ++id) {
    const std::string name = manager().NameGet(static_cast<char>(id), nullptr);
    if (simplified(name) == simplified(text)) hint = "is it " + name + "?";
  }
  throw Error("unknown type " + quoted(text) + "; " + hint);
}

}  // namespace

KtTypeMgr& manager() {
  static KtTypeMgr instance(kTableVersion);
  return instance;
}

Type typeOf(int id) {
  const char key = static_cast<char>(id);
  KtTypeMgr& types = manager();
  void* probe = types.DefaultValue(key, 1, 0);
  const bool hasValues = probe != nullptr;
  if (hasValues) types.Delete(key, probe, 1);
  return {.id = key,
          .fixed = types.IsFixed(key) != 0,
          .hasNull = types.SupportsNullValue(key) != 0,
          .hasValues = hasValues,
          .name = types.NameGet(key, nullptr),
          .format = types.ExchangeFormat(key, nullptr)};
}

Type parseType(const std::string& text) {
  if (isNumber(text)) return typeOf(static_cast<int>(parseNumber(text, 0, KtTYPE_COUNT - 1, "type id")));
  char id = 0;
  if (manager().Name2KtTypeId(text.c_str(), id) != 0) throwUnknownType(text);
  return typeOf(id);
}

unsigned long parseNumber(const std::string& text, unsigned long least, unsigned long greatest,
                          const std::string& what) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const char* const end = text.data() + text.size();
  unsigned long value = 0;
  const auto result = std::from_chars(text.data() + (hex ? 2 : 0), end, value, hex ? 16 : 10);
  if (result.ec != std::errc() || result.ptr != end || value < least || value > greatest) {
    throw Error(quoted(text) + " is no " + what + ": a number from " + std::to_string(least) + " to " +
                std::to_string(greatest) + " is wanted");
  }
  return value;
}

const std::vector<Name>& formatNames() {
  static const std::vector<Name> names{{"little", 0}, {"host", 1}, {"big", 2}, {"short-int", 4}, {"memory", 8}};
  return names;
}

const std::vector<Name>& languageNames() {
  static const std::vector<Name> names{{"neutral", 0},   {"english", 1}, {"german", 2},  {"french", 3},
                                       {"spanish", 4},   {"swedish", 5}, {"finnish", 5}, {"danish", 6},
                                       {"norwegian", 6}, {"greek", 7},   {"russian", 8}, {"japanese", 20},
                                       {"chinese", 21},  {"korean", 22}};
  return names;
}

const std::vector<Name>& operatorNames() {
  static const std::vector<Name> names{{"default", 0},
                                       {"wildcards", KtCMP_NO_WILDCARDS},
                                       {"nocase", KtCMP_IGNORE_CASE},
                                       {"nodiacritics", KtCMP_IGNORE_DIACRITICS},
                                       {"nospaces", KtCMP_DROP_SPACES},
                                       {"nosymbols", KtCMP_DROP_SYMBOLS},
                                       {"binary", KtCMP_BINARY}};
  return names;
}

unsigned char parseFormat(const std::string& text) {
  return static_cast<unsigned char>(parseNamed(formatNames(), text, 15, "format code"));
}

unsigned char parseLanguage(const std::string& text) {
  return static_cast<unsigned char>(parseNamed(languageNames(), text, kGreatestPlainCode, "language"));
}

unsigned char parseCodeSet(const std::string& text) {
  return static_cast<unsigned char>(parseNamed(codeSetNames(), text, kGreatestPlainCode, "code set"));
}

unsigned short parseOperator(const std::string& text) {
  constexpr unsigned kGreatest = 65535;
  if (isNumber(text)) return static_cast<unsigned short>(parseNumber(text, 0, kGreatest, "compare operator"));
  unsigned op = KtCMP_NO_WILDCARDS;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    const unsigned bit = parseNamed(operatorNames(), text.substr(at, comma - at), kGreatest, "compare operator");
    op = bit == KtCMP_NO_WILDCARDS ? op & ~bit : op | bit;
    at = comma + 1;
  }
  return static_cast<unsigned short>(op);
}

std::string codeSetTitle(unsigned char code) {
  return std::string(KtCodeSet::Get(code).Name()) + " (" + std::to_string(code) + ")";
}

std::string formatTitle(unsigned char code) {
  const std::vector<Name>& names = formatNames();
  const auto found = std::find_if(names.begin(), names.end(), [&](const Name& name) { return name.value == code; });
  return std::to_string(code) + (found == names.end() ? "" : " (" + std::string(found->text) + ")");
}

}  // namespace tool
