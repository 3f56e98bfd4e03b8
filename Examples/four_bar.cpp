// A four-bar linkage: the positions of the closed loop, three rods, four revolute joints and the
// crank's angle from where it stands. The program saves it, loads it again, and checks it.
#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <cmath>

using namespace karmp::model;

int main()
{
    const KARMathPoint a, d(0.3, 0.0, 0.0);
    const KARMathPoint b(0.1 * std::cos(1.0), 0.1 * std::sin(1.0), 0.0);
    const auto c = MeetingPoint(b, 0.3, d, 0.2);
    if (!c)
        return 1;
    Model model("Four-bar linkage", {.gravity = {0.0, -9.81, 0.0}});
    const auto crank = model.Body("Crank", Rod(0.2, a, b, 0.005));
    const auto coupler = model.Body("Coupler", Rod(0.6, b, *c, 0.005));
    const auto rocker = model.Body("Rocker", Rod(0.4, d, *c, 0.005));
    const auto bearing = model.Joint<KARMPRevolute>("A", model.Ground(), crank, a);
    model.Joint<KARMPRevolute>("B", crank, coupler, b);
    model.Joint<KARMPRevolute>("C", coupler, rocker, *c);
    model.Joint<KARMPRevolute>("D", model.Ground(), rocker, d);
    model.Variable("Crank angle", bearing);
    if (const auto saved = model.Save("four-bar.xml"); !saved)
        return saved.Report();
    const auto again = Load("four-bar.xml");
    return again.Report() != 0 || !again->Check().items.empty() ? 1 : 0;
}
