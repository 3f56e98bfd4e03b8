#include "KARMPCurve.h"
#include "AllocationCounter.h"
#include "EnvironmentVariable.h"
#include "KARCrvLimits.h"
#include "KAREllipseArc.h"
#include "KARIMPGeometryLoaderServices.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "ModelObject.h"
#include "StoredStreams.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

#include <cstdlib>

namespace {

constexpr const wchar_t* Segment = L"Curve/CurveSegments/CurveSegment";

struct Piece
{
    KARStatus status = KARFailure;
    KARBaseUnknown* curve = nullptr;
    KARMPCurveOrientation::Enum orientation = {};
    void* limits = nullptr;
};

Piece PieceOf(const KARMPCurve& curve, int index)
{
    Piece piece;
    piece.status = curve.GetCurve(index, piece.curve, piece.orientation, piece.limits);
    return piece;
}

std::pair<double, double> Extremities(const void* limits)
{
    std::pair<double, double> extremities;
    static_cast<const KARCrvLimits*>(limits)->GetExtremities(extremities.first, extremities.second);
    return extremities;
}

/// A curve whose limits a test sets, and which may neither give its first segment nor take one nor
/// count all of them.
class OpenCurve : public KARMPCurve
{
public:
    using KARMPCurve::SetCurveLimits;

    KARStatus GetCurve(int index, KARBaseUnknown*& curve, KARMPCurveOrientation::Enum& orientation,
                       void*& limits) const override
    {
        if (index > 0 || !hidesFirst)
            return KARMPCurve::GetCurve(index, curve, orientation, limits);
        return hiddenStatus;
    }
    KARStatus AddCurve(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                       void* limits) override
    {
        return refused-- > 0 ? KARFailure : KARMPCurve::AddCurve(curve, orientation, limits);
    }
    int GetCurveCount() const override { return KARMPCurve::GetCurveCount() - uncounted; }
    static VirtualSlots Slots()
    {
        return {VirtualSlot(&OpenCurve::AddCurve),
                VirtualSlot(&OpenCurve::GetCurve),
                VirtualSlot(&OpenCurve::GetCurveCount),
                VirtualSlot(&OpenCurve::DeleteCurveLimitsAtEnd),
                VirtualSlot(&OpenCurve::GetCurveTangent),
                VirtualSlot(&OpenCurve::GetCurveLimits),
                VirtualSlot(&OpenCurve::SetCurveLimits)};
    }

    bool hidesFirst = false;
    KARStatus hiddenStatus = KARFailure;
    int refused = 0;
    int uncounted = 0;
};

/// Services that note the question.
class RecordingServices : public KARIMPGeometryLoaderServices
{
public:
    KARStatus GetCurveTangent(const QOBSharedHandle<KARMPCurve>& curve, double parameter,
                              double* tangent) override
    {
        asked = curve;
        at = parameter;
        tangent[0] = 1.0;
        tangent[1] = 2.0;
        tangent[2] = 3.0;
        return status;
    }

    QOBSharedHandle<KARMPCurve> asked;
    double at = 0.0;
    KARStatus status = KARSuccess;
};

class Curve : public KARMPTestFixture
{
protected:
    Curve()
    {
        line = MakeLine(*factory);
        arc = factory->Make<KARCircleArc>(KARMathPoint(1, 1, 0), KARMathVector(1, 0, 0),
                                          KARMathVector(0, 0, 1), 2.0, 0.0, 3.0);
        curve->SetIdentifier(L"C1");
    }
    ~Curve() override { KARIMPGeometryLoaderServices::SetKARIMPGeometryLoaderServices(nullptr); }

    void AddTwoSegments()
    {
        EXPECT_EQ(curve->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits), KARSuccess);
        EXPECT_EQ(curve->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits), KARSuccess);
    }
    /// A new curve that frees the limits that it reads.
    static QOBSharedHandle<KARMPCurve> Reader()
    {
        const auto reader = KARMPCurve::create(L"");
        reader->DeleteCurveLimitsAtEnd(true);
        return reader;
    }
    /// A tree with one segment, without a report when the text is a curve's.
    static std::unique_ptr<TestDeserializer> TreeWith(const std::wstring& stream)
    {
        auto tree = std::make_unique<TestDeserializer>(L"Curve");
        tree->Attribute(L"id", L"C1").Attribute(L"name", L"c").Attribute(L"isActive", L"yes");
        TestDeserializer& segment = tree->Add(L"CurveSegments").Add(L"CurveSegment");
        segment.Attribute(L"curveOrientation", L"Negative");
        segment.Attribute(L"curveLowLimit", 0.5).Attribute(L"curveHighLimit", 1.5);
        segment.Add(L"CurveStream").Attribute(L"length", 1).SetValue(stream);
        return tree;
    }

    EnvironmentVariable leaveOutCurves{"DONT_SERIALIZE_CURVE", nullptr};
    StoredFactory factory{KARGeometricFactory::Create()};
    KARLineCurve* line = nullptr;
    KARCircleArc* arc = nullptr;
    KARCrvLimits lineLimits{KARCrvParam(-0.5), KARCrvParam(2.5)};
    KARCrvLimits arcLimits{KARCrvParam(0.25), KARCrvParam(1.5)};
    QOBSharedHandle<KARMPCurve> curve = KARMPCurve::create(L"c");
    KARMPEntityTable entities;
};

TEST_F(Curve, IsNewlyWithoutSegmentsAndSafeForThreads)
{
    EXPECT_EQ(curve->GetCurveCount(), 0);
    EXPECT_EQ(curve->IsThreadSafe(), 1);
    AddTwoSegments();
    EXPECT_EQ(curve->IsThreadSafe(), 0);
}

TEST_F(Curve, HandsOutItsSegmentsInOrderWithoutFurtherReferences)
{
    AddTwoSegments();
    ASSERT_EQ(curve->GetCurveCount(), 2);
    const Piece first = PieceOf(*curve, 0);
    EXPECT_EQ(first.status, KARSuccess);
    EXPECT_EQ(first.curve, line);
    EXPECT_EQ(first.orientation, KARMPCurveOrientation::Negative);
    EXPECT_EQ(first.limits, &lineLimits);
    EXPECT_EQ(PieceOf(*curve, 1).curve, arc);
    EXPECT_EQ(line->GetRefCount(), 2U);
}

TEST_F(Curve, IndexOutsideTheSegmentsGivesNullsAndLeavesTheOrientation)
{
    AddTwoSegments();
    for (const int index : {-1, 2}) {
        KARBaseUnknown* given = line;
        auto orientation = KARMPCurveOrientation::Negative;
        void* limits = &lineLimits;
        EXPECT_EQ(curve->GetCurve(index, given, orientation, limits), KARFailure);
        EXPECT_EQ(given, nullptr);
        EXPECT_EQ(limits, nullptr);
        EXPECT_EQ(orientation, KARMPCurveOrientation::Negative);
    }
}

TEST_F(Curve, CurveWithoutLimitsOrLimitsWithoutACurveAreRefused)
{
    EXPECT_EQ(curve->AddCurve(line, KARMPCurveOrientation::Positive, nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(curve->AddCurve(nullptr, KARMPCurveOrientation::Positive, &lineLimits), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(curve->GetCurveCount(), 0);
    EXPECT_EQ(line->GetRefCount(), 1U);
}

TEST_F(Curve, GivesBackItsReferencesAtItsEndAndLeavesTheLimitsToTheirOwner)
{
    ModelObject object;
    AddTwoSegments();
    for (int i = 0; i < 20; ++i)
        curve->AddCurve(&object, KARMPCurveOrientation::Positive, &lineLimits);
    EXPECT_EQ(object.Held(), 20U);
    curve.detach();
    EXPECT_EQ(object.Held(), 0U);
    EXPECT_EQ(line->GetRefCount(), 1U);
    EXPECT_EQ(arc->GetRefCount(), 1U);
    EXPECT_EQ(Extremities(&lineLimits), std::pair(-0.5, 2.5));
}

// A leak, or limits that are freed twice, is for the sanitizers to find.
TEST_F(Curve, FreesTheLimitsAtItsEndWhenItIsTold)
{
    EXPECT_EQ(curve->DeleteCurveLimitsAtEnd(true), KARSuccess);
    curve->AddCurve(line, KARMPCurveOrientation::Positive, new KARCrvLimits(lineLimits));
    curve.detach();
    EXPECT_EQ(line->GetRefCount(), 1U);

    const auto other = KARMPCurve::create(L"");
    other->AddCurve(line, KARMPCurveOrientation::Positive, &lineLimits);
    other->DeleteCurveLimitsAtEnd(true);
    other->DeleteCurveLimitsAtEnd(false);
}

TEST_F(Curve, HasNoLimitsAsAWholeUntilTheyAreSet)
{
    const QOBSharedHandle<KARMPCurve> handle(new OpenCurve);
    double low = 7.0;
    double high = 8.0;
    bool flag = true;
    EXPECT_EQ(handle->GetCurveLimits(low, high, flag), KARUnchanged);
    EXPECT_EQ(low, 7.0);
    EXPECT_EQ(high, 8.0);
    EXPECT_TRUE(flag);
    EXPECT_EQ(static_cast<OpenCurve&>(*handle).SetCurveLimits(-1.0, 2.0, false), KARSuccess);
    EXPECT_EQ(handle->GetCurveLimits(low, high, flag), KARSuccess);
    EXPECT_EQ(low, -1.0);
    EXPECT_EQ(high, 2.0);
    EXPECT_FALSE(flag);
    static_cast<OpenCurve&>(*handle).SetCurveLimits(0.0, 1.0, true);
    handle->GetCurveLimits(low, high, flag);
    EXPECT_TRUE(flag);
}

TEST_F(Curve, CopySharesTheCurvesAndHasLimitsOfItsOwn)
{
    const QOBSharedHandle<KARMPCurve> source(new OpenCurve);
    static_cast<OpenCurve&>(*source).SetCurveLimits(-1.0, 2.0, true);
    source->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits);
    source->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits);
    {
        const auto copy = KARMPCurve::clone(source, QOBDynamicObject::CopyDefault);
        EXPECT_EQ(line->GetRefCount(), 3U);
        EXPECT_EQ(arc->GetRefCount(), 3U);
        ASSERT_EQ(copy->GetCurveCount(), 2);
        const Piece first = PieceOf(*copy, 0);
        EXPECT_EQ(first.curve, line);
        EXPECT_EQ(first.orientation, KARMPCurveOrientation::Negative);
        EXPECT_NE(first.limits, &lineLimits);
        EXPECT_EQ(Extremities(first.limits), std::pair(-0.5, 2.5));
        EXPECT_EQ(PieceOf(*copy, 1).curve, arc);
        double low = 0.0;
        double high = 0.0;
        bool flag = false;
        EXPECT_EQ(copy->GetCurveLimits(low, high, flag), KARSuccess);
        EXPECT_EQ(low, -1.0);
        EXPECT_EQ(high, 2.0);
        EXPECT_TRUE(flag);
        // A copy of the copy does not share its limits either.
        const auto second = KARMPCurve::clone(copy, QOBDynamicObject::CopyDefault);
        EXPECT_NE(PieceOf(*second, 0).limits, first.limits);
    }
    EXPECT_EQ(line->GetRefCount(), 2U);
    EXPECT_EQ(arc->GetRefCount(), 2U);
}

TEST_F(Curve, HasNoTangentWithoutServices)
{
    double tangent[3] = {4.0, 5.0, 6.0};
    EXPECT_EQ(curve->GetCurveTangent(0.5, tangent), KARFailure);
    EXPECT_EQ(tangent[0], 4.0);
    EXPECT_EQ(curve->getReferenceCount(), 1U);
}

TEST_F(Curve, AsksTheServicesForItsTangentAndGivesThemBack)
{
    auto* const services = new RecordingServices;
    KARIMPGeometryLoaderServices::SetKARIMPGeometryLoaderServices(services);
    EXPECT_EQ(services->GetRefCount(), 2U);
    for (const KARStatus status : {KARSuccess, KARUnchanged, KARNotImplemented}) {
        services->status = status;
        double tangent[3] = {};
        EXPECT_EQ(curve->GetCurveTangent(0.5, tangent), status);
        EXPECT_EQ(tangent[2], 3.0);
        EXPECT_EQ(services->at, 0.5);
        EXPECT_EQ(services->asked, curve);
        services->asked.detach();
        EXPECT_EQ(services->GetRefCount(), 2U);
        EXPECT_EQ(curve->getReferenceCount(), 1U);
    }
    KARIMPGeometryLoaderServices::SetKARIMPGeometryLoaderServices(services);
    EXPECT_EQ(services->GetRefCount(), 2U);
    KARIMPGeometryLoaderServices::SetKARIMPGeometryLoaderServices(nullptr);
    EXPECT_EQ(services->GetRefCount(), 1U);
    EXPECT_EQ(KARIMPGeometryLoaderServices::GetKARIMPGeometryLoaderServices(), nullptr);
    services->Release();
}

TEST_F(Curve, WithoutSegmentsWritesItsBaseAloneAndFailsWithoutAReport)
{
    curve->SetBody(KARMPBody::create(L"b"));
    TestSerializer root;
    EXPECT_EQ(curve->Serialize(&root), KARFailure);
    EXPECT_EQ(root.Text(L"Curve/@id"), L"C1");
    EXPECT_TRUE(root.Has(L"Curve/Body"));
    EXPECT_FALSE(root.Has(L"Curve/CurveSegments"));
}

TEST_F(Curve, ComesBackWithItsSegments)
{
    AddTwoSegments();
    TestSerializer root;
    ASSERT_EQ(curve->Serialize(&root), KARSuccess);
    const std::wstring segment = Segment;
    EXPECT_EQ(root.Count(segment), 2U);
    EXPECT_EQ(root.Text(segment + L"/@curveOrientation"), L"Negative");
    EXPECT_EQ(root.Number(segment + L"/@curveLowLimit"), -0.5);
    EXPECT_EQ(root.Number(segment + L"/@curveHighLimit"), 2.5);
    EXPECT_EQ(root.Text(segment + L"[1]/@curveOrientation"), L"Positive");
    const StreamBytes bytes = StreamOf(line);
    EXPECT_EQ(root.Text(segment + L"/CurveStream"), kar::Base64EncodeWide(bytes));
    EXPECT_EQ(root.Integer(segment + L"/CurveStream/@length"), static_cast<int>(bytes.size()));
    EXPECT_EQ(line->GetRefCount(), 2U);

    for (const bool asText : {false, true}) {
        const auto read = Reader();
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        ASSERT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ASSERT_EQ(read->GetCurveCount(), 2);
        const Piece first = PieceOf(*read, 0);
        const auto* readLine = KARSysDynamicCast<KARLineCurve>(first.curve);
        ASSERT_NE(readLine, nullptr);
        EXPECT_EQ(readLine->EvalPoint(1.0), line->EvalPoint(1.0));
        // The factory that loaded it is gone.
        EXPECT_EQ(readLine->GetRefCount(), 1U);
        EXPECT_EQ(first.orientation, KARMPCurveOrientation::Negative);
        EXPECT_EQ(Extremities(first.limits), std::pair(-0.5, 2.5));
        EXPECT_TRUE(static_cast<KARCrvLimits*>(first.limits)->IsValid());
        EXPECT_NE(KARSysDynamicCast<KARCircleArc>(PieceOf(*read, 1).curve), nullptr);
        TestSerializer again;
        read->Serialize(&again);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(Curve, LeavesTheLimitsThatItsReaderMadeToWhoeverReads)
{
    auto read = KARMPCurve::create(L"");
    ASSERT_EQ(read->Deserialize(TreeWith(kar::Base64EncodeWide(StreamOf(line))).get(), entities),
              KARSuccess);
    const Piece piece = PieceOf(*read, 0);
    ASSERT_NE(piece.limits, nullptr);
    read.detach();
    EXPECT_EQ(Extremities(piece.limits), std::pair(0.5, 1.5));
    std::free(piece.limits);
}

TEST_F(Curve, WithTheVariableOnlyTheFirstSegmentIsWrittenAndWithoutAStream)
{
    AddTwoSegments();
    for (const char* any : {"", "0"}) {
        leaveOutCurves.Set(any);
        TestSerializer root;
        EXPECT_EQ(curve->Serialize(&root), KARSuccess);
        EXPECT_EQ(root.Count(Segment), 1U);
        EXPECT_EQ(root.Text(Segment + std::wstring(L"/@curveOrientation")), L"Negative");
        EXPECT_EQ(root.Number(Segment + std::wstring(L"/@curveHighLimit")), 2.5);
        EXPECT_EQ(root.Find(Segment)->GetElementCount(), 0U);

        const auto read = Reader();
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(read->GetCurveCount(), 0);
    }
}

TEST_F(Curve, SegmentThatCannotBeHadIsReportedAndTheNextOneWritten)
{
    auto* const open = new OpenCurve;
    const QOBSharedHandle<KARMPCurve> handle(open);
    open->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits);
    open->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits);
    open->hidesFirst = true;
    // The second time it claims to have given what it left null.
    for (const KARStatus status : {KARFailure, KARSuccess}) {
        open->hiddenStatus = status;
        TestSerializer root;
        EXPECT_EQ(open->Serialize(&root), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(root.Count(Segment), 1U);
        EXPECT_EQ(root.Text(Segment + std::wstring(L"/@curveOrientation")), L"Positive");
    }
}

TEST_F(Curve, SegmentThatItDoesNotCountIsNotThereForAWriterOrForThreads)
{
    auto* const open = new OpenCurve;
    const QOBSharedHandle<KARMPCurve> handle(open);
    open->AddCurve(line, KARMPCurveOrientation::Negative, &lineLimits);
    open->AddCurve(arc, KARMPCurveOrientation::Positive, &arcLimits);
    open->uncounted = 1;
    TestSerializer root;
    EXPECT_EQ(open->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Count(Segment), 1U);
    EXPECT_EQ(open->IsThreadSafe(), 0);
    open->uncounted = 2;
    TestSerializer none;
    EXPECT_EQ(open->Serialize(&none), KARFailure);
    EXPECT_EQ(open->IsThreadSafe(), 1);
}

TEST_F(Curve, SegmentThatIsNoStoredObjectIsWrittenWithoutAStreamAndReported)
{
    ModelObject object;
    curve->AddCurve(&object, KARMPCurveOrientation::Positive, &lineLimits);
    AddTwoSegments();
    TestSerializer root;
    EXPECT_EQ(curve->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(root.Count(Segment), 3U);
    EXPECT_EQ(root.Find(Segment)->GetElementCount(), 0U);
    EXPECT_TRUE(root.Has(Segment + std::wstring(L"[1]/CurveStream")));
    curve.detach();
}

TEST_F(Curve, SegmentThatItRefusesIsReportedAndTheNextOneRead)
{
    AddTwoSegments();
    TestSerializer root;
    curve->Serialize(&root);
    auto* const open = new OpenCurve;
    const QOBSharedHandle<KARMPCurve> refusing(open);
    refusing->DeleteCurveLimitsAtEnd(true);
    open->refused = 1;
    EXPECT_EQ(refusing->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectReports(1);
    ASSERT_EQ(refusing->GetCurveCount(), 1);
    EXPECT_EQ(PieceOf(*refusing, 0).orientation, KARMPCurveOrientation::Positive);
}

TEST_F(Curve, WhateverIsMissingIsReportedAndOnlyTheListOfSegmentsIsNeeded)
{
    AddTwoSegments();
    TestSerializer root;
    curve->Serialize(&root);
    ForEachMissingItem(
        root.Child(0), {}, [this](TestDeserializer& tree, const std::wstring& missing) {
            SCOPED_TRACE(std::string(missing.begin(), missing.end()));
            const auto read = Reader();
            const std::wstring last = missing.substr(missing.rfind(L'/') + 1);
            const bool isList = last == L"CurveSegments";
            EXPECT_EQ(read->Deserialize(&tree, entities), isList ? KARFailure : KARSuccess);
            ExpectReports(last == L"CurveSegment" ? 0 : 1);
            const bool isSegment = last == L"CurveSegment" || last == L"CurveStream";
            EXPECT_EQ(read->GetCurveCount(), isList ? 0 : isSegment ? 1 : 2);
        });
}

TEST_F(Curve, OfAnEmptyListHasNoSegments)
{
    TestDeserializer tree(L"Curve");
    tree.Attribute(L"id", L"C1").Attribute(L"name", L"c").Attribute(L"isActive", L"yes");
    tree.Add(L"CurveSegments");
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
    EXPECT_EQ(read->GetCurveCount(), 0);
}

TEST_F(Curve, MissingLimitsAreZeroAndAMissingOrientationIsPositive)
{
    TestDeserializer tree(L"Curve");
    tree.Attribute(L"id", L"C1").Attribute(L"name", L"c").Attribute(L"isActive", L"yes");
    tree.Add(L"CurveSegments")
        .Add(L"CurveSegment")
        .Add(L"CurveStream")
        .Attribute(L"length", 1)
        .SetValue(kar::Base64EncodeWide(StreamOf(line)));
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(&tree, entities), KARSuccess);
    ExpectReports(3);
    ASSERT_EQ(read->GetCurveCount(), 1);
    EXPECT_EQ(PieceOf(*read, 0).orientation, KARMPCurveOrientation::Positive);
    EXPECT_EQ(Extremities(PieceOf(*read, 0).limits), std::pair(0.0, 0.0));
}

TEST_F(Curve, LimitsThatAreReadAreChecked)
{
    const KARCrvLimits reversed{KARCrvParam(2.5), KARCrvParam(-0.5)};
    ASSERT_TRUE(reversed.IsValid()) << "nobody checked them";
    KARCrvLimits limits = reversed;
    curve->AddCurve(line, KARMPCurveOrientation::Positive, &limits);
    TestSerializer root;
    curve->Serialize(&root);
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ASSERT_EQ(read->GetCurveCount(), 1);
    const void* const readLimits = PieceOf(*read, 0).limits;
    EXPECT_EQ(Extremities(readLimits), std::pair(2.5, -0.5));
    EXPECT_FALSE(static_cast<const KARCrvLimits*>(readLimits)->IsValid());
}

TEST_F(Curve, OrientationThatIsNoneOfTheWordsIsPositiveWithoutAReport)
{
    for (const wchar_t* word : {L"negative", L"Negative ", L""}) {
        const auto tree = TreeWith(kar::Base64EncodeWide(StreamOf(line)));
        const KARMPDeserializer* node = tree.get();
        for (const wchar_t* name : {L"CurveSegments", L"CurveSegment"})
            node->GetElement(name, node);
        const_cast<TestDeserializer*>(static_cast<const TestDeserializer*>(node))
            ->Attribute(L"curveOrientation", word);
        const auto read = Reader();
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ASSERT_EQ(read->GetCurveCount(), 1);
        EXPECT_EQ(PieceOf(*read, 0).orientation, KARMPCurveOrientation::Positive);
    }
}

TEST_F(Curve, LengthThatDisagreesWithTheTextIsNotUsed)
{
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(TreeWith(kar::Base64EncodeWide(StreamOf(line))).get(), entities),
              KARSuccess);
    EXPECT_EQ(read->GetCurveCount(), 1);
}

TEST_F(Curve, StreamOfASurfaceIsNoCurve)
{
    const auto read = Reader();
    const StreamBytes bytes = StreamOf(MakePlane(*factory));
    EXPECT_EQ(read->Deserialize(TreeWith(kar::Base64EncodeWide(bytes)).get(), entities),
              KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(read->GetCurveCount(), 0);
}

TEST_F(Curve, DamagedStreamsAreReportedAndAllocateNothingThatTheyAnnounce)
{
    const std::vector<std::wstring> texts = DamagedStreams(StreamOf(line));
    ASSERT_GT(texts.size(), 150U);
    const AllocationCounter counter;
    for (const std::wstring& text : texts) {
        SCOPED_TRACE(std::string(text.begin(), text.end()));
        const auto read = Reader();
        EXPECT_EQ(read->Deserialize(TreeWith(text).get(), entities), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(read->GetCurveCount(), 0);
    }
    EXPECT_LT(counter.Bytes(), AllocatedForDamagedStreams);
}

TEST_F(Curve, NeedsItsElement)
{
    EXPECT_EQ(curve->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(curve->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(curve->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Curve, AdditionThatFailsIsReportedAndTheRestIsWritten)
{
    AddTwoSegments();
    ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
        EXPECT_EQ(curve->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
        EXPECT_EQ(TakeReports() != 0, failing != 0);
        if (failing > 1)
            EXPECT_GE(root.Child(0).GetAttributeCount(), 3U);
    });
}

#if defined(__GNUC__) && defined(__x86_64__)

TEST_F(Curve, HasItsOperationsBehindThoseOfGeometry)
{
    ExpectSlotsBehind(VirtualSlot(&KARMPGeometry::GetLinkedConstraintCount), OpenCurve::Slots());
}

#endif

} // namespace
