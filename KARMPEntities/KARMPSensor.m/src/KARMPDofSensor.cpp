#include "KARMPDofSensor.h"

#include "KARMPBody.h"
#include "KARMPContentTakeBack.h"
#include "KARMPContentWalk.h"
#include "KARMPDofSlots.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPDofSensor, "1543EE3D-9A18-4716-8A1D-79A1F3BE6020");

namespace {

struct Translation
{
    KARMathVector direction;
};

/// A rotation, or a screw, which has a pitch.
struct Axis
{
    KARMathPoint pole;
    KARMathVector direction;
    double pitch = 0.0;
};

constexpr karmp::Names<3> TranslationNames{L"Tx", L"Ty", L"Tz"};
constexpr karmp::Names<3> PoleNames{L"Polex", L"Poley", L"Polez"};
constexpr karmp::Names<3> AxisNames{L"Axisx", L"Axisy", L"Axisz"};

} // namespace

template <>
struct karmp::ContentOf<KARMPDofSensor>
{
    using C = KARMPDofSensor;

    static KARStatus GetTranslation(const C& sensor, int index, Translation& translation)
    {
        return sensor.GetTranslation(index, translation.direction);
    }
    static KARStatus AddTranslation(C& sensor, const Translation& translation)
    {
        return sensor.AddTranslation(translation.direction);
    }
    static KARStatus GetRotation(const C& sensor, int index, Axis& axis)
    {
        return sensor.GetRotation(index, axis.pole, axis.direction);
    }
    static KARStatus AddRotation(C& sensor, const Axis& axis)
    {
        return sensor.AddRotation(axis.pole, axis.direction);
    }
    static KARStatus GetScrew(const C& sensor, int index, Axis& axis)
    {
        return sensor.GetScrew(index, axis.pole, axis.direction, axis.pitch);
    }
    static KARStatus AddScrew(C& sensor, const Axis& axis)
    {
        return sensor.AddScrew(axis.pole, axis.direction, axis.pitch);
    }

    static constexpr auto PoleAndAxis = karmp::List(
        NumbersElement<&Axis::pole>(L"Pole", PoleNames, "A point of the axis.",
                                    KARMPPhysicalQuantity::Length),
        NumbersElement<&Axis::direction>(L"Axis", AxisNames, "The direction of the axis."));

    static constexpr auto List = Element(
        L"DofSensor", "Holds the freedoms between two bodies.", CountingFrame,
        // The numbers repeat what the lists say, which decide when they are read.
        Attribute(Integer<&C::GetNumberOfDof>(L"numberOfDof", "The number of all freedoms."))
            .WrittenOnly(),
        TakenBackFrom<&C::m_numberOfTranslations>(
            Records<&C::GetNumberOfTranslations, &GetTranslation, &AddTranslation>(
                L"Translations", L"Translation", "The free translations.",
                Numbers<&Translation::direction>(L"Direction", TranslationNames,
                                                 "The direction of the translation."))
                .CountedBy(L"number")),
        TakenBackFrom<&C::m_numberOfRotations>(
            Records<&C::GetNumberOfRotations, &GetRotation, &AddRotation>(
                L"Rotations", L"Rotation", "The free rotations.", PoleAndAxis)
                .CountedBy(L"number")),
        TakenBackFrom<&C::m_numberOfScrews>(
            Records<&C::GetNumberOfScrews, &GetScrew, &AddScrew>(
                L"Screws", L"Screw", "The free screw motions.", PoleAndAxis,
                Group(L"Pitch", "The pitch of the screw.",
                      Number<&Axis::pitch>(L"Pitch", "How far it shifts as it turns.")))
                .CountedBy(L"number")),
        Reference<&C::m_constrainedBody, &C::SetConstrainedBody>(L"ConstrainedBody",
                                                                 "The body that moves."),
        Reference<&C::m_referenceBody, &C::SetReferenceBody>(L"ReferenceBody",
                                                             "The body against which it moves."));
};
KARMP_DEFINE_CONTENT(KARMPDofSensor);

namespace {

std::size_t Slot(int index)
{
    return static_cast<std::size_t>(index);
}

} // namespace

KARMPDofSensor::KARMPDofSensor() = default;
KARMPDofSensor::KARMPDofSensor(const KARMPDofSensor& source, CopyMode mode)
    : Super(source, mode),
      m_translations(source.m_translations),
      m_poles(source.m_poles),
      m_axes(source.m_axes),
      m_pitches(source.m_pitches),
      m_numberOfTranslations(source.m_numberOfTranslations),
      m_numberOfRotations(source.m_numberOfRotations),
      m_numberOfScrews(source.m_numberOfScrews)
{}
KARMPDofSensor::~KARMPDofSensor() = default;

KARStatus KARMPDofSensor::Reset()
{
    m_numberOfTranslations = 0;
    m_numberOfRotations = 0;
    m_numberOfScrews = 0;
    return KARSuccess;
}

KARStatus KARMPDofSensor::AddTranslation(const KARMathVector& translation)
{
    return karmp::AddToSlots(m_translations, m_numberOfTranslations, translation);
}

KARStatus KARMPDofSensor::AddRotation(const KARMathPoint& pole, const KARMathVector& axis)
{
    if (!HasFreeAxis())
        return KARFailure;
    const std::size_t slot = Slot(m_numberOfRotations++);
    m_poles[slot] = pole;
    m_axes[slot] = axis;
    return KARSuccess;
}

KARStatus KARMPDofSensor::AddScrew(const KARMathPoint& pole, const KARMathVector& axis,
                                   double pitch)
{
    if (!HasFreeAxis())
        return KARFailure;
    const std::size_t slot = Slot(Slots - ++m_numberOfScrews);
    m_poles[slot] = pole;
    m_axes[slot] = axis;
    m_pitches[slot] = pitch;
    return KARSuccess;
}

KARStatus KARMPDofSensor::GetTranslation(int index, KARMathVector& translation) const
{
    return karmp::GetFromSlots(m_translations, m_numberOfTranslations, index, translation);
}

KARStatus KARMPDofSensor::GetRotation(int index, KARMathPoint& pole, KARMathVector& axis) const
{
    if (index < 0 || index >= m_numberOfRotations)
        return KARFailure;
    pole = m_poles[Slot(index)];
    axis = m_axes[Slot(index)];
    return KARSuccess;
}

KARStatus KARMPDofSensor::GetScrew(int index, KARMathPoint& pole, KARMathVector& axis,
                                   double& pitch) const
{
    if (index < 0 || index >= m_numberOfScrews)
        return KARFailure;
    const std::size_t slot = Slot(Slots - 1 - index);
    pole = m_poles[slot];
    axis = m_axes[slot];
    pitch = m_pitches[slot];
    return KARSuccess;
}

KARStatus KARMPDofSensor::GetNumberOfDof(int& number) const
{
    number = m_numberOfTranslations + m_numberOfRotations + m_numberOfScrews;
    return KARSuccess;
}
