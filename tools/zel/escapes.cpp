#include "escapes.h"

#include "files.h"

namespace tool {
namespace {

constexpr std::string_view ascii = "\x1B(B";

// Whether a text begins with a sequence that changes the state; ESC . and ESC N leave it.
bool designates(std::string_view text) {
    return text.size() > 2 && text[0] == '\x1B' && (text[1] == '(' || text[1] == '$');
}

// ESC $ ( D and its like have four characters, all others three.
std::string last_designation(std::string_view text) {
    std::size_t at = text.rfind('\x1B');
    while (at != text.npos && at > 0 && !designates(text.substr(at)))
        at = text.rfind('\x1B', at - 1);
    return at == text.npos ? "" : std::string(text.substr(at, text.substr(at + 1, 2) == "$(" ? 4 : 3));
}

} // namespace

void joined_escapes::write(std::string_view result) {
    if (result.empty())
        return;
    std::string state;
    if (result.size() > ascii.size() && result.substr(result.size() - ascii.size()) == ascii) {
        result.remove_suffix(ascii.size());
        state = last_designation(result);
    }
    if (!state_.empty() && result.substr(0, state_.size()) == state_)
        result.remove_prefix(state_.size());
    else if (!designates(result))
        close();
    write_out(result);
    state_ = state;
}

void joined_escapes::close() {
    if (!state_.empty())
        write_out(ascii);
    state_.clear();
}

} // namespace tool
