// Files in, by descriptor, since they are read in large pieces; standard output out.
//
// A file that cannot be read throws file_error, and the next file has its turn. Output that cannot be written
// throws output_error, which ends the program.

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

class file_error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class output_error : public std::runtime_error {
public:
    explicit output_error(int number);
    bool nobody_reads; // the pipe is closed, which is no fault
};

class input_file {
public:
    explicit input_file(const std::string &path); // "-" is standard input
    ~input_file();
    input_file(const input_file &) = delete;
    input_file &operator=(const input_file &) = delete;

    // Fills the room unless the file ends before; 0 at the end.
    std::size_t read(char *to, std::size_t room);

    // Bytes of a plain file, 0 for what has no end to be known.
    std::uint64_t size() const;

private:
    int descriptor_;
};

std::string read_all(const std::string &path);

// To standard output.
void write_out(std::string_view bytes);

// The last chance to hear of a full disk.
void close_out();

} // namespace tool
