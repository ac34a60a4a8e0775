/* Writes a complete message (RFC 5322) in the charset and transfer encoding that its language calls for:
 * encoded subject and sender's name, the body, and the same text once more as an attachment with a name of
 * its own.
 *
 *     compose ja SUBJECT SENDER FILE-NAME BODY > message.eml
 *
 * All arguments are in UTF-8. The library makes what stands in the headers and bodies; GMime puts the parts
 * together and leaves them alone, as each is already in its transfer encoding. */

#include "host.h"

#include <gmime/gmime.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* A line end inside a header would let the text that follows pass for a header of its own. */
static void refuse_line_ends(const char *what, const char *text) {
    if (strpbrk(text, "\r\n"))
        stop(what, "a line end is not allowed here");
}

static char *with_wire_line_ends(const char *text) {
    char *result = new_buffer(2 * (int64_t)strlen(text) + 1), *to = result;
    for (const char *from = text; *from; ++from) {
        if (*from == '\n' && (from == text || from[-1] != '\r'))
            *to++ = '\r';
        *to++ = *from;
    }
    *to = '\0';
    return result;
}

/* Writes a header of which GMime is to change nothing. */
static void set_header(GMimeObject *object, const char *name, const char *before, const char *value,
                       const char *after) {
    char *raw = g_strdup_printf(" %s%s%s\r\n", before, value, after);
    GMimeHeaderList *headers = g_mime_object_get_header_list(object);
    g_mime_header_list_set(headers, name, "", NULL);
    g_mime_header_set_raw_value(g_mime_header_list_get_header(headers, name), raw);
    g_free(raw);
}

/* Plain ASCII goes between quotation marks, as a name may hold what has a meaning in an address. */
static void set_sender(GMimeObject *message, const char *language, const char *name) {
    static const char address[] = " <sender@example.org>";
    char *value = ZEL_IsASCIIString(name) ? g_mime_utils_quote_string(name) : header_to_wire(language, name);
    set_header(message, "From", "", value, address);
    free(value);
}

static GMimeObject *new_part(const char *charset, const char *encoding, const char *bytes) {
    GMimePart *part = g_mime_part_new_with_type("text", "plain");
    GMimeContentEncoding undone = g_mime_content_encoding_from_string(encoding);
    GMimeStream *stream = g_mime_stream_mem_new_with_buffer(bytes, strlen(bytes));
    GMimeDataWrapper *content = g_mime_data_wrapper_new_with_stream(stream, undone);
    g_mime_object_set_content_type_parameter(GMIME_OBJECT(part), "charset", charset);
    g_mime_part_set_content_encoding(part, undone);
    g_mime_part_set_content(part, content);
    g_object_unref(content);
    g_object_unref(stream);
    return GMIME_OBJECT(part);
}

/* The library says "7bit" also of the languages whose 8-bit text it leaves in plain bytes; a mailer must not.
 */
static const char *encoding_of(const char *language, const char *body, const char *wire) {
    const char *encoding = ZEL_InternetMessageContentTransferEncoding(language, body, 1);
    return strcmp(encoding, "7bit") == 0 && !ZEL_IsASCIIString(wire) ? "8bit" : encoding;
}

static GMimeObject *new_body(const char *language, const char *body) {
    int32_t size = ZEL_UTF8ToInternetMessageBody(language, body, NULL, -1, 1);
    if (size < 0)
        stop(language, size == -1 ? "the body is empty" : "the library does not know this language");
    char *wire = new_buffer(size);
    ZEL_UTF8ToInternetMessageBody(language, body, wire, size, 1);
    GMimeObject *part =
        new_part(ZEL_InternetMessageCharset(language, body), encoding_of(language, body, wire), wire);
    free(wire);
    return part;
}

static GMimeObject *new_attachment(const char *language, const char *name, const char *text) {
    int32_t len = (int32_t)strlen(text);
    int32_t size = ZEL_ApplyBase64Encoding(text, len, NULL, -1);
    char *base64 = new_buffer(size);
    ZEL_ApplyBase64Encoding(text, len, base64, size);
    GMimeObject *part = new_part("utf-8", "base64", base64);
    char *parameter = parameter_to_wire(language, "filename", name);
    set_header(part, "Content-Disposition", "attachment;\r\n", parameter, "");
    free(parameter);
    free(base64);
    return part;
}

static void add_part(GMimeMultipart *parts, GMimeObject *part) {
    g_mime_multipart_add(parts, part);
    g_object_unref(part);
}

static GMimeMessage *new_message(const char *language, const char *subject, const char *sender) {
    GMimeMessage *message = g_mime_message_new(TRUE);
    GDateTime *now = g_date_time_new_now_local();
    char *id = g_mime_utils_generate_message_id("example.org"), *wire = header_to_wire(language, subject);
    set_sender(GMIME_OBJECT(message), language, sender);
    set_header(GMIME_OBJECT(message), "To", "", "reader@example.com", "");
    set_header(GMIME_OBJECT(message), "Subject", "", wire, "");
    g_mime_message_set_date(message, now);
    g_mime_message_set_message_id(message, id);
    g_date_time_unref(now);
    g_free(id);
    free(wire);
    return message;
}

static int write_message(GMimeMessage *message) {
    GMimeStream *output = g_mime_stream_pipe_new(1);
    GMimeFormatOptions *format = g_mime_format_options_new();
    g_mime_format_options_set_newline_format(format, GMIME_NEWLINE_FORMAT_DOS);
    int written = g_mime_object_write_to_stream(GMIME_OBJECT(message), format, output) > 0;
    g_mime_format_options_free(format);
    g_object_unref(output);
    return written;
}

int main(int argc, char **argv) {
    if (argc != 6)
        stop("compose", "give a language, a subject, the sender's name, a file name and a body");
    const char *language = argv[1], *subject = argv[2], *sender = argv[3], *file_name = argv[4];
    refuse_line_ends("subject", subject);
    refuse_line_ends("sender's name", sender);
    if (!*file_name)
        stop("file name", "an empty one has no form on the wire");
    start_library();
    g_mime_init();
    char *body = with_wire_line_ends(argv[5]);
    GMimeMessage *message = new_message(language, subject, sender);
    GMimeMultipart *parts = g_mime_multipart_new_with_subtype("mixed");
    add_part(parts, new_body(language, body));
    add_part(parts, new_attachment(language, file_name, body));
    g_mime_message_set_mime_part(message, GMIME_OBJECT(parts));
    int written = write_message(message);
    g_object_unref(parts);
    g_object_unref(message);
    free(body);
    return written ? 0 : 1;
}
