#include "KARMPDisplacementActuator2D.h"

#include "KARIMPDisplacementActuator2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPDragLineItem.h"
#include "KARMPFrames.h"
#include "KARMPGeometry2D.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPDisplacementActuator2D, "F1CA2646-7ABB-4AAB-8CE4-D62AA77C4A74");

template <>
struct karmp::ContentOf<KARMPDisplacementActuator2D>
{
    using C = KARMPDisplacementActuator2D;
    static constexpr auto List = Element(
        L"DisplacementActuator2D",
        "Moves a body in a plane by a transformation, or drags it along a line.", LenientFrame,
        Reference<&C::m_body, &C::SetBody>(L"Body2D", "The body that is moved."),
        Reference<&C::m_geometry, &C::SetGeometry>(L"Geometry2D",
                                                   "The geometry at which the move is taken."),
        Transformation<&C::m_displacement>(L"Displacement2D",
                                           "The transformation of the plane by which it is moved.")
            .Through<&C::SetDisplacement>(),
        Group(L"DragLine2D", "The line along which it is dragged.",
              NumbersElement<&C::m_dragLine>(L"Coordinates2D", PlanarLineNames,
                                             "A point of the line and its direction.")
                  .Through<&C::SetDisplacementByDragLine>()));
};
KARMP_DEFINE_CONTENT(KARMPDisplacementActuator2D);

KARMPDisplacementActuator2D::KARMPDisplacementActuator2D() = default;
KARMPDisplacementActuator2D::KARMPDisplacementActuator2D(const KARMPDisplacementActuator2D& source,
                                                         CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement), m_dragLine(source.m_dragLine)
{}
KARMPDisplacementActuator2D::~KARMPDisplacementActuator2D() = default;

KARStatus KARMPDisplacementActuator2D::GetLoader(KARIMPDisplacementActuator2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPDisplacementActuator2D::SetDisplacement(const KARMathTransformation2D& displacement)
{
    m_displacement = displacement;
    return karmp::TellLoader<KARIMPDisplacementActuator2DLoader>(
        *this, [&](auto& loader) { return loader.SetDisplacement(m_displacement); });
}

KARStatus KARMPDisplacementActuator2D::GetDisplacement(KARMathTransformation2D& displacement) const
{
    displacement = m_displacement;
    return KARSuccess;
}

KARStatus KARMPDisplacementActuator2D::SetDisplacementByDragLine(const KARMathLine2D& line)
{
    m_dragLine = line;
    return karmp::TellLoader<KARIMPDisplacementActuator2DLoader>(
        *this, [&](auto& loader) { return loader.SetDisplacementByDragLine(m_dragLine); });
}

KARStatus KARMPDisplacementActuator2D::GetDisplacementByDragLine(KARMathLine2D& line) const
{
    line = m_dragLine;
    return KARSuccess;
}

KARStatus KARMPDisplacementActuator2D::GetMoveStatus(KARMPMoveStatus::Enum& status) const
{
    status = {};
    return karmp::TellLoader<KARIMPDisplacementActuator2DLoader>(
        *this, [&](auto& loader) { return loader.GetMoveStatus(status); });
}
