// replay_main.cpp - runs a fuzz harness over files, without a fuzz engine: every file of the folders and every file that
// the arguments name. The empty input is always run. Exit status 1 when an argument gives no file, or one that cannot be
// read: a corpus that has moved must not pass for one without findings.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

// None, and a message, where there is nothing to replay.
std::vector<fs::path> inputFiles(const fs::path& root) {
  std::error_code error;
  if (fs::is_regular_file(root, error)) return {root};
  std::vector<fs::path> files;
  fs::recursive_directory_iterator entry(root, error);
  for (; !error && entry != fs::end(entry); entry.increment(error)) {
    if (entry->is_regular_file(error)) files.push_back(entry->path());
  }
  if (error) files.clear();
  std::sort(files.begin(), files.end());
  if (files.empty())
    std::fprintf(stderr, "%s: %s\n", root.c_str(), error ? error.message().c_str() : "no files to replay");
  return files;
}

// False, and a message, where the file cannot be read.
bool replay(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream.is_open() || stream.bad()) {
    std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
    return false;
  }
  // Exactly the bytes, in a block of their own: a read behind the end is seen by the address sanitizer.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);  // names the guilty file when the harness aborts
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

bool replayAll(const fs::path& root) {
  const std::vector<fs::path> files = inputFiles(root);
  return !files.empty() && std::all_of(files.begin(), files.end(), replay);
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint8_t nothing = 0;
  LLVMFuzzerTestOneInput(&nothing, 0);
  if (argc < 2) std::fprintf(stderr, "%s file-or-folder...\n", argv[0]);
  return argc > 1 && std::all_of(argv + 1, argv + argc, replayAll) ? 0 : 1;
}
