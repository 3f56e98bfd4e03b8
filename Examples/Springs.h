#pragma once

#include "RoundTrip.h"

/// The force in N with which a linear spring at rest pushes its two points apart.
inline double PushOf(const karmp::model::Ref<KARMPLinearSpring>& spring)
{
    QOBSharedHandle<KARMPGeometry> first, second;
    double stiffness = 0.0, restLength = 0.0;
    spring->GetLinkedGeometry(0, first);
    spring->GetLinkedGeometry(1, second);
    spring->GetStiffness(stiffness);
    spring->GetRestLength(restLength);
    using karmp::model::Ref;
    return stiffness * (restLength - (PlaceOf(Ref(second)) - PlaceOf(Ref(first))).Norm());
}
