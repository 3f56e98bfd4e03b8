# The tutorial as a program and as a test, run as a script:
#
#   cmake -D page=<page.md> -D output=<file.cpp> -P Tutorial.cmake
#       writes the blocks marked cpp, one after the other, as one source.
#   cmake -D page=<page.md> -D folder=<scratch> -D programs=<folder:folder...> -P Tutorial.cmake
#       runs the lines "$ command" of the blocks marked console in an empty folder, by the shell, and
#       compares what they print with the lines below them. With -D write=ON it puts what they print
#       into the page instead.

# Texts are cut by string(FIND) alone: as lists they would break at semicolons and brackets.

# next_block(<variable> <mark>): moves `rest` behind the next block of that mark, whose text the
# variable gets; what was skipped is in `skipped`. Undefined when there is no further block.
macro(next_block variable mark)
    unset(${variable})
    string(FIND "${rest}" "\n```${mark}\n" begin)
    if(NOT begin EQUAL -1)
        string(LENGTH "\n```${mark}\n" length)
        math(EXPR begin "${begin} + ${length}")
        string(SUBSTRING "${rest}" 0 ${begin} skipped)
        string(SUBSTRING "${rest}" ${begin} -1 rest)
        string(FIND "${rest}" "\n```\n" end)
        math(EXPR end "${end} + 1")
        string(SUBSTRING "${rest}" 0 ${end} ${variable})
        string(SUBSTRING "${rest}" ${end} -1 rest)
    endif()
endmacro()

# run(<block>): runs the commands of a block; what it then would be is in `ran`.
function(run block)
    set(ran "")
    while(block MATCHES "^\\$ ")
        string(FIND "${block}" "\n" end)
        math(EXPR length "${end} - 2")
        string(SUBSTRING "${block}" 2 ${length} command)
        execute_process(
            COMMAND sh -c "${command}"
            WORKING_DIRECTORY "${folder}"
            RESULT_VARIABLE result
            OUTPUT_VARIABLE printed
            ERROR_VARIABLE printed
        )
        if(NOT result EQUAL 0)
            message(FATAL_ERROR "${command}\nends with ${result} and prints\n${printed}")
        endif()
        string(APPEND ran "$ ${command}\n${printed}")
        # The next command, behind what this one should print.
        string(FIND "${block}" "\n$ " next)
        if(next EQUAL -1)
            set(block "")
        else()
            math(EXPR next "${next} + 1")
            string(SUBSTRING "${block}" ${next} -1 block)
        endif()
    endwhile()
    set(ran "${ran}" PARENT_SCOPE)
endfunction()

file(READ "${page}" rest)
if(DEFINED output)
    set(source "")
    next_block(block cpp)
    while(DEFINED block)
        string(APPEND source "${block}\n")
        next_block(block cpp)
    endwhile()
    file(WRITE "${output}" "${source}")
    return()
endif()

file(REMOVE_RECURSE "${folder}")
file(MAKE_DIRECTORY "${folder}")
set(ENV{PATH} "${programs}:$ENV{PATH}")
set(ENV{LC_ALL} C)
set(new_page "")
set(count 0)
next_block(block console)
while(DEFINED block)
    run("${block}")
    if(NOT write AND NOT ran STREQUAL block)
        message(FATAL_ERROR "${page} has\n${block}\nbut the commands print\n${ran}")
    endif()
    string(APPEND new_page "${skipped}${ran}")
    math(EXPR count "${count} + 1")
    next_block(block console)
endwhile()
if(count EQUAL 0)
    message(FATAL_ERROR "${page} has no block to run")
endif()
if(write)
    file(WRITE "${page}" "${new_page}${rest}")
endif()
