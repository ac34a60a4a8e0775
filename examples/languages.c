/* Says for each language on its command line in which charset and transfer encoding its mail goes out, which
 * charset its web pages have, and which charsets its readers accept in a message.
 *
 *     languages ja de zh-TW */

#include "host.h"

#include <stdio.h>
#include <string.h>

static const char *const charsets[] = {
    "us-ascii",       "iso-8859-1", "iso-8859-2", "iso-8859-4",  "iso-8859-5",  "iso-8859-6",
    "iso-8859-7",     "iso-8859-8", "iso-8859-9", "iso-8859-15", "tis-620",     "windows-1252",
    "iso-2022-jp",    "Shift_JIS",  "euc-jp",     "euc-kr",      "iso-2022-kr", "gb2312",
    "ks_c_5601-1987", "hz-gb-2312", "big5",       "utf-7",       "utf-8"};

static void print_mail(const char *language, const char *what, const char *text) {
    const char *encoding = ZEL_InternetMessageContentTransferEncoding(language, text, 1);
    const char *for_8bit = ZEL_InternetMessageContentTransferEncoding(language, text, 0);
    printf("  %-12s%s, %s", what, ZEL_InternetMessageCharset(language, text), encoding);
    printf(strcmp(encoding, for_8bit) ? " or %s\n" : "\n", for_8bit);
}

static void print_language(const char *language) {
    LanguageID id = ZEL_GetIntLanguageID_strict(language);
    if (id < 0)
        printf("%s, which is none of the library's languages\n", language);
    else
        printf("%s, number %d%s\n", language, id, ZEL_IsDBCSLanguage(id) ? ", two bytes a character" : "");
    print_mail(language, "mail", "\xC3\xA4\xC3\xB6\xC3\xBC");
    print_mail(language, "plain ASCII", "abc");
    printf("  %-12s%s\n  %-11s", "web", ZEL_HTTPContentCharset(language), "accepted");
    for (size_t i = 0; i < sizeof charsets / sizeof *charsets; ++i)
        if (ZEL_IsInternetMessageKnownCharset(language, charsets[i]))
            printf(" %s", charsets[i]);
    printf("\n");
}

int main(int argc, char **argv) {
    start_library();
    if (argc < 2)
        printf("languages: %s\n", ZEL_GetAvailableLanguageList());
    for (int i = 1; i < argc; ++i)
        print_language(argv[i]);
    return 0;
}
