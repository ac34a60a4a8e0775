/* Shows the direct converters, which take one charset's bytes to another's with no UTF-16 in between: each
 * one on the sample text of its charset. Those that keep every character are held against ICU; the two
 * between Big5 and GB 2312 also change traditional to simplified characters or back, as the reader of the
 * other charset writes them.
 *
 *     direct examples/texts */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef struct Route {
    const char *name;
    int32_t (*convert)(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size);
    const char *language, *from_charset, *to_charset;
    int keeps_characters;
} Route;

static const Route routes[] = {
    {"sjis2jis", sjis2jis, "ja", "Shift_JIS", "iso-2022-jp", 1},
    {"jis2sjis", jis2sjis, "ja", "iso-2022-jp", "Shift_JIS", 1},
    {"eucjp2jis", eucjp2jis, "ja", "euc-jp", "iso-2022-jp", 1},
    {"jis2eucjp", jis2eucjp, "ja", "iso-2022-jp", "euc-jp", 1},
    {"iso2022kr2euckr", iso2022kr2euckr, "ko", "iso-2022-kr", "euc-kr", 1},
    {"hz2gb", hz2gb, "zh-CN", "hz-gb-2312", "gb2312", 1},
    {"big2gb", big2gb, "zh-TW", "big5", "gb2312", 0},
    {"gb2big5", gb2big5, "zh-CN", "gb2312", "big5", 0},
};

static void print_first_lines(const char *charset, const char *bytes, const char *utf8) {
    printf("  %-13s%.*s\n         ", charset, (int)strcspn(utf8, "\n"), utf8);
    print_first_bytes(bytes);
    printf("\n");
}

static int show(const Route *route, const char *directory) {
    char path[1024];
    snprintf(path, sizeof path, "%s/%s.%s.txt", directory, route->language, route->from_charset);
    int32_t len, to_len, utf8_len, to_utf8_len;
    char *from = read_file(path, &len);
    char *utf8 = convert(route->from_charset, "UTF-8", from, len, &utf8_len);

    int32_t size = ZEL_GetResultBufferSize(from, len, route->from_charset, route->to_charset);
    char *to = new_buffer(size);
    to_len = route->convert(from, len, to, size);
    char *to_utf8 = convert(route->to_charset, "UTF-8", to, to_len, &to_utf8_len);

    int right = !route->keeps_characters || strcmp(utf8, to_utf8) == 0;
    printf("%s: %d bytes to %d%s\n", route->name, len, to_len,
           !route->keeps_characters ? ""
           : right                  ? ", the same text"
                                    : ", ANOTHER TEXT");
    print_first_lines(route->from_charset, from, utf8);
    print_first_lines(route->to_charset, to, to_utf8);
    free(from);
    free(utf8);
    free(to);
    free(to_utf8);
    return right;
}

int main(int argc, char **argv) {
    if (argc != 2)
        stop("direct", "give the directory of the sample texts");
    start_library();
    int right = 1;
    for (size_t i = 0; i < sizeof routes / sizeof *routes; ++i)
        right &= show(&routes[i], argv[1]);
    return right ? 0 : 1;
}
