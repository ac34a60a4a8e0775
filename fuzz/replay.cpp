// Runs a target over the files that are named, or lie in the directories that are named: a corpus without
// libFuzzer, for any compiler.

#include "fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

int replayed = 0;

void replay(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const block data(bytes);
    std::printf("%s\n", path.c_str());
    std::fflush(stdout); // the last line tells which input failed
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(data.data()), bytes.size());
    ++replayed;
}

} // namespace

int main(int count, char **names) {
    for (int i = 1; i < count; ++i) {
        if (!std::filesystem::is_directory(names[i])) {
            replay(names[i]);
            continue;
        }
        for (const auto &entry : std::filesystem::directory_iterator(names[i]))
            replay(entry.path());
    }
    return replayed ? 0 : 1;
}
