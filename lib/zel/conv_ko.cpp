// ISO-2022-KR to EUC-KR (RFC 1557). A designation opens the text to SO and SI; in a Korean run each character
// but the space is a pair, so that a line feed in one begins a pair too.

#include "conv_ko.h"

#include "conv.h"
#include "conv_runs.h"
#include "zel.h"
#include "zel/base/frame.h"

namespace zel {
namespace {

constexpr unsigned char SO = 0x0E;
constexpr unsigned char SI = 0x0F;
constexpr unsigned char ESC = 0x1B;
constexpr std::string_view designation = "\x1B$)C";

enum class state { UNDESIGNATED, ASCII, KOREAN };

struct korean_text {
    state current = state::UNDESIGNATED;
    bool pass_8bit = passes_8bit();

    static constexpr bool needs_trail = false;
    static constexpr std::size_t opening = 1;
    static constexpr std::size_t closing = 1;
    static constexpr auto change_pairs = copy_with_high_bits;

    static signed_bytes are_shifts(signed_bytes bytes) {
        return is_between(bytes, SO, SI) | is_byte(bytes, ESC);
    }
    static signed_bytes ends_singles(signed_bytes bytes) { return is_high(bytes) | are_shifts(bytes); }
    static signed_bytes ends_pairs(signed_bytes bytes) { return is_byte(bytes, ' ') | are_shifts(bytes); }
    static bool opens_pairs(const unsigned char *at) { return *at == SO; }
    static bool closes_pairs(const unsigned char *at) { return *at == SI; }
    bool takes_step(unsigned char byte) const {
        return current != state::UNDESIGNATED && (byte < 0x80 || current == state::KOREAN);
    }

    void step(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass) {
        const bool korean = current == state::KOREAN;
        current =
            step_through_shifts<korean_text>(singles, pairs, pass, korean) ? state::KOREAN : state::ASCII;
    }

    bool take_designation(input &from) {
        if (!std::string_view(reinterpret_cast<const char *>(from.at), left(from)).starts_with(designation))
            return false;
        from.at += designation.size();
        current = state::ASCII;
        return true;
    }

    bool take_shift(input &from) {
        const unsigned char byte = peek(from);
        if (current == state::UNDESIGNATED || (byte != SO && byte != SI))
            return false;
        current = take(from) == SO ? state::KOREAN : state::ASCII;
        return true;
    }

    bool put_character(input &from, output &to) const {
        const unsigned char byte = take(from);
        if (current == state::KOREAN && byte != ' ')
            return put_high_pair(to, byte, take(from));
        return put(to, as_7bit(byte, pass_8bit));
    }

    bool take_unit(input &from, output &to) {
        return take_designation(from) || take_shift(from) || put_character(from, to);
    }
};

} // namespace

void convert_iso2022kr_to_euckr(input from, output &to) {
    korean_text text;
    convert_by_steps(text, from, to);
}

} // namespace zel

int32_t iso2022kr2euckr(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_iso2022kr_to_euckr, from_buf, from_len, to_buf, to_size);
}
