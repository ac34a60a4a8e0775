// Received header values: the decoder, and the comparison that stands on it.

#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const to_charset = in.charset();
    const std::size_t cut = in.number();
    const unsigned longest = in.byte();
    const std::string value = in.text();
    const std::int32_t from_len = longest < 128 ? -1 : static_cast<std::int32_t>(longest - 128);
    std::string unfolded;
    const auto decode = [&](char *to, std::int32_t room) {
        const block text = terminated(value);
        const std::int32_t length =
            ZEL_InternetMessageHeaderToLocalLen(language, text.data(), from_len, to_charset, to, room);
        require(room >= 0 || text.data() == value, "asking for the size leaves the text alone");
        if (room >= 0)
            unfolded = text.data();
        return length;
    };
    const std::string result = whole(decode, 1);
    std::string some = written(decode, cut % (result.size() + 1));
    some.resize(some.size() - !some.empty()); // the repair may find the last byte broken that the cut left
    require(has_states(to_charset) || result.starts_with(some), "a short result is a beginning of the whole");
    require(unfolded.size() <= value.size(), "unfolding takes away");

    const std::string once = unfolded;
    const block first = terminated(value), second = terminated(once);
    ZEL_CompareMessageHeaderStrings(language, to_charset, first.data(), second.data());
    require(first.data() == once, "unfolding is the same everywhere");
    return 0;
}
