#include "message.h"

#include <gmime/gmime.h>
#include <zel.hpp>

namespace {

struct unref {
    void operator()(void *object) const { g_object_unref(object); }
};
template <class Object>
using owned = std::unique_ptr<Object, unref>;

std::string raw_header(GMimeObject *object, const char *name) {
    GMimeHeader *header = g_mime_header_list_get_header(g_mime_object_get_header_list(object), name);
    const char *value = header ? g_mime_header_get_raw_value(header) : nullptr;
    return value ? value : "";
}

// Old mail from Japan has neither encoded words nor labels, but its escape sequences tell.
bool is_bare_japanese(const std::string &bytes) {
    return bytes.find("\x1b$B") != std::string::npos || bytes.find("\x1b$@") != std::string::npos;
}

std::string read_line(const std::string &value) {
    return on_one_line(
        zel::read_header(is_bare_japanese(value) ? zel::read_body("iso-2022-jp", value) : value));
}

// The name before the first address, or the address. Encoded words are read last, as they may hold any mark.
std::string name_of(const std::string &from) {
    std::string name = from.substr(0, from.find('<'));
    name.erase(
        std::remove_if(name.begin(), name.end(), [](char byte) { return byte == '"' || byte == '\\'; }),
        name.end());
    name = read_line(name);
    return name.empty() ? read_line(from) : name;
}

std::optional<std::int64_t> read_time(const std::string &date) {
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> time(
        g_mime_utils_header_decode_date(date.c_str()), &g_date_time_unref);
    return time ? std::optional(g_date_time_to_unix(time.get())) : std::nullopt;
}

std::string content_of(GMimePart *part) {
    GMimeDataWrapper *content = g_mime_part_get_content(part);
    const owned<GMimeStream> stream(g_mime_stream_mem_new());
    if (content)
        g_mime_data_wrapper_write_to_stream(content, stream.get());
    const GByteArray *bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
    return std::string(reinterpret_cast<const char *>(bytes->data), bytes->len);
}

bool is_type(GMimeObject *object, const char *type, const char *subtype) {
    return object && g_mime_content_type_is_type(g_mime_object_get_content_type(object), type, subtype);
}

// Of a text in several forms the first is shown, which is the plainest, and of a long one the beginning.
part part_of(GMimeObject *object, GMimeObject *parent) {
    const std::string type = raw_header(object, "Content-Type"),
                      place = raw_header(object, "Content-Disposition");
    const std::string name = zel::read_parameter(place, "filename").value_or("");
    part read = {on_one_line(name.empty() ? zel::read_parameter(type, "name").value_or("") : name),
                 content_of(GMIME_PART(object)), std::nullopt};
    const bool is_other_form = is_type(parent, "multipart", "alternative") &&
                               g_mime_multipart_get_part(GMIME_MULTIPART(parent), 0) != object;
    const bool is_file = !read.name.empty() || g_mime_part_is_attachment(GMIME_PART(object));
    const std::string charset =
        is_bare_japanese(read.bytes) ? "iso-2022-jp" : zel::read_parameter(type, "charset").value_or("");
    if (is_type(object, "text", "*") && !is_file && !is_other_form)
        read.text = zel::read_body(charset, read.bytes.substr(0, 1 << 20));
    return read;
}

} // namespace

std::string on_one_line(std::string text) {
    for (char &byte : text)
        if (static_cast<unsigned char>(byte) < ' ' || byte == 0x7F)
            byte = ' ';
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    return text.erase(text.find_last_not_of(' ') + 1);
}

message read_message(const std::string &bytes) {
    const owned<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
    const owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    // As a part: a message would decode its addresses at once, in a way of GMime's own.
    const owned<GMimeObject> parsed(g_mime_parser_construct_part(parser.get(), nullptr));
    GMimeObject *object = parsed.get();
    message read;
    for (const char *name : {"From", "To", "Cc", "Subject", "Date", "Reply-To", "Message-ID", "References"})
        read.headers[name] = object ? read_line(raw_header(object, name)) : "";
    if (!object)
        return read;
    read.head = {name_of(raw_header(object, "From")), read.headers["Subject"],
                 read_time(raw_header(object, "Date"))};
    const std::unique_ptr<GMimePartIter, decltype(&g_mime_part_iter_free)> parts(g_mime_part_iter_new(object),
                                                                                 &g_mime_part_iter_free);
    for (bool is_more = g_mime_part_iter_is_valid(parts.get()); is_more && read.parts.size() < 1000;
         is_more = g_mime_part_iter_next(parts.get()))
        if (GMimeObject *part = g_mime_part_iter_get_current(parts.get()); GMIME_IS_PART(part))
            read.parts.push_back(part_of(part, g_mime_part_iter_get_parent(parts.get())));
    return read;
}
