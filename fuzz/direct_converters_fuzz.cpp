// The direct converters: the factors that are stated, what a short buffer holds, and a text that lies in the
// buffer.

#include "fuzz.h"

namespace {

struct converter {
    std::int32_t (*convert)(const char *, std::int32_t, char *, std::int32_t);
    std::size_t factor, rest; // of the size that is enough
};

constexpr converter converters[] = {{eucjp2jis, 5, 4}, {jis2eucjp, 2, 1}, {sjis2jis, 5, 4},
                                    {jis2sjis, 2, 1},  {hz2gb, 2, 1},     {iso2022kr2euckr, 2, 1},
                                    {big2gb, 2, 1},    {gb2big5, 2, 1}};

constexpr std::size_t longest_unit = 3; // bytes, of an escape sequence

// What comes out is undefined, but nothing outside of the two is touched.
void convert_overlapping(const converter &direct, const std::string &bytes, std::size_t apart) {
    const std::size_t size = direct.factor * bytes.size() + direct.rest;
    for (const bool text_first : {true, false}) {
        const block both(size + apart);
        char *const from = both.data() + (text_first ? 0 : apart);
        bytes.copy(from, bytes.size());
        const std::int32_t length =
            direct.convert(from, static_cast<std::int32_t>(bytes.size()),
                           both.data() + (text_first ? apart : 0), static_cast<std::int32_t>(size));
        require(length >= 0 && static_cast<std::size_t>(length) < size, "an overlap stays within the buffer");
    }
}

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
        const std::size_t room = 1 + cut % need;
        const std::string part = written(call, room);
        require(whole.starts_with(part), "a short result is a beginning of the whole");
        require(part == whole || part.size() + longest_unit >= room, "a short buffer is filled");
        require(whole == written(call_with(ended, ended.size() - 1), need), "a terminator ends the text");
        require(direct.convert != eucjp2jis || ZEL_IsASCIIString(whole.c_str()),
                "what is made of EUC-JP is 7-bit");
        convert_overlapping(direct, bytes, cut % (bytes.size() + 2));
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
