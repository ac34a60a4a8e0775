#include "files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tool {

output_error::output_error(int number)
    : runtime_error(std::strerror(number)), nobody_reads(number == EPIPE) {}

input_file::input_file(const std::string &path)
    : descriptor_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0)
        throw file_error(std::strerror(errno));
    posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
}

input_file::~input_file() {
    if (descriptor_ != STDIN_FILENO)
        close(descriptor_);
}

std::size_t input_file::read(char *to, std::size_t room) {
    std::size_t filled = 0;
    while (filled < room) {
        const ssize_t count = ::read(descriptor_, to + filled, room - filled);
        if (count == 0)
            break;
        if (count > 0)
            filled += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            throw file_error(std::strerror(errno));
    }
    return filled;
}

std::uint64_t input_file::size() const {
    struct stat status = {};
    const bool plain = fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    return plain ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::string read_all(const std::string &path) {
    constexpr std::size_t step = std::size_t{64} * 1024;
    input_file file(path);
    std::string bytes;
    for (;;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + step);
        bytes.resize(before + file.read(bytes.data() + before, step));
        if (bytes.size() < before + step)
            return bytes;
    }
}

void write_out(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) < bytes.size())
        throw output_error(errno);
}

void close_out() {
    if (std::fflush(stdout) != 0 || close(STDOUT_FILENO) != 0)
        throw output_error(errno);
}

} // namespace tool
