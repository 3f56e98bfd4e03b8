// The symbols of joints, connectors and couplings.
#pragma once

#include "ViewScene.h"

#include <functional>
#include <optional>

class KARMPBody;
class KARMPConnector;
class KARMPCoupling;
class KARMPGeometry;
class KARMPJoint;

namespace karmp::tool {

/// Gives what is drawn of a body; null for one that cannot be drawn.
using BodyFinder = std::function<const ViewBody*(const KARMPBody&)>;
/// Gives the drawing of a geometry in the axes of its body; null for one that is not drawn.
using DrawingFinder = std::function<const ViewDrawing*(const KARMPGeometry&)>;

/// Draws what stands between bodies, with what was drawn of the bodies.
class LinkDrawer
{
public:
    LinkDrawer(BodyFinder bodyOf, DrawingFinder drawingOf)
        : m_bodyOf(std::move(bodyOf)), m_drawingOf(std::move(drawingOf))
    {}

    /// The symbol of a joint at the geometry that its constraints use on its bodies; halfway
    /// between the bodies without one. None when nothing can be drawn.
    std::optional<ViewJoint> Draw(const KARMPJoint& joint) const;
    /// The symbol of a connector between its geometries, or its attachments, or its bodies.
    std::optional<ViewConnector> Draw(const KARMPConnector& connector) const;
    /// The line of a coupling through the joints that its variables belong to.
    std::optional<ViewCoupling> Draw(const KARMPCoupling& coupling) const;

private:
    std::optional<ViewFrame> FrameIn(const KARMPJoint& joint, const KARMPBody& body) const;
    std::optional<ViewFrame> FrameBetween(const KARMPJoint& joint) const;
    std::optional<ViewFrame> FrameAt(const KARMPConnector& connector, int side) const;

    BodyFinder m_bodyOf;
    DrawingFinder m_drawingOf;
};

} // namespace karmp::tool
