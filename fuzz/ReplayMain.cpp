// Runs a fuzz target over saved inputs without the fuzzer: every file named on the command line,
// and every file inside each folder named (hidden files aside). A crash, a sanitizer report or an
// abort fails the run; each input is named as it is replayed.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int Replay(const std::filesystem::path& path) {
    // Named before it runs, so that the input of a crash is known.
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return 1;
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in),
                                  std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    int failures = 0;
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path argument(argv[i]);
        std::vector<std::filesystem::path> inputs;
        if (std::filesystem::is_directory(argument)) {
            for (const auto& entry : std::filesystem::directory_iterator(argument)) {
                if (entry.is_regular_file() && !entry.path().filename().string().starts_with("."))
                    inputs.push_back(entry.path());
            }
        } else if (std::filesystem::exists(argument)) {
            inputs.push_back(argument);
        }
        for (const auto& input : inputs) {
            failures += Replay(input);
            ++replayed;
        }
    }
    std::printf("replayed %d inputs\n", replayed);
    return failures == 0 ? 0 : 1;
}
