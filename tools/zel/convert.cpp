#include "convert.h"

#include "chunks.h"
#include "escapes.h"
#include "losses.h"
#include "progress.h"
#include "report.h"

#include <zel.h>

#include <algorithm>
#include <limits>

namespace tool {
namespace {

class conversion {
public:
    conversion(const std::string &from_charset, const std::string &to_charset);

    void convert(const std::string &path);
    void close() { escapes_.close(); }

private:
    std::string_view convert(const chunk &piece);
    void append(const chunk &piece, std::string_view text);
    losses losses_of(const chunk &piece, std::string_view converted, std::size_t wanted);
    void write(std::string_view converted);

    charset from_, to_;
    bool same_, by_table_;
    std::string to_charset_; // without a mark once one is written
    repertoire characters_;  // of what is copied, each character is held
    std::string detour_;
    std::unique_ptr<char[]> buffer_;
    std::size_t size_ = 0, length_ = 0;
    joined_escapes escapes_;
};

// Whether the library converts the pair by a table of its own, whose texts end at a NUL.
bool goes_by_table(const std::string &from_charset, const std::string &to_charset) {
    const auto pair = [&](const char *from, const char *to) {
        return same_name(from_charset, from) && same_name(to_charset, to);
    };
    return pair("gb2312", "big5") || pair("big5", "gb2312");
}

conversion::conversion(const std::string &from_charset, const std::string &to_charset)
    : from_(learn(from_charset)), to_(learn(to_charset)), same_(same_name(from_charset, to_charset)),
      by_table_(goes_by_table(from_charset, to_charset)), to_charset_(to_charset),
      characters_(same_ ? learn("UTF-8") : to_) {}

void conversion::append(const chunk &piece, std::string_view text) {
    if (!text.empty())
        length_ += static_cast<std::size_t>(ZEL_ConvertBuffer(
            piece.charset.c_str(), to_charset_.c_str(), text.data(), static_cast<std::int32_t>(text.size()),
            buffer_.get() + length_, static_cast<std::int32_t>(size_ - length_)));
}

// The library's estimate is doubled, since escape sequences around short runs may need more, and a result
// that does not fit would come out as it went in.
std::string_view conversion::convert(const chunk &piece) {
    if (same_)
        return piece.bytes;
    if (same_name(piece.charset, to_charset_) && !piece.utf32) { // a copy would keep what is broken
        detour_ = from_utf8(to_charset_, to_utf8(piece.charset, piece.text));
        return detour_;
    }
    const std::int64_t estimate =
        ZEL_GetResultBufferSize(piece.text.data(), static_cast<std::int32_t>(piece.text.size()),
                                piece.charset.c_str(), to_charset_.c_str());
    const auto need = static_cast<std::size_t>(
        std::min<std::int64_t>(2 * estimate + 64, std::numeric_limits<std::int32_t>::max()));
    if (size_ < need) {
        buffer_.reset(new char[need]);
        size_ = need;
    }
    length_ = 0;
    std::string_view rest = piece.text;
    for (std::size_t end = 0; by_table_ && (end = rest.find('\0')) != rest.npos;
         rest.remove_prefix(end + 1)) {
        append(piece, rest.substr(0, end));
        buffer_[length_++] = '\0';
    }
    append(piece, rest);
    if (length_ > 0)
        to_charset_ = to_.unmarked;
    return {buffer_.get(), length_};
}

losses conversion::losses_of(const chunk &piece, std::string_view converted, std::size_t wanted) {
    if (by_table_)
        return find_holes(piece, converted, to_.name, wanted);
    return same_ || characters_.suspects(converted) ? find_losses(from_, piece, characters_, wanted)
                                                    : losses{};
}

void conversion::write(std::string_view converted) {
    if (to_.kept == states::escapes && !same_)
        escapes_.write(converted);
    else
        write_out(converted);
}

void conversion::convert(const std::string &path) {
    input_file file(path);
    progress bar(path, file.size());
    chunked_file chunks(file, from_, from_.kept == states::others || to_.kept == states::others);
    loss_report report(path);
    while (const std::optional<chunk> piece = chunks.next()) {
        const std::string_view converted = convert(*piece);
        report.add(losses_of(*piece, converted, report.wanted()));
        write(converted);
        bar.advance(piece->bytes.size());
    }
    report.close();
}

} // namespace

void convert_files(const std::string &from_charset, const std::string &to_charset,
                   const std::vector<std::string> &files) {
    conversion pair(from_charset, to_charset);
    for (const std::string &path : files) {
        try {
            pair.convert(path);
        } catch (const file_error &fault) {
            report(path, fault.what());
        }
    }
    pair.close();
}

} // namespace tool
