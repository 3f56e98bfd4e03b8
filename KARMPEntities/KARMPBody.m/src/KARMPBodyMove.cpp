#include "KARMPBodyMove.h"

namespace karmp {

BodyMove::BodyMove(const KARMathTransformation& move) : m_move(move) {}

KARStatus BodyMove::Below(KARMPBody& body)
{
    return BodyWalk::Below(body, m_move.IsIdentity() ? Resting : Moving);
}

bool BodyMove::NextFollower(Step& step)
{
    if (step.next >= step.body->m_children.Count())
        return false;
    const QOBSharedHandle<KARMPBody> child = step.body->m_children.At(step.next++);
    // A child that does not follow ends the walk: the ones behind it stay where they are.
    if (!KARMPVerify(static_cast<bool>(child)) || child->m_floating || child->m_fixed)
        return false;
    return Visit(child, Moving, m_move);
}

} // namespace karmp
