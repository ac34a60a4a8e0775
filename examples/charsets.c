/* Brings text files from their charset to UTF-8 and back, and mailbox names to the form that IMAP gives them
 * and back. Shows both forms, and fails if a file or a name does not come back as the same bytes.
 *
 *     charsets examples/texts/de.iso-8859-1.txt ...
 *
 * A file's charset stands in its name: "fr.iso-8859-15.txt". */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char *const mailboxes[] = {"Entwürfe", "Éléments envoyés", "Αρχείο/Παλιά", "Отправленные",
                                        "送信済み", "보낸 편지함",      "垃圾邮件",     "R&D"};

static char *charset_of(const char *path) {
    const char *slash = strrchr(path, '/');
    const char *dot = strchr(slash ? slash : path, '.');
    char *charset = strdup(dot ? dot + 1 : "");
    char *ending = strrchr(charset, '.');
    if (!ending)
        stop(path, "has no charset in its name");
    *ending = '\0';
    return charset;
}

static int same_bytes(const char *first, int32_t first_len, const char *second, int32_t second_len) {
    return first_len == second_len && memcmp(first, second, (size_t)first_len) == 0;
}

static int text_comes_back(const char *path) {
    int32_t len, utf8_len, back_len;
    char *charset = charset_of(path), *language = language_of(path), *text = read_file(path, &len);
    if (!ZEL_EncodingConverterExists(charset, "UTF-8"))
        stop(charset, "is no charset that can be converted");
    char *utf8 = convert(charset, "UTF-8", text, len, &utf8_len);
    char *back = convert("UTF-8", charset, utf8, utf8_len, &back_len);
    int same = same_bytes(text, len, back, back_len);

    printf("%-6s%-14s%4d bytes, %4d in UTF-8, and back: %s\n      ", language, charset, len, utf8_len,
           same ? "the same" : "DIFFERENT");
    print_first_bytes(text);
    printf("\n      %.*s\n", (int)strcspn(utf8, "\n"), utf8);
    free(charset);
    free(language);
    free(text);
    free(utf8);
    free(back);
    return same;
}

static int mailbox_comes_back(const char *name) {
    char *wire = ZEL_LocalToMUTF7(name, "UTF-8");
    char *back = ZEL_MUTF7ToLocal(wire, "UTF-8");
    int same = strcmp(name, back) == 0;
    printf("      %-32s %s%s\n", wire, back, same ? "" : "  DIFFERENT");
    ZEL_Free(wire);
    ZEL_Free(back);
    return same;
}

int main(int argc, char **argv) {
    int same = 1;
    start_library();
    for (int i = 1; i < argc; ++i)
        same &= text_comes_back(argv[i]);
    printf("Mailbox names, on the wire and in UTF-8\n");
    for (size_t i = 0; i < sizeof mailboxes / sizeof *mailboxes; ++i)
        same &= mailbox_comes_back(mailboxes[i]);
    return same ? 0 : 1;
}
