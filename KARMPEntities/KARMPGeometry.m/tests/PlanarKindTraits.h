// The planar kinds and the sketch in the table of geometry kinds.
#pragma once

#include "GeometryKindTraits.h"
#include "KARMPCircle2D.h"
#include "KARMPLine2D.h"
#include "KARMPPoint2D.h"
#include "KARMPSketch.h"

template <>
struct KindTraits<KARMPPoint2D>
{
    static constexpr const wchar_t* Element = L"Point2D";
    static constexpr const char* Guid = "50988F37-ED74-4A53-B049-948CE0206C09";
    static void Fill(KARMPPoint2D& kind) { EXPECT_EQ(kind.SetPoint({1.5, -2.5}), KARSuccess); }
    static Coordinates Written() { return {{L"Ox", 1.5}, {L"Oy", -2.5}}; }
    static void CheckFilled(const KARMPPoint2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPoint2D::GetPoint), KARMathPoint2D(1.5, -2.5));
    }
    static void CheckNew(const KARMPPoint2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPPoint2D::GetPoint), KARMathPoint2D());
    }
    static void CheckCopy(const KARMPPoint2D& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPLine2D>
{
    static constexpr const wchar_t* Element = L"Line2D";
    static constexpr const char* Guid = "5FB1652B-CCE3-4A20-A659-D506EB33B803";
    // The direction is no unit vector and stays so.
    static KARMathLine2D Value() { return {{1.5, -2.5}, {0.0, -4.0}}; }
    static void Fill(KARMPLine2D& kind) { EXPECT_EQ(kind.SetLine(Value()), KARSuccess); }
    static Coordinates Written()
    {
        return {{L"Ox", 1.5}, {L"Oy", -2.5}, {L"Dx", 0.0}, {L"Dy", -4.0}};
    }
    static void CheckFilled(const KARMPLine2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPLine2D::GetLine), Value());
    }
    static void CheckNew(const KARMPLine2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPLine2D::GetLine), KARMathLine2D());
    }
    static void CheckCopy(const KARMPLine2D& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPCircle2D>
{
    static constexpr const wchar_t* Element = L"Circle2D";
    static constexpr const char* Guid = "F5A9A1B4-855E-4655-AA4D-FBC37C925813";
    static void Fill(KARMPCircle2D& kind)
    {
        EXPECT_EQ(kind.SetPoint({1.5, -2.5}), KARSuccess);
        EXPECT_EQ(kind.SetRadius(4.5), KARSuccess);
    }
    static Coordinates Written() { return {{L"Cx", 1.5}, {L"Cy", -2.5}, {L"radius", 4.5}}; }
    static void CheckFilled(const KARMPCircle2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPCircle2D::GetPoint), KARMathPoint2D(1.5, -2.5));
        EXPECT_EQ(Get(kind, &KARMPCircle2D::GetRadius), 4.5);
    }
    static void CheckNew(const KARMPCircle2D& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPCircle2D::GetPoint), KARMathPoint2D());
        EXPECT_EQ(Get(kind, &KARMPCircle2D::GetRadius), 0.0);
    }
    // Both, unlike a circle's relatives in space.
    static void CheckCopy(const KARMPCircle2D& kind) { CheckFilled(kind); }
};

template <>
struct KindTraits<KARMPSketch>
{
    static constexpr const wchar_t* Element = L"Sketch";
    static constexpr const char* Guid = "EE00589C-16C5-4360-A459-C7CD92E5937D";
    static void Fill(KARMPSketch& kind)
    {
        EXPECT_EQ(kind.SetPlane({SomePoint, SomeDirection}), KARSuccess);
    }
    static Coordinates Written() { return KindTraits<KARMPPlane>::Written(); }
    static void CheckFilled(const KARMPSketch& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPSketch::GetPlane), KARMathPlane(SomePoint, SomeDirection));
    }
    static void CheckNew(const KARMPSketch& kind)
    {
        EXPECT_EQ(Get(kind, &KARMPSketch::GetPlane), KARMathPlane());
    }
    static void CheckCopy(const KARMPSketch& kind) { CheckFilled(kind); }
};
