// Prints the least CPU time in seconds of loading a model from a file and ending it, for speed.py.
#include "KARMPModel.h"

#include <algorithm>
#include <ctime>
#include <iostream>

int main(int count, char** arguments)
{
    double least = 1e9;
    for (int i = 0; count > 1 && i < 9; ++i) {
        const std::clock_t start = std::clock();
        {
            const auto model = karmp::model::Load(arguments[1]);
            if (!model)
                return model.Report();
        }
        least = std::min(least, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::cout << least << '\n';
}
