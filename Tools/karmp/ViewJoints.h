// The symbols of joints, connectors and couplings.
#pragma once

#include "ViewScene.h"

#include <optional>

class KARMPBody;
class KARMPConnector;
class KARMPCoupling;
class KARMPGeometry;
class KARMPJoint;

namespace karmp::tool {

class BodyDrawer;

/// Draws what stands between bodies, with what was drawn of the bodies.
class LinkDrawer
{
public:
    /// The bodies must outlive it.
    explicit LinkDrawer(const BodyDrawer& bodies) : m_bodies(bodies) {}

    /// The symbol of a joint at the geometry that its constraints use on its bodies; halfway
    /// between the bodies without one. None when nothing can be drawn.
    std::optional<ViewJoint> Draw(const KARMPJoint& joint) const;
    /// The symbol of a connector between its geometries, or its attachments, or its bodies.
    std::optional<ViewConnector> Draw(const KARMPConnector& connector) const;
    /// The line of a coupling through the joints that its variables belong to.
    std::optional<ViewCoupling> Draw(const KARMPCoupling& coupling) const;

private:
    /// What a joint uses of a body.
    struct Side
    {
        ViewFrame frame;
        ViewKind kind;
    };

    std::optional<Side> SideOn(const KARMPJoint& joint, const KARMPBody& body) const;
    std::optional<ViewFrame> FrameBetween(const KARMPJoint& joint) const;
    std::optional<ViewFrame> FrameAt(const KARMPConnector& connector, int side) const;

    const BodyDrawer& m_bodies;
};

} // namespace karmp::tool
