// A file as a row of chunks that can be converted each on its own: a chunk ends where nothing has to be
// remembered of it but what the next one is told.
//
//     no states         behind a line feed or a blank; where there is none, behind a character
//     marks             the same; from the second on, under the name that the mark stands for
//     UTF-32            the same, read as UTF-8: the library has no room for many characters above U+FFFF
//     ISO-2022-JP       behind a line feed, which ends all of its states but one; the next chunk opens with
//                       the escape sequence of that one
//     read whole        at the end of the file, which may not be longer than 64 MiB
//
// Invariant: the chunks without what was put before them are the file, byte for byte.

#pragma once

#include "charset.h"
#include "files.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tool {

constexpr std::size_t chunk_bytes = 256 * 1024;
constexpr std::size_t longest_whole = 64 * 1024 * 1024;

struct chunk {
    std::string_view bytes; // of the file
    std::string charset;
    std::string_view text;           // what is converted
    std::size_t opening;             // bytes that the text has before those of the file
    std::uint64_t text_place;        // in the file, behind the opening
    bool utf32;                      // each character has four bytes in the file
    std::vector<std::size_t> broken; // characters of UTF-32 that are none, by their index

    // In the file, of a character of the text.
    std::uint64_t place_of(std::size_t at, std::size_t index) const {
        return text_place + (utf32 ? 4 * index : at < opening ? 0 : at - opening);
    }
};

class chunked_file {
public:
    chunked_file(input_file &file, const charset &from, bool whole);

    // The next chunk, which lives until the one behind it; none at the end. Throws file_error.
    std::optional<chunk> next();

private:
    void drop_used();
    void grow();
    chunk used_chunk(bool first);

    input_file &file_;
    charset from_;
    bool whole_;
    std::size_t size_ = chunk_bytes, filled_ = 0, used_ = 0, opening_ = 0;
    std::unique_ptr<char[]> buffer_{new char[size_]};
    std::string utf8_; // what a chunk of UTF-32 says
    std::uint64_t place_ = 0;
    bool begun_ = false;
};

} // namespace tool
