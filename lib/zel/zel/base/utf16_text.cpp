// Text is taken in by one call of ICU, into memory that the smallest character of the source bounds.

#include "zel/base/utf16_text.h"

namespace zel {

heap<UChar> allocate_units(std::size_t count) {
    return heap<UChar>(static_cast<UChar *>(std::malloc(count * sizeof(UChar))));
}

utf16_text to_utf16(UConverter *from_cnv, std::int32_t min_char_size, std::string_view text) {
    const std::uint64_t capacity = text.size() / static_cast<std::size_t>(min_char_size) + 1;
    if (text.size() > INT32_MAX || capacity > INT32_MAX)
        return {};
    utf16_text taken = {allocate_units(static_cast<std::size_t>(capacity)), 0};
    if (!taken.units)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    taken.length = ucnv_toUChars(from_cnv, taken.units.get(), static_cast<std::int32_t>(capacity),
                                 text.data(), static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status))
        return {};
    return taken;
}

} // namespace zel
