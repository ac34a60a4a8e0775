// Parameters out, in, and out and in again.

#include "fuzz.h"

namespace {

// The value of the lines, as a host that reads them joins it.
std::string joined(std::string_view lines) {
    std::string value;
    for (std::size_t end = 0; end != std::string_view::npos;
         lines.remove_prefix(std::min(end + 3, lines.size()))) {
        end = lines.find(";\r\n");
        const std::string_view line = lines.substr(0, end);
        std::string_view piece = line.substr(line.find('=') + 1);
        require(line.starts_with("\tfilename*"), "every line begins with the name");
        if (piece.starts_with('"'))
            piece = piece.substr(1, piece.size() - 2);
        value += piece;
    }
    return value;
}

std::string parameter(const char *language, const std::string &name, const char *charset,
                      const std::string &text, std::size_t cut) {
    return whole_and_cut(
        [&](char *to, std::int32_t room) {
            return ZEL_LocalToRFC2231(language, terminated(name).data(), charset, terminated(text).data(), to,
                                      room);
        },
        cut, "us-ascii");
}

std::string value(const std::string &text, const char *to_charset, std::size_t cut) {
    return whole_and_cut(
        [&](char *to, std::int32_t room) {
            return ZEL_RFC2231ToLocal(nullptr, terminated(text).data(), to_charset, to, room);
        },
        cut, to_charset);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const charset = in.charset();
    const std::size_t cut = in.number();
    const std::string name = in.line(), text = in.text();
    if (text.empty())
        return 0; // no size is asked for then
    const std::string lines = parameter(language, name, charset, text, cut);
    require(!ZEL_IsASCIIString(name.c_str()) || ZEL_IsASCIIString(lines.c_str()), "a parameter is 7-bit");
    value(text, charset, cut);
    const char *const wire_charset = ZEL_InternetMessageCharset(language, text.c_str());
    const std::string wire = parameter(language, "filename", wire_charset, text, cut);
    require(value(joined(wire), wire_charset, cut) == text, "what is written is read back");
    return 0;
}
