#include "KARMPAxisSystem.h"
#include "KARMPCircle.h"
#include "KARMPCirline.h"
#include "KARMPCone.h"
#include "KARMPCylicone.h"
#include "KARMPCylinder.h"
#include "KARMPEllipse.h"
#include "KARMPEntityTable.h"
#include "KARMPHyperbola.h"
#include "KARMPLine.h"
#include "KARMPParabola.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPSphere.h"
#include "KARMPTestFixture.h"
#include "KARMPTorus.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Coordinates = std::vector<std::pair<std::wstring, double>>;

const KARMathPoint SomePoint(1.5, -2.5, 3.5);
// Of length 1, and on the grid to which numbers are written.
const KARMathDirection SomeDirection(0.0, -1.0, 0.0);
const KARMathDirection OtherDirection(0.0, 0.0, 1.0);

template <class Value, class Kind>
Value Get(const Kind& kind, KARStatus (Kind::*getter)(Value&) const)
{
    Value value;
    EXPECT_EQ((kind.*getter)(value), KARSuccess);
    return value;
}

template <class T>
struct KindTraits;

// One kind of the table: an object with values of its own, what it writes, and what is left of the
// values in the object read from that, and in a copy.
template <>
struct KindTraits<KARMPPoint>
{
    static constexpr const wchar_t* Element = L"Point";
    static constexpr const char* Guid = "0F73E9C4-70E1-4c45-B6A5-9A528EF579D2";
    static void Fill(KARMPPoint& kind) { EXPECT_EQ(kind.SetPoint(SomePoint), KARSuccess); }
    static Coordinates Written() { return {{L"Ox", 1.5}, {L"Oy", -2.5}, {L"Oz", 3.5}}; }
    static void CheckFilled(const KARMPPoint& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPoint::GetPoint), SomePoint);
    }
    static void CheckNew(const KARMPPoint& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPoint::GetPoint), KARMathPoint());
    }
    static void CheckCopy(const KARMPPoint& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPLine>
{
    static constexpr const wchar_t* Element = L"Line";
    static constexpr const char* Guid = "B684BDE5-65A2-4edd-8408-DE764ED65963";
    static void Fill(KARMPLine& kind)
    {
        EXPECT_EQ(kind.SetLine({SomePoint, SomeDirection}), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5}, {L"Oy", -2.5}, {L"Oz", 3.5},
                {L"Dx", 0.0}, {L"Dy", -1.0}, {L"Dz", 0.0}};
    }
    static void CheckFilled(const KARMPLine& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPLine::GetLine), KARMathLine(SomePoint, SomeDirection));
    }
    static void CheckNew(const KARMPLine& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPLine::GetLine), KARMathLine());
    }
    static void CheckCopy(const KARMPLine& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPPlane>
{
    static constexpr const wchar_t* Element = L"Plane";
    static constexpr const char* Guid = "3E9E426D-0006-4927-B66F-ABA768A7698A";
    static void Fill(KARMPPlane& kind)
    {
        EXPECT_EQ(kind.SetPlane({SomePoint, SomeDirection}), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5}, {L"Oy", -2.5}, {L"Oz", 3.5},
                {L"Nx", 0.0}, {L"Ny", -1.0}, {L"Nz", 0.0}};
    }
    static void CheckFilled(const KARMPPlane& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPlane::GetPlane), KARMathPlane(SomePoint, SomeDirection));
    }
    static void CheckNew(const KARMPPlane& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPlane::GetPlane), KARMathPlane());
    }
    static void CheckCopy(const KARMPPlane& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPCircle>
{
    static constexpr const wchar_t* Element = L"Circle";
    static constexpr const char* Guid = "31B3C405-0400-48f4-93CF-F4D427B545C8";
    // As a reader makes it: the directions are those of the plane.
    static KARMathCircle Value()
    {
        KARMathVector first;
        KARMathVector second;
        KARMathPlane({1.5, -2.5, 3.5}, {0.0, 0.0, 1.0}).GetDirections(first, second);
        return {SomePoint, first, second, 4.0};
    }
    static void Fill(KARMPCircle& kind) { EXPECT_EQ(kind.SetCircle(Value()), KARSuccess); }
    static Coordinates Written()
    {
        return {{L"Cx", 1.5}, {L"Cy", -2.5}, {L"Cz", 3.5},    {L"Dx", 0.0},
                {L"Dy", 0.0}, {L"Dz", 1.0},  {L"radius", 4.0}};
    }
    static void CheckFilled(const KARMPCircle& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPCircle::GetCircle), Value());
    }
    static void CheckNew(const KARMPCircle& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPCircle::GetCircle), KARMathCircle());
    }
    static void CheckCopy(const KARMPCircle& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPAxisSystem>
{
    static constexpr const wchar_t* Element = L"AxisSystem";
    static constexpr const char* Guid = "EDE08973-A4E0-4ee6-A30D-83C1253293B3";
    // Not normalised: an axis system takes its directions as they come.
    static KARMathAxis Value()
    {
        return {SomePoint, {0.0, 2.0, 0.0}, {-3.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
    }
    static void Fill(KARMPAxisSystem& kind) { EXPECT_EQ(kind.SetAxisSystem(Value()), KARSuccess); }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5},  {L"Oy", -2.5}, {L"Oz", 3.5},   {L"D1x", 0.0},
                {L"D1y", 2.0}, {L"D1z", 0.0}, {L"D2x", -3.0}, {L"D2y", 0.0},
                {L"D2z", 0.0}, {L"D3x", 0.0}, {L"D3y", 0.0},  {L"D3z", 0.0}};
    }
    static void CheckFilled(const KARMPAxisSystem& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPAxisSystem::GetAxisSystem), Value());
    }
    static void CheckNew(const KARMPAxisSystem& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPAxisSystem::GetAxisSystem), KARMathAxis());
    }
    static void CheckCopy(const KARMPAxisSystem& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPCylinder>
{
    static constexpr const wchar_t* Element = L"Cylinder";
    static constexpr const char* Guid = "373926FE-8710-4a26-B7BA-D8FE17F5AA40";
    static void Fill(KARMPCylinder& kind)
    {
        EXPECT_EQ(kind.SetOrigin(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetAxis(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetRadius(4.0), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5},  {L"Oy", -2.5}, {L"Oz", 3.5},    {L"Dx", 0.0},
                {L"Dy", -1.0}, {L"Dz", 0.0},  {L"radius", 4.0}};
    }
    static void Check(const KARMPCylinder& kind, KARMathPoint origin, KARMathDirection axis,
                      double radius)
    {
        EXPECT_EQ(Get(kind, &KARMPCylinder::GetOrigin), origin);
        EXPECT_EQ(Get(kind, &KARMPCylinder::GetAxis), axis);
        EXPECT_EQ(Get(kind, &KARMPCylinder::GetRadius), radius);
    }
    static void CheckFilled(const KARMPCylinder& kind)
    {
        Check(kind, SomePoint, SomeDirection, 4.0);
    }
    static void CheckNew(const KARMPCylinder& kind) { Check(kind, {}, {}, 0.0); }
    static void CheckCopy(const KARMPCylinder& kind) { Check(kind, {}, {}, 4.0); }
};

template <>
struct KindTraits<KARMPCone>
{
    static constexpr const wchar_t* Element = L"Cone";
    static constexpr const char* Guid = "41DA82B3-4D89-4eb1-A647-A860747013CD";
    static void Fill(KARMPCone& kind)
    {
        EXPECT_EQ(kind.SetOrigin(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetAxis(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetAngle(0.5), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5},  {L"Oy", -2.5}, {L"Oz", 3.5},   {L"Dx", 0.0},
                {L"Dy", -1.0}, {L"Dz", 0.0},  {L"angle", 0.5}};
    }
    static void Check(const KARMPCone& kind, KARMathPoint origin, KARMathDirection axis,
                      double angle)
    {
        EXPECT_EQ(Get(kind, &KARMPCone::GetOrigin), origin);
        EXPECT_EQ(Get(kind, &KARMPCone::GetAxis), axis);
        EXPECT_EQ(Get(kind, &KARMPCone::GetAngle), angle);
    }
    static void CheckFilled(const KARMPCone& kind) { Check(kind, SomePoint, SomeDirection, 0.5); }
    static void CheckNew(const KARMPCone& kind) { Check(kind, {}, {}, 0.0); }
    static void CheckCopy(const KARMPCone& kind) { Check(kind, {}, {}, 0.5); }
};

template <>
struct KindTraits<KARMPCylicone>
{
    static constexpr const wchar_t* Element = L"Cylicone";
    static constexpr const char* Guid = "99914B73-C4EE-4772-A8A3-DAD5626BC2EB";
    static void Fill(KARMPCylicone& kind)
    {
        EXPECT_EQ(kind.SetOrigin(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetAxis(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetAngle(0.5), KARSuccess);
        EXPECT_EQ(kind.SetRadius(4.0), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5},  {L"Oy", -2.5}, {L"Oz", 3.5},    {L"Dx", 0.0},
                {L"Dy", -1.0}, {L"Dz", 0.0},  {L"angle", 0.5}, {L"radius", 4.0}};
    }
    static void Check(const KARMPCylicone& kind, KARMathPoint origin, KARMathDirection axis,
                      double angle, double radius)
    {
        EXPECT_EQ(Get(kind, &KARMPCylicone::GetOrigin), origin);
        EXPECT_EQ(Get(kind, &KARMPCylicone::GetAxis), axis);
        EXPECT_EQ(Get(kind, &KARMPCylicone::GetAngle), angle);
        EXPECT_EQ(Get(kind, &KARMPCylicone::GetRadius), radius);
    }
    static void CheckFilled(const KARMPCylicone& kind)
    {
        Check(kind, SomePoint, SomeDirection, 0.5, 4.0);
    }
    static void CheckNew(const KARMPCylicone& kind) { Check(kind, {}, {}, 0.0, 0.0); }
    static void CheckCopy(const KARMPCylicone& kind) { Check(kind, {}, {}, 0.5, 4.0); }
};

template <>
struct KindTraits<KARMPSphere>
{
    static constexpr const wchar_t* Element = L"Sphere";
    static constexpr const char* Guid = "B0DCE707-057F-4792-8B91-D88ECE8F1FD2";
    static void Fill(KARMPSphere& kind)
    {
        EXPECT_EQ(kind.SetCenter(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetRadius(4.0), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Cx", 1.5}, {L"Cy", -2.5}, {L"Cz", 3.5}, {L"radius", 4.0}};
    }
    static void Check(const KARMPSphere& kind, KARMathPoint center, double radius)
    {
        EXPECT_EQ(Get(kind, &KARMPSphere::GetCenter), center);
        EXPECT_EQ(Get(kind, &KARMPSphere::GetRadius), radius);
    }
    static void CheckFilled(const KARMPSphere& kind) { Check(kind, SomePoint, 4.0); }
    static void CheckNew(const KARMPSphere& kind) { Check(kind, {}, 0.0); }
    static void CheckCopy(const KARMPSphere& kind) { Check(kind, {}, 4.0); }
};

template <>
struct KindTraits<KARMPTorus>
{
    static constexpr const wchar_t* Element = L"Torus";
    static constexpr const char* Guid = "2E627EB0-41C4-40a9-96F5-41EB6EAB3C59";
    static void Fill(KARMPTorus& kind)
    {
        EXPECT_EQ(kind.SetCenter(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetNormal(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetMajorRadius(9.0), KARSuccess);
        EXPECT_EQ(kind.SetMinorRadius(4.0), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Cx", 1.5},  {L"Cy", -2.5}, {L"Cz", 3.5},           {L"Nx", 0.0},
                {L"Ny", -1.0}, {L"Nz", 0.0},  {L"major_radius", 9.0}, {L"minor_radius", 4.0}};
    }
    static void Check(const KARMPTorus& kind, KARMathPoint center, KARMathDirection normal,
                      double major, double minor)
    {
        EXPECT_EQ(Get(kind, &KARMPTorus::GetCenter), center);
        EXPECT_EQ(Get(kind, &KARMPTorus::GetNormal), normal);
        EXPECT_EQ(Get(kind, &KARMPTorus::GetMajorRadius), major);
        EXPECT_EQ(Get(kind, &KARMPTorus::GetMinorRadius), minor);
    }
    static void CheckFilled(const KARMPTorus& kind)
    {
        Check(kind, SomePoint, SomeDirection, 9.0, 4.0);
    }
    static void CheckNew(const KARMPTorus& kind) { Check(kind, {}, {}, 0.0, 0.0); }
    static void CheckCopy(const KARMPTorus& kind) { Check(kind, {}, {}, 9.0, 4.0); }
};

template <class Kind>
struct CurvedKindTraits
{
    static void Fill(Kind& kind)
    {
        EXPECT_EQ(kind.SetCenter(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetMajorDirection(OtherDirection), KARSuccess);
        EXPECT_EQ(kind.SetNormal(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetCurvature(0.25), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Cx", 1.5}, {L"Cy", -2.5}, {L"Cz", 3.5},  {L"Dx", 0.0}, {L"Dy", 0.0},
                {L"Dz", 1.0}, {L"Nx", 0.0},  {L"Ny", -1.0}, {L"Nz", 0.0}, {L"curvature", 0.25}};
    }
    static void Check(const Kind& kind, KARMathPoint center, KARMathDirection major,
                      KARMathDirection normal, double curvature)
    {
        EXPECT_EQ(Get(kind, &Kind::GetCenter), center);
        EXPECT_EQ(Get(kind, &Kind::GetMajorDirection), major);
        EXPECT_EQ(Get(kind, &Kind::GetNormal), normal);
        EXPECT_EQ(Get(kind, &Kind::GetCurvature), curvature);
    }
    static void CheckFilled(const Kind& kind)
    {
        Check(kind, SomePoint, OtherDirection, SomeDirection, 0.25);
    }
    static void CheckNew(const Kind& kind) { Check(kind, {}, {}, {}, 0.0); }
    static void CheckCopy(const Kind& kind) { Check(kind, {}, {}, {}, 0.25); }
};

template <class Kind>
struct TwoRadiiKindTraits
{
    static void Fill(Kind& kind)
    {
        EXPECT_EQ(kind.SetCenter(SomePoint), KARSuccess);
        EXPECT_EQ(kind.SetMajorDirection(OtherDirection), KARSuccess);
        EXPECT_EQ(kind.SetNormal(SomeDirection), KARSuccess);
        EXPECT_EQ(kind.SetMajorRadius(9.0), KARSuccess);
        EXPECT_EQ(kind.SetMinorRadius(4.0), KARSuccess);
    }
    static Coordinates Written()
    {
        return {{L"Cx", 1.5}, {L"Cy", -2.5},          {L"Cz", 3.5},          {L"Dx", 0.0},
                {L"Dy", 0.0}, {L"Dz", 1.0},           {L"Nx", 0.0},          {L"Ny", -1.0},
                {L"Nz", 0.0}, {L"major_radius", 9.0}, {L"minor_radius", 4.0}};
    }
    static void Check(const Kind& kind, KARMathPoint center, KARMathDirection majorDirection,
                      KARMathDirection normal, double major, double minor)
    {
        EXPECT_EQ(Get(kind, &Kind::GetCenter), center);
        EXPECT_EQ(Get(kind, &Kind::GetMajorDirection), majorDirection);
        EXPECT_EQ(Get(kind, &Kind::GetNormal), normal);
        EXPECT_EQ(Get(kind, &Kind::GetMajorRadius), major);
        EXPECT_EQ(Get(kind, &Kind::GetMinorRadius), minor);
    }
    static void CheckFilled(const Kind& kind)
    {
        Check(kind, SomePoint, OtherDirection, SomeDirection, 9.0, 4.0);
    }
    static void CheckNew(const Kind& kind) { Check(kind, {}, {}, {}, 0.0, 0.0); }
    static void CheckCopy(const Kind& kind) { Check(kind, {}, {}, {}, 9.0, 4.0); }
};

template <>
struct KindTraits<KARMPCirline> : CurvedKindTraits<KARMPCirline>
{
    static constexpr const wchar_t* Element = L"Cirline";
    static constexpr const char* Guid = "3DB2E27B-60E6-4005-85C3-C062AE8D3671";
};
template <>
struct KindTraits<KARMPParabola> : CurvedKindTraits<KARMPParabola>
{
    static constexpr const wchar_t* Element = L"Parabola";
    static constexpr const char* Guid = "14EFD987-446A-445c-B8AD-A26C2ED4D2E7";
};
template <>
struct KindTraits<KARMPEllipse> : TwoRadiiKindTraits<KARMPEllipse>
{
    static constexpr const wchar_t* Element = L"Ellipse";
    static constexpr const char* Guid = "2C5061F4-6F15-4565-B119-29CA0D8B953D";
};
template <>
struct KindTraits<KARMPHyperbola> : TwoRadiiKindTraits<KARMPHyperbola>
{
    static constexpr const wchar_t* Element = L"Hyperbola";
    static constexpr const char* Guid = "33B59224-4573-4659-B071-6992102A46BB";
};

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
                             KARMPCirline, KARMPParabola, KARMPEllipse, KARMPHyperbola>;
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

/// What a reader makes of three components of a direction.
class DirectionOnRead : public KARMPTestFixture
{
protected:
    KARMathDirection Of(double x, double y, double z)
    {
        TestDeserializer root(L"Torus");
        root.Attribute(L"id", L"t").Attribute(L"name", L"t").Attribute(L"isActive", L"yes");
        root.Add(L"Coordinates")
            .Leaf(L"Cx", 0.0)
            .Leaf(L"Cy", 0.0)
            .Leaf(L"Cz", 0.0)
            .Leaf(L"Nx", x)
            .Leaf(L"Ny", y)
            .Leaf(L"Nz", z)
            .Leaf(L"major_radius", 0.0)
            .Leaf(L"minor_radius", 0.0);
        const auto torus = KARMPTorus::create(L"");
        EXPECT_EQ(torus->Deserialize(&root, KARMPEntityTable()), KARSuccess);
        return Get(*torus, &KARMPTorus::GetNormal);
    }
};

TEST_F(DirectionOnRead, IsTheFirstAxisForNone)
{
    EXPECT_EQ(Of(0.0, 0.0, 0.0), KARMathDirection(1.0, 0.0, 0.0));
}

TEST_F(DirectionOnRead, IsScaledToOne)
{
    EXPECT_EQ(Of(0.0, 0.0, 2.0), KARMathDirection(0.0, 0.0, 1.0));
    EXPECT_EQ(Of(0.0, -0.5, 0.0), KARMathDirection(0.0, -1.0, 0.0));
    const KARMathDirection diagonal = Of(1.0, 1.0, 1.0);
    const double factor = 1.0 / std::sqrt(3.0);
    EXPECT_EQ(diagonal, KARMathDirection(factor, factor, factor));
}

TEST_F(DirectionOnRead, IsNotTouchedWhenTheSquaresSumToOne)
{
    const double y = 0.6;
    const double z = 0.8;
    ASSERT_EQ(y * y + z * z, 1.0);
    EXPECT_EQ(Of(0.0, y, z), KARMathDirection(0.0, y, z));
}

TEST_F(DirectionOnRead, IsScaledWhereItsSquaresOverflowOrUnderflow)
{
    for (const double size : {1e200, 1.7e308, 1e154, 1e-154, 1e-162, 1e-200, 5e-324}) {
        EXPECT_EQ(Of(0.0, 0.0, size), KARMathDirection(0.0, 0.0, 1.0)) << size;
        const KARMathDirection diagonal = Of(size, -size, size);
        EXPECT_NEAR(diagonal.GetX(), 1.0 / std::sqrt(3.0), 1e-15) << size;
        EXPECT_NEAR(diagonal.GetY(), -1.0 / std::sqrt(3.0), 1e-15) << size;
        EXPECT_NEAR(diagonal.GetZ(), 1.0 / std::sqrt(3.0), 1e-15) << size;
    }
    const KARMathDirection uneven = Of(3e-200, 0.0, 4e-200);
    EXPECT_NEAR(uneven.GetX(), 0.6, 1e-15);
    EXPECT_NEAR(uneven.GetZ(), 0.8, 1e-15);
}

TEST_F(DirectionOnRead, FollowsTheRuleBitForBitForOrdinaryComponents)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> exponent(-150.0, 150.0);
    std::uniform_real_distribution<double> factor(-1.0, 1.0);
    for (int i = 0; i < 200; ++i) {
        const double size = std::pow(10.0, exponent(random));
        const double x = size * factor(random);
        const double y = size * factor(random);
        const double z = size * factor(random);
        const double scale = 1.0 / std::sqrt(x * x + y * y + z * z);
        EXPECT_EQ(Of(x, y, z), KARMathDirection(x * scale, y * scale, z * scale));
    }
}

TEST(GeometryDirections, AreStoredAsGiven)
{
    const auto cylinder = KARMPCylinder::create(L"");
    cylinder->SetAxis({0.0, 0.0, 2.0});
    EXPECT_EQ(Get(*cylinder, &KARMPCylinder::GetAxis), KARMathDirection(0.0, 0.0, 2.0));
}

TEST_F(DirectionOnRead, HoldsForTheAxisOfACircleToo)
{
    TestDeserializer root(L"Circle");
    root.Attribute(L"id", L"c").Attribute(L"name", L"c").Attribute(L"isActive", L"yes");
    root.Add(L"Coordinates")
        .Leaf(L"Cx", 0.0)
        .Leaf(L"Cy", 0.0)
        .Leaf(L"Cz", 0.0)
        .Leaf(L"Dx", 0.0)
        .Leaf(L"Dy", 3.0)
        .Leaf(L"Dz", 0.0)
        .Leaf(L"radius", 2.0);
    const auto circle = KARMPCircle::create(L"");
    EXPECT_EQ(circle->Deserialize(&root, KARMPEntityTable()), KARSuccess);
    const KARMathCircle value = Get(*circle, &KARMPCircle::GetCircle);
    EXPECT_EQ(value.GetNormal(), KARMathVector(0.0, 1.0, 0.0));
    EXPECT_EQ(value.GetRadius(), 2.0);
    EXPECT_EQ(value.GetScale(), 1.0);
    EXPECT_EQ(value.GetShift(), 0.0);
}

TEST_F(DirectionOnRead, HoldsForTheNormalOfAPlaneToo)
{
    const auto normalOf = [](double x, double y, double z) {
        TestDeserializer root(L"Plane");
        root.Attribute(L"id", L"p").Attribute(L"name", L"p").Attribute(L"isActive", L"yes");
        root.Add(L"Coordinates")
            .Leaf(L"Ox", 0.0)
            .Leaf(L"Oy", 0.0)
            .Leaf(L"Oz", 0.0)
            .Leaf(L"Nx", x)
            .Leaf(L"Ny", y)
            .Leaf(L"Nz", z);
        const auto plane = KARMPPlane::create(L"");
        EXPECT_EQ(plane->Deserialize(&root, KARMPEntityTable()), KARSuccess);
        return Get(*plane, &KARMPPlane::GetPlane).GetNormal();
    };
    EXPECT_EQ(normalOf(0.0, 0.0, 0.0), KARMathDirection(1.0, 0.0, 0.0));
    EXPECT_EQ(normalOf(0.0, 3.0, 0.0), KARMathDirection(0.0, 1.0, 0.0));
}

TEST_F(DirectionOnRead, OfALineGoesOnWithoutAComponent)
{
    TestDeserializer root(L"Line");
    root.Attribute(L"id", L"l").Attribute(L"name", L"l").Attribute(L"isActive", L"yes");
    root.Add(L"Coordinates")
        .Leaf(L"Ox", 1.0)
        .Leaf(L"Oy", 2.0)
        .Leaf(L"Oz", 3.0)
        .Leaf(L"Dy", 0.0)
        .Leaf(L"Dz", 5.0);
    const auto line = KARMPLine::create(L"");
    EXPECT_EQ(line->Deserialize(&root, KARMPEntityTable()), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Get(*line, &KARMPLine::GetLine), KARMathLine({1.0, 2.0, 3.0}, {0.0, 0.0, 1.0}));
}

} // namespace
