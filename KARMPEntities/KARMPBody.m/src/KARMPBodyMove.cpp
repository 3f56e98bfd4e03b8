#include "KARMPBodyMove.h"

namespace karmp {

BodyMove::BodyMove(const KARMathTransformation& move)
    : m_move(move), m_pace(move.IsIdentity() ? Resting : Moving)
{}

BodyMove::~BodyMove()
{
    // Not empty when an exception ends the walk.
    while (!m_path.empty())
        Leave();
}

KARStatus BodyMove::Below(KARMPBody& body)
{
    Enter(QOBSharedHandle<KARMPBody>(&body), m_pace);
    bool complete = true;
    while (!m_path.empty()) {
        if (!m_path.back().amongImpacted) {
            if (!NextChild()) {
                m_path.back().amongImpacted = true;
                m_path.back().next = 0;
            }
            continue;
        }
        const bool left = m_path.back().next < m_path.back().body->m_impactedChildren.Count();
        if (left && NextImpacted())
            continue;
        // How the walk over a body's impacted children ended matters for the first body alone.
        complete = !left;
        Leave();
    }
    return complete ? KARSuccess : KARFailure;
}

// Puts a body on the path. It can be there twice, moving and resting, since a body that rests is
// never entered as moving below that; to enter it a second time in one manner is a cycle.
bool BodyMove::Enter(const QOBSharedHandle<KARMPBody>& body, Pace pace)
{
    const BodyMove*& mark = body->m_moves[pace];
    if (!KARMPVerify(mark != this))
        return false;
    m_path.push_back({body, mark, pace, pace == Resting});
    mark = this;
    return true;
}

void BodyMove::Leave()
{
    const Step& step = m_path.back();
    step.body->m_moves[step.pace] = step.outer;
    m_path.pop_back();
}

// False when the walk over the children of the path's last body is at its end.
bool BodyMove::NextChild()
{
    Step& step = m_path.back();
    if (step.next >= step.body->m_children.Count())
        return false;
    const QOBSharedHandle<KARMPBody> child = step.body->m_children.At(step.next++);
    // A child that does not follow ends the walk: the ones behind it stay where they are.
    if (!KARMPVerify(static_cast<bool>(child)) || child->m_floating || child->m_fixed)
        return false;
    return Visit(child, Moving);
}

bool BodyMove::NextImpacted()
{
    Step& step = m_path.back();
    const QOBSharedHandle<KARMPBody> body = step.body->m_impactedChildren.At(step.next++);
    return KARMPVerify(static_cast<bool>(body)) && Visit(body, Resting);
}

bool BodyMove::Visit(const QOBSharedHandle<KARMPBody>& body, Pace pace)
{
    if (!Enter(body, pace))
        return false;
    body->MoveOneself(pace == Moving ? m_move : KARMathTransformation());
    return true;
}

} // namespace karmp
