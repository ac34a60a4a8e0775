// Received bodies: the four functions agree, at the size that is asked for and at any other.

#include "fuzz.h"

#include <functional>

namespace {

using decoder = std::function<std::int32_t(char *, std::int32_t)>;

// The result, and the text with it where there is one. A full buffer has no terminator.
std::pair<std::int32_t, std::string> decoded(const decoder &decode, std::int32_t room) {
    const block to(static_cast<std::size_t>(room));
    const std::int32_t length = decode(to.data(), room);
    require(length == -5 || (length >= 0 && length <= room),
            "the length is that of a text inside the buffer");
    require(length < 0 || length == room || to.data()[length] == '\0',
            "the result is terminated where there is room");
    return {length, std::string(to.data(), static_cast<std::size_t>(std::max(length, 0)))};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const to_charset = in.charset();
    const char *const choice = in.charset(), *const from_charset = choice == charsets[20] ? nullptr : choice;
    const auto cut = static_cast<std::int32_t>(in.number());
    const std::string bytes = in.bytes(), text = in.text();
    const block string = terminated(text), body(bytes);
    const auto length = static_cast<std::int32_t>(text.size());

    const decoder reference = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyLocalToLocal(language, from_charset, 'b', string.data(), to_charset, to,
                                                   room);
    };
    const decoder with_length = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyLocalToLocalLen(language, from_charset, '\0', string.data(), length,
                                                      to_charset, to, room);
    };
    const decoder by_language = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyToLocal(language, 'q', string.data(), to_charset, to, room);
    };
    const decoder by_language_with_length = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyToLocalLen(language, '\xFF', string.data(), length, to_charset, to,
                                                 room);
    };
    const decoder with_zero_bytes = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyLocalToLocalLen(language, from_charset, 'b', body.data(), body.size(),
                                                      to_charset, to, room);
    };
    const std::int32_t need = reference(nullptr, -1);
    require(need == with_length(nullptr, -1), "a length asks for the same size");
    for (const std::int32_t room : {std::max(need, 0) + 1, cut % (std::max(need, 0) + 2)}) {
        const auto expected = decoded(reference, room);
        require((expected.first < 0) == (need < 0), "both calls fail alike");
        require(decoded(with_length, room) == expected, "a length gives the same text");
        if (!from_charset)
            require(decoded(by_language, room) == expected, "a null charset is that of the language");
        require(decoded(by_language, room) == decoded(by_language_with_length, room),
                "a length gives the same text");
        decoded(with_zero_bytes, room);
    }
    return 0;
}
