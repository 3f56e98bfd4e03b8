#include "GeometryKindTraits.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "PlanarKindTraits.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>
#include <type_traits>

namespace {

template <class Kind>
class GeometryKind : public KARMPTestFixture
{
protected:
    static constexpr bool IsCylinder = std::is_same_v<Kind, KARMPCylinder>;
    static constexpr bool IsCone = std::is_same_v<Kind, KARMPCone>;
    /// The element that is read; only a cone's differs from the written one.
    static std::wstring ReadElement() { return IsCone ? L"Cylicone" : KindTraits<Kind>::Element; }
    /// The coordinates that are read, under the names that are read.
    static Coordinates Read()
    {
        Coordinates coordinates = KindTraits<Kind>::Written();
        for (auto& [name, value] : coordinates) {
            if (IsCylinder && name[0] == L'O')
                name[0] = L'C';
            if (IsCylinder && name[0] == L'D')
                name[0] = L'N';
        }
        return coordinates;
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(ReadElement())
            .Attribute(L"id", L"k")
            .Attribute(L"name", L"k")
            .Attribute(L"isActive", L"yes");
    }
    static void AddCoordinates(TestDeserializer& element, const std::wstring& missing = {})
    {
        TestDeserializer& list = element.Add(L"Coordinates");
        for (const auto& [name, value] : Read())
            if (name != missing)
                list.Leaf(name, value);
    }

    QOBSharedHandle<Kind> kind = Kind::create(L"kind");
    KARMPEntityTable entities;
};

using Kinds = testing::Types<KARMPPoint, KARMPLine, KARMPPlane, KARMPCircle, KARMPAxisSystem,
                             KARMPCylinder, KARMPCone, KARMPCylicone, KARMPSphere, KARMPTorus,
                             KARMPCirline, KARMPParabola, KARMPEllipse, KARMPHyperbola,
                             KARMPPoint2D, KARMPLine2D, KARMPCircle2D, KARMPSketch>;
TYPED_TEST_SUITE(GeometryKind, Kinds);

TYPED_TEST(GeometryKind, HasItsIdentity)
{
    using Traits = KindTraits<TypeParam>;
    EXPECT_EQ(TypeParam::ClassID(), QOBUUID(Traits::Guid));
    EXPECT_TRUE(this->kind->isDerivedFrom(KARMPGeometry::ClassInfo()));
}

TYPED_TEST(GeometryKind, IsNewAsTold)
{
    KindTraits<TypeParam>::CheckNew(*this->kind);
}

TYPED_TEST(GeometryKind, HandsOutWhatWasStored)
{
    KindTraits<TypeParam>::Fill(*this->kind);
    KindTraits<TypeParam>::CheckFilled(*this->kind);
}

TYPED_TEST(GeometryKind, WritesItsCoordinatesInOrder)
{
    using Traits = KindTraits<TypeParam>;
    Traits::Fill(*this->kind);
    TestSerializer root;
    EXPECT_EQ(this->kind->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), Traits::Element);
    EXPECT_EQ(element.Text(L"@name"), L"kind");
    ASSERT_EQ(element.GetElementCount(), 1U) << "no body, no constraints";
    const TestSerializer& coordinates = element.Child(0);
    EXPECT_EQ(coordinates.GetId(), L"Coordinates");
    Coordinates written;
    for (std::size_t i = 0; i < coordinates.GetElementCount(); ++i)
        written.emplace_back(coordinates.Child(i).GetId(), coordinates.Child(i).GetValued());
    EXPECT_EQ(written, Traits::Written());
}

TYPED_TEST(GeometryKind, ReadsItsCoordinates)
{
    TestDeserializer root;
    this->AddCoordinates(this->Plain(root));
    EXPECT_EQ(this->kind->Deserialize(&root, this->entities), KARSuccess);
    KindTraits<TypeParam>::CheckFilled(*this->kind);
}

TYPED_TEST(GeometryKind, ReadsBackWhatItWroteWhereItCan)
{
    using Traits = KindTraits<TypeParam>;
    Traits::Fill(*this->kind);
    TestSerializer written;
    this->kind->Serialize(&written);
    for (const bool asText : {false, true}) {
        const auto read = TypeParam::create(L"");
        const auto tree = TestDeserializer::From(written, {.asText = asText});
        const KARStatus status = read->Deserialize(tree.get(), this->entities);
        if constexpr (std::is_same_v<TypeParam, KARMPCone>) {
            EXPECT_EQ(status, KARFailure);
            this->ExpectReports(1);
            Traits::CheckNew(*read);
        } else if constexpr (std::is_same_v<TypeParam, KARMPCylinder>) {
            EXPECT_EQ(status, KARSuccess);
            this->ExpectReports(6);
            Traits::CheckCopy(*read); // only the radius
        } else {
            EXPECT_EQ(status, KARSuccess);
            Traits::CheckFilled(*read);
        }
    }
}

TYPED_TEST(GeometryKind, ReportsAMissingCoordinateAndReadsTheRest)
{
    using Traits = KindTraits<TypeParam>;
    for (const auto& [missing, value] : this->Read()) {
        TestDeserializer root;
        this->AddCoordinates(this->Plain(root), missing);
        const auto read = TypeParam::create(L"");
        Traits::Fill(*read);
        EXPECT_EQ(read->Deserialize(&root, this->entities), KARSuccess);
        this->ExpectReports(1);
        TestSerializer again;
        read->Serialize(&again);
        const Coordinates names = Traits::Written();
        const Coordinates readNames = this->Read();
        for (std::size_t i = 0; i < names.size(); ++i) {
            const double found = again.Child(0).Child(0).Child(i).GetValued();
            // A direction that lacks a component is made whole; all else is 0 or as it was.
            const bool ofDirection = readNames[i].first[0] == L'D' || readNames[i].first[0] == L'N';
            if (std::is_same_v<TypeParam, KARMPAxisSystem> || !ofDirection)
                EXPECT_EQ(found, readNames[i].first == missing ? 0.0 : names[i].second);
        }
    }
}

TYPED_TEST(GeometryKind, FailsWithoutItsElementOrItsCoordinates)
{
    TestDeserializer nothing;
    EXPECT_EQ(this->kind->Deserialize(&nothing, this->entities), KARFailure);
    this->ExpectReports(1);
    TestDeserializer root;
    this->Plain(root);
    KindTraits<TypeParam>::Fill(*this->kind);
    EXPECT_EQ(this->kind->Deserialize(&root, this->entities), KARFailure);
    this->ExpectReports(1);
    KindTraits<TypeParam>::CheckFilled(*this->kind);
}

TYPED_TEST(GeometryKind, HasNoUseForANullNode)
{
    EXPECT_EQ(this->kind->Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->kind->Deserialize(nullptr, this->entities), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(GeometryKind, ReportsEachAdditionThatFails)
{
    const std::size_t count = KindTraits<TypeParam>::Written().size();
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            const bool structural = failing == 1 || failing == 2;
            EXPECT_EQ(this->kind->Serialize(&root), structural ? KARFailure : KARSuccess);
            if (failing > 2)
                EXPECT_EQ(root.Child(0).Child(0).GetElementCount(), count - 1);
            // The node reports too, of a value more than once.
            const auto isOfKind = [](const std::string& place) {
                return place.find("KARMPSerializer.cpp") == std::string::npos;
            };
            const auto& places = this->UnclaimedReports();
            EXPECT_EQ(std::count_if(places.begin(), places.end(), isOfKind), failing == 0 ? 0 : 1);
            this->TakeReports();
        });
    EXPECT_EQ(creations, 2 + count);
}

TYPED_TEST(GeometryKind, CopiesAsTold)
{
    KindTraits<TypeParam>::Fill(*this->kind);
    const auto copy = TypeParam::clone(this->kind, {});
    ASSERT_TRUE(copy);
    KindTraits<TypeParam>::CheckCopy(*copy);
}

using CircleKind = GeometryKind<KARMPCircle>;

TEST_F(CircleKind, ThatIsReadAgainHasItsAngleForItsParameter)
{
    kind->SetCircle({SomePoint, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, 1.0, 2.0, 0.5});
    TestDeserializer root;
    AddCoordinates(Plain(root));
    EXPECT_EQ(kind->Deserialize(&root, entities), KARSuccess);
    const KARMathCircle read = Get(*kind, &KARMPCircle::GetCircle);
    EXPECT_EQ(read.GetScale(), 1.0);
    EXPECT_EQ(read.GetShift(), 0.0);
}

} // namespace
