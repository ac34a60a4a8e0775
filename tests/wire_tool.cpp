// Does what each line of its input asks for, "encode-header LANGUAGE HEX" and so on, and answers with a line
// of hexadecimal digits: the way to the library for tests in another language. This side of the wire is
// UTF-8.

#include "zel.h"

#include <cstdio>
#include <iostream>
#include <map>
#include <string>

namespace {

using operation = int32_t (*)(const char *language, char *text, char *to_buf, int32_t to_size);

const std::map<std::string, operation> operations = {
    {"encode-header", ZEL_UTF8ToInternetMessageHeader},
    {"decode-header", ZEL_InternetMessageHeaderToUTF8},
    {"encode-body",
     [](const char *language, char *text, char *to_buf, int32_t to_size) {
         return ZEL_UTF8ToInternetMessageBody(language, text, to_buf, to_size, 1);
     }},
    {"decode-body", [](const char *language, char *text, char *to_buf, int32_t to_size) {
         return ZEL_InternetMessageBodyToLocal(language, 0, text, "UTF-8", to_buf, to_size);
     }}};

std::string from_hex(const std::string &digits) {
    std::string text;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        text += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return text;
}

} // namespace

int main() {
    ZEL_Initialize(".", nullptr);
    for (std::string name, language, digits; std::cin >> name >> language >> digits;) {
        std::string text = from_hex(digits), result(text.size() * 20 + 100, '\0');
        const int32_t length = operations.at(name)(language.c_str(), text.data(), result.data(),
                                                   static_cast<int32_t>(result.size()));
        for (int32_t at = 0; at < length; ++at)
            std::printf("%02x", static_cast<unsigned char>(result[static_cast<std::size_t>(at)]));
        std::puts("");
        std::fflush(stdout);
    }
}
