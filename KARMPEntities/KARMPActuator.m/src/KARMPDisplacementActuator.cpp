#include "KARMPDisplacementActuator.h"

#include "KARIMPDisplacementActuatorLoader.h"
#include "KARMPBody.h"
#include "KARMPDragLineItem.h"
#include "KARMPFrames.h"
#include "KARMPGeometry.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPDisplacementActuator, "93D94421-11AE-459b-8A24-58677A143A41");

template <>
struct karmp::ContentOf<KARMPDisplacementActuator>
{
    using C = KARMPDisplacementActuator;
    static constexpr auto List = Element(
        L"DisplacementActuator", "Moves a body by a transformation, or drags it along a line.",
        LenientFrame, Reference<&C::m_body, &C::SetBody>(L"Body", "The body that is moved."),
        Reference<&C::m_geometry, &C::SetGeometry>(L"Geometry",
                                                   "The geometry at which the move is taken."),
        Transformation<&C::m_displacement>(L"Displacement",
                                           "The transformation of the world by which it is moved.")
            .Through<&C::SetDisplacement>(),
        Group(
            L"DragLine", "The line along which it is dragged.",
            NumbersElement<&C::m_dragLine>(L"Coordinates", LineNames,
                                           "A point of the line and its direction, a unit vector.")
                .Through<&C::SetDisplacementByDragLine>()));
};
KARMP_DEFINE_CONTENT(KARMPDisplacementActuator);

KARMPDisplacementActuator::KARMPDisplacementActuator() = default;
KARMPDisplacementActuator::KARMPDisplacementActuator(const KARMPDisplacementActuator& source,
                                                     CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement), m_dragLine(source.m_dragLine)
{}
KARMPDisplacementActuator::~KARMPDisplacementActuator() = default;

KARStatus KARMPDisplacementActuator::GetLoader(KARIMPDisplacementActuatorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPDisplacementActuator::SetDisplacement(const KARMathTransformation& displacement)
{
    m_displacement = displacement;
    return karmp::TellLoader<KARIMPDisplacementActuatorLoader>(
        *this, [&](auto& loader) { return loader.SetDisplacement(m_displacement); });
}

KARStatus KARMPDisplacementActuator::GetDisplacement(KARMathTransformation& displacement) const
{
    displacement = m_displacement;
    return KARSuccess;
}

KARStatus KARMPDisplacementActuator::SetDisplacementByDragLine(const KARMathLine& line)
{
    m_dragLine = line;
    return karmp::TellLoader<KARIMPDisplacementActuatorLoader>(
        *this, [&](auto& loader) { return loader.SetDisplacementByDragLine(m_dragLine); });
}

KARStatus KARMPDisplacementActuator::GetDisplacementByDragLine(KARMathLine& line) const
{
    line = m_dragLine;
    return KARSuccess;
}

KARStatus KARMPDisplacementActuator::GetMoveStatus(KARMPMoveStatus::Enum& status) const
{
    status = {};
    return karmp::TellLoader<KARIMPDisplacementActuatorLoader>(
        *this, [&](auto& loader) { return loader.GetMoveStatus(status); });
}
