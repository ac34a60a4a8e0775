# Debian's packages, which script/package makes of the preset of that name:
#   libzel1        the library. The bundle is apart, so that a libzel2 can be installed beside it.
#   libqorm        the support library, which a host's own package replaces: libzel1 asks for the name alone.
#   libzel-common  the default charset bundle
#   zel            the program
#   libzel-dev     headers, link names, zel.pc, the CMake package, the bundle compiler, manual pages and HTML

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "libzel maintainers <maintainers@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/compress.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE libzel)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(control_dir ${PROJECT_BINARY_DIR}/debian)
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog.in ${control_dir}/changelog.Debian @ONLY)
file(WRITE ${control_dir}/shlibs "libzel ${ZEL_ABI} libzel${ZEL_ABI} (>= ${PROJECT_VERSION})\n")
file(WRITE ${control_dir}/triggers "activate-noawait ldconfig\n")

# A component becomes a package. The rest of the arguments is its description, the first line apart.
function(package component name synopsis)
    string(TOUPPER ${component} upper)
    list(JOIN ARGN "\n" description)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${synopsis}\n${description}" PARENT_SCOPE)
    install(FILES cmake/debian/copyright ${control_dir}/changelog.Debian DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
            COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} RENAME changelog
            COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(what_it_is "libzel converts text between charsets and brings mail headers, parameters"
    "and bodies into their form on the wire and back.")

package(runtime libzel${ZEL_ABI} "charsets and message encoding for mail servers" ${what_it_is}
        "This package holds the library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS libqorm)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "libzel-common ${this_version}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control_dir}/shlibs ${control_dir}/triggers)

package(support libqorm "support library for libzel" ${what_it_is}
        "This package holds the memory and error services that libzel takes from"
        "its host, for hosts that have none of their own.")
set(CPACK_DEBIAN_SUPPORT_PACKAGE_CONTROL_EXTRA ${control_dir}/triggers)

package(bundle libzel-common "charsets and message encoding for mail servers (data)" ${what_it_is}
        "This package holds the charsets of common locales and of web pages.")

package(program zel "charsets and mail encoding from the command line" ${what_it_is}
        "This package holds the program zel, which shows what the headers of a"
        "message say, writes them, and converts files between charsets.")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "libzel-common ${this_version}")

package(development libzel-dev "charsets and message encoding for mail servers (development)" ${what_it_is}
        "This package holds what programs are built with, the compiler of charset"
        "bundles and the reference.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libzel${ZEL_ABI} ${this_version}, libzel-common ${this_version}, icu-devtools")

set(CPACK_COMPONENTS_ALL runtime support bundle development docs)
if(TARGET zel_program)
    list(APPEND CPACK_COMPONENTS_ALL program)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_GROUP development)
set(CPACK_COMPONENT_DOCS_GROUP development)
include(CPack)
