// The pair of charsets is looked up once for a text. From there the text goes the first of these ways that
// serves it: the copy (one charset, or pass-through), a route of the library's own, the fast path, and ICU by
// way of UTF-16 in a scratch buffer, on converters that are borrowed for the call.
//
// Invariant: whatever fails, the caller gets the copy of the input, or is told that ICU knows no such pair.

#include "zel/conversion/buffer_conversion.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/utf16_text.h"
#include "zel/conversion/converter_cache.h"
#include "zel/conversion/routes.h"

namespace zel {
namespace {

std::string_view resolve(const char *buf, std::int32_t len) {
    return {buf,
            len < 0 ? static_cast<std::size_t>(saturate(std::strlen(buf))) : static_cast<std::size_t>(len)};
}

std::int32_t copy(std::string_view text, char *to_buf, std::int32_t to_size) {
    output to = output_to(to_buf, to_size);
    put_some(to, text);
    return finish(to);
}

std::int32_t estimate_size(const EncodingConverter *converter, std::size_t bytes) {
    if (!converter)
        return saturate(bytes + 1);
    const std::uint64_t units =
        std::max<std::uint64_t>(bytes / static_cast<std::size_t>(converter->min_char_size), 1);
    const std::uint64_t estimate = units * static_cast<std::uint64_t>(converter->max_char_size);
    return saturate((estimate ? estimate : bytes) + 1);
}

utf16_text take_in(const EncodingConverter &converter, std::string_view text) {
    return to_utf16(converter.from_cnv.get(), converter.min_char_size, text);
}

std::int32_t from_utf16(const EncodingConverter &converter, const utf16_text &text, char *to_buf,
                        std::int32_t to_size, UErrorCode &status) {
    return ucnv_fromUChars(converter.to_cnv.get(), to_buf, to_size, text.units.get(), text.length, &status);
}

std::int32_t convert_by_icu(const EncodingConverter &converter, std::string_view text, char *to_buf,
                            std::int32_t to_size) {
    const utf16_text wide = take_in(converter, text);
    if (!wide.units)
        return copy(text, to_buf, to_size);
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = from_utf16(converter, wide, to_buf, to_size, status);
    return U_FAILURE(status) ? copy(text, to_buf, to_size) : length;
}

// An output that only counts takes the length that ICU would have needed.
bool put_utf16(output &to, const EncodingConverter &converter, const utf16_text &wide,
               std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = from_utf16(converter, wide, to.start ? to.start + to.length : nullptr,
                                           to.start ? saturate(room_left(to)) : 0, status);
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR)
        return put(to, text);
    if (!fits(to, static_cast<std::size_t>(length)))
        return false;
    to.length += static_cast<std::size_t>(length);
    return true;
}

std::int32_t length_of(const EncodingConverter &converter, const utf16_text &wide, std::int32_t units) {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_fromUChars(converter.to_cnv.get(), nullptr, 0, wide.units.get(), units, &status);
}

// The longest beginning of the text that fits, found by halving, as each character may take another size.
void put_fitting_utf16(output &to, const EncodingConverter &converter, utf16_text &wide) {
    const std::int32_t room = saturate(room_left(to));
    std::int32_t fitting = 0;
    for (std::int32_t beyond = wide.length; beyond - fitting > 1;) {
        const std::int32_t middle = fitting + (beyond - fitting) / 2;
        (length_of(converter, wide, middle) <= room ? fitting : beyond) = middle;
    }
    wide.length = fitting && U16_IS_LEAD(wide.units.get()[fitting - 1]) ? fitting - 1 : fitting;
    put_utf16(to, converter, wide, {});
}

std::optional<bool> put_fast(output &to, const EncodingConverter *pair, std::string_view text) {
    if (!pair || !to.start)
        return std::nullopt;
    std::int32_t length = 0;
    const std::int32_t room = saturate(room_left(to));
    const status answer = convert(pair->path, text, to.start + to.length, room, length);
    if (answer == status::needs_icu)
        return std::nullopt;
    to.length += answer == status::done ? static_cast<std::size_t>(length) : 0;
    return answer == status::done;
}

// The pair's table or the identity of ASCII instead of ICU, where they decide.
std::optional<std::int32_t> convert_fast(const EncodingConverter *pair, std::string_view text, char *to_buf,
                                         std::int32_t to_size) {
    std::int32_t length = 0;
    switch (pair ? convert(pair->path, text, to_buf, to_size, length) : status::needs_icu) {
    case status::done:
        return length;
    case status::full:
        return copy(text, to_buf, to_size);
    default:
        return std::nullopt;
    }
}

// A record whose converters are the caller's. The text that they will convert counts towards the pair's
// table.
lent_converter borrow_for(const charset_pair &pair, std::string_view text) {
    if (pair.cached)
        note_conversion(pair.cached->path, text.size());
    return borrow_converter(pair.from_charset, pair.to_charset);
}

// Nothing where ICU has no converter for the pair.
std::optional<std::int32_t> borrow_and_convert(const charset_pair &pair, std::string_view text, char *to_buf,
                                               std::int32_t to_size) {
    const lent_converter converter = borrow_for(pair, text);
    if (!converter)
        return std::nullopt;
    return convert_by_icu(*converter, text, to_buf, to_size);
}

// What a thread looked up last, it mostly looks up again. It is a pair of the cache that no route of
// scope::buffers serves; such a record lives until the stop.
thread_local EncodingConverter *last_pair = nullptr;

bool is_last_pair(const char *from_charset, const char *to_charset) {
    return last_pair && std::strcmp(last_pair->from_name.get(), from_charset) == 0 &&
           std::strcmp(last_pair->to_name.get(), to_charset) == 0;
}

// Of a library that converts, and of names that are not those of the thread's last pair.
charset_pair look_up_anew(const char *from_charset, const char *to_charset) {
    if (same_name(from_charset, to_charset))
        return {from_charset, to_charset, true, nullptr, nullptr};
    if (const route *direct = find_route(scope::buffers, from_charset, to_charset))
        return {from_charset, to_charset, false, direct, nullptr};
    EncodingConverter *found = find_pair(from_charset, to_charset);
    if (found)
        last_pair = found;
    return {from_charset, to_charset, false, nullptr, found};
}

} // namespace

charset_pair look_up(const char *from_charset, const char *to_charset) {
    require_started();
    if (passes_through())
        return {from_charset, to_charset, true, nullptr, nullptr};
    if (is_last_pair(from_charset, to_charset))
        return {from_charset, to_charset, false, nullptr, last_pair};
    return look_up_anew(from_charset, to_charset);
}

bool has_converter(const charset_pair &pair) {
    return pair.cached || borrow_converter(pair.from_charset, pair.to_charset);
}

bool open_pair(charset_pair &pair) {
    if (!pair.cached && borrow_converter(pair.from_charset, pair.to_charset))
        pair.cached = find_pair(pair.from_charset, pair.to_charset);
    return pair.cached;
}

std::int32_t result_size(const charset_pair &pair, std::size_t bytes) {
    if (pair.same)
        return saturate(bytes + 1);
    const std::uint64_t growth =
        pair.cached ? pair.cached->growth : growth_factor(pair.from_charset, pair.to_charset);
    if (growth)
        return saturate(bytes * growth + 1);
    if (pair.cached)
        return estimate_size(pair.cached, bytes);
    return estimate_size(borrow_converter(pair.from_charset, pair.to_charset).get(), bytes);
}

std::optional<std::int32_t> convert_buffer(const charset_pair &pair, std::string_view text, char *to_buf,
                                           std::int32_t to_size) {
    if (pair.same)
        return copy(text, to_buf, to_size);
    if (pair.direct) {
        output to = output_to(to_buf, to_size);
        pair.direct->convert(input_from(text), to);
        return finish(to);
    }
    if (const auto length = convert_fast(pair.cached, text, to_buf, to_size))
        return length;
    return borrow_and_convert(pair, text, to_buf, to_size);
}

std::int32_t convert_or_copy(const charset_pair &pair, std::string_view text, char *to_buf,
                             std::int32_t to_size) {
    if (const auto length = convert_buffer(pair, text, to_buf, to_size))
        return *length;
    return copy(text, to_buf, to_size);
}

bool put_converted(output &to, const charset_pair &pair, std::string_view text) {
    if (text.empty() || pair.same)
        return put(to, text);
    if (pair.direct)
        return put_whole(to, *pair.direct->convert, input_from(text));
    if (const auto fits = put_fast(to, pair.cached, text))
        return *fits;
    const lent_converter converter = borrow_for(pair, text);
    const utf16_text wide = converter ? take_in(*converter, text) : utf16_text{};
    return wide.units ? put_utf16(to, *converter, wide, text) : put(to, text);
}

bool put_some_converted(output &to, const charset_pair &pair, std::string_view text) {
    if (put_converted(to, pair, text))
        return true;
    if (pair.same)
        return put_some(to, text);
    if (pair.direct) {
        pair.direct->convert(input_from(text), to);
        return false;
    }
    const lent_converter converter = borrow_for(pair, text);
    utf16_text wide = converter ? take_in(*converter, text) : utf16_text{};
    if (!wide.units)
        return put_some(to, text);
    put_fitting_utf16(to, *converter, wide);
    return false;
}

converted_text convert_text(const charset_pair &pair, std::string_view text) {
    for (std::uint64_t size = static_cast<std::uint64_t>(result_size(pair, text.size())) + 1;;) {
        converted_text converted = {allocate<char>(size), 0};
        output to = output_to(converted.bytes.get(), saturate(size));
        if (put_converted(to, pair, text) || !converted.bytes) {
            converted.length = finish(to);
            return converted;
        }
        // The estimate is no guarantee: escape sequences around short runs can need more.
        output counted = counting_output();
        put_converted(counted, pair, text);
        size = counted.length + 1;
    }
}

} // namespace zel

using namespace zel;

int32_t ZEL_GetResultBufferSize(const char *from_buf, int32_t from_len, const char *from_charset,
                                const char *to_charset) {
    require_started();
    if (!from_buf)
        fail_assertion("from_buf!=NULL", "zel");
    if (from_len == 0)
        return 1;
    return result_size(look_up(from_charset, to_charset), resolve(from_buf, from_len).size());
}

int32_t ZEL_ConvertBuffer(const char *from_charset, const char *to_charset, const char *from_buf,
                          int32_t from_len, char *to_buf, int32_t to_size) {
    require_started();
    if (from_len == 0)
        return copy({}, to_buf, to_size);
    const std::string_view text = resolve(from_buf, from_len);
    if (passes_through())
        return copy(text, to_buf, to_size);
    if (!is_last_pair(from_charset, to_charset))
        return convert_buffer(look_up_anew(from_charset, to_charset), text, to_buf, to_size).value_or(0);
    // The commonest call goes without a charset_pair: to fill one takes a twentieth of the time of a line.
    if (const auto length = convert_fast(last_pair, text, to_buf, to_size))
        return *length;
    const charset_pair pair = {from_charset, to_charset, false, nullptr, last_pair};
    return borrow_and_convert(pair, text, to_buf, to_size).value_or(0);
}

namespace {

char *convert_element(const char *from_charset, const char *to_charset, std::string_view text) {
    const charset_pair pair = look_up(from_charset, to_charset);
    const std::uint64_t estimate =
        text.empty() ? 1 : static_cast<std::uint64_t>(result_size(pair, text.size()));
    const std::int32_t size = saturate(estimate + 1);
    // ICU may fill all of size, and a string is terminated even then.
    heap_string converted(static_cast<char *>(std::malloc(static_cast<std::size_t>(size) + 1)));
    if (converted)
        converted.get()[convert_or_copy(pair, text, converted.get(), size)] = '\0';
    return converted.release();
}

} // namespace

void ZEL_ConvertBufferArray(const char *from_charset, const char *to_charset, const char *const *from_bufs,
                            int32_t count, char **to_bufs) {
    if (!from_bufs || !to_bufs)
        return;
    for (int32_t i = 0; i < count; ++i)
        to_bufs[i] =
            from_bufs[i] ? convert_element(from_charset, to_charset, resolve(from_bufs[i], -1)) : nullptr;
}
