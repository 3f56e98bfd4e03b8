#pragma once

#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <iostream>
#include <string>

/// The position of a body.
inline KARMathTransformation PositionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

/// The force in N with which a linear spring at rest pushes its two points apart.
inline double PushOf(const KARMPLinearSpring& spring)
{
    KARMathPoint points[2];
    for (int index = 0; index < 2; ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        QOBSharedHandle<KARMPBody> body;
        spring.GetLinkedGeometry(index, geometry);
        geometry->GetBody(body);
        QOBSharedHandle<KARMPPoint>(geometry)->GetPoint(points[index]);
        points[index] = PositionOf(*body) * points[index];
    }
    double stiffness = 0.0;
    double restLength = 0.0;
    spring.GetStiffness(stiffness);
    spring.GetRestLength(restLength);
    return stiffness * (restLength - (points[1] - points[0]).Norm());
}

/// The entity of a family with that name; null when there is none.
template <class Family>
QOBSharedHandle<Family> FindByName(const KARMPWorld& world, const std::wstring& name)
{
    for (int index = 0; index < world.Count<Family>(); ++index) {
        QOBSharedHandle<Family> entity;
        if (world.Get<Family>(index, entity) == KARSuccess && entity->getEntityName() == name)
            return entity;
    }
    return {};
}

/// The sensor with that name.
template <class Sensor>
QOBSharedHandle<Sensor> SensorOf(const KARMPWorld& world, const wchar_t* name)
{
    return QOBSharedHandle<Sensor>(FindByName<KARMPSensor>(world, name));
}

/// Prints what a save or a load had to say; true when there was nothing.
inline bool IsQuiet(const karmp::documents::Diagnostics& messages)
{
    for (const auto& message : messages.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    return messages.items.empty();
}
