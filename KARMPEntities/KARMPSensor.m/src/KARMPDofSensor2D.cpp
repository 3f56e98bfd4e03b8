#include "KARMPDofSensor2D.h"

#include "KARMPBody2D.h"
#include "KARMPContentTakeBack.h"
#include "KARMPContentWalk.h"
#include "KARMPDofSlots.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPDofSensor2D, "948814B0-6C3F-4358-81DB-07C44E558918");

namespace {

// Records have names of their own in the whole library: functions that the compiler makes of
// pointers to their members are merged by name, although the records are local.
struct PlanarTranslation
{
    KARMathVector2D direction;
};

struct PlanarRotation
{
    KARMathPoint2D center;
};

constexpr karmp::Names<2> TranslationNames{L"Tx", L"Ty"};
constexpr karmp::Names<2> CenterNames{L"xCenter", L"yCenter"};

} // namespace

template <>
struct karmp::ContentOf<KARMPDofSensor2D>
{
    using C = KARMPDofSensor2D;

    static KARStatus GetTranslation(const C& sensor, int index, PlanarTranslation& translation)
    {
        return sensor.GetTranslation(index, translation.direction);
    }
    static KARStatus AddTranslation(C& sensor, const PlanarTranslation& translation)
    {
        return sensor.AddTranslation(translation.direction);
    }
    static KARStatus GetRotation(const C& sensor, int index, PlanarRotation& rotation)
    {
        return sensor.GetRotation(index, rotation.center);
    }
    static KARStatus AddRotation(C& sensor, const PlanarRotation& rotation)
    {
        return sensor.AddRotation(rotation.center);
    }

    static constexpr auto List = Element(
        L"DofSensor2D", "Holds the freedoms between two planar bodies.", CountingFrame,
        Attribute(Integer<&C::GetNumberOfDof>(L"numberOfDof", "The number of all freedoms."))
            .WrittenOnly(),
        TakenBackFrom<&C::m_numberOfTranslations>(
            Records<&C::GetNumberOfTranslations, &GetTranslation, &AddTranslation>(
                L"Translations2D", L"Translation2D", "The free translations.",
                Numbers<&PlanarTranslation::direction>(L"Direction", TranslationNames,
                                                       "The direction of the translation."))
                .CountedBy(L"number")),
        TakenBackFrom<&C::m_numberOfRotations>(
            Records<&C::GetNumberOfRotations, &GetRotation, &AddRotation>(
                L"Rotations2D", L"Rotation2D", "The free rotations.",
                NumbersElement<&PlanarRotation::center>(L"Center", CenterNames,
                                                        "The centre of the rotation.",
                                                        KARMPPhysicalQuantity::Length))
                .CountedBy(L"number")),
        Reference<&C::m_constrainedBody, &C::SetConstrainedBody>(L"ConstrainedBody2D",
                                                                 "The body that moves."),
        Reference<&C::m_referenceBody, &C::SetReferenceBody>(L"ReferenceBody2D",
                                                             "The body against which it moves."));
};
KARMP_DEFINE_CONTENT(KARMPDofSensor2D);

KARMPDofSensor2D::KARMPDofSensor2D() = default;
KARMPDofSensor2D::KARMPDofSensor2D(const KARMPDofSensor2D& source, CopyMode mode)
    : Super(source, mode),
      m_translations(source.m_translations),
      m_centers(source.m_centers),
      m_numberOfTranslations(source.m_numberOfTranslations),
      m_numberOfRotations(source.m_numberOfRotations)
{}
KARMPDofSensor2D::~KARMPDofSensor2D() = default;

KARStatus KARMPDofSensor2D::Reset()
{
    m_numberOfTranslations = 0;
    m_numberOfRotations = 0;
    return KARSuccess;
}

KARStatus KARMPDofSensor2D::AddTranslation(const KARMathVector2D& translation)
{
    return karmp::AddToSlots(m_translations, m_numberOfTranslations, translation);
}

KARStatus KARMPDofSensor2D::AddRotation(const KARMathPoint2D& center)
{
    return karmp::AddToSlots(m_centers, m_numberOfRotations, center);
}

KARStatus KARMPDofSensor2D::GetTranslation(int index, KARMathVector2D& translation) const
{
    return karmp::GetFromSlots(m_translations, m_numberOfTranslations, index, translation);
}

KARStatus KARMPDofSensor2D::GetRotation(int index, KARMathPoint2D& center) const
{
    return karmp::GetFromSlots(m_centers, m_numberOfRotations, index, center);
}

KARStatus KARMPDofSensor2D::GetNumberOfDof(int& number) const
{
    number = m_numberOfTranslations + m_numberOfRotations;
    return KARSuccess;
}
