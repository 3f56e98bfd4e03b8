// Uses the installed libraries the way a program outside of the project does.

#include "KARMPEntities.h"

#include <cstdio>

int main()
{
    KARUnicodeString number;
    if (number.BuildFromNum(42) != 1 || number != "42")
        return 1;
    std::printf("%s\n", number.ConvertToChar());
    return 0;
}
