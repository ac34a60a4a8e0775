// Received bodies: the four functions agree, at the size that is asked for and at any other.

#include "fuzz.h"

#include <functional>
#include <optional>
#include <vector>

namespace {

using decoder = std::function<std::int32_t(char *, std::int32_t)>;

// Nothing where there is no converter. A full buffer has no terminator.
std::optional<std::string> decoded(const decoder &decode, std::int32_t room) {
    const block to(static_cast<std::size_t>(room));
    const std::int32_t length = decode(to.data(), room);
    if (length == -5)
        return std::nullopt;
    require(length >= 0 && (length == room || (length < room && to.data()[length] == '\0')),
            "the result is inside the buffer, and terminated where there is room");
    return std::string(to.data(), static_cast<std::size_t>(length));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const to_charset = in.charset();
    const char *from = in.charset();
    from = from == *std::rbegin(charsets) ? nullptr : from;
    const auto cut = static_cast<std::int32_t>(in.number());
    const block text = terminated(in.text()), body(in.bytes());
    const auto with_length = [&](const block &given, std::int32_t length) {
        return [&, length](char *to, std::int32_t room) {
            return ZEL_InternetMessageBodyLocalToLocalLen(language, from, 'b', given.data(), length,
                                                          to_charset, to, room);
        };
    };
    const decoder reference = with_length(text, text.size() - 1);
    std::vector<decoder> others = {[&](char *to, std::int32_t room) {
        return ZEL_InternetMessageBodyLocalToLocal(language, from, '\0', text.data(), to_charset, to, room);
    }};
    if (!from) {
        others.emplace_back([&](char *to, std::int32_t room) {
            return ZEL_InternetMessageBodyToLocal(language, 'q', text.data(), to_charset, to, room);
        });
        others.emplace_back([&](char *to, std::int32_t room) {
            return ZEL_InternetMessageBodyToLocalLen(language, '8', text.data(), -1, to_charset, to, room);
        });
    }
    const std::int32_t need = reference(nullptr, -1), most = std::max(need, 0) + 1;
    for (const std::int32_t room : {most, cut % (most + 1)}) {
        const auto expected = decoded(reference, room);
        require(!expected == (need == -5), "both calls fail alike");
        for (const decoder &other : others)
            require(other(nullptr, -1) == need && decoded(other, room) == expected, "all four do the same");
        decoded(with_length(body, body.size()), room);
    }
    return 0;
}
