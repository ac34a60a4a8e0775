// The direct converters: the factors that are stated, and what a short buffer holds.

#include "fuzz.h"

namespace {

struct converter {
    std::int32_t (*convert)(const char *, std::int32_t, char *, std::int32_t);
    std::size_t factor, rest; // of the size that is enough
};

constexpr converter converters[] = {{eucjp2jis, 5, 4}, {jis2eucjp, 2, 1}, {sjis2jis, 5, 4},
                                    {jis2sjis, 2, 1},  {hz2gb, 2, 1},     {iso2022kr2euckr, 2, 1},
                                    {big2gb, 2, 1},    {gb2big5, 2, 1}};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const std::size_t cut = in.number();
    const std::string bytes = in.bytes();
    const block from(bytes), ended = terminated(in.text());
    for (const converter &direct : converters) {
        const auto call_with = [&](const block &text, std::int32_t length) {
            return [&, length](char *to, std::int32_t room) {
                return direct.convert(text.data(), length, to, room);
            };
        };
        const auto call = call_with(from, from.size());
        const std::size_t need = direct.factor * bytes.size() + direct.rest;
        const std::string whole = written(call, need);
        require(whole == written(call, 2 * need), "the stated size is enough");
        require(whole.starts_with(written(call, 1 + cut % need)),
                "a short result is a beginning of the whole");
        require(whole == written(call_with(ended, ended.size() - 1), need), "a terminator ends the text");
        require(direct.convert != eucjp2jis || ZEL_IsASCIIString(whole.c_str()),
                "what is made of EUC-JP is 7-bit");
        const block one(1); // whatever the size says
        require(direct.convert(from.data(), from.size(), one.data(), 0) == 0 && *one.data() == '\0',
                "there is a terminator at a size of 0");
    }
    const block base64(
        static_cast<std::size_t>(ZEL_ApplyBase64Encoding(from.data(), from.size(), nullptr, -1)));
    const std::int32_t length =
        ZEL_ApplyBase64Encoding(from.data(), from.size(), base64.data(), base64.size());
    require(length < base64.size() && base64.data()[length] == '\0',
            "Base64 takes the size that it asks for");
    return 0;
}
