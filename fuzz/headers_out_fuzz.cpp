// Header values on their way out, and back where the way is promised.

#include "fuzz.h"

namespace {

// Languages that admit the charset they write in.
constexpr const char *mirrored[][2] = {{"pl", "iso-8859-2"}, {"ru", "iso-8859-5"}, {"el", "iso-8859-7"},
                                       {"yi", "utf-8"},      {"zh", "gb2312"},     {"th", "tis-620"}};

bool is_plain(unsigned char byte) {
    return byte > ' ' && byte != 0x7F;
}

void require_way_back(const char *language, const char *charset, const std::string &value) {
    if (ZEL_IsASCIIString(value.c_str()) || !std::all_of(value.begin(), value.end(), is_plain))
        return;
    const block text = terminated(value);
    const auto encode = [&](char *to, std::int32_t room) {
        return ZEL_LocalToInternetMessageHeader(language, charset, text.data(), to, room);
    };
    const block received = terminated(whole(encode));
    const auto decode = [&](char *to, std::int32_t room) {
        return ZEL_InternetMessageHeaderToLocal(language, received.data(), charset, to, room);
    };
    std::string back = whole(decode, 1);
    const block repaired = terminated(value);
    ZEL_CheckStringValidity(charset, repaired.data());
    if (back.ends_with("\r\n")) // the last word may be full, which ends its line
        back.resize(back.size() - 2);
    require(back == repaired.data(), "what is written is read back");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const language = in.language(), *const from_charset = in.charset();
    const std::size_t cut = in.number();
    const std::string value = in.text();
    const block text = terminated(value);
    const auto encode = [&](char *to, std::int32_t room) {
        const std::int32_t length =
            ZEL_LocalToInternetMessageHeader(language, from_charset, text.data(), to, room);
        require(text.data() == value, "the text is as it was");
        return length;
    };
    const std::string wire = whole_and_cut(encode, cut, "us-ascii");
    const bool is_ascii = ZEL_IsASCIIString(value.c_str());
    require(!is_ascii || wire == value, "plain text goes out as it is");
    require(ZEL_IsASCIIString(wire.c_str()) ||
                ZEL_InternetMessageCharset(language, value.c_str()) == std::string_view("us-ascii"),
            "the wire is 7-bit where the language is known");
    for (const auto &[tongue, charset] : mirrored)
        require_way_back(tongue, charset, value);
    return 0;
}
