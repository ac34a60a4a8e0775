// Does what each line of its input asks for, "read-header ARGUMENT HEX" and so on, and answers with a line of
// hexadecimal digits: the way to the library for tests in another language. The argument is a language.

#include "zel.hpp"

#include <cstdio>
#include <iostream>
#include <map>
#include <string>

namespace {

using view = std::string_view;

std::string written_body(view language, view text) {
    const zel::body body = zel::write_body(language, text);
    return "Content-Type: text/plain; charset=" + body.charset +
           "\r\nContent-Transfer-Encoding: " + body.transfer_encoding + "\r\n\r\n" + body.bytes;
}

// The exported functions that name no charset.
template <auto call>
std::string in_two_calls(view language, view text) {
    const std::string tag(language);
    std::string copy(text);
    return zel::detail::in_two_calls(
        [&](char *to_buf, std::int32_t to_size) { return call(tag.c_str(), copy.data(), to_buf, to_size); });
}

std::int32_t encode_body(const char *language, char *text, char *to_buf, std::int32_t to_size) {
    return ZEL_UTF8ToInternetMessageBody(language, text, to_buf, to_size, 1);
}

std::int32_t decode_body(const char *language, char *text, char *to_buf, std::int32_t to_size) {
    return ZEL_InternetMessageBodyToLocal(language, 0, text, "UTF-8", to_buf, to_size);
}

const std::map<std::string, std::string (*)(view language, view text)> operations = {
    {"read-header", [](view, view text) { return zel::read_header(text); }},
    {"write-header", [](view language, view text) { return zel::write_header(language, text); }},
    {"write-phrase", [](view language, view text) { return zel::write_phrase(language, text); }},
    {"write-parameter",
     [](view language, view text) { return zel::write_parameter(language, "filename", text); }},
    {"write-body", written_body},
    {"encode-header", in_two_calls<ZEL_UTF8ToInternetMessageHeader>},
    {"decode-header", in_two_calls<ZEL_InternetMessageHeaderToUTF8>},
    {"encode-body", in_two_calls<encode_body>},
    {"decode-body", in_two_calls<decode_body>},
};

std::string from_hex(const std::string &digits) {
    std::string text;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        text += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return text;
}

} // namespace

int main() { // NOLINT(bugprone-exception-escape): a test hears of it
    const zel::library library;
    for (std::string name, argument, digits; std::cin >> name >> argument >> digits;) {
        for (const char byte : operations.at(name)(argument, from_hex(digits)))
            std::printf("%02x", static_cast<unsigned>(byte) & 0xFF);
        std::puts("");
        std::fflush(stdout);
    }
}
