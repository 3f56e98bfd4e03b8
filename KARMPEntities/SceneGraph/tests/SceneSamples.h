// Scene graphs for tests.
#pragma once

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"

namespace samples {

using RepOwner = KAR3DRepOwner<KAR3DRep>;
using BagOwner = KAR3DRepOwner<KAR3DBagRep>;

inline BagOwner NewBag()
{
    return BagOwner(KAR3DBagRep::CreateRep());
}

inline KAR3DMeshRep* Tetrahedron()
{
    return KAR3DMeshRep::CreateRep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                   {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
}

inline KAR3DMeshRep* SmoothTriangle()
{
    return KAR3DMeshRep::CreateRep({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}, {{0, 1, 2}},
                                   {{0, 0, 1}, {0, 0.6, 0.8}, {0.6, 0, 0.8}});
}

inline KAR3DPolylineRep* Zigzag()
{
    return KAR3DPolylineRep::CreateRep({{0, 0, 0}, {1, 1, 0}, {2, 0, 0.5}});
}

inline KARMathTransformation QuarterTurn()
{
    return {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {10, 20, 30}};
}

/// A bag with a mesh, a coloured bag of a mesh with normals and a polyline, and an empty bag.
inline RepOwner OneOfEach()
{
    BagOwner root = NewBag();
    root->AddChild(Tetrahedron());
    KAR3DBagRep* const inner = KAR3DBagRep::CreateRep();
    root->AddChild(inner);
    inner->SetColour(KARColour{0.25, 0.5, 0.75, 0.125});
    inner->SetTransformation(QuarterTurn());
    inner->AddChild(SmoothTriangle());
    KAR3DPolylineRep* const line = Zigzag();
    line->SetTransformation(QuarterTurn());
    inner->AddChild(line);
    root->AddChild(KAR3DBagRep::CreateRep());
    return RepOwner(root.release());
}

/// A chain of bags, each in the one before.
inline RepOwner Tower(int bags)
{
    RepOwner top(KAR3DBagRep::CreateRep());
    for (int i = 1; i < bags; ++i) {
        KAR3DBagRep* const outer = KAR3DBagRep::CreateRep();
        outer->AddChild(top.release());
        top.reset(outer);
    }
    return top;
}

} // namespace samples
