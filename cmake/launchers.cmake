# How a script runs a program that was built: by the program's own file or, in a cross build, by a launcher that hands the
# file to the emulator.

set(launchers_dir ${PROJECT_BINARY_DIR}/launchers)

function(get_launcher variable target)
    set(launcher $<TARGET_FILE:${target}>)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
        set(content "#!/bin/sh\nexec '${emulator}' '${launcher}' \"$@\"\n")
        set(launcher ${launchers_dir}/$<TARGET_FILE_NAME:${target}>)
        file(GENERATE OUTPUT ${launcher} CONTENT ${content}
             FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    endif()
    set(${variable} ${launcher} PARENT_SCOPE)
endfunction()
