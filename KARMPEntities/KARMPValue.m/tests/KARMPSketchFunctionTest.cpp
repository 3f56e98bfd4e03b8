#include "KARMPSketchFunction.h"
#include "EnvironmentVariable.h"
#include "KARBase64.h"
#include "KARCrvLimits.h"
#include "KAREllipseArc.h"
#include "KARGMKStream.h"
#include "KARGeometricFactory.h"
#include "KARIGMKObjectsSave.h"
#include "KARIMPSketchFunctionLoader.h"
#include "KARLineCurve.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARMPContentItem.h"
#include "KARMPEntityTable.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPTestFixture.h"
#include "KARPlaneSurface.h"
#include "ModelObject.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

struct Release
{
    void operator()(KARBaseUnknown* object) const { object->Release(); }
};

struct Curve
{
    KARStatus status = KARFailure;
    KARBaseUnknown* curve = nullptr;
    KARMPCurveOrientation::Enum orientation = {};
    void* limits = nullptr;
};

// A function that neither gives its first curve nor takes a first one.
class UnsureFunction : public KARMPSketchFunction
{
public:
    KARStatus GetCurve(int index, KARBaseUnknown*& curve, KARMPCurveOrientation::Enum& orientation,
                       void*& limits) const override
    {
        return index > 0 ? KARMPSketchFunction::GetCurve(index, curve, orientation, limits)
                         : KARFailure;
    }
    KARStatus AddCurve(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                       void* limits) override
    {
        return ++offered > 1 ? KARMPSketchFunction::AddCurve(curve, orientation, limits)
                             : KARFailure;
    }

    int offered = 0;
};

// A function that gives another axis than it is set to, takes none, and hides its last curve.
class ReservedFunction : public KARMPSketchFunction
{
public:
    KARStatus GetReferenceAxis(KARMathPoint& origin, KARMathVector& direction,
                               KARMathVector& normal) const override
    {
        origin = {1, 2, 3};
        direction = {4, 5, 6};
        normal = {7, 8, 9};
        return KARSuccess;
    }
    KARStatus SetReferenceAxis(const KARMathPoint&, const KARMathVector&,
                               const KARMathVector&) override
    {
        return KARFailure;
    }
    int GetCurveCount() const override { return KARMPSketchFunction::GetCurveCount() - 1; }
};

Curve CurveOf(const KARMPSketchFunction& function, int index)
{
    Curve result;
    result.status = function.GetCurve(index, result.curve, result.orientation, result.limits);
    return result;
}

class SketchFunction : public KARMPTestFixture
{
protected:
    SketchFunction()
    {
        line = geometry->Make<KARLineCurve>(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0);
        arc = geometry->Make<KARCircleArc>(KARMathPoint(1, 1, 0), KARMathVector(1, 0, 0),
                                           KARMathVector(0, 0, 1), 2.0, 0.0, 3.0);
        function->SetIdentifier(L"F1");
    }

    void AddTwoCurves()
    {
        EXPECT_EQ(function->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits),
                  KARSuccess);
        EXPECT_EQ(function->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits), KARSuccess);
    }

    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", nullptr};
    EnvironmentVariable leaveOutCurves{"DONT_SERIALIZE_CURVE", nullptr};
    std::unique_ptr<KARGeometricFactory, Release> geometry{KARGeometricFactory::Create()};
    KARLineCurve* line = nullptr;
    KARCircleArc* arc = nullptr;
    KARCrvLimits lineLimits{KARCrvParam(-0.5), KARCrvParam(2.5)};
    KARCrvLimits arcLimits{KARCrvParam(0.25), KARCrvParam(1.5)};
    QOBSharedHandle<KARMPSketchFunction> function = KARMPSketchFunction::create(L"f");
    QOBSharedHandle<KARMPSketchFunction> copy = KARMPSketchFunction::create(L"c");
    KARMPEntityTable entities;
    int seen = 0;
};

TEST_F(SketchFunction, IsNewlyWithoutCurvesAndWithAnAxisOfZeros)
{
    KARMathPoint origin(1, 1, 1);
    KARMathVector direction(1, 1, 1);
    KARMathVector normal(1, 1, 1);
    EXPECT_EQ(function->GetReferenceAxis(origin, direction, normal), KARSuccess);
    EXPECT_EQ(origin, KARMathPoint());
    EXPECT_EQ(direction, KARMathVector());
    EXPECT_EQ(normal, KARMathVector());
    EXPECT_EQ(function->GetCurveCount(), 0);
}

TEST_F(SketchFunction, KeepsItsReferenceAxisAsItIsGiven)
{
    EXPECT_EQ(function->SetReferenceAxis({1, 2, 3}, {4, 5, 6}, {7, 8, 9}), KARSuccess);
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    function->GetReferenceAxis(origin, direction, normal);
    EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
    EXPECT_EQ(direction, KARMathVector(4, 5, 6));
    EXPECT_EQ(normal, KARMathVector(7, 8, 9));
}

TEST_F(SketchFunction, HandsOutItsCurvesInOrder)
{
    AddTwoCurves();
    ASSERT_EQ(function->GetCurveCount(), 2);
    const Curve first = CurveOf(*function, 0);
    EXPECT_EQ(first.status, KARSuccess);
    EXPECT_EQ(first.curve, line);
    EXPECT_EQ(first.orientation, KARMPCurveOrientation::Negative);
    EXPECT_EQ(first.limits, &lineLimits);
    EXPECT_EQ(CurveOf(*function, 1).curve, arc);
}

TEST_F(SketchFunction, IndexOutsideTheCurvesGivesNullsAndLeavesTheOrientation)
{
    AddTwoCurves();
    for (const int index : {-1, 2}) {
        KARBaseUnknown* curve = line;
        auto orientation = KARMPCurveOrientation::Negative;
        void* limits = &lineLimits;
        EXPECT_EQ(function->GetCurve(index, curve, orientation, limits), KARFailure);
        EXPECT_EQ(curve, nullptr);
        EXPECT_EQ(limits, nullptr);
        EXPECT_EQ(orientation, KARMPCurveOrientation::Negative);
    }
}

TEST_F(SketchFunction, CurveWithoutLimitsOrLimitsWithoutACurveAreRefused)
{
    EXPECT_EQ(function->AddCurve(line, KARMPCurveOrientation::Positive, nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(function->AddCurve(nullptr, KARMPCurveOrientation::Positive, &lineLimits),
              KARFailure);
    ExpectReports(1);
    EXPECT_EQ(function->GetCurveCount(), 0);
    EXPECT_EQ(line->GetRefCount(), 1U);
}

TEST_F(SketchFunction, HoldsOneReferenceOnEachCurveAndGivesItUpAtItsEnd)
{
    ModelObject object;
    AddTwoCurves();
    for (int i = 0; i < 20; ++i)
        function->AddCurve(&object, KARMPCurveOrientation::Positive, &lineLimits);
    EXPECT_EQ(object.Held(), 20U);
    EXPECT_EQ(line->GetRefCount(), 2U);
    CurveOf(*function, 0);
    EXPECT_EQ(line->GetRefCount(), 2U);
    function.detach();
    EXPECT_EQ(line->GetRefCount(), 1U);
    EXPECT_EQ(object.Held(), 0U);
}

TEST_F(SketchFunction, CopyTakesTheAxisAndNoCurves)
{
    AddTwoCurves();
    function->SetReferenceAxis({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    const auto cloned = KARMPSketchFunction::clone(function, QOBDynamicObject::CopyDefault);
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    cloned->GetReferenceAxis(origin, direction, normal);
    EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
    EXPECT_EQ(direction, KARMathVector(4, 5, 6));
    EXPECT_EQ(normal, KARMathVector(7, 8, 9));
    EXPECT_EQ(cloned->GetCurveCount(), 0);
}

TEST_F(SketchFunction, GivesItsLoaderAsASketchFunctionsLoader)
{
    LoaderRecord record;
    auto* attached = new RecordingLoader<KARIMPSketchFunctionLoader>(record);
    auto* loader = reinterpret_cast<KARIMPSketchFunctionLoader*>(&record);
    EXPECT_EQ(function->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    function->SetLoader(attached);
    EXPECT_EQ(function->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, attached);
    function.detach();
}

TEST_F(SketchFunction, WritesTheAxisWithTwoElementsOfOneName)
{
    function->SetReferenceAxis({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    TestSerializer root;
    ASSERT_EQ(function->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"SketchFunction/CurveSegments"));
    const TestSerializer* axis = root.Find(L"SketchFunction/ReferenceAxis");
    ASSERT_NE(axis, nullptr);
    ASSERT_EQ(axis->GetElementCount(), 3U);
    EXPECT_EQ(axis->Child(0).GetId(), L"Origin");
    EXPECT_EQ(axis->Child(1).GetId(), L"Direction");
    EXPECT_EQ(axis->Child(2).GetId(), L"Direction");
    EXPECT_EQ(axis->Number(L"Origin/Ox"), 1.0);
    EXPECT_EQ(axis->Number(L"Origin/Oz"), 3.0);
    EXPECT_EQ(axis->Number(L"Direction/x"), 4.0);
    EXPECT_EQ(axis->Number(L"Direction/y"), 5.0);
    EXPECT_EQ(axis->Number(L"Direction[1]/Nx"), 7.0);
    EXPECT_EQ(axis->Number(L"Direction[1]/Nz"), 9.0);
}

TEST_F(SketchFunction, WritesTheAxisAndTheCurvesThatASubclassGives)
{
    const QOBSharedHandle<KARMPSketchFunction> reserved(new ReservedFunction);
    reserved->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits);
    TestSerializer none;
    EXPECT_EQ(reserved->Serialize(&none), KARSuccess);
    EXPECT_FALSE(none.Has(L"SketchFunction/CurveSegments"));
    EXPECT_EQ(none.Number(L"SketchFunction/ReferenceAxis/Origin/Oy"), 2.0);
    EXPECT_EQ(none.Number(L"SketchFunction/ReferenceAxis/Direction/y"), 5.0);
    EXPECT_EQ(none.Number(L"SketchFunction/ReferenceAxis/Direction[1]/Ny"), 8.0);

    reserved->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits);
    TestSerializer one;
    EXPECT_EQ(reserved->Serialize(&one), KARSuccess);
    EXPECT_EQ(one.Count(L"SketchFunction/CurveSegments/CurveSegment"), 1U);
}

TEST_F(SketchFunction, AxisThatItRefusesIsReportedAndTheCurvesRead)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    const QOBSharedHandle<KARMPSketchFunction> reserved(new ReservedFunction);
    EXPECT_EQ(reserved->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(reserved->KARMPSketchFunction::GetCurveCount(), 2);
}

TEST_F(SketchFunction, ComesBackWithAxisAndCurves)
{
    AddTwoCurves();
    function->SetReferenceAxis({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    function->SetPhysicalQuantity(KARMPPhysicalQuantity::Length);
    TestSerializer root;
    ASSERT_EQ(function->Serialize(&root), KARSuccess);
    const std::wstring segment = L"SketchFunction/CurveSegments/CurveSegment";
    EXPECT_EQ(root.Count(segment), 2U);
    EXPECT_EQ(root.Text(segment + L"/@curveOrientation"), L"Negative");
    EXPECT_EQ(root.Number(segment + L"/@curveLowLimit"), -0.5);
    EXPECT_EQ(root.Number(segment + L"/@curveHighLimit"), 2.5);
    EXPECT_EQ(root.Text(segment + L"[1]/@curveOrientation"), L"Positive");
    std::vector<unsigned char> bytes;
    ASSERT_TRUE(kar::Base64Decode(root.Text(segment + L"/CurveStream"), bytes));
    EXPECT_EQ(root.Integer(segment + L"/CurveStream/@length"), static_cast<int>(bytes.size()));

    for (const bool asText : {false, true}) {
        const auto read = KARMPSketchFunction::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        ASSERT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        KARMathPoint origin;
        KARMathVector direction;
        KARMathVector normal;
        read->GetReferenceAxis(origin, direction, normal);
        EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
        EXPECT_EQ(direction, KARMathVector(4, 5, 6));
        EXPECT_EQ(normal, KARMathVector(7, 8, 9));
        ASSERT_EQ(read->GetCurveCount(), 2);
        const Curve first = CurveOf(*read, 0);
        const auto* readLine = KARSysDynamicCast<KARLineCurve>(first.curve);
        ASSERT_NE(readLine, nullptr);
        EXPECT_EQ(readLine->EvalPoint(1.0), line->EvalPoint(1.0));
        // The factory that loaded it is gone.
        EXPECT_EQ(readLine->GetRefCount(), 1U);
        EXPECT_EQ(first.orientation, KARMPCurveOrientation::Negative);
        double low = 0.0;
        double high = 0.0;
        static_cast<KARCrvLimits*>(first.limits)->GetExtremities(low, high);
        EXPECT_EQ(low, -0.5);
        EXPECT_EQ(high, 2.5);
        EXPECT_TRUE(static_cast<KARCrvLimits*>(first.limits)->IsValid());
        const Curve second = CurveOf(*read, 1);
        EXPECT_NE(KARSysDynamicCast<KARCircleArc>(second.curve), nullptr);
        EXPECT_EQ(second.orientation, KARMPCurveOrientation::Positive);
        TestSerializer again;
        read->SetPhysicalQuantity(KARMPPhysicalQuantity::Length);
        read->Serialize(&again);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(SketchFunction, SingleDirectionStandsForBothAndTheNormalIsReported)
{
    TestDeserializer tree(L"SketchFunction");
    tree.Attribute(L"id", L"F9").Attribute(L"name", L"f").Attribute(L"isActive", L"yes");
    TestDeserializer& axis = tree.Add(L"ReferenceAxis");
    axis.Add(L"Origin").Leaf(L"Ox", L"1,5").Leaf(L"Oy", 2.0).Leaf(L"Oz", 3.0);
    axis.Add(L"Direction").Leaf(L"x", 4.0).Leaf(L"y", 5.0).Leaf(L"z", 6.0);
    EXPECT_EQ(copy->Deserialize(&tree, entities), KARSuccess);
    ExpectReports(3);
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    copy->GetReferenceAxis(origin, direction, normal);
    EXPECT_EQ(origin, KARMathPoint(1.5, 2, 3));
    EXPECT_EQ(direction, KARMathVector(4, 5, 6));
    EXPECT_EQ(normal, KARMathVector());
}

TEST_F(SketchFunction, WhatTheAxisLacksStaysAsItIs)
{
    copy->SetReferenceAxis({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    TestDeserializer tree(L"SketchFunction");
    tree.Attribute(L"id", L"F9").Attribute(L"name", L"f").Attribute(L"isActive", L"yes");
    tree.Add(L"ReferenceAxis").Add(L"Origin").Leaf(L"Oy", 0.5);
    EXPECT_EQ(copy->Deserialize(&tree, entities), KARSuccess);
    // Two coordinates and both elements "Direction".
    ExpectReports(4);
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    copy->GetReferenceAxis(origin, direction, normal);
    EXPECT_EQ(origin, KARMathPoint(1, 0.5, 3));
    EXPECT_EQ(direction, KARMathVector(4, 5, 6));
    EXPECT_EQ(normal, KARMathVector(7, 8, 9));
}

TEST_F(SketchFunction, WithTheVariableOnlyTheFirstSegmentIsWrittenAndWithoutAStream)
{
    AddTwoCurves();
    for (const char* any : {"", "0"}) {
        leaveOutCurves.Set(any);
        TestSerializer root;
        EXPECT_EQ(function->Serialize(&root), KARSuccess);
        const std::wstring segment = L"SketchFunction/CurveSegments/CurveSegment";
        EXPECT_EQ(root.Count(segment), 1U);
        EXPECT_EQ(root.Text(segment + L"/@curveOrientation"), L"Negative");
        EXPECT_EQ(root.Number(segment + L"/@curveHighLimit"), 2.5);
        EXPECT_EQ(root.Find(segment)->GetElementCount(), 0U);

        const auto read = KARMPSketchFunction::create(L"");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(read->GetCurveCount(), 0);
    }
}

TEST_F(SketchFunction, CurveThatIsNoStoredObjectIsReportedAndTheNextOneWritten)
{
    ModelObject object;
    function->AddCurve(&object, KARMPCurveOrientation::Positive, &lineLimits);
    AddTwoCurves();
    TestSerializer root;
    EXPECT_EQ(function->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(root.Count(L"SketchFunction/CurveSegments/CurveSegment"), 2U);
    function.detach();
}

TEST_F(SketchFunction, CurveThatCannotBeHadIsReportedAndTheNextOneWritten)
{
    auto* const unsure = new UnsureFunction;
    const QOBSharedHandle<KARMPSketchFunction> handle(unsure);
    unsure->offered = 1;
    unsure->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits);
    unsure->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits);
    TestSerializer root;
    EXPECT_EQ(unsure->Serialize(&root), KARSuccess);
    ExpectReports(1);
    const std::wstring segment = L"SketchFunction/CurveSegments/CurveSegment";
    EXPECT_EQ(root.Count(segment), 1U);
    EXPECT_EQ(root.Text(segment + L"/@curveOrientation"), L"Positive");
}

TEST_F(SketchFunction, CurveThatItRefusesIsReportedAndTheNextOneRead)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    const QOBSharedHandle<KARMPSketchFunction> refusing(new UnsureFunction);
    EXPECT_EQ(refusing->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(refusing->GetCurveCount(), 1);
}

TEST_F(SketchFunction, WhateverIsMissingIsReportedAndTheRestIsRead)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    ForEachMissingItem(root.Child(0), {},
                       [this](TestDeserializer& tree, const std::wstring& missing) {
                           SCOPED_TRACE(std::string(missing.begin(), missing.end()));
                           const auto read = KARMPSketchFunction::create(L"");
                           EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
                           const std::wstring last = missing.substr(missing.rfind(L'/') + 1);
                           std::size_t reports = 1;
                           int curves = 2;
                           if (last == L"CurveSegments") {
                               reports = 0;
                               curves = 0;
                           } else if (last == L"CurveSegment") {
                               reports = 0;
                               curves = 1;
                           } else if (last == L"CurveStream") {
                               curves = 1;
                           } else if (last == L"Direction") {
                               // The one that is left is read twice.
                               reports = 3;
                           }
                           ExpectReports(reports);
                           EXPECT_EQ(read->GetCurveCount(), curves);
                       });
}

TEST_F(SketchFunction, MissingLimitsAreZeroAndAMissingOrientationIsPositive)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    ForEachMissingItem(
        root.Child(0), {}, [this](TestDeserializer& tree, const std::wstring& missing) {
            const auto read = KARMPSketchFunction::create(L"");
            read->Deserialize(&tree, entities);
            TakeReports();
            if (read->GetCurveCount() < 2)
                return;
            // Only the first of the two segments has another orientation than the default.
            const Curve first = CurveOf(*read, 0);
            double low = 0.0;
            double high = 0.0;
            static_cast<KARCrvLimits*>(first.limits)->GetExtremities(low, high);
            if (missing.find(L"@curveLowLimit") != std::wstring::npos && low != -0.5) {
                EXPECT_EQ(low, 0.0);
                ++seen;
            }
            if (first.orientation != KARMPCurveOrientation::Negative) {
                EXPECT_EQ(missing, L"SketchFunction/CurveSegments/CurveSegment/@curveOrientation");
                ++seen;
            }
        });
    EXPECT_EQ(seen, 2);
}

TEST_F(SketchFunction, OrientationThatIsNoneOfTheWordsIsPositiveWithoutAReport)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    for (const wchar_t* word : {L"negative", L"Negative ", L""}) {
        const auto tree = TestDeserializer::From(root);
        const KARMPDeserializer* node = tree.get();
        for (const wchar_t* name : {L"SketchFunction", L"CurveSegments", L"CurveSegment"})
            node->GetElement(name, node);
        const_cast<TestDeserializer*>(static_cast<const TestDeserializer*>(node))
            ->Attribute(L"curveOrientation", word);
        const auto read = KARMPSketchFunction::create(L"");
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ASSERT_EQ(read->GetCurveCount(), 2);
        EXPECT_EQ(CurveOf(*read, 0).orientation, KARMPCurveOrientation::Positive);
    }
}

TEST_F(SketchFunction, LimitsInTheWrongOrderAreKeptAndKnownAsInvalid)
{
    KARCrvLimits reversed(KARCrvParam(2.5), KARCrvParam(-0.5));
    function->AddCurve(line, KARMPCurveOrientation::Positive, &reversed);
    TestSerializer root;
    function->Serialize(&root);
    EXPECT_EQ(copy->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ASSERT_EQ(copy->GetCurveCount(), 1);
    const auto* limits = static_cast<const KARCrvLimits*>(CurveOf(*copy, 0).limits);
    double low = 0.0;
    double high = 0.0;
    limits->GetExtremities(low, high);
    EXPECT_EQ(low, 2.5);
    EXPECT_EQ(high, -0.5);
    EXPECT_FALSE(limits->IsValid());
}

TEST_F(SketchFunction, DamagedStreamsAreReportedAndLeaveNoCurve)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    const std::wstring stream = root.Text(L"SketchFunction/CurveSegments/CurveSegment/CurveStream");
    std::wstring changed = stream;
    changed[changed.size() / 2] = changed[changed.size() / 2] == L'A' ? L'B' : L'A';
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"===="), stream.substr(4), stream.substr(0, 8), changed,
          stream + L"\u20ac", L"\u0141" + stream.substr(1)}) {
        TestDeserializer tree(L"SketchFunction");
        tree.Attribute(L"id", L"F9").Attribute(L"name", L"f").Attribute(L"isActive", L"yes");
        TestDeserializer& segment = tree.Add(L"CurveSegments").Add(L"CurveSegment");
        segment.Attribute(L"curveOrientation", L"Positive");
        segment.Attribute(L"curveLowLimit", 0.0).Attribute(L"curveHighLimit", 1.0);
        segment.Add(L"CurveStream").Attribute(L"length", 10).SetValue(text);
        const auto read = KARMPSketchFunction::create(L"");
        EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
        // The axis is missing as well.
        ExpectReports(2);
        EXPECT_EQ(read->GetCurveCount(), 0);
    }
}

TEST_F(SketchFunction, StreamOfASurfaceIsNoCurve)
{
    KARPlaneSurface* plane =
        geometry->Make<KARPlaneSurface>(KARMathPoint(0, 0, 1), KARMathVector(1, 0, 0),
                                        KARMathVector(0, 1, 0), KARSurLimits{-1, 1, -2, 2});
    KARGMKStream stream;
    KARListPtrKARIGMKObject list;
    list.Append(plane);
    ASSERT_EQ(KARIGMKObjectsSave(stream).Save(list, nullptr), KARSuccess);
    TestDeserializer tree(L"SketchFunction");
    tree.Attribute(L"id", L"F9").Attribute(L"name", L"f").Attribute(L"isActive", L"yes");
    TestDeserializer& segment = tree.Add(L"CurveSegments").Add(L"CurveSegment");
    segment.Attribute(L"curveOrientation", L"Positive").Add(L"CurveStream");
    segment.Attribute(L"curveLowLimit", 0.0).Attribute(L"curveHighLimit", 1.0);
    const KARMPDeserializer* node = nullptr;
    segment.GetElement(L"CurveStream", node);
    auto* element = const_cast<TestDeserializer*>(static_cast<const TestDeserializer*>(node));
    element->Attribute(L"length", 1).SetValue(kar::Base64EncodeWide(stream.GetBytes()));
    EXPECT_EQ(copy->Deserialize(&tree, entities), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(copy->GetCurveCount(), 0);
}

TEST_F(SketchFunction, NeedsItsElement)
{
    EXPECT_EQ(function->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(function->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(function->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(SketchFunction, AdditionThatFailsIsReportedAndTheRestIsWritten)
{
    AddTwoCurves();
    ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
        EXPECT_EQ(function->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
        EXPECT_EQ(TakeReports() != 0, failing != 0);
        if (failing > 1)
            EXPECT_GE(root.Child(0).GetElementCount(), 1U);
    });
}

TEST_F(SketchFunction, OfAnOutputIsLeftOutUnlessTheVariableIsSet)
{
    function->SetOwner("Output");
    TestSerializer root;
    EXPECT_EQ(function->Serialize(&root), KARSuccess);
    EXPECT_EQ(function->Deserialize(nullptr, entities), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    dumpOutputs.Set("1");
    EXPECT_EQ(function->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 1U);
}

TEST_F(SketchFunction, IsDescribedByWhatItWrites)
{
    AddTwoCurves();
    TestSerializer root;
    function->Serialize(&root);
    const auto items = KARMPSketchFunction::ClassContent().items;
    const karmp::Item& axis = items[0];
    ASSERT_EQ(axis.inner, 3);
    ASSERT_EQ(items.size(), 9U);
    const std::wstring element = L"SketchFunction/";
    const auto path = [](const karmp::Item& item) { return L"/" + std::wstring(item.name); };
    const std::wstring inAxis = element + std::wstring(axis.name);
    ASSERT_EQ(root.Find(inAxis)->GetElementCount(), 3U);
    for (int i = 0; i < 3; ++i) {
        const karmp::Item& item = items[1 + static_cast<std::size_t>(i)];
        const TestSerializer& written = root.Find(inAxis)->Child(static_cast<std::size_t>(i));
        EXPECT_EQ(written.GetId(), item.name);
        ASSERT_EQ(written.GetElementCount(), item.words.size());
        EXPECT_EQ(written.Child(2).GetId(), item.words[2]);
    }
    const karmp::Item& curves = items[4];
    ASSERT_EQ(curves.kind, karmp::ItemKind::Records);
    const std::wstring segment =
        element + std::wstring(curves.name) + L"/" + std::wstring(curves.entry);
    EXPECT_EQ(root.Count(segment), 2U);
    ASSERT_EQ(root.Find(segment)->GetAttributeCount(), 3U);
    for (std::size_t i = 5; i < 8; ++i)
        EXPECT_EQ(root.Find(segment)->GetAttributeId(static_cast<int>(i) - 5), items[i].name);
    EXPECT_TRUE(root.Has(segment + path(items[8]) + L"/@length"));
}

} // namespace
