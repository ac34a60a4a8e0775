// vCard values: encoded text, or a copy where no converter is to be had.

#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const from_charset = in.charset();
    const std::string text = in.text();
    const block string = terminated(text);
    const char *const to_charset = ZEL_HTTPContentCharset(language);
    const std::string value = taken(ZEL_LocalToVCard21(language, from_charset, string.data()));
    if (!text.empty() && ZEL_EncodingConverterExists(from_charset, to_charset)) {
        const std::string converted = taken(ZEL_LocalToLocal(string.data(), from_charset, to_charset));
        require(unquoted(value) == with_wire_lines(converted), "the value is the converted text");
        require(ZEL_IsASCIIString(value.c_str()), "the value is 7-bit");
    } else {
        require(value == text, "what cannot be converted is copied");
    }
    const std::string unconverted = taken(ZEL_LocalToVCard21(language, to_charset, string.data()));
    require(unquoted(unconverted) == with_wire_lines(text), "a text in its own charset is only encoded");
    require(taken(ZEL_LocalToVCard21(language, "", string.data())) == text,
            "a text without a charset is copied");
    return 0;
}
