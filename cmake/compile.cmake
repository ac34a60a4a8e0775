# How everything is compiled. The sanitizers go to all targets: a process that mixes both kinds of code misses faults.

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

set(CMAKE_C_STANDARD 99)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# C++20 knows no trigraphs, and encoded words end in what looks like one. Its designated initialisers leave members
# out on purpose. How vectors are passed depends on the processor, but none is passed across the library's border.
set(ZEL_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                 $<$<COMPILE_LANGUAGE:CXX>:-Wno-trigraphs> $<$<COMPILE_LANGUAGE:CXX>:-Wno-missing-field-initializers>
                 -Wno-psabi)
if(ZEL_WERROR)
    list(APPEND ZEL_WARNINGS -Werror)
endif()

# What is installed is the same wherever it is built. A debugger wants the real folders.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
foreach(folder ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR})
    add_compile_options($<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${folder}=.>)
endforeach()

add_compile_options(${ZEL_FLAGS})
if(ZEL_SANITIZE)
    add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZEL_SANITIZE})
endif()
