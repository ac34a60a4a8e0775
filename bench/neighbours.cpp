#include "neighbours.h"

#include <gmime/gmime.h>
#include <iconv.h>
#include <openssl/evp.h>
#include <unicode/ucnv.h>
#include <unicode/ucol.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

using icu_converter = std::shared_ptr<UConverter>;

std::int32_t size_of(const auto &container) {
    return static_cast<std::int32_t>(container.size());
}

icu_converter open_icu(const std::string &charset) {
    UErrorCode status = U_ZERO_ERROR;
    icu_converter opened(ucnv_open(charset.c_str(), &status), &ucnv_close);
    if (U_FAILURE(status))
        throw std::runtime_error("ICU does not know " + charset);
    return opened;
}

work icu_by_utf16(const std::string &from_charset, const std::string &to_charset) {
    return [from_cnv = open_icu(from_charset), to_cnv = open_icu(to_charset)](const std::string &text,
                                                                              scratch &to) -> result {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t units = ucnv_toUChars(from_cnv.get(), to.units.data(), size_of(to.units),
                                                 text.data(), size_of(text), &status);
        return {to.bytes.data(), ucnv_fromUChars(to_cnv.get(), to.bytes.data(), size_of(to.bytes),
                                                 to.units.data(), units, &status)};
    };
}

work icu_by_pivot(const std::string &from_charset, const std::string &to_charset) {
    return [from_cnv = open_icu(from_charset), to_cnv = open_icu(to_charset)](const std::string &text,
                                                                              scratch &to) -> result {
        UErrorCode status = U_ZERO_ERROR;
        const char *from_at = text.data();
        char *to_at = to.bytes.data();
        ucnv_convertEx(to_cnv.get(), from_cnv.get(), &to_at, to_at + to.bytes.size(), &from_at,
                       from_at + text.size(), nullptr, nullptr, nullptr, nullptr, true, true, &status);
        return {to.bytes.data(), to_at - to.bytes.data()};
    };
}

// Empty where iconv lacks one of the charsets.
work iconv_conversion(const std::string &from_charset, const std::string &to_charset) {
    const iconv_t opened = iconv_open(to_charset.c_str(), from_charset.c_str());
    if (opened == reinterpret_cast<iconv_t>(-1))
        return {};
    return [cd = std::shared_ptr<void>(opened, &iconv_close)](std::string &text, scratch &to) -> result {
        char *from_at = text.data();
        char *to_at = to.bytes.data();
        std::size_t from_left = text.size();
        std::size_t to_left = to.bytes.size();
        iconv(cd.get(), nullptr, nullptr, nullptr, nullptr);
        iconv(cd.get(), &from_at, &from_left, &to_at, &to_left);
        iconv(cd.get(), nullptr, nullptr, &to_at, &to_left);
        return {to.bytes.data(), to_at - to.bytes.data()};
    };
}

work into_string(const work &convert) {
    return [=](std::string &text, scratch &to) -> result {
        const result converted = convert(text, to);
        const auto length = static_cast<std::size_t>(converted.length);
        to.string.reset(static_cast<char *>(std::malloc(length + 1)));
        std::memcpy(to.string.get(), converted.at, length);
        to.string.get()[length] = '\0';
        return {to.string.get(), converted.length};
    };
}

template <auto Code>
result openssl_block(const std::string &text, scratch &to) {
    return {to.bytes.data(), Code(reinterpret_cast<unsigned char *>(to.bytes.data()),
                                  reinterpret_cast<const unsigned char *>(text.data()), size_of(text))};
}

int encode_lines(unsigned char *to, const unsigned char *from, int from_len) {
    thread_local const std::unique_ptr<EVP_ENCODE_CTX, decltype(&EVP_ENCODE_CTX_free)> context(
        EVP_ENCODE_CTX_new(), &EVP_ENCODE_CTX_free);
    int length = 0;
    int rest = 0;
    EVP_EncodeInit(context.get());
    EVP_EncodeUpdate(context.get(), to, &length, from, from_len);
    EVP_EncodeFinal(context.get(), to + length, &rest);
    return length + rest;
}

template <auto Start, GMimeContentEncoding Encoding>
result gmime_coding(const std::string &text, scratch &to) {
    GMimeEncoding state;
    Start(&state, Encoding);
    const std::size_t length = g_mime_encoding_flush(&state, text.data(), text.size(), to.bytes.data());
    return {to.bytes.data(), static_cast<std::ptrdiff_t>(length)};
}

} // namespace

void start_neighbours() {
    g_mime_init();
}

std::vector<subject> converting_neighbours(const std::string &from_charset, const std::string &to_charset) {
    std::vector<subject> neighbours = {{"ICU by UTF-16", icu_by_utf16(from_charset, to_charset)},
                                       {"ICU by convertEx", icu_by_pivot(from_charset, to_charset)}};
    if (const work convert = iconv_conversion(from_charset, to_charset))
        neighbours.push_back({"iconv", convert});
    return neighbours;
}

std::vector<subject> string_neighbours(const std::string &from_charset, const std::string &to_charset) {
    std::vector<subject> neighbours = converting_neighbours(from_charset, to_charset);
    for (subject &neighbour : neighbours)
        neighbour.run = into_string(neighbour.run);
    return neighbours;
}

work icu_decoding(const std::string &charset) {
    return [cnv = open_icu(charset)](const std::string &text, scratch &to) -> result {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUChars(cnv.get(), to.units.data(), size_of(to.units), text.data(), size_of(text), &status);
        return {text.data(), U_SUCCESS(status) ? size_of(text) : 0};
    };
}

work icu_comparison(const std::string &locale, const std::string &charset) {
    return [=](const std::string &texts, scratch &to) -> result {
        UErrorCode status = U_ZERO_ERROR;
        const icu_converter cnv = open_icu(charset);
        const std::unique_ptr<UCollator, decltype(&ucol_close)> order(ucol_open(locale.c_str(), &status),
                                                                      &ucol_close);
        ucol_setAttribute(order.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
        const char *second = texts.c_str() + std::strlen(texts.c_str()) + 1;
        char16_t *units = to.units.data();
        const std::int32_t length =
            ucnv_toUChars(cnv.get(), units, size_of(to.units), texts.c_str(), -1, &status);
        const std::int32_t second_length =
            ucnv_toUChars(cnv.get(), units + length, size_of(to.units) - length, second, -1, &status);
        return answer(ucol_strcoll(order.get(), units, length, units + length, second_length), to);
    };
}

std::vector<subject> base64_neighbours() {
    return {{"EVP_EncodeBlock", openssl_block<EVP_EncodeBlock>},
            {"EVP_EncodeUpdate", openssl_block<encode_lines>},
            {"GMime", gmime_coding<g_mime_encoding_init_encode, GMIME_CONTENT_ENCODING_BASE64>}};
}

work gmime_quoted_printable() {
    return gmime_coding<g_mime_encoding_init_encode, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE>;
}

std::string decode_quoted_printable(const std::string &text) {
    scratch to(text.size());
    return text_of(
        gmime_coding<g_mime_encoding_init_decode, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE>(text, to));
}

work gmime_header_encoding(const std::string &charset) {
    return [=](const std::string &text, scratch &to) -> result {
        to.string.reset(g_mime_utils_header_encode_text(nullptr, text.c_str(), charset.c_str()));
        return {to.string.get(), -1};
    };
}

work gmime_header_decoding() {
    return [](const std::string &text, scratch &to) -> result {
        to.string.reset(g_mime_utils_header_decode_text(nullptr, text.c_str()));
        return {to.string.get(), -1};
    };
}

work gmime_7bit_test() {
    return [](const std::string &text, scratch &to) -> result {
        auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
        return answer(!g_mime_utils_text_is_8bit(bytes, text.size()), to);
    };
}

} // namespace bench
