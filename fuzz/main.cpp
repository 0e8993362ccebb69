// One program for all targets.
//
// Built with Clang's fuzzer it runs the one that NORVANE_FUZZ_TARGET names (./fuzz does). Built without, it runs the
// files of a corpus, each by the target after which its folder is named:
//
//   norvane_fuzz CORPUS
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz.h"

namespace {

using namespace norvane::fuzz;

struct Named {
  std::string_view name;
  Target* run;
};
constexpr Named targets[] = {{"calls", calls}, {"names", names}, {"exports", exports},
                             {"excel", excel}, {"csv", csv},     {"json", json}};
const Named* chosen = nullptr;

bool choose(std::string_view name) {
  chosen = std::find_if(std::begin(targets), std::end(targets), [&](const Named& t) { return t.name == name; });
  return chosen != std::end(targets);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  chosen->run(input);
  return 0;
}

#if defined(NORVANE_FUZZER)
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* name = std::getenv("NORVANE_FUZZ_TARGET");
  expect(name != nullptr && choose(name), "NORVANE_FUZZ_TARGET names no target");
  return 0;
}
#else
int main(int count, char** arguments) {
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(count == 2 ? arguments[1] : ".")) {
    if (!entry.is_regular_file() || !choose(entry.path().parent_path().filename().string())) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::printf("%s\n", entry.path().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++files;
  }
  std::printf("%zu files\n", files);
  return files == 0;
}
#endif
