// The C++ face: its readers take any bytes, and read what its writers write, which keep their lines short.

#include "fuzz.h"

#include "zel.hpp"

namespace {

void require_short_lines(std::string_view value, std::size_t column) {
    for (; !value.empty(); column = 0) {
        const std::size_t end = std::min(value.find("\r\n"), value.size());
        require(column + end <= 76, "no line is longer than 76 characters");
        require(end == value.size() || value.substr(end + 2, 1) == " ", "every line break is a fold");
        value.remove_prefix(std::min(end + 2, value.size()));
    }
}

void read_anything(std::string_view text) {
    zel::read_header(text);
    zel::read_parameter(text, "filename", "Shift_JIS");
    for (const char *charset : charsets)
        zel::read_body(charset, text);
}

void write_and_read(const char *language, std::string_view text, std::size_t column) {
    const std::string value = zel::write_header(language, text, column);
    require_short_lines(value, column);
    if (text.find_first_of("\r\n") == std::string_view::npos) {
        std::string written(column > 30 && !text.empty() ? 1 : 0, ' ');
        written += text;
        require(zel::read_header(value) == written, "a header is read as it was written");
    }
    const std::string parameter = zel::write_parameter(language, "filename", text);
    require_short_lines("attachment;\r\n " + parameter, 0);
    require(zel::read_parameter("attachment;\r\n " + parameter, "filename") == text,
            "a parameter is read as it was written");
    require_short_lines(zel::write_phrase(language, text, column), column);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language();
    const std::size_t column = in.byte() % 77;
    const block text(in.bytes());
    const std::string_view bytes(text.data(), static_cast<std::size_t>(text.size()));
    read_anything(bytes);
    try {
        write_and_read(language, bytes, column);
        zel::write_body(language, bytes);
    } catch (const zel::error &) { // of a text that is not UTF-8 or holds a NUL
    }
    return 0;
}
