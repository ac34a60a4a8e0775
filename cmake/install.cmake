# What a host gets: the libraries, their headers, zel.pc, a CMake package, and the default bundle; and the program with
# its manual page and its completion for bash. Everything is found from the place of the installed files themselves, so
# an installed tree can be moved.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zel)

install(TARGETS zel EXPORT zelTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS qorm EXPORT zelTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY lib/zel/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES lib/qorm/qorm.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES docs/libzel.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
if(ZEL_TOOLS)
    install(TARGETS compile_bundle RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY ${ZEL_BUILT_BUNDLES}/encbylang DESTINATION ${ZEL_BUNDLES_DIR})
    install(FILES docs/zel-compile-bundle.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

if(ZEL_TOOLS AND TARGET zel_program)
    install(TARGETS zel_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES docs/zel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES tools/zel/completion.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zel)
endif()

configure_package_config_file(cmake/zelConfig.cmake.in zelConfig.cmake
                              INSTALL_DESTINATION ${package_dir} PATH_VARS ZEL_BUNDLES_DIR)
write_basic_package_version_file(zelConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT zelTargets NAMESPACE zel:: DESTINATION ${package_dir})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zelConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/zelConfigVersion.cmake
        DESTINATION ${package_dir})

file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" pc_to_prefix ${pc_to_prefix})
list(TRANSFORM ZEL_RUNTIME PREPEND " -l" OUTPUT_VARIABLE runtime_options)
list(JOIN runtime_options "" runtime_options)
configure_file(cmake/zel.pc.in zel.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
