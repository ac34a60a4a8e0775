// Buffers of any bytes, held against ICU on converters of our own.

#include "fuzz.h"

#include <unicode/ucnv.h>

#include <map>
#include <vector>

namespace {

UConverter *converter(const std::string &charset) {
    using owned_converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;
    static std::map<std::string, owned_converter> opened;
    UErrorCode status = U_ZERO_ERROR;
    const char *const name = charset == "IMAP-MODIFIED-UTF-7" ? "IMAP-mailbox-name" : charset.c_str();
    if (!opened.contains(charset))
        opened.emplace(charset, owned_converter(ucnv_open(name, &status), &ucnv_close));
    return opened.at(charset).get();
}

// What ICU gives in a buffer of that size, or the copy where it fails or runs out of room.
std::string by_icu(const char *from, const char *to, const std::string &text, std::int32_t room) {
    const auto size = static_cast<std::int32_t>(text.size());
    std::vector<UChar> units(text.size() + 1);
    std::string result(static_cast<std::size_t>(room), '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t wide =
        ucnv_toUChars(converter(from), units.data(), size + 1, text.data(), size, &status);
    const std::int32_t length =
        ucnv_fromUChars(converter(to), result.data(), room, units.data(), wide, &status);
    return U_SUCCESS(status) ? result.substr(0, static_cast<std::size_t>(length))
                             : text.substr(0, static_cast<std::size_t>(std::max(room - 1, 0)));
}

std::string by_library(const char *from, const char *to, const std::string &text, std::int32_t room) {
    const block bytes(text), result(static_cast<std::size_t>(room));
    const std::int32_t length = ZEL_ConvertBuffer(from, to, bytes.data(), bytes.size(), result.data(), room);
    require(length >= 0 && length <= room, "the length is that of a text inside the buffer");
    require(length == room || result.data()[length] == '\0', "the result is terminated where there is room");
    return std::string(result.data(), static_cast<std::size_t>(length));
}

void earn_table(const char *from, const char *to) {
    static std::map<std::pair<const char *, const char *>, bool> earned;
    if (!std::exchange(earned[{from, to}], true))
        for (int i = 0; i < 2; ++i)
            by_library(from, to, std::string(150'000, '\xA9'), 1'500'000);
}

// Buffers may hold what no NUL can end.
const char *or_wide(const char *charset) {
    return charset == *std::rbegin(charsets) ? "utf-16" : charset;
}

bool goes_to_icu(const std::string &from, const std::string &to) {
    const bool direct = (from == "big5" && to == "gb2312") || (from == "gb2312" && to == "big5");
    return gf_ZELStatus == ZEL_STATUS_INITIALIZED && from != to && !direct;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const from = or_wide(in.charset()), *const to = or_wide(in.charset());
    const auto cut = static_cast<std::int32_t>(in.number());
    const std::string bytes = in.bytes();
    earn_table(from, to);
    const std::int32_t need =
        ZEL_GetResultBufferSize(block(bytes).data(), static_cast<std::int32_t>(bytes.size()), from, to);
    for (const std::int32_t room : {need, need + 1, cut % (need + 1)}) {
        const std::string result = by_library(from, to, bytes, room);
        require(!goes_to_icu(from, to) || bytes.empty() || result == by_icu(from, to, bytes, room),
                "what ICU does not do itself comes out as if it had");
    }
    return 0;
}
