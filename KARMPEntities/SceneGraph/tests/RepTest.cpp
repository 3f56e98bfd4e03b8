#include "KAR3DRepPointer.h"
#include "KAR3DRepWalk.h"
#include "SceneSamples.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>

namespace {

using namespace samples;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// Each test gives back all nodes that it makes.
class Rep : public testing::Test
{
protected:
    ~Rep() override { EXPECT_EQ(KAR3DRep::GetAliveCount(), m_before); }

private:
    int m_before = KAR3DRep::GetAliveCount();
};

using RepWalk = Rep;
using RepPointer = Rep;
using RepCopy = Rep;

std::vector<KAR3DRepPlace> PlacesOf(const KAR3DRep& first)
{
    std::vector<KAR3DRepPlace> places;
    KARForEach3DRep(first, [&places](const KAR3DRepPlace& place) { places.push_back(place); });
    return places;
}

} // namespace

TEST_F(Rep, IsNewlyInNoBagUnmovedAndWithoutColour)
{
    for (KAR3DRep* const rep :
         {static_cast<KAR3DRep*>(Tetrahedron()), static_cast<KAR3DRep*>(Zigzag()),
          static_cast<KAR3DRep*>(KAR3DBagRep::CreateRep())}) {
        EXPECT_EQ(rep->GetBag(), nullptr);
        EXPECT_EQ(rep->GetTransformation(), KARMathTransformation());
        EXPECT_FALSE(rep->GetColour());
        rep->Destroy();
    }
}

TEST_F(Rep, KeepsWhatItIsMadeOf)
{
    const KAR3DRepOwner<KAR3DMeshRep> mesh(SmoothTriangle());
    EXPECT_EQ(mesh->GetKind(), KAR3DRepKind::Mesh);
    EXPECT_EQ(mesh->GetVertices()[1], KARMathPoint(2, 0, 0));
    EXPECT_EQ(mesh->GetTriangles(), (std::vector<KARTriangle>{{0, 1, 2}}));
    EXPECT_EQ(mesh->GetNormals()[1], KARMathVector(0, 0.6, 0.8));
    const KAR3DRepOwner<KAR3DPolylineRep> line(Zigzag());
    EXPECT_EQ(line->GetKind(), KAR3DRepKind::Polyline);
    EXPECT_EQ(line->GetPoints()[2], KARMathPoint(2, 0, 0.5));
    EXPECT_EQ(NewBag()->GetKind(), KAR3DRepKind::Bag);
}

TEST_F(Rep, IsNotMadeOfWhatIsNoShape)
{
    const std::vector<KARMathPoint> corners{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    EXPECT_EQ(KAR3DMeshRep::CreateRep(corners, {{0, 1, 3}}), nullptr);
    EXPECT_EQ(KAR3DMeshRep::CreateRep({{0, 0, NaN}}, {}), nullptr);
    EXPECT_EQ(KAR3DMeshRep::CreateRep(corners, {{0, 1, 2}}, {{0, 0, 1}}), nullptr);
    EXPECT_EQ(KAR3DMeshRep::CreateRep({{0, 0, 0}}, {}, {{0, 0, Infinity}}), nullptr);
    EXPECT_EQ(KAR3DPolylineRep::CreateRep({{0, 0, 0}}), nullptr);
    EXPECT_EQ(KAR3DPolylineRep::CreateRep({{0, 0, 0}, {Infinity, 0, 0}}), nullptr);
}

TEST_F(Rep, MeshMayBeEmptyAndHaveTrianglesWithoutArea)
{
    const RepOwner empty(KAR3DMeshRep::CreateRep({}, {}));
    EXPECT_NE(empty, nullptr);
    const RepOwner flat(KAR3DMeshRep::CreateRep({{0, 0, 0}}, {{0, 0, 0}}));
    EXPECT_NE(flat, nullptr);
}

TEST_F(Rep, RefusesNumbersThatAreNoneAndColoursOutOfRange)
{
    const BagOwner bag = NewBag();
    EXPECT_EQ(bag->SetTransformation(QuarterTurn()), KARSuccess);
    EXPECT_EQ(bag->SetTransformation(KARMathTransformation(KARMathVector(0, NaN, 0))), KARFailure);
    EXPECT_EQ(bag->GetTransformation(), QuarterTurn());
    const KARColour colour{0, 1, 0.5, 0};
    EXPECT_EQ(bag->SetColour(colour), KARSuccess);
    for (const double bad : {-0.01, 1.01, NaN}) {
        EXPECT_EQ(bag->SetColour(KARColour{bad, 0, 0, 1}), KARFailure);
        EXPECT_EQ(bag->SetColour(KARColour{0, bad, 0, 1}), KARFailure);
        EXPECT_EQ(bag->SetColour(KARColour{0, 0, bad, 1}), KARFailure);
        EXPECT_EQ(bag->SetColour(KARColour{0, 0, 0, bad}), KARFailure);
    }
    EXPECT_EQ(bag->GetColour(), colour);
    EXPECT_EQ(bag->SetColour({}), KARSuccess);
    EXPECT_FALSE(bag->GetColour());
}

TEST_F(Rep, BagKeepsItsChildrenInOrderAndDestroysThem)
{
    const int before = KAR3DRep::GetAliveCount();
    {
        const BagOwner bag = NewBag();
        KAR3DRep* const first = Tetrahedron();
        KAR3DRep* const second = Zigzag();
        EXPECT_EQ(bag->AddChild(first), KARSuccess);
        EXPECT_EQ(bag->AddChild(second), KARSuccess);
        EXPECT_EQ(bag->AddChild(first), KARUnchanged);
        EXPECT_EQ(bag->GetChildren(), (std::vector<KAR3DRep*>{first, second}));
        EXPECT_EQ(first->GetBag(), bag.get());
        EXPECT_EQ(KAR3DRep::GetAliveCount(), before + 3);
    }
    EXPECT_EQ(KAR3DRep::GetAliveCount(), before);
}

TEST_F(Rep, BagGivesAChildBackOrUpToAnotherBag)
{
    const BagOwner bag = NewBag();
    const BagOwner other = NewBag();
    KAR3DRep* const first = Tetrahedron();
    KAR3DRep* const second = Zigzag();
    bag->AddChild(first);
    bag->AddChild(second);
    EXPECT_EQ(other->AddChild(first), KARSuccess);
    EXPECT_EQ(bag->GetChildren(), (std::vector<KAR3DRep*>{second}));
    EXPECT_EQ(first->GetBag(), other.get());
    EXPECT_EQ(other->RemoveChild(first), KARSuccess);
    const RepOwner own(first);
    EXPECT_EQ(first->GetBag(), nullptr);
    EXPECT_EQ(other->RemoveChild(first), KARUnchanged);
    EXPECT_EQ(other->RemoveChild(second), KARUnchanged);
    EXPECT_EQ(other->RemoveChild(nullptr), KARUnchanged);
}

TEST_F(Rep, BagHoldsNeitherItselfNorWhatHoldsIt)
{
    const BagOwner outer = NewBag();
    KAR3DBagRep* const inner = KAR3DBagRep::CreateRep();
    outer->AddChild(inner);
    EXPECT_EQ(outer->AddChild(nullptr), KARFailure);
    EXPECT_EQ(outer->AddChild(outer.get()), KARFailure);
    EXPECT_EQ(inner->AddChild(outer.get()), KARFailure);
    EXPECT_TRUE(inner->GetChildren().empty());
    EXPECT_TRUE(inner->IsWithin(*outer));
    EXPECT_TRUE(inner->IsWithin(*inner));
    EXPECT_FALSE(outer->IsWithin(*inner));
}

TEST_F(Rep, DestroyTakesANodeOutOfItsBag)
{
    const BagOwner bag = NewBag();
    KAR3DRep* const first = Tetrahedron();
    KAR3DRep* const second = Zigzag();
    KAR3DRep* const third = Zigzag();
    for (KAR3DRep* const rep : {first, second, third})
        bag->AddChild(rep);
    second->Destroy();
    EXPECT_EQ(bag->GetChildren(), (std::vector<KAR3DRep*>{first, third}));
}

TEST_F(Rep, AMillionBagsWithinEachOtherAreCopiedWalkedAndDestroyed)
{
    constexpr int Bags = 1'000'000;
    const int before = KAR3DRep::GetAliveCount();
    RepOwner tower = Tower(Bags);
    RepOwner copy(tower->Duplicate());
    EXPECT_EQ(KAR3DRep::GetAliveCount(), before + 2 * Bags);
    int count = 0;
    KARForEach3DRep(*copy, [&count](const KAR3DRepPlace&) { ++count; });
    EXPECT_EQ(count, Bags);
}

TEST_F(RepCopy, HasAllThatTheNodeHasAndIsInNoBag)
{
    const RepOwner all = OneOfEach();
    const auto* const root = static_cast<const KAR3DBagRep*>(all.get());
    const RepOwner copy(root->GetChildren()[1]->Duplicate());
    EXPECT_EQ(copy->GetBag(), nullptr);
    EXPECT_EQ(copy->GetTransformation(), QuarterTurn());
    EXPECT_EQ(copy->GetColour(), (KARColour{0.25, 0.5, 0.75, 0.125}));
    ASSERT_EQ(copy->GetKind(), KAR3DRepKind::Bag);
    const auto& children = static_cast<const KAR3DBagRep&>(*copy).GetChildren();
    ASSERT_EQ(children.size(), 2U);
    ASSERT_EQ(children[0]->GetKind(), KAR3DRepKind::Mesh);
    const auto& mesh = static_cast<const KAR3DMeshRep&>(*children[0]);
    EXPECT_EQ(mesh.GetVertices()[1], KARMathPoint(2, 0, 0));
    EXPECT_EQ(mesh.GetTriangles()[0], (KARTriangle{0, 1, 2}));
    EXPECT_EQ(mesh.GetNormals().size(), 3U);
    ASSERT_EQ(children[1]->GetKind(), KAR3DRepKind::Polyline);
    EXPECT_EQ(children[1]->GetTransformation(), QuarterTurn());
    EXPECT_EQ(static_cast<const KAR3DPolylineRep&>(*children[1]).GetPoints().size(), 3U);
}

TEST_F(RepCopy, LeavesNothingBehindWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    const RepOwner all = OneOfEach();
    const int before = KAR3DRep::GetAliveCount();
    std::size_t failing = 0;
    for (bool failed = true; failed;) {
        AllocationCounter counter;
        counter.FailAllocation(++failing);
        try {
            all->Duplicate()->Destroy();
            failed = false;
        } catch (const std::bad_alloc&) {
        }
        EXPECT_EQ(KAR3DRep::GetAliveCount(), before);
    }
    EXPECT_GT(failing, 6U);
}

TEST_F(RepWalk, PlacesEachNodeWithTheBagsAroundIt)
{
    const BagOwner root = NewBag();
    const KARMathTransformation shift(KARMathVector(1, 0, 0));
    root->SetTransformation(shift);
    KAR3DBagRep* const inner = KAR3DBagRep::CreateRep();
    root->AddChild(inner);
    inner->SetTransformation(QuarterTurn());
    inner->SetColour(KARColour{1, 0, 0, 1});
    KAR3DRep* const inherits = Zigzag();
    KAR3DRep* const own = Tetrahedron();
    inner->AddChild(inherits);
    inner->AddChild(own);
    own->SetTransformation(shift);
    own->SetColour(KARColour{0, 1, 0, 1});
    KAR3DRep* const last = Zigzag();
    root->AddChild(last);

    const std::vector<KAR3DRepPlace> places = PlacesOf(*root);
    ASSERT_EQ(places.size(), 5U);
    const KAR3DRep* const order[] = {root.get(), inner, inherits, own, last};
    for (std::size_t i = 0; i < places.size(); ++i)
        EXPECT_EQ(places[i].rep, order[i]) << i;
    EXPECT_EQ(places[0].colour, nullptr);
    EXPECT_EQ(places[2].transformation, shift * QuarterTurn());
    ASSERT_NE(places[2].colour, nullptr);
    EXPECT_EQ(*places[2].colour, *inner->GetColour());
    EXPECT_EQ(places[3].transformation, shift * QuarterTurn() * shift);
    EXPECT_EQ(*places[3].colour, *own->GetColour());
    EXPECT_EQ(places[4].transformation, shift);
    EXPECT_EQ(places[4].colour, nullptr);
}

TEST_F(RepPointer, BecomesNullWithItsNode)
{
    KAR3DMeshRep* const mesh = Tetrahedron();
    KAR3DRepPointer<KAR3DMeshRep> first(mesh);
    {
        const KAR3DRepPointer<KAR3DMeshRep> passing(mesh);
        const KAR3DRepPointer<KAR3DRep> asBase(mesh);
        EXPECT_EQ(asBase.Get(), mesh);
    }
    KAR3DRepPointer<KAR3DMeshRep> second;
    EXPECT_FALSE(second);
    second = mesh;
    EXPECT_EQ(second->GetTriangles().size(), 4U);
    second = mesh;
    mesh->Destroy();
    EXPECT_EQ(first.Get(), nullptr);
    EXPECT_EQ(second.Get(), nullptr);
}

TEST_F(RepPointer, LeavesANodeForAnother)
{
    const RepOwner kept(Zigzag());
    KAR3DRep* const gone = Zigzag();
    KAR3DRepPointer<KAR3DRep> pointer(gone);
    KAR3DRepPointer<KAR3DRep> other(gone);
    pointer = kept.get();
    gone->Destroy();
    EXPECT_EQ(pointer.Get(), kept.get());
    EXPECT_EQ(other.Get(), nullptr);
    pointer = nullptr;
    EXPECT_FALSE(pointer);
}

TEST_F(RepPointer, BecomesNullWithABagAroundItsNode)
{
    BagOwner bag = NewBag();
    KAR3DRep* const mesh = Tetrahedron();
    bag->AddChild(mesh);
    const KAR3DRepPointer<KAR3DRep> pointer(mesh);
    bag.reset();
    EXPECT_EQ(pointer.Get(), nullptr);
}
