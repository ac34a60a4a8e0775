// Directories that go away with the test, and charset bundles that the bundle compiler makes in them.

#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class scratch_directory {
public:
    scratch_directory() {
        if (!mkdtemp(path_.data()))
            ADD_FAILURE() << "no directory " << path_;
    }
    ~scratch_directory() { std::filesystem::remove_all(path_); }
    scratch_directory(const scratch_directory &) = delete;

    const std::string &path() const { return path_; }

private:
    std::string path_ = testing::TempDir() + "zel-XXXXXX";
};

// The same directory by a path of that many bytes.
inline std::string lengthened(std::string path, std::size_t size) {
    if ((size - path.size()) % 2)
        path += '/';
    while (path.size() < size)
        path += "/.";
    return path;
}

inline std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Gives what the compiler has to say: nothing when it went well.
inline std::string compile_bundle(const std::string &source, const std::string &root,
                                  const std::string &option = "") {
    std::ofstream(root + "/source.txt") << source;
    const std::string command = BUNDLE_COMPILER " " + option + " '" + root + "/source.txt' '" + root + "'";
    EXPECT_NE(std::system((command + " >'" + root + "/messages' 2>&1").c_str()), -1);
    return read_file(root + "/messages");
}

// A bundle root for a source that is right.
class custom_bundle {
public:
    explicit custom_bundle(const std::string &source) { EXPECT_EQ(compile_bundle(source, root()), ""); }
    const std::string &root() const { return directory_.path(); }

private:
    scratch_directory directory_;
};
