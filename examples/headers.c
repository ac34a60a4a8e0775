/* Reads the headers of message files off the wire into UTF-8 and puts them onto the wire again, as a mailer
 * that forwards or answers a message would. What was plain ASCII all along takes one line, all else three.
 *
 *     headers examples/messages/ja.iso-2022-jp.eml ... */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

static int holds_addresses(const char *name) {
    return !strcasecmp(name, "From") || !strcasecmp(name, "To") || !strcasecmp(name, "Cc");
}

static void print_encoded(const char *language, const char *text) {
    char *wire = header_to_wire(language, text);
    print_wire(wire, strlen(wire));
    free(wire);
}

/* Words stand for the names in front of the addresses; the addresses themselves are never encoded. */
static void print_encoded_names(const char *language, char *text) {
    while (*text) {
        char *name = text + strspn(text, ", \t"), *address = name + strcspn(name, "<");
        char *after = address + strcspn(address, ">");
        char *name_end = address;
        while (name_end > name && name_end[-1] == ' ')
            --name_end;
        print_wire(text, (size_t)(name - text));
        char kept = *name_end;
        *name_end = '\0';
        print_encoded(language, name);
        *name_end = kept;
        after += *after == '>';
        print_wire(name_end, (size_t)(after - name_end));
        text = after;
    }
}

static void show_header(const char *language, const char *name, const char *wire) {
    char *text = header_to_utf8(language, wire), charset[33];
    printf("%s: %s\n", name, text);
    if (strstr(wire, "=?") || !ZEL_IsASCIIString(text) || !ZEL_IsASCIIString(wire)) {
        printf("    was  ");
        print_wire(wire, strlen(wire));
        printf("\n    goes ");
        if (refused_charset(language, wire, charset))
            printf("as it came, for %s is not admitted for %s", charset, language);
        else if (holds_addresses(name))
            print_encoded_names(language, text);
        else
            print_encoded(language, text);
        printf("\n");
    }
    free(text);
}

int main(int argc, char **argv) {
    start_library();
    for (int i = 1; i < argc; ++i) {
        int32_t len;
        char *language = language_of(argv[i]), *message = read_file(argv[i], &len);
        char *rest = message, *name, *wire;
        printf("%s== %s, as mail in %s\n", i > 1 ? "\n" : "", argv[i], language);
        while ((name = next_header(&rest, &wire)))
            show_header(language, name, wire);
        free(message);
        free(language);
    }
    return 0;
}
