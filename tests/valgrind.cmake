# Tests under valgrind, which none of the sanitizers goes with. They take a minute or two, so there is a label for them.

find_program(VALGRIND valgrind)
find_path(VALGRIND_INCLUDE valgrind/callgrind.h)

function(add_valgrind_test name)
    if(VALGRIND AND VALGRIND_INCLUDE)
        add_test(NAME ${name} COMMAND ${ARGN})
    else()
        add_test(NAME ${name} COMMAND sh -c "echo skipped: it takes valgrind >&2 && exit 77")
    endif()
    set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77 LABELS valgrind TIMEOUT 1500)
endfunction()

if(VALGRIND_INCLUDE)
    add_executable(linear_time linear_time.cpp)
    target_include_directories(linear_time PRIVATE ${VALGRIND_INCLUDE})
    target_compile_options(linear_time PRIVATE ${ZEL_WARNINGS} -O1) # the C++ face is compiled here
    target_link_libraries(linear_time PRIVATE zel)
endif()

set(shares 2) # of the functions, side by side
foreach(share RANGE 1 ${shares})
    math(EXPR first "${share} - 1")
    add_valgrind_test(Time.grows_with_the_text_and_no_faster_${share}_of_${shares}
                      sh ${CMAKE_CURRENT_SOURCE_DIR}/linear_time.sh ${CMAKE_CURRENT_BINARY_DIR}/linear_time ${first} ${shares})
endforeach()

if(ZEL_EXAMPLES)
    if(TARGET zel_program)
        set(directory_of_zel $<TARGET_FILE_DIR:zel_program>)
    endif()
    add_valgrind_test(Memory.is_not_lost_nor_misread_in_a_run_of_the_demo
                      sh ${CMAKE_CURRENT_SOURCE_DIR}/memcheck.sh ${PROJECT_BINARY_DIR}/examples
                      ${PROJECT_SOURCE_DIR}/examples ${CMAKE_CURRENT_SOURCE_DIR}/valgrind.supp ${directory_of_zel})
endif()
