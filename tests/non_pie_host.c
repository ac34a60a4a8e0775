/* A host at a fixed address holds its own copy of the exported status word. What it stores there has to reach
   the library: from then on a conversion hands its input back. */

#include "zel.h"

#include <stdio.h>
#include <string.h>

static int converts_to(const char *expected) {
    char *result = ZEL_LocalToUTF8("caf\xE9", "iso-8859-1");
    const int equal = result && strcmp(result, expected) == 0;
    ZEL_Free(result);
    return equal;
}

int main(void) {
    const ZELConfig config = {0, 0, 0, "/nowhere"};
    ZEL_Initialize("/nowhere", &config);
    if (gf_ZELStatus != ZEL_STATUS_INITIALIZED || !converts_to("caf\xC3\xA9")) {
        fputs("the library does not convert\n", stderr);
        return 1;
    }
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    if (!converts_to("caf\xE9")) {
        fputs("the library does not hear the host\n", stderr);
        return 1;
    }
    return 0;
}
