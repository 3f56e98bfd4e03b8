// What tests of extracts have in common.
#pragma once

#include "KARMPBody.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "KARMPWorldExtraction.h"
#include "KARTextConversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace karmp::documents {

using Bodies = std::vector<QOBSharedHandle<KARMPBody>>;
using World = QOBSharedHandle<KARMPWorld>;

inline World Example(const std::string& name)
{
    return LoadFile(std::filesystem::path(KARMP_EXAMPLE_DOCUMENTS) / (name + ".xml")).world;
}

inline World SliderCrank()
{
    return Example("slider-crank");
}

inline Bodies AllBodies(const KARMPWorld& world)
{
    Bodies bodies(static_cast<std::size_t>(world.GetBodyCount()));
    for (std::size_t i = 0; i < bodies.size(); ++i)
        world.Get<KARMPBody>(static_cast<int>(i), bodies[i]);
    return bodies;
}

inline Bodies Named(const KARMPWorld& world, const std::vector<std::wstring>& names)
{
    Bodies named;
    for (const auto& body : AllBodies(world))
        if (std::find(names.begin(), names.end(), body->getEntityName()) != names.end())
            named.push_back(body);
    EXPECT_EQ(named.size(), names.size());
    return named;
}

inline std::vector<std::string> NamesOf(const Bodies& bodies)
{
    std::vector<std::string> names;
    for (const auto& body : bodies)
        names.push_back(kar::ToUtf8(body->getEntityName()));
    std::sort(names.begin(), names.end());
    return names;
}

inline std::vector<std::string> TextsOf(const std::vector<CutLink>& links)
{
    std::vector<std::string> texts;
    for (const CutLink& link : links)
        texts.push_back(kar::ToUtf8(link.holder->getEntityName() + L' ' + link.item + L' ' +
                                    link.target->getEntityName()));
    std::sort(texts.begin(), texts.end());
    return texts;
}

inline Diagnostics CheckOf(const World& world)
{
    std::string text;
    Diagnostics messages = SaveText(world, text);
    messages.Append(CheckText(text));
    return messages;
}

inline std::vector<std::wstring> AllFamilies()
{
    std::vector<std::wstring> families;
    for (const FamilyRecord& family : FamilyRecords())
        families.emplace_back(family.element);
    return families;
}

} // namespace karmp::documents
