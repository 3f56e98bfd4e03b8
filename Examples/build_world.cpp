// Builds a pendulum through the classes and saves it.
#include "KARMPBody.h"
#include "KARMPDocuments.h"
#include "KARMPGeometry.h"
#include "KARMPPoint.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"
#include "QOBBasicWorld.h"

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

    const auto angle = KARMPVariable::create(L"Angle");
    angle->SetPhysicalQuantity(KARMPPhysicalQuantity::Angle);
    angle->SetValue(0.3);
    basicWorld->addLogicalChild(angle);
    world->Add<KARMPVariable>(angle);

    const auto messages = karmp::documents::SaveFile(world, "pendulum.xml");
    for (const auto& message : messages.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    if (messages.HasErrors())
        return 1;
    std::cout << "Saved pendulum.xml with " << world->GetBodyCount()
              << " bodies, the world's own among them.\n";
    return 0;
}
