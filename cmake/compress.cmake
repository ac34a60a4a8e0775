# What Debian wants compressed, before the packages are made.
file(GLOB_RECURSE files LIST_DIRECTORIES false
     "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/man/*"
     "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/doc/changelog*")
if(files)
    execute_process(COMMAND gzip -9nf ${files} COMMAND_ERROR_IS_FATAL ANY)
endif()
