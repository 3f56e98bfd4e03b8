// The way that a move takes through bodies that refer to each other.
#pragma once

#include "KARMPFailedCheck.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <vector>

namespace karmp {

/// Visits the impacted children of a body depth first, and theirs in turn, with a stack of its own,
/// so that the depth does not matter. They are refreshed and stay where they are.
template <class Body, class Transformation>
class BodyWalk
{
public:
    BodyWalk() = default;
    virtual ~BodyWalk()
    {
        // Not empty when an exception ends the walk.
        while (!m_path.empty())
            Leave();
    }
    BodyWalk(const BodyWalk&) = delete;
    BodyWalk& operator=(const BodyWalk&) = delete;

    /// Visits what stands below a body that moved or rested, not the body itself. A failure when
    /// the walk over its impacted children ended early.
    KARStatus Below(Body& body) { return Below(body, Resting); }

protected:
    enum Pace { Resting, Moving };

    struct Step
    {
        QOBSharedHandle<Body> body;
        const BodyWalk* outer; // what the body's mark was
        Pace pace;
        bool amongImpacted;
        int next = 0;
    };

    KARStatus Below(Body& body, Pace pace)
    {
        Enter(QOBSharedHandle<Body>(&body), pace);
        bool complete = true;
        while (!m_path.empty()) {
            if (!m_path.back().amongImpacted) {
                if (!NextFollower(m_path.back())) {
                    m_path.back().amongImpacted = true;
                    m_path.back().next = 0;
                }
                continue;
            }
            const bool left = m_path.back().next < m_path.back().body->m_impactedChildren.Count();
            if (left && NextImpacted(m_path.back()))
                continue;
            // How the walk over a body's impacted children ended matters for the first body alone.
            complete = !left;
            Leave();
        }
        return complete ? KARSuccess : KARFailure;
    }
    /// Visits the next body that moves along with one that moves; false when there is none.
    virtual bool NextFollower(Step&) { return false; }
    /// Puts a body on the path and moves it; false, a failed check, when it is there already.
    bool Visit(const QOBSharedHandle<Body>& body, Pace pace, const Transformation& move)
    {
        if (!Enter(body, pace))
            return false;
        body->MoveOneself(move);
        return true;
    }

private:
    // Puts a body on the path. It can be there twice, moving and resting, since a body that rests
    // is never entered as moving below that; to enter it a second time in one manner is a cycle.
    bool Enter(const QOBSharedHandle<Body>& body, Pace pace)
    {
        const BodyWalk*& mark = body->m_walks[pace];
        if (!KARMPVerify(mark != this))
            return false;
        m_path.push_back({body, mark, pace, pace == Resting});
        mark = this;
        return true;
    }
    void Leave()
    {
        const Step& step = m_path.back();
        step.body->m_walks[step.pace] = step.outer;
        m_path.pop_back();
    }
    bool NextImpacted(Step& step)
    {
        const QOBSharedHandle<Body> body = step.body->m_impactedChildren.At(step.next++);
        return KARMPVerify(static_cast<bool>(body)) && Visit(body, Resting, Transformation());
    }

    std::vector<Step> m_path;
};

} // namespace karmp
