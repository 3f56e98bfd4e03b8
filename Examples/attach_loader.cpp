// Attaches a solver's loader to a body and receives the body's positions.
#include "KARIMPBodyLoader.h"
#include "KARMPBody.h"
#include "KARMathAxis.h"
#include "KARMathLine.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"
#include "KARMathVector.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

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
        std::cout << "moved by (" << relative.GetVector().GetX() << ", "
                  << relative.GetVector().GetY() << ", " << relative.GetVector().GetZ() << ")\n";
        return KARSuccess;
    }
    KARStatus HoldBody() override
    {
        std::cout << "held\n";
        return KARSuccess;
    }
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
    KARMathTransformation solverPosition;
    const auto body = KARMPBody::create(L"Slider");
    body->SetLoader(new SolverBody(solverPosition)); // the body owns it from now on

    body->SetPosition(KARMathTransformation(KARMathVector(1.0, 0.0, 0.0)), 0);
    body->SetPosition(KARMathTransformation(KARMathVector(1.5, 0.25, 0.0)), 0);
    // The present position again: nothing happens.
    body->SetPosition(KARMathTransformation(KARMathVector(1.5, 0.25, 0.0)), 0);
    body->Fix();

    std::cout << "the solver has it at (" << solverPosition.GetVector().GetX() << ", "
              << solverPosition.GetVector().GetY() << ", " << solverPosition.GetVector().GetZ()
              << ")\n";
    return solverPosition.GetVector() == KARMathVector(1.5, 0.25, 0.0) ? 0 : 1;
}
