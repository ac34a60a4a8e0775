// Repair of double-byte text, the test for ASCII, and collation as an order.

#include "fuzz.h"

namespace {

int sign(std::int32_t order) {
    return (order > 0) - (order < 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    input in(data, size);
    const char *const locale = in.language();
    const std::string text = in.text();
    for (const char *charset : charsets) {
        const block repaired = terminated(text);
        ZEL_CheckStringValidity(charset, repaired.data());
        const std::string once = repaired.data();
        require(once.size() == text.size(), "repair keeps the length");
        for (std::size_t i = 0; i < text.size(); ++i)
            require(once[i] == text[i] || (once[i] == '?' && (text[i] & 0x80)),
                    "repair writes question marks alone");
        ZEL_CheckStringValidity(charset, repaired.data());
        require(repaired.data() == once, "what is repaired is valid");
    }
    const bool has_high =
        std::any_of(text.begin(), text.end(), [](unsigned char byte) { return byte > 0x7F; });
    require(ZEL_IsASCIIString(terminated(text).data()) == !has_high, "ASCII has no high byte");

    const char *const charset = in.charset();
    const block first = terminated(in.line()), second = terminated(in.text());
    require(sign(ZEL_CompareStrings(locale, charset, first.data(), second.data())) ==
                -sign(ZEL_CompareStrings(locale, charset, second.data(), first.data())),
            "an order has two ends");
    require(ZEL_CompareStrings(locale, charset, first.data(), first.data()) == 0, "a text equals itself");
    return 0;
}
