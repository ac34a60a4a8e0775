/* Prints one moment as readers in several places have it: zone by zone, locale by locale. ICU does not know
 * the zones of this host's own, which begin with "Host/"; for them the library asks the procedure below.
 *
 *     dates 1719450900 Asia/Tokyo ja en_US ... */

#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* May be called by several threads at once, and fills all three results whatever the zone. */
static void find_zone(const char *zone, int32_t time, int32_t *hours, int32_t *minutes, char *sign) {
    int in_india = strcmp(zone, "Host/India") == 0;
    (void)time; /* no zone of this host has a summer time */
    *sign = in_india ? '+' : '-';
    *hours = 5;
    *minutes = in_india ? 30 : 0;
}

int main(int argc, char **argv) {
    if (argc < 4)
        stop("dates", "give the seconds since 1970, a zone and locales");
    start_library();
    ZEL_SetCustomTimeZoneProc(find_zone);
    int32_t time = (int32_t)strtol(argv[1], NULL, 10);
    for (int i = 3; i < argc; ++i) {
        char *date = ZEL_GenerateDateString(argv[i], argv[2], time, "UTF-8");
        printf("%-6s %s\n", argv[i], date ? date : "cannot be said");
        ZEL_Free(date);
    }
    return 0;
}
