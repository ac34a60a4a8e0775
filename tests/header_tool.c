/* Does what a line on its input asks for, "encode-header LANGUAGE HEX" and so on, and writes the result in
 * hexadecimal digits, a line each: the way for tests in another language to reach the library. UTF-8 is the
 * charset on this side of the wire. */

#include "zel.h"

#include <stdio.h>
#include <string.h>

enum { capacity = 1 << 16 };

typedef int32_t operation(const char *language, char *text, char *to_buf, int32_t to_size);

static int32_t encode_body(const char *language, char *text, char *to_buf, int32_t to_size) {
    return ZEL_UTF8ToInternetMessageBody(language, text, to_buf, to_size, 1);
}

static int32_t decode_body(const char *language, char *text, char *to_buf, int32_t to_size) {
    return ZEL_InternetMessageBodyToLocal(language, 0, text, "UTF-8", to_buf, to_size);
}

static const struct {
    const char *name;
    operation *run;
} operations[] = {{"encode-header", ZEL_UTF8ToInternetMessageHeader},
                  {"decode-header", ZEL_InternetMessageHeaderToUTF8},
                  {"encode-body", encode_body},
                  {"decode-body", decode_body}};

static void from_hex(const char *digits, char *text) {
    unsigned byte;
    for (; sscanf(digits, "%2x", &byte) == 1; digits += 2)
        *text++ = (char)byte;
    *text = '\0';
}

int main(void) {
    static char digits[2 * capacity], text[capacity], result[capacity];
    char name[32], language[32];
    if (ZEL_Initialize(".", NULL) != 0)
        return 1;
    while (scanf("%31s %31s %131071s", name, language, digits) == 3) {
        from_hex(digits, text);
        for (size_t i = 0; i < sizeof operations / sizeof *operations; ++i)
            if (strcmp(operations[i].name, name) == 0)
                operations[i].run(language, text, result, capacity);
        for (const char *at = result; *at; ++at)
            printf("%02x", (unsigned char)*at);
        puts("");
    }
    return 0;
}
