// What tests of differences between worlds have in common.
#pragma once

#include "KARMPWorld.h"
#include "KARMPWorldDifference.h"
#include "KARTextConversion.h"

#include <filesystem>
#include <string>
#include <vector>

namespace karmp::documents {

using Handle = QOBSharedHandle<KARMPEntity>;

inline std::string TextOf(const std::vector<Difference>& differences)
{
    std::string text;
    for (const Difference& difference : differences) {
        text += DifferenceText(difference.kind);
        for (const Handle& entity : {difference.before, difference.after})
            text +=
                ' ' + (entity ? entity->getClassName() + ' ' + kar::ToUtf8(entity->getEntityName())
                              : std::string("-"));
        text += ' ' + kar::ToUtf8(difference.item) + '\n';
    }
    return text;
}

inline std::string DifferenceOf(const QOBSharedHandle<KARMPWorld>& before,
                                const QOBSharedHandle<KARMPWorld>& after)
{
    return TextOf(FindDifferences(*before, *after));
}

inline std::vector<std::filesystem::path> Examples()
{
    std::vector<std::filesystem::path> examples;
    for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS))
        examples.push_back(entry.path());
    return examples;
}

} // namespace karmp::documents
