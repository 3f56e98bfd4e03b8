// Builds a pendulum through the classes, as the model library does it, and saves it.
#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <iostream>

int main()
{
    // A world extends a basic world, which keeps the hierarchy of the entities.
    const auto basicWorld = QOBBasicWorld::create(L"Pendulum");
    const auto world = KARMPWorld::create(basicWorld);
    world->SetGravity(KARMathVector(0.0, -9.81, 0.0));

    // Every entity is added to the registry of its family and to the basic world.
    const auto rod = KARMPBody::create(L"Rod");
    rod->SetMass(0.25);
    rod->SetCenterOfGravity(KARMathPoint(0.0, -0.4, 0.0));
    basicWorld->addLogicalChild(rod);
    world->Add<KARMPBody>(rod);

    // The caller sets both halves of a link.
    const auto pivot = KARMPPoint::create(L"Pivot");
    pivot->SetPoint(KARMathPoint());
    basicWorld->addLogicalChild(pivot);
    world->Add<KARMPGeometry>(pivot);
    pivot->SetBody(rod);
    rod->AddGeometry(pivot);

    const auto messages = karmp::documents::SaveFile(world, "pendulum.xml");
    for (const auto& message : messages.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    return messages.HasErrors() ? 1 : 0;
}
