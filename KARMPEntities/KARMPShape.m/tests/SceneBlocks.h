// Scene graphs and their blocks for the tests of representations.
#pragma once

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "KARBase64.h"
#include "KARSceneGraphBlocks.h"

#include <cstdlib>
#include <string>
#include <vector>

inline KAR3DMeshRep* MakeMesh()
{
    KAR3DMeshRep* const mesh =
        KAR3DMeshRep::CreateRep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
    mesh->SetColour(KARColour{1, 0.5, 0, 1});
    return mesh;
}

inline KAR3DPolylineRep* MakePolyline()
{
    return KAR3DPolylineRep::CreateRep({{0, 0, 0}, {0, 0, 2}});
}

/// A bag of the two.
inline KAR3DBagRep* MakeScene()
{
    KAR3DBagRep* const scene = KAR3DBagRep::CreateRep();
    scene->AddChild(MakeMesh());
    scene->AddChild(MakePolyline());
    return scene;
}

using BlockBytes = std::vector<unsigned char>;

/// The bytes of a node's block, as documents have it.
inline BlockBytes CgrOf(const KAR3DRep& rep)
{
    void* block = nullptr;
    std::size_t size = 0;
    KARWriteCgr(&rep, block, size, static_cast<KARSettingCgr>(71), nullptr, 0);
    const auto* const first = static_cast<const unsigned char*>(block);
    BlockBytes bytes(first, first + size);
    std::free(block);
    return bytes;
}
