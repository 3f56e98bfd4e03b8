// Attaches a solver's loader to a body and receives the body's positions.
#include "KARMPEntities.h"

#include <iostream>

namespace {

/// The solver's side of a body: it hears relative moves only, and sums them up.
class SolverBody : public KARIMPBodyLoader
{
public:
    explicit SolverBody(KARMathTransformation& position) : m_position(position) {}

    KARStatus ApplyTransformation(const KARMathTransformation& relative) override
    {
        m_position = relative * m_position;
        std::cout << "moved along x by " << relative.GetVector().GetX() << '\n';
        return KARSuccess;
    }
    KARStatus HoldBody() override { return KARSuccess; }
    KARStatus ReleaseBody() override { return KARSuccess; }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

    // A solver that does not move anything by itself has no velocities to tell.
    KARStatus SetLoaderVelocity(const KARMathVector&, const KARMathVector&) override
    {
        return KARSuccess;
    }
    KARStatus ReadVelocity(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadAcceleration(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadVelocityAndAcceleration(KARMathVector&, KARMathVector&, KARMathVector&,
                                          KARMathVector&, KARMathPoint&, unsigned char&,
                                          KARMathLine&, karmp::PointWhereToComputeVelAndAcc,
                                          const KARMathPoint*, const QOBSharedHandle<KARMPBody>&,
                                          const KARMathAxis*) override
    {
        return KARNotImplemented;
    }

private:
    KARMathTransformation& m_position;
};

} // namespace

int main()
{
    const KARMathTransformation end(KARMathVector(1.5, 0.25, 0.0));
    KARMathTransformation solverPosition;
    const auto body = KARMPBody::create(L"Slider");
    body->SetLoader(new SolverBody(solverPosition)); // the body owns it from now on
    body->SetPosition(KARMathTransformation(KARMathVector(1.0, 0.0, 0.0)), 0);
    body->SetPosition(end, 0);
    body->SetPosition(end, 0); // the present position again: nothing happens
    return solverPosition == end ? 0 : 1;
}
