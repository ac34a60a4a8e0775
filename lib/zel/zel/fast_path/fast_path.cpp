// What a pair can have is settled when it is met: which bytes of ASCII it keeps, and which table could serve
// it. A conversion then takes the table if it has been built, else the identity of ASCII, else it is left to
// ICU.
//
// Invariant: no lock, and nothing shared is written, once a table stands.

#include "zel/fast_path/fast_path.h"

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

ascii_identity ascii_kept_by(UConverter *from_cnv, UConverter *to_cnv) {
    ascii_identity kept;
    for (unsigned value = 0; value < kept.size(); ++value) {
        kept[value] = keeps(from_cnv, to_cnv, static_cast<char>(value));
        if (is_kept<ascii::plain_text>(static_cast<unsigned char>(value)) && !kept[value])
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

transcoded transcode(const fast_path &path, std::string_view text, buffer to) {
    if (const code_table *table = table_of(path.characters))
        return path.by_characters(*table, text, to);
    if (const byte_table *table = table_of(path.bytes))
        return transcode_bytes(*table, text, to);
    return transcode_ascii(path.kept, text, to);
}

} // namespace

void prepare(fast_path &path, UConverter *from_cnv, UConverter *to_cnv) {
    path.kept = ascii_kept_by(from_cnv, to_cnv);
    if (path.kept.none())
        return;
    const charset_kind from = kind_of(from_cnv), to = kind_of(to_cnv);
    if (from == charset_kind::utf8 && can_have_table(to)) {
        path.characters = share_code_table(name_of(to_cnv));
        path.by_characters = transcoder_from_utf8(to, path.kept.all());
    } else if (to == charset_kind::utf8 && can_have_table(from)) {
        path.characters = share_code_table(name_of(from_cnv));
        path.by_characters = transcoder_to_utf8(from, path.kept.all());
    } else if (from == charset_kind::single_byte && to == charset_kind::single_byte && path.kept.all())
        path.bytes = share_byte_table(name_of(from_cnv), name_of(to_cnv));
}

status convert(const fast_path &path, std::string_view text, char *to_buf, std::int32_t to_size,
               std::int32_t &length) {
    if (to_size < 0 || path.kept.none())
        return status::needs_icu;
    // ICU takes all of the text in before it writes, and so it may convert in place.
    if (overlap(text, {to_buf, static_cast<std::size_t>(to_size)}))
        return status::needs_icu;
    const buffer to(reinterpret_cast<unsigned char *>(to_buf), static_cast<std::size_t>(to_size));
    const auto [answer, end] = transcode(path, text, to);
    length = static_cast<std::int32_t>(end - to.data());
    if (answer == status::done && length < to_size)
        *end = '\0';
    return answer;
}

void note_conversion(const fast_path &path, std::size_t bytes) {
    if (path.characters)
        earn_table(*path.characters, bytes);
    else if (path.bytes)
        earn_table(*path.bytes, bytes);
}

} // namespace zel
