// Attaches a solver's loader to a body and receives the body's positions.
#include "KARMPEntities.h"
#include "KARMPModelLoaders.h"

#include <iostream>

namespace {

/// The solver's side of a body: it hears relative moves only, and sums them up. It does not move
/// anything by itself, so that its base has nothing to tell.
class SolverBody : public karmp::model::BodyLoader
{
public:
    explicit SolverBody(KARMathTransformation& position) : m_position(position) {}

    KARStatus ApplyTransformation(const KARMathTransformation& relative) override
    {
        m_position = relative * m_position;
        std::cout << "moved along x by " << relative.GetVector().GetX() << '\n';
        return KARSuccess;
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
