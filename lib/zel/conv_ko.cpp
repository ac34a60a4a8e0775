// ISO-2022-KR to EUC-KR (RFC 1557). A designation opens the text to SO and SI; in a Korean run each character
// but the space is a pair, so that a line feed in one begins a pair too.

#include "zel.h"
#include "zel/base/frame.h"
#include "zel/direct/converters.h"

namespace zel {
namespace {

constexpr std::string_view designation = "\x1B$)C";

enum class state { UNDESIGNATED, ASCII, KOREAN };

struct korean_text {
    state current = state::UNDESIGNATED;
    bool pass_8bit = passes_8bit();
    bool in_pairs = false; // for a step

    static constexpr auto policy = when_full::keep_characters;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = runs_read;
    static constexpr std::size_t writes = step_writes;
    static constexpr std::size_t opening = 1;
    static constexpr std::size_t closing = 1;

    static vector_mask are_shifts(vector_bytes bytes) {
        return are_between(bytes, SO, SI) | are_byte(bytes, ESC);
    }
    static vector_mask ends_singles(vector_bytes bytes) { return are_high(bytes) | are_shifts(bytes); }
    static vector_mask ends_pairs(vector_bytes bytes) { return are_byte(bytes, ' ') | are_shifts(bytes); }
    static bool put_pairs(cursors &at, std::size_t bytes) {
        return change_pairs(at, bytes, copy_with_high_bits);
    }
    static bool opens_pairs(const unsigned char *at) { return *at == SO; }
    static bool closes_pairs(const unsigned char *at) { return *at == SI; }

    bool in_singles() const { return current != state::KOREAN; }
    bool begins_run(unsigned char byte) const {
        return current != state::UNDESIGNATED && (byte < 0x80 || current == state::KOREAN);
    }
    void take_runs(const chunk &of, std::size_t place, cursors &at) {
        in_pairs = current == state::KOREAN;
        take_shifted_runs(*this, of, place, at);
        current = in_pairs ? state::KOREAN : state::ASCII;
    }

    status block_step(cursors &at) { return take_chunk(*this, at); }

    bool take_designation(cursors &at) {
        if (!std::string_view(reinterpret_cast<const char *>(at.from), left(at)).starts_with(designation))
            return false;
        at.from += designation.size();
        current = state::ASCII;
        return true;
    }

    bool take_shift(unsigned char byte) {
        if (current == state::UNDESIGNATED || (byte != SO && byte != SI))
            return false;
        current = byte == SO ? state::KOREAN : state::ASCII;
        return true;
    }

    bool put_character(unsigned char byte, cursors &at) const {
        if (current == state::KOREAN && byte != ' ')
            return put_with_high_bits(at, byte, take(at));
        return put(at, as_7bit(byte, pass_8bit));
    }

    status scalar_step(cursors &at) {
        if (take_designation(at))
            return status::done;
        const unsigned char byte = take(at);
        return done_if(take_shift(byte) || put_character(byte, at));
    }
};

} // namespace

void convert_iso2022kr_to_euckr(input from, output &to) {
    korean_text text;
    convert_directly(text, from, to);
}

} // namespace zel

int32_t iso2022kr2euckr(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_iso2022kr_to_euckr, from_buf, from_len, to_buf, to_size);
}
