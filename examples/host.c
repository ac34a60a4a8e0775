/* See host.h. Each pair of calls reads like the next one: ask with a negative size, allocate, ask again. */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

void start_library(void) {
    ZELConfig config = {0, 0, 0, getenv("ZEL_BUNDLES")};
    ZEL_Initialize(".", &config);
}

void stop(const char *what, const char *why) {
    fprintf(stderr, "%s: %s\n", what, why);
    exit(2);
}

char *new_buffer(int64_t size) {
    char *buffer = size < 0 ? NULL : malloc((size_t)size);
    if (!buffer)
        stop("memory", "there is none left");
    return buffer;
}

static char *copy_of(const char *text, size_t len) {
    char *copy = new_buffer((int64_t)len + 1);
    memcpy(copy, text, len);
    copy[len] = '\0';
    return copy;
}

char *read_file(const char *path, int32_t *len) {
    FILE *file = fopen(path, "rb");
    long size = file && fseek(file, 0, SEEK_END) == 0 ? ftell(file) : -1;
    if (size < 0 || size >= INT32_MAX)
        stop(path, "cannot be read");
    rewind(file);
    char *text = new_buffer(size + 1);
    *len = (int32_t)fread(text, 1, (size_t)size, file);
    text[*len] = '\0';
    fclose(file);
    return text;
}

void print_wire(const char *text, size_t len) {
    for (const char *byte = text; byte < text + len; ++byte) {
        if (*byte == '\n')
            printf("\n         ");
        else if ((*byte >= ' ' && *byte <= '~') || *byte == '\t')
            putchar(*byte);
        else if (*byte != '\r')
            printf("\\x%02X", (unsigned)*byte & 0xFF);
    }
}

void print_first_bytes(const char *text) {
    size_t len = strcspn(text, "\n");
    print_wire(text, len < 24 ? len : 24);
}

char *language_of(const char *path) {
    const char *slash = strrchr(path, '/');
    const char *name = slash ? slash + 1 : path;
    return copy_of(name, strcspn(name, "."));
}

char *convert(const char *from_charset, const char *to_charset, const char *text, int32_t len,
              int32_t *to_len) {
    int32_t size = ZEL_GetResultBufferSize(text, len, from_charset, to_charset);
    char *result = new_buffer((int64_t)size + 1);
    *to_len = ZEL_ConvertBuffer(from_charset, to_charset, text, len, result, size);
    result[*to_len] = '\0'; /* a text that just fills its buffer has no room for one */
    return result;
}

char *next_header(char **message, char **value) {
    char *header = *message, *end = header;
    do {
        end = strstr(end, "\r\n");
        if (!end)
            return NULL;
        end += 2;
    } while (*end == ' ' || *end == '\t');
    end[-2] = '\0';
    char *colon = strchr(header, ':');
    if (!colon)
        return NULL;
    *colon = '\0';
    *value = colon + 1 + strspn(colon + 1, " ");
    *message = end;
    return header;
}

char *header_to_utf8(const char *language, const char *wire) {
    char *value = copy_of(wire, strlen(wire)); /* decoding takes the folds out of its input */
    int32_t size = ZEL_InternetMessageHeaderToUTF8(language, value, NULL, -1) + 1;
    char *text = new_buffer(size);
    ZEL_InternetMessageHeaderToUTF8(language, value, text, size);
    free(value);
    return text;
}

char *header_to_wire(const char *language, const char *text) {
    char *value = copy_of(text, strlen(text)); /* encoding marks the end of a run in its input for a time */
    int32_t size = ZEL_UTF8ToInternetMessageHeader(language, value, NULL, -1);
    char *wire = new_buffer(size);
    int32_t len = ZEL_UTF8ToInternetMessageHeader(language, value, wire, size);
    if (len > 2 && wire[len - 1] == '\n') /* a word that just fills its line ends the line as well */
        wire[len - 2] = '\0';
    free(value);
    return wire;
}

int refused_charset(const char *language, const char *wire, char charset[33]) {
    const char *word = wire, *end;
    while ((word = strstr(word, "=?"))) {
        word += strlen("=?");
        snprintf(charset, 33, "%.*s", (int)strcspn(word, "*?"), word);
        if (!ZEL_IsInternetMessageKnownCharset(language, charset))
            return 1;
        word += strcspn(word, "?");
        end = strlen(word) < strlen("?Q?") ? NULL : strstr(word + strlen("?Q?"), "?=");
        if (!end)
            break;
        word = end + strlen("?=");
    }
    return 0;
}

char *parameter_to_utf8(const char *language, const char *value) {
    char nothing[1]; /* all that an empty value takes, and it takes that with a negative size too */
    int32_t size = ZEL_RFC2231ToLocal(language, value, "UTF-8", nothing, -1);
    char *text = new_buffer(size + 1);
    ZEL_RFC2231ToLocal(language, value, "UTF-8", text, size);
    return text;
}

char *parameter_to_wire(const char *language, const char *name, const char *text) {
    char nothing[1];
    int32_t size = ZEL_LocalToRFC2231(language, name, "UTF-8", text, nothing, -1);
    char *wire = new_buffer(size + 1);
    ZEL_LocalToRFC2231(language, name, "UTF-8", text, wire, size);
    return wire;
}
