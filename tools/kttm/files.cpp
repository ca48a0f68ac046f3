#include "files.h"

#include "error.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace tool {
namespace {

std::string readAll(std::istream& in) {
  std::string all;
  char part[1 << 16];
  while (in.read(part, sizeof part), in.gcount() > 0) all.append(part, static_cast<std::size_t>(in.gcount()));
  return all;
}

std::string named(const std::string& path) { return '"' + visible(path) + '"'; }

std::string readInput() {
  std::string text = readAll(std::cin);
  if (std::cin.bad() || std::ferror(stdin) != 0) throw Error("cannot read standard input");
  return text;
}

void writeTo(std::ostream& out, const Bytes& bytes) {
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

std::string readFile(const std::string& path) {
  if (path == "-") return readInput();
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) throw Error(named(path) + " is a directory");
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) throw Error("cannot read " + named(path) + ": " + std::strerror(errno));
  std::string text = readAll(in);
  if (in.bad()) throw Error("cannot read " + named(path) + " to its end");
  return text;
}

Bytes readBytes(const std::string& path) {
  const std::string text = readFile(path);
  return {text.begin(), text.end()};
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

void writeFile(const std::string& path, const Bytes& bytes) {
  errno = 0;
  std::ofstream out(path, std::ios::binary);
  if (!out) throw Error("cannot write " + named(path) + ": " + std::strerror(errno));
  writeTo(out, bytes);
  out.close();
  if (!out) throw Error("cannot write all of " + named(path));
}

void writeOutput(const Bytes& bytes) { writeTo(std::cout, bytes); }

}  // namespace tool
