// A move on its way down a tree of bodies.
#pragma once

#include "KARMPBody.h"

#include <vector>

namespace karmp {

/// Walks a tree of bodies depth first, each body's children before its impacted children, with a
/// stack of its own, so that the depth of a tree does not matter.
///
/// A child takes part in the move. An impacted child does not move; neither do its children, since
/// for a child the identity is skipped, but its own impacted children are refreshed in turn.
class BodyMove
{
public:
    explicit BodyMove(const KARMathTransformation& move);
    ~BodyMove();
    BodyMove(const BodyMove&) = delete;
    BodyMove& operator=(const BodyMove&) = delete;

    /// Moves what stands below a body, not the body itself. A failure when the walk over its
    /// impacted children ended early.
    KARStatus Below(KARMPBody& body);

private:
    enum Pace { Moving, Resting };

    struct Step
    {
        QOBSharedHandle<KARMPBody> body;
        const BodyMove* outer; // what the body's mark was
        Pace pace;
        bool amongImpacted;
        int next = 0;
    };

    bool Enter(const QOBSharedHandle<KARMPBody>& body, Pace pace);
    void Leave();
    bool NextChild();
    bool NextImpacted();
    bool Visit(const QOBSharedHandle<KARMPBody>& body, Pace pace);

    KARMathTransformation m_move;
    Pace m_pace;
    std::vector<Step> m_path;
};

} // namespace karmp
