/* What the small hosts of this directory share: the start of the library, the two calls that most of its
 * functions take (one for the size, one for the text), and files. Whatever cannot go on says why and stops
 * the program. All strings that come back are the caller's to free. */

#ifndef HOST_H
#define HOST_H

#include "zel.h"

#include <stddef.h>

/* Takes the bundle of charsets by language from the directory that ZEL_BUNDLES names; without it the answers
 * that are built into the library hold. */
void start_library(void);

void stop(const char *what, const char *why);
char *new_buffer(int64_t size);

/* The bytes of a file, with a NUL behind them. */
char *read_file(const char *path, int32_t *len);

/* Printable ASCII as it is, every other byte as \xHH; the text goes on in a new line where a fold or a line
 * ends. */
void print_wire(const char *text, size_t len);

/* The beginning of the first line in that form. */
void print_first_bytes(const char *text);

/* The samples carry their language in their name: "messages/zh-TW.big5.eml" is "zh-TW". */
char *language_of(const char *path);

/* ZEL_ConvertBuffer by lengths, so that a NUL may stand in the text. */
char *convert(const char *from_charset, const char *to_charset, const char *text, int32_t len,
              int32_t *to_len);

/* Cuts the next header off a message, folds and all; its value begins behind the colon. Null at the empty
 * line. */
char *next_header(char **message, char **value);

/* A header's value off the wire and onto it, and the value of a file name as RFC 2231 has it. */
char *header_to_utf8(const char *language, const char *wire);
char *header_to_wire(const char *language, const char *text);

/* The library leaves a header word undecoded if its charset is not one that the language admits. Finds the
 * charset of the first such word; 0 if there is none. */
int refused_charset(const char *language, const char *wire, char charset[33]);

char *parameter_to_utf8(const char *language, const char *value);
char *parameter_to_wire(const char *language, const char *name, const char *text);

#endif
