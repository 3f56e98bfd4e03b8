# Compares the program in README.md with the example that it is:
#
#   cmake -D page=<README.md> -D example=<file.cpp> -P Readme.cmake

file(READ "${page}" text)
file(READ "${example}" program)
# The page leaves out the comment at the top.
string(FIND "${program}" "#include" begin)
string(SUBSTRING "${program}" ${begin} -1 program)
string(FIND "${text}" "\n```cpp\n${program}```\n" found)
if(found EQUAL -1)
    message(FATAL_ERROR "${page} does not hold ${example}")
endif()
