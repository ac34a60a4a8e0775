// vCard 2.1 values: the text in the language's web charset, as quoted-printable. The property name and its
// parameters are the host's.
//
// Invariant: the result is a fresh string; what cannot be converted goes out as a copy, neither converted nor
// encoded.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/input.h"
#include "zel/base/output.h"
#include "zel/codec/quoted_printable.h"
#include "zel/conversion/converter_cache.h"
#include "zel/conversion/string_conversion.h"
#include "zel/policy/charset_policy.h"

namespace zel {
namespace {

heap_string encode(std::string_view text) {
    output counted = counting_output();
    mime_encode_qp_src(text, counted, false, nullptr);
    const std::uint64_t size = counted.length + 1;
    heap_string encoded = allocate<char>(size);
    output to = output_to(encoded.get(), saturate(size));
    mime_encode_qp_src(text, to, false, nullptr);
    finish(to);
    return encoded;
}

heap_string convert(const char *text, const char *from_charset, const char *to_charset) {
    if (!borrow_converter(from_charset, to_charset))
        return nullptr;
    return local_to_local(text, from_charset, to_charset);
}

} // namespace
} // namespace zel

using namespace zel;

char *ZEL_LocalToVCard21(const char *language, const char *from_charset, const char *text) {
    if (!text)
        return nullptr;
    if (!*text || !has_text(from_charset))
        return duplicate(text).release();
    require_started();
    const char *charset = http_charset(language);
    if (same_name(from_charset, charset))
        return encode(text).release();
    const heap_string converted = convert(text, from_charset, charset);
    return (converted ? encode(converted.get()) : duplicate(text)).release();
}
