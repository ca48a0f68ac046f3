// files.h - whole files in and out; "-" is standard input. All throw Error where a file cannot be used.
#ifndef KTTM_TOOL_FILES_H
#define KTTM_TOOL_FILES_H

#include "hex.h"

#include <string>
#include <vector>

namespace tool {

std::string readFile(const std::string& path);
Bytes readBytes(const std::string& path);
std::vector<std::string> splitLines(const std::string& text);  // without line ends; no empty last line
void writeFile(const std::string& path, const Bytes& bytes);
void writeOutput(const Bytes& bytes);  // raw, to standard output

}  // namespace tool

#endif
