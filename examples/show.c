/* Shows message files in UTF-8: the headers that a reader looks at, the date as the reader's language has it,
 * the text, and the names of the attachments.
 *
 *     show examples/messages/de.windows-1252.eml ...
 *
 * GMime finds the parts and undoes their transfer encodings; the library reads headers, names and text. It
 * leaves a header word in a charset that the language does not admit undecoded, and raw 8-bit bytes come out
 * as "?": there GMime is asked instead, and the line says so. */

#include "host.h"
#include "parameter.h"

#include <gmime/gmime.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char *raw_header(GMimeObject *object, const char *name) {
    GMimeHeader *header = g_mime_header_list_get_header(g_mime_object_get_header_list(object), name);
    return header ? g_mime_header_get_raw_value(header) : NULL;
}

static void print_header(const char *language, GMimeObject *message, const char *name) {
    const char *raw = raw_header(message, name);
    if (!raw)
        return;
    char refused[33];
    char *value = g_strstrip(g_strdup(raw)), *text = header_to_utf8(language, value);
    int is_refused = refused_charset(language, value, refused), is_raw = !ZEL_IsASCIIString(value);
    if (is_refused || is_raw) {
        free(text);
        text = g_mime_utils_header_decode_text(NULL, value);
    }
    printf("%-9s%s\n", name, text);
    if (is_refused)
        printf("         (by GMime: %s is not admitted for %s)\n", refused, language);
    else if (is_raw)
        printf("         (by GMime: raw 8-bit bytes)\n");
    g_free(value);
    free(text);
}

/* In the zone of the message, in the language and the manner of its reader. */
static void print_date(const char *language, GMimeMessage *message) {
    GDateTime *date = g_mime_message_get_date(message);
    if (!date)
        return;
    char *zone = g_date_time_format(date, "GMT%:z");
    char *text = ZEL_GenerateDateString(language, zone, (int32_t)g_date_time_to_unix(date), "UTF-8");
    printf("%-9s%s\n", "Date", text ? text : "");
    ZEL_Free(text);
    g_free(zone);
}

static void print_text(const char *language, GMimePart *part) {
    const char *charset = g_mime_object_get_content_type_parameter(GMIME_OBJECT(part), "charset");
    GMimeStream *memory = g_mime_stream_mem_new();
    g_mime_data_wrapper_write_to_stream(g_mime_part_get_content(part), memory);
    GByteArray *bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory));
    const char *from = (const char *)bytes->data;
    int32_t len = (int32_t)bytes->len;
    int32_t size = ZEL_InternetMessageBodyLocalToLocalLen(language, charset, 0, from, len, "UTF-8", NULL, -1);
    if (size < 0) {
        printf("\n(%s cannot be converted)\n", charset);
    } else {
        char *text = new_buffer((int64_t)size + 1);
        len = ZEL_InternetMessageBodyLocalToLocalLen(language, charset, 0, from, len, "UTF-8", text, size);
        printf("\n%.*s\n", len, text);
        free(text);
    }
    g_object_unref(memory);
}

static void print_part(const char *language, GMimeObject *object) {
    const char *disposition = raw_header(object, "Content-Disposition");
    char *name = disposition ? parameter_of(language, disposition, "filename") : NULL;
    if (name)
        printf("\n%-9s%s\n", "File", name);
    if (GMIME_IS_TEXT_PART(object))
        print_text(language, GMIME_PART(object));
    free(name);
}

static GMimeMessage *read_message(const char *path) {
    GMimeStream *file = g_mime_stream_file_open(path, "rb", NULL);
    GMimeParser *parser = file ? g_mime_parser_new_with_stream(file) : NULL;
    GMimeMessage *message = parser ? g_mime_parser_construct_message(parser, NULL) : NULL;
    if (!message)
        stop(path, "cannot be read as a message");
    g_object_unref(parser);
    g_object_unref(file);
    return message;
}

static void show(const char *path) {
    char *language = language_of(path);
    GMimeMessage *message = read_message(path);
    printf("== %s, as mail in %s\n", path, language);
    print_header(language, GMIME_OBJECT(message), "From");
    print_header(language, GMIME_OBJECT(message), "To");
    print_date(language, message);
    print_header(language, GMIME_OBJECT(message), "Subject");
    GMimePartIter *parts = g_mime_part_iter_new(GMIME_OBJECT(message));
    while (g_mime_part_iter_is_valid(parts)) {
        print_part(language, g_mime_part_iter_get_current(parts));
        g_mime_part_iter_next(parts);
    }
    g_mime_part_iter_free(parts);
    g_object_unref(message);
    free(language);
}

int main(int argc, char **argv) {
    start_library();
    g_mime_init();
    for (int i = 1; i < argc; ++i)
        show(argv[i]);
    return 0;
}
