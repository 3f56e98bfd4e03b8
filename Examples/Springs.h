#pragma once

#include "RoundTrip.h"

/// The force in N with which a linear spring at rest pushes its two points apart.
inline double PushOf(const karmp::model::Ref<KARMPLinearSpring>& spring)
{
    KARMathPoint points[2];
    for (int index = 0; index < 2; ++index) {
        QOBSharedHandle<KARMPGeometry> point;
        QOBSharedHandle<KARMPBody> body;
        spring->GetLinkedGeometry(index, point);
        point->GetBody(body);
        QOBSharedHandle<KARMPPoint>(point)->GetPoint(points[index]);
        points[index] = PositionOf(karmp::model::Ref(body)) * points[index];
    }
    double stiffness = 0.0, restLength = 0.0;
    spring->GetStiffness(stiffness);
    spring->GetRestLength(restLength);
    return stiffness * (restLength - (points[1] - points[0]).Norm());
}
