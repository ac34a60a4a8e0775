# The two libraries. libzel's object files are a target of their own, so that the tests of its internals link the very
# code that is in libzel.so.

set(ZEL_STATIC OFF)
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    set(ZEL_STATIC ON)
endif()

function(refuse_without found what debian_package)
    if(NOT found)
        message(FATAL_ERROR "libzel is built with ${what}: on Debian, install ${debian_package}, or run "
                            "script/bootstrap, which installs all that the build needs.")
    endif()
endfunction()

find_package(Threads REQUIRED)
find_package(PkgConfig QUIET)
refuse_without("${PKG_CONFIG_FOUND}" pkg-config pkgconf)
pkg_check_modules(ICU IMPORTED_TARGET icu-i18n icu-uc)
refuse_without("${ICU_FOUND}" ICU libicu-dev)
pkg_check_modules(NSPR IMPORTED_TARGET nspr)
refuse_without("${NSPR_FOUND}" NSPR libnspr4-dev)

set(link_options -Wl,--as-needed -Wl,-z,relro,-z,now)
if(NOT ZEL_SANITIZE) # the sanitizers' runtime comes with the host
    list(APPEND link_options -Wl,-z,defs)
endif()

add_library(qorm SHARED lib/qorm/qorm.cpp)
add_library(zel::qorm ALIAS qorm)
target_compile_options(qorm PRIVATE ${ZEL_WARNINGS} -fno-exceptions)
target_link_options(qorm PRIVATE ${link_options})
set_target_properties(qorm PROPERTIES CXX_VISIBILITY_PRESET default)
target_include_directories(qorm PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/lib/qorm>
                                       $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

file(GLOB_RECURSE zel_sources CONFIGURE_DEPENDS lib/zel/*.cpp)
add_library(zel_objects OBJECT ${zel_sources})
target_include_directories(zel_objects PUBLIC lib/zel/include lib/zel)
target_link_libraries(zel_objects PUBLIC qorm PkgConfig::ICU PkgConfig::NSPR)
target_compile_options(zel_objects PRIVATE ${ZEL_WARNINGS} -fno-exceptions)

set(zel_map ${PROJECT_SOURCE_DIR}/lib/zel/libzel.map)
file(STRINGS ${zel_map} ZEL_EXPORTS REGEX "^ *[A-Za-z_][A-Za-z0-9_]*;$")
list(TRANSFORM ZEL_EXPORTS REPLACE " *(.*);" "\\1")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${zel_map})

if(ZEL_STATIC)
    include(cmake/static.cmake)
else()
    add_library(zel SHARED $<TARGET_OBJECTS:zel_objects>)
    target_link_libraries(zel PRIVATE qorm PkgConfig::ICU PkgConfig::NSPR)
    # No -Bsymbolic: what a host stores into the exported status word has to reach the library.
    target_link_options(zel PRIVATE -Wl,--version-script=${zel_map} ${link_options})
    set_target_properties(zel PROPERTIES
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${ZEL_ABI}
        LINK_DEPENDS ${zel_map}
        INSTALL_RPATH $ORIGIN)
endif()
add_library(zel::zel ALIAS zel)
target_include_directories(zel PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/lib/zel/include>
                                      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
