// Walks the world under a model: the registries by index, and what is linked to each body. The
// document is the first argument; without one it is a pendulum.
#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <iostream>

using namespace karmp::model;

namespace {

Result<Model> Pendulum()
{
    Model model("Pendulum");
    const auto rod = model.Body("Rod", Rod(0.25, {}, {0.0, -0.8, 0.0}));
    model.Variable("Angle",
                   model.Joint<KARMPRevolute>("Pivot", model.Ground(), rod, KARMathPoint()));
    return model;
}

} // namespace

int main(int argc, char** argv)
{
    const Result<Model> model = argc > 1 ? Load(argv[1]) : Pendulum();
    if (model.Report() != 0)
        return 1;
    const KARMPWorld& world = *model->World();
    for (int index = 0; index < world.Count<KARMPBody>(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (world.Get<KARMPBody>(index, body) != KARSuccess)
            continue;
        std::cout << body->getClassName() << ' ' << kar::ToUtf8(body->getEntityName()) << ": "
                  << body->GetGeometryCount() << " geometries, joints";
        for (int at = 0; at < body->GetLinkedJointCount(); ++at) {
            QOBSharedHandle<KARMPJoint> joint;
            body->GetLinkedJoint(at, joint);
            std::cout << ' ' << kar::ToUtf8(joint->getEntityName());
        }
        std::cout << '\n';
    }
    return 0;
}
