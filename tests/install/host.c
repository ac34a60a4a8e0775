/* A host of an installed library: usage: host BUNDLES_PATH. With LANG=ja_JP.eucJP in its environment the
   installed bundle makes EUC-JP the local charset. */

#include <qorm.h>
#include <zel.h>

#include <stdio.h>
#include <string.h>

#ifdef __has_include
#if __has_include("zel/base/frame.h")
#error "hosts see headers that are the library's own"
#endif
#endif

int main(int argc, char **argv) {
    ZELConfig config = {0, 0, 0, NULL};
    char *text;
    int result;

    if (argc != 2)
        return 2;
    config.bundles_path = argv[1];
    ZEL_Initialize("/nowhere", &config);
    text = ZEL_LocalToUTF8("\xC6\xFC\xCB\xDC", NULL);
    result = text && strcmp(text, "\xE6\x97\xA5\xE6\x9C\xAC") == 0 ? 0 : 1;
    printf("%s\n", text ? text : service_errstr(0));
    ZEL_Free(text);
    return result;
}
