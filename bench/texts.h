// Texts to measure with: words made by chance, with a fixed seed, out of the characters that a charset holds;
// one text repeated; and lines that people wrote.
//
// Invariant: all letters outside ASCII go to each charset of the alphabet and back, by ICU and by iconv
// alike, so that whoever converts such a text has to come to the same bytes. A pool of texts made by chance
// holds half a megabyte or more, which is too much for a branch predictor to learn by heart.

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

// The text again and again, cut at no character, in as many bytes of UTF-8 as the size says; in UTF-8.
text_pool repeat_text(const std::string &text, std::size_t size);

// Lines of message catalogues that go to the charset and back, by ICU and by iconv alike; in UTF-8.
text_pool natural_lines(const std::string &language, const std::string &charset);
// The same lines one behind the other, in pieces of the size or little more.
text_pool natural_pieces(const std::string &language, const std::string &charset, std::size_t size);

text_pool encode_texts(const text_pool &texts, const std::string &charset);

} // namespace bench
