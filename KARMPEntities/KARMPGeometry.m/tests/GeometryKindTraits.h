// What the tests of the geometry kinds share: a getter that expects success, and a table of the
// kinds.
#pragma once

#include "KARMPAxisSystem.h"
#include "KARMPCircle.h"
#include "KARMPCirline.h"
#include "KARMPCone.h"
#include "KARMPCylicone.h"
#include "KARMPCylinder.h"
#include "KARMPEllipse.h"
#include "KARMPHyperbola.h"
#include "KARMPLine.h"
#include "KARMPParabola.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPSphere.h"
#include "KARMPTorus.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using Coordinates = std::vector<std::pair<std::wstring, double>>;

/// A point on the grid to which numbers are written.
inline const KARMathPoint SomePoint(1.5, -2.5, 3.5);
/// Of length 1, and on the grid to which numbers are written.
inline const KARMathDirection SomeDirection(0.0, -1.0, 0.0);
inline const KARMathDirection OtherDirection(0.0, 0.0, 1.0);

template <class Value, class Kind>
Value Get(const Kind& kind, KARStatus (Kind::*getter)(Value&) const)
{
    Value value;
    EXPECT_EQ((kind.*getter)(value), KARSuccess);
    return value;
}

/// One kind of the table: an object with values of its own, what it writes, and what is left of the
/// values in the object read from that, and in a copy.
template <class T>
struct KindTraits;

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
