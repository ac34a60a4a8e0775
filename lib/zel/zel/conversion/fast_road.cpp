#include "zel/conversion/fast_road.h"

#include "zel/base/output.h"

#include <algorithm>

namespace zel {
namespace {

// Asked for twice in a row, as a byte may change how the next one is read or written.
bool keeps(UConverter *from_cnv, UConverter *to_cnv, char byte) {
    constexpr std::int32_t count = 2;
    const char text[count] = {byte, byte};
    UChar units[8];
    char bytes[16];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t taken = ucnv_toUChars(from_cnv, units, std::size(units), text, count, &status);
    const auto same = [byte](UChar unit) { return unit == static_cast<UChar>(byte); };
    if (U_FAILURE(status) || taken != count || !std::all_of(units, units + count, same))
        return false;
    const std::int32_t put = ucnv_fromUChars(to_cnv, bytes, std::size(bytes), units, count, &status);
    return U_SUCCESS(status) && put == count && std::equal(bytes, bytes + count, text);
}

ascii_identity kept_ascii(UConverter *from_cnv, UConverter *to_cnv) {
    ascii_identity kept;
    for (unsigned value = 0; value < kept.size(); ++value) {
        kept[value] = keeps(from_cnv, to_cnv, static_cast<char>(value));
        if (belongs_to<ascii_run::text>(static_cast<unsigned char>(value)) && !kept[value])
            return {};
    }
    return kept;
}

bool can_have_table(charset_kind kind) {
    return kind != charset_kind::other && kind != charset_kind::utf8;
}

// What ICU calls the charset, however it was spelled.
const char *name_of(const UConverter *cnv) {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_getName(cnv, &status);
}

verdict walk_road(const fast_road &road, byte_pass &pass) {
    if (const code_table *table = table_of(road.characters))
        return road.convert(*table, pass);
    if (const byte_table *table = table_of(road.bytes))
        return convert_singles(*table, pass);
    return copy_ascii(road.kept, pass);
}

} // namespace

void prepare_road(fast_road &road, UConverter *from_cnv, UConverter *to_cnv) {
    road.kept = kept_ascii(from_cnv, to_cnv);
    if (road.kept.none())
        return;
    const charset_kind from = kind_of(from_cnv), to = kind_of(to_cnv);
    if (from == charset_kind::utf8 && can_have_table(to)) {
        road.convert = to == charset_kind::iso2022jp ? convert_utf8_to_jis : convert_from_utf8;
        road.characters = share_code_table(name_of(to_cnv));
    } else if (can_have_table(from) && to == charset_kind::utf8) {
        road.convert = from == charset_kind::iso2022jp ? convert_jis_to_utf8 : convert_to_utf8;
        road.characters = share_code_table(name_of(from_cnv));
    } else if (from == charset_kind::single_byte && to == charset_kind::single_byte && road.kept.all()) {
        road.bytes = share_byte_table(name_of(from_cnv), name_of(to_cnv));
    }
}

verdict convert_by_road(const fast_road &road, std::string_view text, char *to_buf, std::int32_t to_size,
                        std::int32_t &length) {
    if (to_size < 0 || road.kept.none())
        return verdict::undecided;
    // ICU takes all of the text in before it writes, and so it may convert in place.
    if (overlap(text, {to_buf, static_cast<std::size_t>(to_size)}))
        return verdict::undecided;
    auto *from = reinterpret_cast<const unsigned char *>(text.data());
    auto *to = reinterpret_cast<unsigned char *>(to_buf);
    byte_pass pass = {from, from + text.size(), to, to + to_size};
    const verdict answer = walk_road(road, pass);
    length = static_cast<std::int32_t>(pass.to - to);
    if (answer == verdict::done && pass.to != pass.to_end)
        *pass.to = '\0';
    return answer;
}

void note_conversion(const fast_road &road, std::size_t bytes) {
    if (road.characters)
        earn_table(*road.characters, bytes);
    else if (road.bytes)
        earn_table(*road.bytes, bytes);
}

} // namespace zel
