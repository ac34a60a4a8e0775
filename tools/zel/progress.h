// A bar on stderr while a long conversion runs, for somebody who looks on: shown only where stderr is a
// terminal and standard output is not, and only after a while. Nothing is left of it at the end.

#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

class progress {
public:
    progress(const std::string &name, std::uint64_t size); // 0: not known
    ~progress();
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;

    void advance(std::uint64_t bytes);

private:
    using clock = std::chrono::steady_clock;

    void draw() const;

    std::string name_;
    std::uint64_t size_, done_ = 0;
    clock::time_point next_;
    bool watched_, drawn_ = false;
};

} // namespace tool
