// Curves of stored pieces.
#include "KARMPModelCurves.h"

#include "KARBaseUnknown.h"
#include "KARCrvLimits.h"
#include "KAREllipseArc.h"
#include "KARMPCurve.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelPlacing.h"
#include "KARNurbsCurve.h"

#include <algorithm>
#include <utility>

namespace karmp::model {

namespace {

CurvePiece Adopted(KARCurve* curve)
{
    return {curve,
            [](KARCurve* held) {
                if (held != nullptr)
                    held->Release();
            }};
}

/// A piece in the sense of its curve: where it begins and ends, and its directions there up to
/// sign, which is nothing to the sine of an angle.
struct Ends
{
    KARMathPoint begin, end;
    KARMathVector leaving, arriving;
};

Ends EndsOf(const KARMPCurve& curve, int index)
{
    KARBaseUnknown* unknown = nullptr;
    auto orientation = KARMPCurveOrientation::Positive;
    void* limits = nullptr;
    double low = 0.0;
    double high = 0.0;
    Ends ends;
    curve.GetCurve(index, unknown, orientation, limits);
    const auto* const piece = KARSysDynamicCast<KARCurve>(unknown);
    if (piece == nullptr || limits == nullptr)
        return ends;
    static_cast<const KARCrvLimits*>(limits)->GetExtremities(low, high);
    piece->Evaluate(low, ends.begin, ends.leaving);
    piece->Evaluate(high, ends.end, ends.arriving);
    if (orientation == KARMPCurveOrientation::Negative) {
        std::swap(ends.begin, ends.end);
        std::swap(ends.leaving, ends.arriving);
    }
    ends.leaving.Normalize();
    ends.arriving.Normalize();
    return ends;
}

bool AddPiece(Edit& edit, KARMPCurve& curve, const CurvePiece& piece)
{
    if (piece == nullptr)
        return edit.Fail("a piece of " + TitleOf(curve) + " is no curve");
    double low = 0.0;
    double high = 0.0;
    piece->GetLimits(low, high);
    auto limits = std::make_unique<KARCrvLimits>(piece->CreateParam(low), piece->CreateParam(high));
    if (!edit.Check(curve.AddCurve(piece.get(), KARMPCurveOrientation::Positive, limits.get()),
                    "a piece", curve))
        return false;
    static_cast<void>(limits.release()); // the curve frees them at its end
    return true;
}

} // namespace

CurvePiece Arc(const KARMathAxis& frame, double radius, double from, double to)
{
    return Adopted(KARCircleArc::Create(frame.GetOrigin(), frame.GetFirstDirection(),
                                        frame.GetSecondDirection(), radius, from, to));
}

CurvePiece Spline(const std::vector<KARMathPoint>& poles)
{
    std::vector<double> knots(poles.size(), 0.0);
    knots.resize(2 * poles.size(), 1.0);
    return Adopted(
        KARNurbsCurve::Create(static_cast<int>(poles.size()) - 1, std::move(knots), poles));
}

std::vector<CurvePiece> PiecesOf(const Ref<KARMPCurve>& curve)
{
    std::vector<CurvePiece> pieces;
    for (int index = 0; index < curve->GetCurveCount(); ++index) {
        KARBaseUnknown* unknown = nullptr;
        auto orientation = KARMPCurveOrientation::Positive;
        void* limits = nullptr;
        curve->GetCurve(index, unknown, orientation, limits);
        auto* const piece = KARSysDynamicCast<KARCurve>(unknown);
        if (piece != nullptr)
            piece->AddRef();
        pieces.push_back(Adopted(piece));
    }
    return pieces;
}

CurveJoins JoinsOf(const Ref<KARMPCurve>& curve)
{
    CurveJoins joins;
    const int count = curve->GetCurveCount();
    for (int index = 0; index < count; ++index) {
        const Ends here = EndsOf(*curve, index);
        const Ends next = EndsOf(*curve, (index + 1) % count);
        joins.step = std::max(joins.step, (next.begin - here.end).Norm());
        joins.bend = std::max(joins.bend, here.arriving.Cross(next.leaving).Norm());
    }
    return joins;
}

Ref<KARMPCurve> Model::Curve(std::string_view identifier, const Ref<KARMPBody>& body,
                             std::initializer_list<CurvePiece> pieces, Where where)
{
    return Ref(m_core->Make<KARMPCurve>(
        where,
        [&](Edit& edit, auto& curve) {
            if (pieces.size() == 0)
                return edit.Fail("the curve \"" + std::string(identifier) + "\" has no piece");
            curve = QOBSharedHandle<KARMPCurve>::unchecked(
                MountOn(edit, KARMPCurve::ClassInfo(), identifier, body.Handle()));
            return curve && edit.Check(curve->DeleteCurveLimitsAtEnd(true), "the limits", *curve) &&
                   std::all_of(
                       pieces.begin(), pieces.end(),
                       [&](const CurvePiece& piece) { return AddPiece(edit, *curve, piece); });
        }));
}

} // namespace karmp::model
