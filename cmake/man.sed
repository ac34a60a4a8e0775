# Mends Doxygen's manual pages: one line for a name, one file to include, a place to read on. Text that begins with an
# apostrophe would be taken for a request, and text behind an example is indented.
/^\.SH NAME/,/^\.SH SYNOPSIS/{
/^\.PP/d
/^ \\- /d
}
/^\\fC#include/d
/^\.SH SYNOPSIS/a\
#include <zel.h>\
.PP
s/^'/\\\&'/
/^\.fi/{
n
n
s/^ //
}
/^\.SH "Author"/,$c\
.SH "SEE ALSO"\
\\fBzel.h\\fP(3), which says what holds for all functions
