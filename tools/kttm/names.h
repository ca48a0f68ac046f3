// names.h - what people write for types, format codes, languages, code sets and compare operators. Each can be given
// by number as well. All parse functions throw Error with a sentence for a text that they do not know.
#ifndef KTTM_TOOL_NAMES_H
#define KTTM_TOOL_NAMES_H

#include <kttm.h>

#include <string>
#include <vector>

namespace tool {

// The type manager that the whole tool works through.
KtTypeMgr& manager();

// A type of the table.
struct Type {
  char id;
  bool fixed;      // every value takes the same room on disk
  bool hasNull;    // has a null value
  bool hasValues;  // false for a row without operations
  std::string name;
  std::string format;  // its own print and scan format
};

Type typeOf(int id);
Type parseType(const std::string& text);

// Decimal, or hexadecimal after "0x"; `what` names the thing in the error.
unsigned long parseNumber(const std::string& text, unsigned long least, unsigned long greatest,
                          const std::string& what);

struct Name {
  const char* text;
  unsigned value;
};
const std::vector<Name>& formatNames();
const std::vector<Name>& languageNames();
const std::vector<Name>& operatorNames();

unsigned char parseFormat(const std::string& text);    // 0 to 15
unsigned char parseLanguage(const std::string& text);  // 0 to 253: above, a language marks a null text
unsigned char parseCodeSet(const std::string& text);   // 0 to 253
// A number, or words joined by commas, added to the default (wildcards off).
unsigned short parseOperator(const std::string& text);

// "ISO 8859-1 (1)".
std::string codeSetTitle(unsigned char code);
// "4 (short-int)", or the number alone.
std::string formatTitle(unsigned char code);

}  // namespace tool

#endif
