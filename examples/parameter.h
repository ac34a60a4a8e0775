/* A parameter of Content-Disposition or Content-Type, in whichever of the forms that mailers use it stands.
 */

#ifndef PARAMETER_H
#define PARAMETER_H

/* The parts of a value that RFC 2231 split up and numbered, joined to the one value that the library decodes:
 * charset'language'percent-encoded. Null if the parameter does not stand there in that form. */
char *join_parameter(const char *header_value, const char *name);

/* The value in UTF-8, from the form above or from plain text or encoded words between quotation marks. Null
 * if the header has no such parameter. */
char *parameter_of(const char *language, const char *header_value, const char *name);

#endif
