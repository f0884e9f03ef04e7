// Runs a fuzz target's entry point over committed inputs (files, or folders of them) with the
// normal compiler, so that CTest replays every seed and every input that once made a target fail.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        if (std::filesystem::is_directory(path)) {
            for (const auto &entry : std::filesystem::directory_iterator(path))
                if (entry.is_regular_file())
                    inputs.push_back(entry.path());
        } else if (std::filesystem::is_regular_file(path)) {
            inputs.push_back(path);
        }
    }
    for (const auto &path : inputs) {
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::printf("%s (%zu bytes)\n", path.filename().c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", inputs.size());
    // A target without inputs tests nothing.
    return inputs.empty() ? 1 : 0;
}
