// Runs a target over the files that are named, or lie in the directories that are named: a corpus without
// libFuzzer, for any compiler. Each input is followed by mutations of it, the same in every run.

#include "fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

constexpr int mutations = 1000; // of each input
int replayed = 0;

void run(const std::string &bytes) {
    const block data(bytes);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(data.data()), bytes.size());
}

// One to four times replaces a byte, takes a piece out, or puts a copy of one elsewhere. The first bytes
// choose languages and charsets, so a change in four is made there.
std::string mutated(std::string bytes, std::mt19937 &random) {
    for (auto times = 1 + random() % 4; times > 0; --times) {
        const std::size_t at = random() % (bytes.size() + 1), length = 1 + random() % 16;
        switch (random() % 4) {
        case 0:
            bytes.insert(at, bytes.substr(random() % (bytes.size() + 1), length));
            break;
        case 1:
            bytes.erase(at, length);
            break;
        case 2:
            bytes.replace(at, 1, 1, static_cast<char>(random()));
            break;
        default:
            bytes.replace(std::min<std::size_t>(random() % 3, bytes.size()), 1, 1,
                          static_cast<char>('A' + random() % 24));
        }
    }
    return bytes;
}

void replay(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::mt19937 random;
    for (int number = 0; number <= mutations; ++number) {
        std::printf("%s, mutation %d\n", path.c_str(), number); // 0: as it stands
        std::fflush(stdout);                                    // the last line tells which input failed
        run(number == 0 ? bytes : mutated(bytes, random));
    }
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
