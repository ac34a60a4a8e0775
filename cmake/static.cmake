# libzel.a holds one object. The library's object files are joined into it, and all names but those of libzel.map become
# local to it, so that no name of the library's own, nor of what it instantiates, meets one of the host.
#
# That takes care with what the compiler lets several objects share. A section group is known by its name, local or not,
# and the host's linker would drop ours for the host's: so the linker allocates the groups when it joins. objcopy leaves
# unique symbols global: so there are none. Code for the link-time optimiser has no symbols yet: so there is none.

target_compile_options(zel_objects PRIVATE -fno-lto $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
                                           $<$<CXX_COMPILER_ID:Clang>:-fno-addrsig>)

separate_arguments(join UNIX_COMMAND "${CMAKE_CXX_COMPILER_ARG1} ${CMAKE_CXX_FLAGS}")
if(CMAKE_CXX_COMPILER_TARGET)
    list(APPEND join ${CMAKE_CXX_COMPILE_OPTIONS_TARGET}${CMAKE_CXX_COMPILER_TARGET})
endif()
set(zel_object ${PROJECT_BINARY_DIR}/zel.o)
set(kept_names ${PROJECT_BINARY_DIR}/exports.txt)
list(JOIN ZEL_EXPORTS "\n" names)
file(CONFIGURE OUTPUT ${kept_names} CONTENT "${names}\n")
add_custom_command(
    OUTPUT ${zel_object}
    COMMAND ${CMAKE_CXX_COMPILER} ${join} -r -nostdlib -Wl,--force-group-allocation,--build-id=none -o ${zel_object}
            $<TARGET_OBJECTS:zel_objects>
    COMMAND ${CMAKE_OBJCOPY} --keep-global-symbols=${kept_names} ${zel_object}
    DEPENDS $<TARGET_OBJECTS:zel_objects> ${kept_names}
    COMMAND_EXPAND_LISTS VERBATIM)

add_library(zel STATIC ${zel_object})
add_dependencies(zel zel_objects) # for make, which knows a file of another target only once it is there
set_source_files_properties(${zel_object} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
set_target_properties(zel PROPERTIES LINKER_LANGUAGE C) # a host in C is linked by its C compiler

# What a host in C does not link of itself: the runtime of C++.
set(ZEL_RUNTIME ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_ITEM ZEL_RUNTIME ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_DUPLICATES ZEL_RUNTIME)
target_link_libraries(zel PRIVATE qorm $<BUILD_INTERFACE:PkgConfig::ICU> $<BUILD_INTERFACE:PkgConfig::NSPR>
                                  $<INSTALL_INTERFACE:PkgConfig::ZEL_NEEDS> ${ZEL_RUNTIME})
