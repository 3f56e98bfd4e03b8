#pragma once

#include "KARMPEntities.h"
#include "KARMPModel.h"

/// Of a linear spring: N/m, m, N s/m.
struct SpringData
{
    double stiffness;
    double restLength;
    double damping;
};

/// Adds a linear spring between points of two bodies, told in the world.
inline karmp::model::Ref<KARMPLinearSpring> AddSpring(
    karmp::model::Model& model, const std::string& name, const karmp::model::Ref<KARMPBody>& first,
    const KARMathPoint& from, const karmp::model::Ref<KARMPBody>& second, const KARMathPoint& to,
    const SpringData& data)
{
    using Quantity = KARMPPhysicalQuantity;
    const auto start = model.Point(name, first, from);
    const auto spring =
        model.Connect<KARMPLinearSpring>(name, start, model.Point(name, second, to));
    spring->SetStiffness(
        model.Constant(name + ".stiffness", Quantity::LinearStiffness, data.stiffness));
    spring->SetRestLength(model.Constant(name + ".rest length", Quantity::Length, data.restLength));
    spring->SetDampingCoefficient(
        model.Constant(name + ".damping", Quantity::LinearDamping, data.damping));
    return spring;
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
        points[index] = PositionOf(karmp::model::Ref<KARMPBody>(body)) * points[index];
    }
    double stiffness = 0.0;
    double restLength = 0.0;
    spring.GetStiffness(stiffness);
    spring.GetRestLength(restLength);
    return stiffness * (restLength - (points[1] - points[0]).Norm());
}
