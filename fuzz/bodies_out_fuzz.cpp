// Bodies on their way out: sizes, the negative results, and the bytes behind the transfer encoding.

#include "fuzz.h"

namespace {

bool is_quoted(const char *language, const char *text, std::int32_t qp_for_8bit) {
    return ZEL_InternetMessageContentTransferEncoding(language, text, qp_for_8bit) ==
           std::string_view("quoted-printable");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const from_charset = in.charset();
    const std::size_t cut = in.number();
    const std::int32_t quoting = static_cast<std::int32_t>(in.byte() & 1);
    const std::string text = in.text();
    const block body = terminated(text);
    const auto encode_from = [&](const char *charset) {
        return [&, charset](char *to, std::int32_t room) {
            return ZEL_LocalToInternetMessageBody(language, charset, body.data(), to, room, quoting);
        };
    };
    const std::int32_t need = encode_from(from_charset)(nullptr, -1);
    const block none(0);
    require(need >= 0 || need == -1 || need == -2 || need == -5, "there are three failures");
    if (need < 0) {
        require(encode_from(from_charset)(none.data(), 0) == need, "both calls fail alike");
        return 0;
    }
    const char *const charset = ZEL_InternetMessageCharset(language, nullptr);
    const bool quoted = is_quoted(language, body.data(), quoting);
    const std::string wire = whole_and_cut(encode_from(from_charset), cut, charset);
    require(!quoted || ZEL_IsASCIIString(wire.c_str()), "quoted-printable is 7-bit");

    const std::string unconverted = whole_and_cut(encode_from(charset), cut, charset);
    require((quoted ? unquoted(unconverted) : unconverted) == (quoted ? with_wire_lines(text) : text),
            "a body that needs no conversion comes out of its transfer encoding as it was");
    return 0;
}
