// ISO-2022-KR to EUC-KR (RFC 1557). A designation opens the text to SO and SI; in a Korean run each character
// but the space is a pair, so that a line feed in one begins a pair too.

#include "conv_ko.h"

#include "conv.h"
#include "zel.h"
#include "zel/base/frame.h"

namespace zel {
namespace {

constexpr unsigned char SO = 0x0E;
constexpr unsigned char SI = 0x0F;
constexpr std::string_view designation = "\x1B$)C";

enum class state { UNDESIGNATED, ASCII, KOREAN };

bool take_designation(input &from) {
    if (!std::string_view(reinterpret_cast<const char *>(from.at), left(from)).starts_with(designation))
        return false;
    from.at += designation.size();
    return true;
}

// True if what stands next only told how to read on.
bool take_state(input &from, state &current) {
    if (take_designation(from)) {
        current = state::ASCII;
        return true;
    }
    const unsigned char byte = peek(from);
    if (current == state::UNDESIGNATED || (byte != SO && byte != SI))
        return false;
    current = take(from) == SO ? state::KOREAN : state::ASCII;
    return true;
}

bool put_character(input &from, state current, output &to, bool pass_8bit) {
    const unsigned char byte = take(from);
    if (current == state::KOREAN && byte != ' ')
        return put_high_pair(to, byte, take(from));
    return put(to, as_7bit(byte, pass_8bit));
}

} // namespace

void convert_iso2022kr_to_euckr(input from, output &to) {
    state current = state::UNDESIGNATED;
    const bool pass_8bit = passes_8bit();
    while (!ended(from))
        if (!take_state(from, current) && !put_character(from, current, to, pass_8bit))
            return;
}

} // namespace zel

int32_t iso2022kr2euckr(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_iso2022kr_to_euckr, from_buf, from_len, to_buf, to_size);
}
