# The reference, which is the public headers' comments: the target docs makes manual pages, one for each family of
# functions, of C and of C++, with a link for each name that is exported, and HTML that opens with the guide for
# hosts. Both belong to the component docs, and are installed if they were built.

set(DOXYGEN_HAVE_DOT NO) # no graphs; said before Doxygen is looked for
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    add_custom_target(docs VERBATIM
                      COMMAND ${CMAKE_COMMAND} -E echo "docs takes Doxygen: on Debian, install doxygen and configure anew"
                      COMMAND ${CMAKE_COMMAND} -E false)
    return()
endif()

set(docs_dir ${PROJECT_BINARY_DIR}/docs)
file(WRITE ${docs_dir}/header.html "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>libzel: $title</title>
<link href=\"$relpath^tabs.css\" rel=\"stylesheet\"><link href=\"$relpath^$stylesheet\" rel=\"stylesheet\"></head>
<body><div id=\"top\">\n")
file(WRITE ${docs_dir}/footer.html "</body></html>\n")

set(DOXYGEN_OUTPUT_DIRECTORY ${docs_dir})
set(DOXYGEN_PROJECT_NAME libzel)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_FULL_PATH_NAMES NO)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED ZEL_API=)
set(DOXYGEN_SORT_MEMBER_DOCS NO)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_GENERATE_MAN YES)
set(DOXYGEN_MAN_LINKS YES)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/docs/hosting.md)
set(DOXYGEN_HTML_HEADER ${docs_dir}/header.html) # Doxygen's own brings scripts
set(DOXYGEN_HTML_FOOTER ${docs_dir}/footer.html)
set(DOXYGEN_HTML_DYNAMIC_MENUS NO)
set(DOXYGEN_SEARCHENGINE NO)
set(DOXYGEN_VERBATIM_HEADERS NO)
file(GLOB headers CONFIGURE_DEPENDS lib/zel/include/*.h*)
doxygen_add_docs(docs ${headers} docs/hosting.md COMMENT "Writing the manual pages and the HTML reference")

set(families)
foreach(header ${headers})
    file(STRINGS ${header} groups REGEX "@defgroup")
    list(APPEND families ${groups})
endforeach()
list(TRANSFORM families REPLACE ".*@defgroup ([a-z_]*).*" "\\1")
set(links ${ZEL_EXPORTS})
set(pages ${families} zel.h zel.hpp ZELConfig)
foreach(list pages links)
    list(TRANSFORM ${list} PREPEND ${docs_dir}/man/man3/)
    list(TRANSFORM ${list} APPEND .3)
endforeach()
set(face_pages ${pages})
list(FILTER face_pages INCLUDE REGEX "zel_face|hpp")
add_custom_command(TARGET docs POST_BUILD VERBATIM
                   COMMAND sed -i -f ${PROJECT_SOURCE_DIR}/cmake/man.sed ${pages}
                   COMMAND sed -i "s/^#include <zel.h>/#include <zel.hpp>/" ${face_pages})

install(FILES ${pages} ${links} DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 OPTIONAL)
install(DIRECTORY ${docs_dir}/html DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL
        PATTERN *.js EXCLUDE PATTERN doxygen.svg EXCLUDE)
