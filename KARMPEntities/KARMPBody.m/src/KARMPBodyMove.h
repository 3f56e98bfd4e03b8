#pragma once

#include "KARMPBody.h"
#include "KARMPBodyWalk.h"

namespace karmp {

/// A move on its way down a tree of spatial bodies: each body's children, then its impacted
/// children.
///
/// A child takes part in the move. An impacted child does not move; neither do its children, since
/// for a child the identity is skipped, but its own impacted children are refreshed in turn.
class BodyMove : public BodyWalk<KARMPBody, KARMathTransformation>
{
public:
    explicit BodyMove(const KARMathTransformation& move);

    /// Moves what stands below a body, not the body itself. A failure when the walk over its
    /// impacted children ended early.
    KARStatus Below(KARMPBody& body);

private:
    bool NextFollower(Step& step) override;

    KARMathTransformation m_move;
};

} // namespace karmp
