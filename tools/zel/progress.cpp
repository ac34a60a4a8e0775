#include "progress.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace tool {
namespace {

constexpr std::chrono::milliseconds first_pause{500}, pause{100};
constexpr int width = 40;

} // namespace

progress::progress(const std::string &name, std::uint64_t size)
    : name_(name), size_(size), next_(clock::now() + first_pause),
      watched_(isatty(STDERR_FILENO) && !isatty(STDOUT_FILENO)) {}

progress::~progress() {
    if (drawn_)
        std::fputs("\r\x1B[K", stderr);
}

void progress::advance(std::uint64_t bytes) {
    done_ += bytes;
    if (!watched_ || clock::now() < next_)
        return;
    next_ = clock::now() + pause;
    drawn_ = true;
    draw();
}

void progress::draw() const {
    const unsigned long long megabytes = done_ / 1000000;
    if (size_ == 0) {
        std::fprintf(stderr, "\r%s: %llu MB", name_.c_str(), megabytes);
        return;
    }
    const double share = std::min(1.0, static_cast<double>(done_) / static_cast<double>(size_));
    const std::string bar(static_cast<std::size_t>(share * width), '#');
    std::fprintf(stderr, "\r%s: [%-*s] %3.0f %%, %llu MB", name_.c_str(), width, bar.c_str(), share * 100,
                 megabytes);
}

} // namespace tool
