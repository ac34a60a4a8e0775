// Conversions of whole strings: each agrees with its neighbours, and mailbox names are read back.

#include "fuzz.h"

#include <unicode/ustring.h>

namespace {

bool is_utf8(const std::string &text) {
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &status);
    return U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const from = in.charset(), *const to = in.charset();
    const auto mode = static_cast<std::int32_t>(in.byte() & 1);
    const std::string text = in.text();
    const block string = terminated(text);
    const std::string converted = taken(ZEL_LocalToLocal(string.data(), from, to));
    const char *const list[] = {string.data(), nullptr};
    char *results[] = {nullptr, string.data()};
    ZEL_ConvertBufferArray(from, to, list, 2, results);
    const std::string element = taken(results[0]); // has a byte more of room
    require((converted == text || element == converted) && !results[1],
            "a list is converted as its texts are");
    require(from != charsets[0] || !is_utf8(text) || taken(ZEL_UTF8ToLocal(string.data(), to)) == converted,
            "UTF-8 is converted as any charset is");
    require(to != charsets[0] || taken(ZEL_LocalToUTF8(string.data(), from)) == converted,
            "UTF-8 is converted to as any charset is");
    taken(ZEL_UTF8ToLocal(string.data(), to));
    taken(ZEL_MUTF7ToLocal(string.data(), to));

    const std::string escaped = taken(ZEL_UTF8ToEscapedUnicode(string.data(), mode));
    const std::string mailbox = taken(ZEL_LocalToMUTF7(string.data(), "UTF-8"));
    const std::string name = taken(ZEL_MUTF7ToLocal(terminated(mailbox).data(), "UTF-8"));
    if (gf_ZELStatus == ZEL_STATUS_PASSTHROUGH || !is_utf8(text))
        return 0;
    require(ZEL_IsASCIIString(escaped.c_str()), "an escaped text is ASCII");
    require(ZEL_IsASCIIString(mailbox.c_str()) && name == text, "the name of a mailbox is read back");
    return 0;
}
