/* Sorts the lines of its standard input, in UTF-8, as a reader of the given locale expects them: in Swedish
 * "Ä" comes after "Z", in German beside "A".
 *
 *     sort sv < subjects */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char *locale;

static int compare(const void *first, const void *second) {
    return ZEL_CompareStrings(locale, "UTF-8", *(char *const *)first, *(char *const *)second);
}

int main(int argc, char **argv) {
    static char *lines[1000];
    static char line[1000];
    size_t count = 0;
    if (argc != 2)
        stop("sort", "give a locale");
    locale = argv[1];
    start_library();
    while (count < sizeof lines / sizeof *lines && fgets(line, sizeof line, stdin)) {
        line[strcspn(line, "\n")] = '\0';
        lines[count++] = strdup(line);
    }
    qsort(lines, count, sizeof *lines, compare);
    for (size_t i = 0; i < count; ++i) {
        printf("%s\n", lines[i]);
        free(lines[i]);
    }
    return 0;
}
