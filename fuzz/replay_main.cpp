// Runs a driver without libFuzzer: over files and the files of folders, then over so many
// edited copies of them. The edits depend on nothing but the files, so that a run finds
// what the last one found.
//   fuzz_DRIVER_replay COUNT PATH...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size);

namespace {

using CInputs = std::vector<std::string>;

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

void Run(const std::string& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

void Replay(const std::filesystem::path& file, CInputs& inputs) {
  std::fprintf(stderr, "%s\n", file.c_str());  // the last line says which input it was
  std::ifstream stream(file, std::ios::binary);
  Run(inputs.emplace_back(std::istreambuf_iterator<char>(stream),
                          std::istreambuf_iterator<char>()));
}

// An input with some bytes erased, made others, or taken from another input.
std::string Edited(const CInputs& inputs, std::mt19937& random) {
  std::string bytes = inputs[random() % inputs.size()];
  for (auto edits = 1 + random() % 4; edits > 0; --edits) {
    const std::string& other = inputs[random() % inputs.size()];
    const size_t at = random() % (bytes.size() + 1), from = random() % (other.size() + 1);
    const size_t count = 1 + random() % 16, kind = random() % 4;
    if (kind == 0) bytes.erase(at, count);
    if (kind == 1) bytes.insert(at, other, from, count);
    if (kind == 2) bytes.replace(at, count, other, from, count);
    if (kind == 3 && at < bytes.size()) bytes[at] = static_cast<char>(random() % 256);
  }
  return bytes;
}

// The input of a finding is what the file holds when the driver ends the process.
void Walk(const CInputs& inputs, int executions, const std::string& file) {
  std::fprintf(stderr, "edited inputs, each kept as %s\n", file.c_str());
  std::mt19937 random(15);
  for (int i = 0; i < executions; ++i) {
    const std::string bytes = Edited(inputs, random);
    std::ofstream(file, std::ios::binary) << bytes;
    Run(bytes);
  }
}

}  // namespace

int main(int argc, char** argv) {
  CInputs inputs;
  for (int i = 2; i < argc; ++i) {
    for (const auto& file : FilesOf(argv[i])) Replay(file, inputs);
  }
  if (inputs.empty()) return 1;
  const int executions = std::atoi(argv[1]);
  if (executions > 0) Walk(inputs, executions, std::string(argv[0]) + ".input");
  std::fprintf(stderr, "%zu inputs, %d edited\n", inputs.size(), executions);
}
