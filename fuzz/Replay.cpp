// Replaces the fuzzer in a plain build: passes each file in the given folders to the target once. Names are printed in
// advance, so the last one printed is the input on which a target crashes or hangs.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::directory_iterator folder(argv[i]);
        for (const std::filesystem::path& file : std::set<std::filesystem::path>(begin(folder), end(folder))) {
            std::printf("%s\n", file.c_str());
            std::fflush(stdout);
            std::ostringstream bytes;
            bytes << std::ifstream(file, std::ios::binary).rdbuf();
            const std::string input = bytes.str();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
            ++count;
        }
    }
    std::printf("%zu inputs replayed\n", count);
    return count > 0 ? 0 : 1;
}
