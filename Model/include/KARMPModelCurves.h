// Curves of stored pieces: what a curve on a body is made of, and how well its pieces join.
#pragma once

#include "KARCurve.h"
#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARMathAxis.h"
#include "KARMathPoint.h"

#include <memory>
#include <vector>

class KARMPCurve;

namespace karmp::model {

/// A piece of a curve, which is shared; null where its numbers were refused.
using CurvePiece = std::shared_ptr<KARCurve>;

/// An arc of a circle about the third direction of a frame, from one angle to another one, which
/// are told from the first direction; in m and rad.
KARMP_MODEL_API CurvePiece Arc(const KARMathAxis& frame, double radius, double from, double to);
/// A curve by poles, of one degree less than there are of them: from the first pole to the last
/// one, along the lines to those next to them.
KARMP_MODEL_API CurvePiece Spline(const std::vector<KARMathPoint>& poles);

/// The pieces of a curve, in order.
KARMP_MODEL_API std::vector<CurvePiece> PiecesOf(const Ref<KARMPCurve>& curve);

/// How well pieces of a closed curve join: the greatest step from the end of one to the begin
/// of the next, in m, and the greatest sine of the angle between their directions there.
struct CurveJoins
{
    double step = 0.0;
    double bend = 0.0;
};
/// How the pieces of a curve join, the last one and the first one too.
KARMP_MODEL_API CurveJoins JoinsOf(const Ref<KARMPCurve>& curve);

} // namespace karmp::model
