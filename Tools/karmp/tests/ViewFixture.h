// Scenes of documents and of models, for the tests of what a page shows.
#pragma once

#include "KARMPDocuments.h"
#include "KARMPEntities.h"
#include "KARMPModel.h"
#include "ViewScene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace karmp::tool {

/// The scene of an example document.
inline ViewScene SceneOf(const std::string& name)
{
    const auto loaded =
        documents::LoadFile(std::string(KARMP_EXAMPLE_DOCUMENTS "/") + name + ".xml");
    EXPECT_TRUE(loaded.world) << name;
    return loaded.world ? CollectScene(*loaded.world, name) : ViewScene();
}

/// The drawn item of an entity by its name, in one of the lists of a scene.
template <class List>
const typename List::value_type* Drawn(const ViewScene& scene, const List& list,
                                       const std::string& name)
{
    for (const auto& item : list)
        if (scene.entities[static_cast<std::size_t>(item.entity)].name == name)
            return &item;
    return nullptr;
}

/// A model, and what a page shows of it.
class ViewOfModel : public ::testing::Test
{
protected:
    ViewScene Scene() const { return CollectScene(*m_model.World(), "w"); }

    std::string NoteOf(const std::string& name) const
    {
        const ViewScene scene = Scene();
        for (const ViewEntity& entity : scene.entities)
            if (entity.name == name)
                return entity.note;
        return "there is no " + name;
    }

    model::Model m_model{"w"};
};

inline void ExpectNear(const KARMathPoint& point, const KARMathPoint& expected)
{
    EXPECT_LT((point - expected).Norm(), 1e-9)
        << point.GetX() << ' ' << point.GetY() << ' ' << point.GetZ();
}

} // namespace karmp::tool
