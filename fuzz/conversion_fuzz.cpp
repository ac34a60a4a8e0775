// Buffers of any bytes, held against ICU, once their pair has its table.

#include "fuzz.h"

#include <unicode/ucnv.h>

#include <set>

namespace {

using converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

converter open_converter(const std::string &charset) {
    UErrorCode status = U_ZERO_ERROR;
    return {ucnv_open(charset == "IMAP-MODIFIED-UTF-7" ? "IMAP-mailbox-name" : charset.c_str(), &status),
            &ucnv_close};
}

// What ICU gives in a buffer of that size by way of UTF-16, or the copy where it fails or runs out of room;
// nothing where it lacks one of the charsets.
std::string by_icu(const std::string &from, const std::string &to, const std::string &text,
                   std::int32_t room) {
    const converter from_cnv = open_converter(from), to_cnv = open_converter(to);
    if (!from_cnv || !to_cnv)
        return "";
    std::u16string units(text.size() + 1, u'\0');
    std::string result(static_cast<std::size_t>(room), '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t wide =
        ucnv_toUChars(from_cnv.get(), units.data(), static_cast<std::int32_t>(units.size()), text.data(),
                      static_cast<std::int32_t>(text.size()), &status);
    const std::int32_t length =
        ucnv_fromUChars(to_cnv.get(), result.data(), room, units.data(), wide, &status);
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

// From and to the same buffer.
std::string in_place(const char *from, const char *to, const std::string &text, std::int32_t room) {
    const block both(static_cast<std::size_t>(room));
    std::copy(text.begin(), text.end(), both.data());
    const std::int32_t length =
        ZEL_ConvertBuffer(from, to, both.data(), static_cast<std::int32_t>(text.size()), both.data(), room);
    return std::string(both.data(), static_cast<std::size_t>(length));
}

void earn_table(const char *from, const char *to) {
    static std::set<std::pair<const char *, const char *>> earned;
    for (int i = earned.emplace(from, to).second ? 2 : 0; i > 0; --i)
        by_library(from, to, std::string(150'000, '\xA9'), 1'500'000);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const auto or_wide = [](const char *name) { return name == *std::rbegin(charsets) ? "utf-16" : name; };
    const char *const from = or_wide(in.charset()), *const to = or_wide(in.charset());
    const auto cut = static_cast<std::int32_t>(in.number());
    const std::string bytes = in.bytes();
    const bool direct = (*from == 'b' && *to == 'g') || (*from == 'g' && *to == 'b'); // big5 and gb2312
    const bool by_rule = direct || from == to || gf_ZELStatus == ZEL_STATUS_PASSTHROUGH || bytes.empty();
    if (!by_rule)
        earn_table(from, to);
    const std::int32_t need =
        ZEL_GetResultBufferSize(block(bytes).data(), static_cast<std::int32_t>(bytes.size()), from, to);
    for (const std::int32_t room : {need, need + 1, cut % (need + 1)}) {
        const std::string result = by_library(from, to, bytes, room);
        require(by_rule || result == by_icu(from, to, bytes, room),
                "what ICU does not do itself comes out as if it had");
    }
    const std::int32_t ample = 2 * need + 64 + static_cast<std::int32_t>(bytes.size());
    require(in_place(from, to, bytes, ample) == by_library(from, to, bytes, ample), "a buffer may be both");
    return 0;
}
