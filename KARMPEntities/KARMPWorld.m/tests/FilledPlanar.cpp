#include "FilledEntities.h"

#include "KARLineCurve.h"
#include "KARMPCircle2D.h"
#include "KARMPCurve2D.h"
#include "KARMPLine2D.h"

// What the base holds of a planar body is in no document.
void FilledEntities::FillPlanarBody(KARMPBody2D& body)
{
    body.SetPosition(
        {{{Number(0.6), Number(0.8)}, {Number(-0.8), 0.5}}, {Number(10.5), Number(-20.25)}});
    body.SetVelocity({Number(1.25), Number(2.5)}, Number(4.5));
    body.SetAcceleration({Number(-1.25), Number(-2.5)}, Number(-4.5));
    body.SetMass(Number(12.5));
    body.SetCenterOfGravity({Number(7.5), Number(8.25)});
    body.SetInertiaMatrix({{Number(1.5), Number(2.5)}, {Number(4.5), Number(5.5)}});
    body.SetFix2D(Choose(true, false));
    if (!HasLinks())
        return;
    body.SetSketch(m_sketches[0]);
    body.SetDisplacementSensor(m_planarSensors[1]);
    for (std::size_t index = 0; index < 2; ++index) {
        body.AddGeometry(m_planarGeometries[index]);
        body.LinkToJoint(m_planarJoints[index]);
        body.LinkToShape(m_planarShapes[index]);
        body.AddImpactedChildBody(m_planarBodies[index]);
    }
}

void FilledEntities::FillPlanarGeometry(KARMPGeometry2D& geometry)
{
    if (auto* point = dynamic_cast<KARMPPoint2D*>(&geometry))
        point->SetPoint(PlanarPoint());
    if (auto* line = dynamic_cast<KARMPLine2D*>(&geometry))
        line->SetLine({PlanarPoint(), {Number(3.0), 4.0}});
    if (auto* circle = dynamic_cast<KARMPCircle2D*>(&geometry)) {
        circle->SetPoint(PlanarPoint());
        circle->SetRadius(Number(5.5));
    }
    if (auto* curve = dynamic_cast<KARMPCurve2D*>(&geometry))
        curve->AddCurve(m_curves->Make<KARLineCurve>(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0),
                        KARMPCurveOrientation::Negative, &m_limits[0]);
    if (!HasLinks())
        return;
    geometry.SetBody(m_planarBodies[0]);
    geometry.SetSketch(m_sketches[0]);
}
