// Compiles a charset bundle: zel-compile-bundle [OPTION] SOURCE OUTPUT_DIRECTORY writes
// OUTPUT_DIRECTORY/encbylang/en.res, so that OUTPUT_DIRECTORY is a bundle root for ZEL_Initialize. ICU reads
// a bundle in the byte order of its processor alone: that is the one that this program is compiled for,
// unless the option names the other.
//
// A line of the source is `KEY... = VALUE`: one or more keys, apart by blanks, that all have the value, in
// which genrb's \u escapes may stand. de_{AT,DE} is short for de_AT de_DE. Empty lines and lines that begin
// with "#" say nothing.
//
// genrb does the work, but takes neither "|" nor "@" in a key. So it is given numbers for keys, in the order
// of the real keys and at least as long, and the real keys are put over them in its output. It writes the
// byte order of the machine that it runs on, and icupkg turns that round where another one is wanted.
//
// Invariant: the bundle appears whole or not at all, and a host that has the old one open keeps it.

#include <unicode/ures.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using bundle_source = std::map<std::string, std::string>; // sorted as ICU sorts keys: by their bytes

[[noreturn]] void fail(const std::string &message) {
    throw std::runtime_error(message);
}

std::string trimmed(const std::string &text) {
    const char *blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void add_key(bundle_source &source, const std::string &key, const std::string &value) {
    const std::size_t open = key.find('{');
    const std::size_t close = key.find('}', open);
    if (open == std::string::npos || close == std::string::npos) {
        if (!source.emplace(key, value).second)
            fail("the key " + key + " again");
        return;
    }
    for (std::size_t at = open; at != close;) {
        const std::size_t end = std::min(key.find(',', at + 1), close);
        add_key(source, key.substr(0, open) + key.substr(at + 1, end - at - 1) + key.substr(close + 1),
                value);
        at = end;
    }
}

void add_line(bundle_source &source, const std::string &line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
        fail("no \"=\" in it");
    const std::string value = trimmed(line.substr(equals + 1));
    if (value.find('"') != std::string::npos)
        fail("a quotation mark in the value");
    std::istringstream keys(line.substr(0, equals));
    std::string key;
    if (!(keys >> key))
        fail("no key before the \"=\"");
    do
        add_key(source, key, value);
    while (keys >> key);
}

bundle_source read_source(const fs::path &path) {
    std::ifstream file(path);
    if (!file)
        fail("cannot read " + path.string());
    bundle_source source;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        line = trimmed(line);
        if (line.empty() || line.front() == '#')
            continue;
        try {
            add_line(source, line);
        } catch (const std::exception &fault) {
            fail(path.string() + ":" + std::to_string(number) + ": " + fault.what());
        }
    }
    return source;
}

// The "x" behind the digits keep each stand-in from being the tail of another one, which genrb would store
// within it.
std::string stand_in(std::size_t number, const std::string &key) {
    std::string digits = std::to_string(number);
    digits.insert(0, 6 - std::min<std::size_t>(6, digits.size()), '0');
    return digits + std::string(key.size(), 'x');
}

void write_for_genrb(const bundle_source &source, const fs::path &path) {
    std::ofstream file(path);
    file << "en:table {\n";
    std::size_t number = 0;
    for (const auto &[key, value] : source)
        file << '"' << stand_in(number++, key) << "\" { \"" << value << "\" }\n";
    file << "}\n";
    if (!file.flush())
        fail("cannot write " + path.string());
}

void add_to_path(const std::string &directory) {
    const char *path = std::getenv("PATH");
    setenv("PATH", ((path ? path : "/usr/bin") + (":" + directory)).c_str(), true);
}

void run(std::vector<const char *> arguments) {
    arguments.push_back(nullptr);
    const std::string tool = arguments[0];
    pid_t process = 0;
    int status = 0;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, const_cast<char **>(arguments.data()),
                     environ) != 0)
        fail("cannot run " + tool + ", which is among ICU's tools");
    if (waitpid(process, &status, 0) != process || status != 0)
        fail(tool + " failed");
}

std::string bytes_of(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The head of ICU's data begins with its length, two bytes that mark it, the length of what it says of the
// data, and two bytes that are kept free; then it says the byte order.
std::endian byte_order(const fs::path &path) {
    return bytes_of(path).at(8) ? std::endian::big : std::endian::little;
}

// Before the real keys are in it, as icupkg knows only letters that stand in every charset.
void bring_into(std::endian order, const fs::path &path) {
    if (byte_order(path) == order)
        return;
    const fs::path turned = path.string() + ".turned";
    run({"icupkg", order == std::endian::big ? "-tb" : "-tl", path.c_str(), turned.c_str()});
    fs::rename(turned, path);
}

void put_real_keys(const bundle_source &source, const fs::path &path) {
    std::string bytes = bytes_of(path);
    std::size_t number = 0;
    for (const auto &[key, value] : source) {
        const std::string number_key = stand_in(number++, key) + '\0';
        const std::size_t at = bytes.find(number_key);
        if (at == std::string::npos)
            fail("genrb's output lacks the stand-in of " + key);
        bytes.replace(at, key.size() + 1, key + '\0');
    }
    if (!(std::ofstream(path, std::ios::binary) << bytes).flush())
        fail("cannot write " + path.string());
}

void check_that_icu_finds_keys(const bundle_source &source, const fs::path &directory) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UResourceBundle, decltype(&ures_close)> bundle(
        ures_open(directory.c_str(), "en", &status), ures_close);
    for (const auto &[key, value] : source) {
        std::int32_t length = 0;
        ures_getStringByKey(bundle.get(), key.c_str(), &length, &status);
        if (U_FAILURE(status))
            fail("ICU does not find " + key + ": " + u_errorName(status));
    }
}

struct scratch_directory {
    fs::path path;
    ~scratch_directory() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

fs::path make_scratch_directory(const fs::path &parent) {
    std::string path = parent / "scratch-XXXXXX";
    if (!mkdtemp(path.data()))
        fail("cannot write into " + parent.string());
    return path;
}

fs::path finished(const bundle_source &source, const fs::path &scratch, std::endian order) {
    const fs::path directory = scratch / (order == std::endian::big ? "big" : "little");
    fs::create_directory(directory);
    const fs::path bundle = directory / "en.res";
    fs::copy_file(scratch / "en.res", bundle);
    bring_into(order, bundle);
    put_real_keys(source, bundle);
    if (order == std::endian::native)
        check_that_icu_finds_keys(source, directory);
    return bundle;
}

// ICU can only look into the bundle of its own byte order, so that one is made and checked in any case.
void compile(const fs::path &source_path, const fs::path &output_directory, std::endian order) {
    const bundle_source source = read_source(source_path);
    const fs::path bundle = fs::absolute(output_directory) / "encbylang";
    fs::create_directories(bundle);
    const scratch_directory scratch{make_scratch_directory(bundle)};
    const std::string directory = scratch.path;
    write_for_genrb(source, scratch.path / "en.txt");
    run({"genrb", "-q", "-e", "UTF-8", "-s", directory.c_str(), "-d", directory.c_str(), "en.txt"});
    const fs::path checked = finished(source, scratch.path, std::endian::native);
    const bool is_checked = order == std::endian::native;
    fs::rename(is_checked ? checked : finished(source, scratch.path, order), bundle / "en.res");
}

} // namespace

int main(int argc, char **argv) {
    const std::string_view option = argc == 4 ? argv[1] : "";
    std::endian order = std::endian::native;
    if (option == "--big-endian")
        order = std::endian::big;
    else if (option == "--little-endian")
        order = std::endian::little;
    else if (argc != 3) {
        std::cerr << "usage: zel-compile-bundle [--big-endian | --little-endian] SOURCE OUTPUT_DIRECTORY\n";
        return 2;
    }
    add_to_path("/usr/sbin"); // where Debian has icupkg
    try {
        compile(argv[argc - 2], argv[argc - 1], order);
    } catch (const std::exception &fault) {
        std::cerr << "zel-compile-bundle: " << fault.what() << '\n';
        return 1;
    }
}
