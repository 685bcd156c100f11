// Runs a fuzz target on every file of a folder, without the fuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argc == 2 ? argv[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes { std::istreambuf_iterator<char>(file), {} };
        std::printf("%s, %zu bytes\n", entry.path().filename().c_str(), bytes.size());
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    return count > 0 ? 0 : 1;
}
