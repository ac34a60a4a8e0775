/* The two services that libzel takes from its host's support library. */

#ifndef QORM_H
#define QORM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Gives size bytes of memory, which free releases. It does not return null: where there is no memory it says
   so on stderr and stops the process. A size of 0 gives a block that free releases. */
void *xmalloc(uint32_t size);

/* Gives the text of a service error. The codes are errno values; any other code has a text too. The text is
   in plain ASCII, never null, and is not to be released; it stays valid until the thread's next call. */
const char *service_errstr(int32_t code);

#ifdef __cplusplus
}
#endif

#endif
