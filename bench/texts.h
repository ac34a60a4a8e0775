// Texts to measure with: words made by chance, with a fixed seed, out of the characters that a charset holds.
//
// Invariant: all letters outside ASCII go to each charset of the alphabet and back, by ICU and by iconv
// alike, so that whoever converts such a text has to come to the same bytes. A pool holds half a megabyte or
// more, which is too much for a branch predictor to learn by heart.

#pragma once

#include <string>
#include <vector>

namespace bench {

enum class text_kind {
    ascii,
    mixed, // one character in ten is outside ASCII: East Asian ones as short words, others within words
    dense, // all are but line ends, and but the blanks between the words of alphabets
};

enum class text_shape {
    body,   // lines of about 70 columns
    header, // one line. East Asian words are of whole threes: their encoded words go without padding, behind
            // which GMime reads no further
};

struct text_order {
    text_kind kind;
    std::size_t size;                  // bytes in the charset, on average
    std::string charset;               // that the texts are encoded in
    std::vector<std::string> alphabet; // charsets that hold the letters
    text_shape shape = text_shape::body;
};

using text_pool = std::vector<std::string>;

text_pool make_texts(const text_order &order);

} // namespace bench
