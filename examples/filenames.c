/* Finds the attachments of message files, brings their names to UTF-8 and shows how the library writes the
 * same name for the language of the message (RFC 2231).
 *
 *     filenames examples/messages/fr.attachment.eml ... */

#include "host.h"
#include "parameter.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void show_name(const char *language, const char *disposition) {
    char *name = parameter_of(language, disposition, "filename");
    if (!name)
        return;
    char *wire = parameter_to_wire(language, "filename", name);
    printf("%s\n    was  ", name);
    print_wire(disposition, strlen(disposition));
    printf("\n    goes attachment;\n         ");
    print_wire(wire, strlen(wire));
    printf("\n");
    free(wire);
    free(name);
}

int main(int argc, char **argv) {
    start_library();
    for (int i = 1; i < argc; ++i) {
        int32_t len;
        char *language = language_of(argv[i]), *message = read_file(argv[i], &len), *disposition;
        for (char *at = message; (at = strstr(at, "\r\nContent-Disposition:"));) {
            at += strlen("\r\n");
            if (!next_header(&at, &disposition))
                break;
            show_name(language, disposition);
        }
        free(message);
        free(language);
    }
    return 0;
}
