// Loads a document and walks the world's bodies with what is linked to them.
#include "KARMPBody.h"
#include "KARMPConstant.h"
#include "KARMPDocuments.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARStatus.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"
#include "QOBSharedHandle.h"

#include <iostream>

namespace {

// A document in memory stands for a file.
std::string SmallDocument()
{
    const auto basicWorld = QOBBasicWorld::create(L"Small");
    const auto world = KARMPWorld::create(basicWorld);
    const auto angle = KARMPVariable::create(L"Angle");
    angle->SetValue(0.3);
    basicWorld->addLogicalChild(angle);
    world->Add<KARMPVariable>(angle);
    // Adding a value to its registry adds it to the basic world as well.
    const auto damping = KARMPConstant::create(L"Damping");
    damping->SetPhysicalQuantity(KARMPPhysicalQuantity::LinearDamping);
    damping->SetValue(0.05, "double");
    world->Add<KARMPValue>(damping);

    std::string text;
    if (karmp::documents::SaveText(world, text).HasErrors())
        return {};
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    const auto loaded = argc > 1 ? karmp::documents::LoadFile(argv[1])
                                 : karmp::documents::LoadText(SmallDocument(), "built in");
    for (const auto& message : loaded.diagnostics.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    if (!loaded.world)
        return 1;
    const KARMPWorld& world = *loaded.world;

    // Registries are walked by index.
    for (int index = 0; index < world.Count<KARMPBody>(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (world.Get<KARMPBody>(index, body) != KARSuccess)
            continue;
        std::cout << "Body " << kar::ToUtf8(body->getEntityName()) << ": "
                  << body->GetGeometryCount() << " geometries, " << body->GetLinkedJointCount()
                  << " joints\n";
    }
    for (int index = 0; index < world.Count<KARMPVariable>(); ++index) {
        QOBSharedHandle<KARMPVariable> variable;
        double value = 0.0;
        if (world.Get<KARMPVariable>(index, variable) == KARSuccess &&
            variable->GetValue(value) == KARSuccess)
            std::cout << "Variable " << kar::ToUtf8(variable->getEntityName()) << " = " << value
                      << '\n';
    }
    for (int index = 0; index < world.Count<KARMPValue>(); ++index) {
        QOBSharedHandle<KARMPValue> value;
        if (world.Get<KARMPValue>(index, value) == KARSuccess)
            std::cout << value->getClassName() << ' ' << kar::ToUtf8(value->getEntityName())
                      << '\n';
    }
    return 0;
}
