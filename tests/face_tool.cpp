// Does what each line of its input asks for, "read-header ARGUMENT HEX" and so on, and answers with a line of
// hexadecimal digits: the way to the C++ face for tests in another language. The argument is a language, a
// charset or the name of a parameter.

#include "zel.hpp"

#include <cstdio>
#include <iostream>
#include <map>
#include <string>

namespace {

using operation = std::string (*)(std::string_view argument, std::string_view text);

const std::map<std::string, operation> operations = {
    {"read-header", [](std::string_view, std::string_view text) { return zel::read_header(text); }},
    {"read-parameter",
     [](std::string_view name, std::string_view text) {
         return zel::read_parameter(text, name).value_or("(none)");
     }},
    {"write-header",
     [](std::string_view language, std::string_view text) { return zel::write_header(language, text); }},
    {"write-phrase",
     [](std::string_view language, std::string_view text) { return zel::write_phrase(language, text); }},
    {"write-parameter",
     [](std::string_view language, std::string_view text) {
         return zel::write_parameter(language, "filename", text);
     }},
    {"write-body",
     [](std::string_view language, std::string_view text) {
         const zel::body body = zel::write_body(language, text);
         return "Content-Type: text/plain; charset=" + body.charset +
                "\r\nContent-Transfer-Encoding: " + body.transfer_encoding + "\r\n\r\n" + body.bytes;
     }},
    {"read-body",
     [](std::string_view charset, std::string_view text) { return zel::read_body(charset, text); }},
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
