#include "KARMPPlainConstraints.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPConcentricity, "EE3F37A0-85CC-475a-9B6A-63AFE2E066B3");

template <>
struct karmp::ContentOf<KARMPConcentricity>
{
    static constexpr auto List = Element(
        L"Concentricity", "Two circles, spheres or points have one centre.", ConstraintFrame);
};
KARMP_DEFINE_CONTENT(KARMPConcentricity);

KARMPConcentricity::KARMPConcentricity() = default;
KARMPConcentricity::KARMPConcentricity(const KARMPConcentricity& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPConcentricity::~KARMPConcentricity() = default;

KARMP_DEFINE_ENTITY(KARMP0DoF, "9360C18A-CD02-400A-BAB8-46A77772E1F7");

template <>
struct karmp::ContentOf<KARMP0DoF>
{
    static constexpr auto List =
        Element(L"ZeroDoF", "Nothing moves against one another.", ConstraintFrame);
};
KARMP_DEFINE_CONTENT(KARMP0DoF);

KARMP0DoF::KARMP0DoF() = default;
KARMP0DoF::KARMP0DoF(const KARMP0DoF& source, CopyMode mode) : Super(source, mode) {}
KARMP0DoF::~KARMP0DoF() = default;

KARMP_DEFINE_ENTITY(KARMP6DoF, "176BF2B8-53E8-403b-99E3-38D09FEA994B");

template <>
struct karmp::ContentOf<KARMP6DoF>
{
    static constexpr auto List = Element(L"SixDoF", "Nothing is held.", ConstraintFrame);
};
KARMP_DEFINE_CONTENT(KARMP6DoF);

KARMP6DoF::KARMP6DoF() = default;
KARMP6DoF::KARMP6DoF(const KARMP6DoF& source, CopyMode mode) : Super(source, mode) {}
KARMP6DoF::~KARMP6DoF() = default;

KARMP_DEFINE_ENTITY(KARMPPlanarConstraint, "B9D5A854-44F8-45DA-B57A-F86797E2F60C");

template <>
struct karmp::ContentOf<KARMPPlanarConstraint>
{
    static constexpr auto List =
        Element(L"PlanarConstraint", "A sliding of two planes on one another.", KinematicFrame)
            .NamedBy<&KARMPPlanarConstraint::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPPlanarConstraint);

KARMPPlanarConstraint::KARMPPlanarConstraint() = default;
KARMPPlanarConstraint::KARMPPlanarConstraint(const KARMPPlanarConstraint& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPPlanarConstraint::~KARMPPlanarConstraint() = default;

std::wstring_view KARMPPlanarConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARMP_DEFINE_ENTITY(KARMPUniversalConstraint, "34596DE5-1527-4877-AD3E-43B9F92FF7D5");

template <>
struct karmp::ContentOf<KARMPUniversalConstraint>
{
    static constexpr auto List =
        Element(L"UniversalConstraint", "A turning about two axes at a right angle.",
                KinematicFrame)
            .NamedBy<&KARMPUniversalConstraint::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPUniversalConstraint);

KARMPUniversalConstraint::KARMPUniversalConstraint() = default;
KARMPUniversalConstraint::KARMPUniversalConstraint(const KARMPUniversalConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode)
{}
KARMPUniversalConstraint::~KARMPUniversalConstraint() = default;

std::wstring_view KARMPUniversalConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}
