// replay_main.cpp - runs a fuzz harness over files, without a fuzz engine: every file of the folders and every file that
// the arguments name. The empty input is always run. Exit status 1 when an argument names nothing: a corpus that has moved
// must not pass for one without findings.
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

std::vector<fs::path> inputFiles(const fs::path& root) {
  std::error_code ignored;
  if (fs::is_regular_file(root, ignored)) return {root};
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(root, ignored)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  // Exactly the bytes, in a block of their own: a read behind the end is seen by the address sanitizer.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);  // names the guilty file when the harness aborts
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint8_t nothing = 0;
  LLVMFuzzerTestOneInput(&nothing, 0);
  for (int i = 1; i < argc; ++i) {
    if (!fs::exists(argv[i])) {
      std::fprintf(stderr, "%s: no such file or folder\n", argv[i]);
      return 1;
    }
    for (const fs::path& file : inputFiles(argv[i])) replay(file);
  }
  return 0;
}
