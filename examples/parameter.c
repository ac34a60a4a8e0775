/* See parameter.h. RFC 2231 marks with a star behind the number which parts are percent-encoded
 * (section 4.1); in the others a "%" stands for itself, so it is encoded as the parts are joined, and so is a
 * "'" before the charset. */

#include "parameter.h"
#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

/* What stands behind "name=", with the quotation marks if there are any. */
static const char *find_value(const char *header_value, const char *key) {
    size_t key_len = strlen(key);
    int quoted = 0;
    for (const char *at = header_value; *at; ++at) {
        quoted ^= *at == '"';
        if (!quoted && strchr("; \t\n", *at) && strncasecmp(at + 1, key, key_len) == 0 &&
            at[1 + key_len] == '=')
            return at + 1 + key_len + 1;
    }
    return NULL;
}

static size_t value_len(const char *value) {
    return *value == '"' ? strcspn(value + 1, "\"") : strcspn(value, "; \t\r\n");
}

static char *append(char *to, const char *value, const char *to_escape) {
    const char *from = value + (*value == '"');
    for (const char *end = from + value_len(value); from < end; ++from)
        to += sprintf(to, strchr(to_escape, *from) ? "%%%02X" : "%c", (unsigned)*from & 0xFF);
    return to;
}

char *join_parameter(const char *header_value, const char *name) {
    char key[80];
    char *joined = new_buffer(3 * (int64_t)strlen(header_value) + 1), *end = joined;
    snprintf(key, sizeof key, "%s*", name);
    const char *value = find_value(header_value, key);
    if (value)
        end = append(end, value, "");
    for (int number = 0; number == 0 || value; ++number) {
        snprintf(key, sizeof key, "%s*%d*", name, number);
        if ((value = find_value(header_value, key))) {
            end = append(end, value, "");
            continue;
        }
        snprintf(key, sizeof key, "%s*%d", name, number);
        if ((value = find_value(header_value, key)))
            end = append(end, value, "%'");
    }
    *end = '\0';
    if (end > joined)
        return joined;
    free(joined);
    return NULL;
}

char *parameter_of(const char *language, const char *header_value, const char *name) {
    char *joined = join_parameter(header_value, name);
    const char *plain = joined ? NULL : find_value(header_value, name);
    if (plain) {
        joined = new_buffer((int64_t)strlen(plain) * 3 + 1);
        *append(joined, plain, "") = '\0';
    }
    char *text = !joined ? NULL
                 : plain ? header_to_utf8(language, joined)
                         : parameter_to_utf8(language, joined);
    free(joined);
    return text;
}
