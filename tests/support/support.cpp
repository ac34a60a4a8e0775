// See support.h. The block of an empty buffer has one byte in front of its data, because the allocator of the
// address sanitizer gives a request for nothing a byte that may be written.

#include "support.h"

#include <algorithm>
#include <cstring>

void start_library() {
    start_library("/nowhere");
}

void start_library(const char *bundle_root, ZELConfig config) {
    config.bundles_path = bundle_root;
    ASSERT_EQ(ZEL_Initialize("/nowhere", &config), 0);
    ASSERT_EQ(gf_ZELStatus, ZEL_STATUS_INITIALIZED);
}

exact_buffer::exact_buffer(std::size_t size)
    : size_(size), block_(new char[size ? size : 1]), data_(block_.get() + (size ? 0 : 1)) {
    std::fill_n(data_, size_, static_cast<char>(canary));
}

exact_buffer::exact_buffer(std::string_view bytes) : exact_buffer(bytes.size()) {
    std::copy(bytes.begin(), bytes.end(), data_);
}

bool exact_buffer::untouched() const {
    return std::all_of(data_, data_ + size_,
                       [](char byte) { return static_cast<unsigned char>(byte) == canary; });
}

std::string exact_buffer::text() const {
    const std::size_t end = bytes().find('\0');
    if (end == std::string_view::npos)
        ADD_FAILURE() << "no terminator in a buffer of " << size_ << " bytes";
    return std::string(bytes().substr(0, end));
}

exact_buffer exact_string(std::string_view text) {
    return exact_buffer(std::string(text) + '\0');
}

std::string taken(char *text) {
    const std::unique_ptr<char, decltype(&ZEL_Free)> owner(text, ZEL_Free);
    return text ? text : "(null)";
}
