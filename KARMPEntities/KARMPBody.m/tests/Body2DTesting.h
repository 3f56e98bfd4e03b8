// What the tests of planar bodies share.
#pragma once

#include "BodyTesting.h"
#include "KARMPBody2D.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPPoint2D.h"
#include "KARMPShape2D.h"
#include "KARMPSketch.h"
#include "KARMPUserDefined2D.h"

using Body2D = QOBSharedHandle<KARMPBody2D>;
using OpenBody2D = ConcreteEntity<KARMPBody2D>;

inline KARMathTransformation2D shift2D(double x, double y = 0.0)
{
    return KARMathTransformation2D(KARMathVector2D(x, y));
}

inline KARMathTransformation2D quarterTurn2D()
{
    return {{{0.0, 1.0}, {-1.0, 0.0}}, {5.0, 6.0}};
}

inline KARMathTransformation2D positionOf(const KARMPBody2D& body)
{
    KARMathTransformation2D position;
    EXPECT_EQ(body.GetPosition(position), KARSuccess);
    return position;
}

class Body2DFixture : public BodyFixture
{
protected:
    Body2D NewBody2D(const std::wstring& name)
    {
        const auto body = KARMPBody2D::create(name);
        Keep(body)->SetIdentifier(name);
        return body;
    }
};
