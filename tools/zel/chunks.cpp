#include "chunks.h"

#include "characters.h"

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

constexpr std::size_t longest_character = 6; // of CESU-8
constexpr std::string_view roman = "\x1B(J"; // the state that outlives a line feed

std::size_t behind_last(std::string_view text, std::size_t unit, std::string_view one,
                        std::string_view other) {
    for (std::size_t end = text.size() - text.size() % unit; end >= unit; end -= unit) {
        const std::string_view last = text.substr(end - unit, unit);
        if (last == one || last == other)
            return end;
    }
    return 0;
}

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// A text that ends amid a character is read with a substitute at its end.
std::size_t behind_character(std::string_view text, const charset &of) {
    const std::size_t most = text.size() - text.size() % of.unit;
    for (std::size_t end = most; end > 0 && end + longest_character > most; end -= of.unit) {
        const std::string read = to_utf8(of.unmarked, text.substr(0, end));
        if (!ends_with(read, utf8(replacement)) && !ends_with(read, utf8(substitute)))
            return end;
    }
    return most;
}

std::size_t behind_utf8_character(std::string_view text) {
    std::size_t last = text.size() - 1;
    while (last > 0 && text.size() - last < 4 && (text[last] & 0xC0) == 0x80)
        --last;
    return sequence_length(text[last]) > text.size() - last ? last : text.size();
}

std::string read_utf32(std::string_view text, bool little, std::vector<std::size_t> &broken) {
    std::string read;
    for (std::size_t at = 0; at < text.size(); at += 4) {
        char32_t code = 0;
        for (std::size_t i = 0; at + i < text.size() && i < 4; ++i)
            code |= static_cast<unsigned char>(text[at + i]) * 1U << 8 * (little ? i : 3 - i);
        const bool whole = text.size() - at >= 4 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
        if (!whole)
            broken.push_back(at / 4);
        read += utf8(whole ? code : replacement);
    }
    return read;
}

// 0 where no place will do.
std::size_t end_of_chunk(std::string_view text, const charset &from) {
    if (from.kept == states::escapes)
        return behind_last(text, 1, from.line_feed, from.line_feed);
    if (const std::size_t end = behind_last(text, from.unit, from.line_feed, from.blank))
        return end;
    return from.utf8 ? behind_utf8_character(text) : behind_character(text, from);
}

} // namespace

chunked_file::chunked_file(input_file &file, const charset &from, bool whole)
    : file_(file), from_(from), whole_(whole) {}

// What the last chunk was is dropped, but for the escape sequence that goes on in force.
void chunked_file::drop_used() {
    const std::string_view last(buffer_.get(), used_);
    const std::size_t escape = from_.kept == states::escapes ? last.rfind('\x1B') : last.npos;
    const bool goes_on = escape != last.npos && last.substr(escape, roman.size()) == roman;
    place_ += used_ - opening_;
    opening_ = goes_on ? roman.size() : 0;
    filled_ -= used_;
    std::memmove(buffer_.get() + opening_, buffer_.get() + used_, filled_);
    std::copy_n(roman.begin(), opening_, buffer_.get());
    filled_ += opening_;
    used_ = 0;
}

void chunked_file::grow() {
    if (size_ > longest_whole)
        throw file_error(whole_ ? "has more than 64 MiB, which cannot be converted in pieces"
                                : "has a line of more than 64 MiB, which cannot be converted in pieces");
    size_ = std::min(2 * size_, longest_whole + 1);
    std::unique_ptr<char[]> larger(new char[size_]);
    std::copy_n(buffer_.get(), filled_, larger.get());
    buffer_ = std::move(larger);
}

chunk chunked_file::used_chunk(bool first) {
    const std::string_view text(buffer_.get(), used_);
    chunk used = {text.substr(opening_),
                  first ? from_.name : from_.unmarked,
                  text,
                  opening_,
                  place_,
                  from_.unit == 4,
                  {}};
    if (used.utf32) {
        const bool marked = first && from_.kept == states::mark &&
                            text.substr(0, 4) == from_utf8(from_.unmarked, utf8(0xFEFF));
        utf8_ = read_utf32(text.substr(marked ? 4 : 0), from_.line_feed.front() == '\n', used.broken);
        used.charset = "UTF-8";
        used.text = utf8_;
        used.text_place += marked ? 4 : 0;
    }
    return used;
}

std::optional<chunk> chunked_file::next() {
    const bool first = !begun_;
    drop_used();
    while (used_ == 0) {
        filled_ += file_.read(buffer_.get() + filled_, size_ - filled_);
        const std::string_view held(buffer_.get(), filled_);
        if (!begun_)
            from_ = settle(from_, held);
        begun_ = true;
        if (filled_ < size_) {
            used_ = filled_;
            break;
        }
        used_ = whole_ ? 0 : end_of_chunk(held, from_);
        if (used_ == 0)
            grow();
    }
    return used_ == opening_ ? std::nullopt : std::optional<chunk>(used_chunk(first));
}

} // namespace tool
