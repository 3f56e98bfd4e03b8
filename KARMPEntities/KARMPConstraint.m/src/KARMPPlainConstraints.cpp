#include "KARMPPlainConstraints.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPConcentricity, "EE3F37A0-85CC-475a-9B6A-63AFE2E066B3", L"Concentricity",
                  ConstraintFrame, "Two circles, spheres or points have one centre.");
KARMP_DEFINE_KIND(KARMP0DoF, "9360C18A-CD02-400A-BAB8-46A77772E1F7", L"ZeroDoF", ConstraintFrame,
                  "Nothing moves against one another.");
KARMP_DEFINE_KIND(KARMP6DoF, "176BF2B8-53E8-403b-99E3-38D09FEA994B", L"SixDoF", ConstraintFrame,
                  "Nothing is held.");

KARMP_DEFINE_ENTITY(KARMPPlanarConstraint, "B9D5A854-44F8-45DA-B57A-F86797E2F60C");

template <>
struct karmp::ContentOf<KARMPPlanarConstraint>
{
    static constexpr auto List =
        Element(L"PlanarConstraint", "A sliding of two planes on one another.", KinematicFrame)
            .NamedBy<&KARMPPlanarConstraint::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPPlanarConstraint);
KARMP_DEFINE_KIND_LIFE(KARMPPlanarConstraint);

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
KARMP_DEFINE_KIND_LIFE(KARMPUniversalConstraint);

std::wstring_view KARMPUniversalConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}
