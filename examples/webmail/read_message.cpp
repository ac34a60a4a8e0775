#include "message.h"

#include <gmime/gmime.h>
#include <zel.hpp>

namespace {

template <class Object>
using owned = std::unique_ptr<Object, decltype(&g_object_unref)>;

std::string raw_header(GMimeObject *object, const char *name) {
    GMimeHeaderList *list = object ? g_mime_object_get_header_list(object) : nullptr;
    GMimeHeader *header = list ? g_mime_header_list_get_header(list, name) : nullptr;
    const char *value = header ? g_mime_header_get_raw_value(header) : nullptr;
    return value ? value : "";
}

// Old mail from Japan has neither encoded words nor labels, but its escape sequences tell.
std::string read_text(const std::string &bytes, const std::string &label = "") {
    const bool is_7bit = zel::is_ascii(bytes) && zel::known_charset(label).value_or("us-ascii") == "us-ascii";
    const bool is_japanese = is_7bit && std::min(bytes.find("\x1b$B"), bytes.find("\x1b$@")) < bytes.size();
    return zel::read_body(is_japanese ? "iso-2022-jp" : label, bytes);
}

std::vector<mailbox> read_mailboxes(const std::string &value) {
    std::vector<mailbox> found = mailboxes(read_text(value));
    for (mailbox &mailbox : found)
        mailbox = {on_one_line(zel::read_header(mailbox.name)), on_one_line(mailbox.place)};
    return found;
}

// A name with marks of the syntax of addresses stands in quotes.
std::string form_of(const std::vector<mailbox> &mailboxes) {
    std::string list;
    for (const auto &[name, place] : mailboxes) {
        const bool is_quoted = name.find_first_of(",;:<>@()[]\"\\") != name.npos;
        list += list.empty() ? "" : ", ";
        list += is_quoted ? '"' + replaced(replaced(name, "\\", "\\\\"), "\"", "\\\"") + '"' : name;
        list += name.empty() || place.empty() ? place : " <" + place + '>';
    }
    return list;
}

// A message inside of another is a file with all of its headers.
std::string content_of(GMimeObject *object) {
    const owned<GMimeStream> stream(g_mime_stream_mem_new(), &g_object_unref);
    if (GMIME_IS_MESSAGE_PART(object))
        g_mime_object_write_content_to_stream(object, nullptr, stream.get());
    else if (GMimeDataWrapper *content = g_mime_part_get_content(GMIME_PART(object)))
        g_mime_data_wrapper_write_to_stream(content, stream.get());
    const GByteArray *bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
    return std::string(reinterpret_cast<const char *>(bytes->data), bytes->len);
}

// A long text is shown as far as its beginning.
part part_of(GMimeObject *object, bool is_shown) {
    const std::string type = raw_header(object, "Content-Type"),
                      place = raw_header(object, "Content-Disposition"),
                      otherwise = GMIME_IS_MESSAGE_PART(object) ? "message.eml" : "",
                      name = zel::read_parameter(type, "name").value_or(otherwise);
    part read = {on_one_line(zel::read_parameter(place, "filename").value_or(name)), content_of(object),
                 std::nullopt, true};
    if (is_shown && read.name.empty() && GMIME_IS_TEXT_PART(object) &&
        !g_mime_part_is_attachment(GMIME_PART(object))) {
        const std::string text = read_text(read.bytes, zel::read_parameter(type, "charset").value_or(""));
        read.text = beginning(text, 1 << 20);
        read.is_file = read.text->size() < text.size();
    }
    return read;
}

// Of a text in several forms the first is shown, which is the plainest. What a message inside holds is shown
// too, but of a message inside of that nothing: it would be kept once a level.
void add_parts(std::vector<part> &parts, GMimeObject *object, bool is_shown, bool is_inside) {
    if (GMIME_IS_MULTIPART(object)) {
        GMimeMultipart *forms = GMIME_MULTIPART(object);
        const bool is_choice =
            g_mime_content_type_is_type(g_mime_object_get_content_type(object), "multipart", "alternative");
        for (int at = 0; at < g_mime_multipart_get_count(forms); ++at)
            add_parts(parts, g_mime_multipart_get_part(forms, at), is_shown && (at == 0 || !is_choice),
                      is_inside);
    } else if (object && parts.size() < 1000) {
        parts.push_back(part_of(object, is_shown));
        if (GMIME_IS_MESSAGE_PART(object) && !is_inside)
            if (GMimeMessage *inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(object)))
                add_parts(parts, g_mime_message_get_mime_part(inner), is_shown, true);
    }
}

} // namespace

std::string on_one_line(std::string text) {
    const auto is_control = [](unsigned char byte) { return byte < ' ' || byte == 0x7F; };
    std::replace_if(text.begin(), text.end(), is_control, ' ');
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    return text.erase(text.find_last_not_of(' ') + 1);
}

std::string replaced(std::string_view text, std::string_view old, std::string_view by) {
    std::string result;
    for (std::size_t at; (at = text.find(old)) != text.npos; text.remove_prefix(at + old.size()))
        result.append(text.substr(0, at)).append(by);
    return result.append(text);
}

std::string beginning(const std::string &text, std::size_t limit) {
    while (limit < text.size() && (text[limit] & 0xC0) == 0x80)
        --limit;
    return text.substr(0, limit);
}

// GMime would read encoded words as well, and follow groups in groups to the end of its stack.
std::vector<mailbox> mailboxes(const std::string &text) {
    constexpr char mark[] = "\xC2\x80";
    const std::string masked =
        std::count(text.begin(), text.end(), ':') < 100 ? replaced(text, "=?", mark) : "";
    const owned<InternetAddressList> list(internet_address_list_parse(nullptr, masked.c_str()),
                                          &g_object_unref);
    std::vector<mailbox> found;
    for (int at = 0; list && at < internet_address_list_length(list.get()); ++at) {
        InternetAddress *one = internet_address_list_get_address(list.get(), at);
        const char *name = internet_address_get_name(one), *place = nullptr; // of a group
        if (INTERNET_ADDRESS_IS_MAILBOX(one))
            place = internet_address_mailbox_get_idn_addr(INTERNET_ADDRESS_MAILBOX(one));
        found.push_back({replaced(name ? name : "", mark, "=?"), replaced(place ? place : "", mark, "=?")});
    }
    const std::size_t open = std::min(text.rfind('<'), text.size());
    if (found.empty()) // as of "[news] name <a@b.org>"
        found = {{text.substr(0, open), text.substr(open, text.find('>', open) - open).erase(0, 1)}};
    return found;
}

message read_message(const std::string &bytes) {
    const owned<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()),
                                    &g_object_unref);
    const owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()), &g_object_unref);
    // As a part: a message would decode its addresses at once, in a way of GMime's own.
    const owned<GMimeObject> parsed(g_mime_parser_construct_part(parser.get(), nullptr), &g_object_unref);
    const auto raw = [&](const char *name) { return raw_header(parsed.get(), name); };
    const std::vector<mailbox> from = read_mailboxes(raw("From")), to = read_mailboxes(raw("To"));
    message read;
    read.head.subject = on_one_line(zel::read_header(read_text(raw("Subject"))));
    if (GDateTime *time = g_mime_utils_header_decode_date(raw("Date").c_str())) {
        read.head.time = g_date_time_to_unix(time);
        g_date_time_unref(time);
    }
    read.head.sender = from[0].name.empty() ? from[0].place : from[0].name;
    read.receiver = form_of({to[0]});
    for (const char *name : {"Date", "Message-ID", "References"})
        read.headers[name] = raw(name);
    for (const char *name : {"From", "To", "Cc", "Reply-To"})
        read.headers[name] = form_of(read_mailboxes(raw(name)));
    add_parts(read.parts, parsed.get(), true, false);
    return read;
}
