// How the tests of the example documents walk through them.
#pragma once

#include "KARMPEntities.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace karmp::tool {

/// The names of the kept documents, without their ending, of mechanisms in space or in a plane.
inline std::vector<std::string> ExampleDocuments(bool planar)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS)) {
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        if ((text.str().find("<Body2D ") != std::string::npos) == planar)
            names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The name of a test on a document.
inline std::string TestNameOf(std::string document)
{
    std::replace(document.begin(), document.end(), '-', '_');
    return document;
}

/// Calls with every entity of a family.
template <class Family, class Visit>
void ForEach(const KARMPWorld& world, Visit visit)
{
    for (int index = 0; index < world.Count<Family>(); ++index) {
        QOBSharedHandle<Family> entity;
        world.Get<Family>(index, entity);
        visit(entity);
    }
}

inline KARMathTransformation PositionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

} // namespace karmp::tool
