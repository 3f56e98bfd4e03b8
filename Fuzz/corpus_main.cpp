// Feeds the files of the folders named on the command line, and the empty input, to a fuzz target.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Feed(const std::string& bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    Feed(std::string());
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(argv[i], error)) {
            if (!entry.is_regular_file())
                continue;
            std::ifstream stream(entry.path(), std::ios::binary);
            Feed(std::string(std::istreambuf_iterator<char>(stream), {}));
            ++count;
        }
        if (error) {
            std::fprintf(stderr, "%s: %s\n", argv[i], error.message().c_str());
            return 1;
        }
    }
    std::printf("%zu inputs\n", count);
    return count > 0 ? 0 : 1;
}
