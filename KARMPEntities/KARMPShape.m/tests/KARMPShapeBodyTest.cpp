#include "KARMPShapeBody.h"
#include "AllocationCounter.h"
#include "KARBase64.h"
#include "KARBody.h"
#include "KARGMKStream.h"
#include "KARGeometricFactory.h"
#include "KARIGMKObjectsSave.h"
#include "KARLineCurve.h"
#include "KARLinearTransfoSurface.h"
#include "KARMPBody2D.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARPlaneSurface.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

#include <new>
#include <span>

namespace {

using Bytes = std::vector<unsigned char>;

struct ReleaseFactory
{
    void operator()(KARGeometricFactory* factory) const { factory->Release(); }
};

/// The bytes of a stream of objects, with the header or without.
Bytes StreamOf(std::initializer_list<KARIGMKObject*> objects, bool hasHeader = true, int mode = 1)
{
    KARListPtrKARIGMKObject list;
    for (KARIGMKObject* const object : objects)
        list.Append(object);
    KARGMKStream stream;
    std::size_t position = 0;
    int version = 0;
    if (hasHeader)
        stream.OpenWriteStreamHeader(mode, position, version);
    KARIGMKObjectsSave(stream).Save(list, nullptr);
    if (hasHeader)
        stream.CloseWriteStreamHeader(position, version);
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}

/// A shape that notes and answers what it is given.
class AnsweringShape : public KARMPShapeBody
{
public:
    KARStatus SetBody(KARBody* body) override
    {
        ++sets;
        return answers != KARSuccess ? answers : KARMPShapeBody::SetBody(body);
    }

    int sets = 0;
    KARStatus answers = KARSuccess;
};

class ShapeBody : public KARMPTestFixture
{
protected:
    ShapeBody()
    {
        // Two faces, one of them on a moved surface, that share an edge.
        auto* const plane =
            factory->Make<KARPlaneSurface>(KARMathPoint(0, 0, 0), KARMathVector(1, 0, 0),
                                           KARMathVector(0, 1, 0), KARSurLimits{-1, 1, -1, 1});
        auto* const moved = factory->Make<KARLinearTransfoSurface>(
            plane, KARMathTransformation({{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}, {}));
        auto* const line = factory->Make<KARLineCurve>(KARMathLine({0, 0, 0}, {1, 0, 0}), 0., 1.);
        body->AddVertex({0, 0, 0});
        body->AddVertex({1, 0, 0});
        body->AddEdge({line, 0, 1, 0, 1});
        body->AddEdge({line, 0.25, 0.75, 1, 0});
        body->AddFace({plane, false, {{{0, false}, {1, false}}}});
        body->AddFace({moved, true, {{{0, false}, {1, false}}}});
        shape->SetIdentifier(L"S1");
    }
    static std::unique_ptr<TestDeserializer> TreeWith(const std::wstring& stream)
    {
        auto tree = std::make_unique<TestDeserializer>(L"ShapeBody");
        tree->Attribute(L"id", L"S1").Attribute(L"name", L"s").Attribute(L"isActive", L"yes");
        tree->Attribute(L"stream", stream);
        return tree;
    }
    static std::unique_ptr<TestDeserializer> TreeWith(std::span<const unsigned char> bytes)
    {
        return TreeWith(kar::Base64EncodeWide(bytes));
    }
    static QOBSharedHandle<KARMPShapeBody> Reader() { return KARMPShapeBody::create(L""); }

    std::unique_ptr<KARGeometricFactory, ReleaseFactory> factory{KARGeometricFactory::Create()};
    KARBody* body = factory->Make<KARBody>();
    KARBody* other = factory->Make<KARBody>();
    QOBSharedHandle<KARMPShapeBody> shape = KARMPShapeBody::create(L"s");
    KARMPEntityTable entities;
};

TEST_F(ShapeBody, IsNewlyWithoutABody)
{
    EXPECT_EQ(shape->GetBody(), nullptr);
    EXPECT_EQ(shape->SetBody(nullptr), KARSuccess);
    EXPECT_EQ(shape->GetBody(), nullptr);
}

TEST_F(ShapeBody, HoldsOneReferenceAndGivesItBack)
{
    EXPECT_EQ(shape->SetBody(body), KARSuccess);
    EXPECT_EQ(shape->GetBody(), body);
    EXPECT_EQ(body->GetRefCount(), 2U);
    EXPECT_EQ(shape->SetBody(body), KARSuccess);
    EXPECT_EQ(body->GetRefCount(), 2U);
    EXPECT_EQ(shape->SetBody(other), KARSuccess);
    EXPECT_EQ(body->GetRefCount(), 1U);
    EXPECT_EQ(other->GetRefCount(), 2U);
    shape.detach();
    EXPECT_EQ(other->GetRefCount(), 1U);
}

TEST_F(ShapeBody, KeepsTheOldBodyWhenItIsGivenNull)
{
    shape->SetBody(body);
    EXPECT_EQ(shape->SetBody(nullptr), KARSuccess);
    EXPECT_EQ(shape->GetBody(), body);
    EXPECT_EQ(body->GetRefCount(), 2U);
}

TEST_F(ShapeBody, KeepsABodyThatItAloneHoldsWhenItIsSetAgain)
{
    KARBody* const own = KARBody::Create();
    shape->SetBody(own);
    own->Release();
    shape->SetBody(own);
    EXPECT_EQ(own->GetRefCount(), 1U);
}

TEST_F(ShapeBody, CopyTakesAReferenceOfItsOwn)
{
    shape->SetBody(body);
    {
        const auto copy = KARMPShapeBody::clone(shape, QOBDynamicObject::CopyDefault);
        EXPECT_EQ(copy->GetBody(), body);
        EXPECT_EQ(body->GetRefCount(), 3U);
    }
    EXPECT_EQ(body->GetRefCount(), 2U);
    const auto copy = KARMPShapeBody::clone(Reader(), QOBDynamicObject::CopyDefault);
    EXPECT_EQ(copy->GetBody(), nullptr);
}

TEST_F(ShapeBody, IsWrittenAsAStreamWithAHeaderAndComesBack)
{
    shape->SetBody(body);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"ShapeBody/@id"), L"S1");
    EXPECT_EQ(root.Text(L"ShapeBody/@stream"), kar::Base64EncodeWide(StreamOf({body})));
    EXPECT_FALSE(root.Has(L"ShapeBody/@length"));
    for (const bool asText : {false, true}) {
        const auto read = Reader();
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        const KARBody* const loaded = read->GetBody();
        ASSERT_NE(loaded, nullptr);
        // The factory that loaded it is gone.
        EXPECT_EQ(loaded->GetRefCount(), 1U);
        ASSERT_EQ(loaded->GetFaces().size(), 2U);
        EXPECT_TRUE(loaded->GetFaces()[1].reversed);
        EXPECT_NE(KARSysDynamicCast<KARLinearTransfoSurface>(loaded->GetFaces()[1].surface),
                  nullptr);
        EXPECT_EQ(loaded->GetEdges()[1].low, 0.25);
        TestSerializer again;
        read->Serialize(&again);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(ShapeBody, WithoutABodyIsWrittenWithoutAStream)
{
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"ShapeBody/@id"), L"S1");
    EXPECT_FALSE(root.Has(L"ShapeBody/@stream"));
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(read->GetBody(), nullptr);
}

TEST_F(ShapeBody, WithPlanarBodiesIsWrittenAsAnyPlanarShape)
{
    shape->SetBody(body);
    const auto planar = KARMPBody2D::create(L"b");
    planar->SetIdentifier(L"B1");
    entities.Set(L"B1", planar);
    shape->LinkToBody(planar);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"ShapeBody/Bodies/Body2D/@id"), L"B1");
    const auto read = Reader();
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(read->GetLinkedBodyCount(), 1);
    read->orphanObject();
    shape->orphanObject();
}

TEST_F(ShapeBody, AStreamThatDoesNotHoldExactlyOneBodyGivesOne)
{
    KARIGMKObject* const plane = body->GetFaces()[0].surface;
    for (const Bytes& bytes : {StreamOf({body, other}), StreamOf({plane}), StreamOf({body}, false),
                               StreamOf({body}, true, 0), Bytes{1, 2, 3}}) {
        const auto read = Reader();
        read->SetBody(other);
        EXPECT_EQ(read->Deserialize(TreeWith(bytes).get(), entities), KARUnchanged);
        EXPECT_EQ(read->GetBody(), other);
    }
    EXPECT_EQ(body->GetRefCount(), 1U);
    EXPECT_EQ(other->GetRefCount(), 1U);
}

TEST_F(ShapeBody, TextThatIsNoBase64IsReportedAndFails)
{
    for (const wchar_t* const text : {L"", L"====", L"AAA", L"\u0141AAA"}) {
        const auto read = Reader();
        read->SetBody(body);
        EXPECT_EQ(read->Deserialize(TreeWith(text).get(), entities), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(read->GetBody(), body);
    }
}

TEST_F(ShapeBody, DamagedStreamsGiveOneAndAllocateNothingThatTheyAnnounce)
{
    const Bytes whole = StreamOf({body});
    std::vector<Bytes> streams;
    for (std::size_t index = 0; index < whole.size(); ++index) {
        Bytes flipped = whole;
        flipped[index] = static_cast<unsigned char>(flipped[index] ^ 0x10U);
        streams.push_back(flipped);
        if (index != 0)
            streams.emplace_back(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(index));
    }
    Bytes gigabyte = whole;
    gigabyte[15] = 0x40; // of the header's count
    streams.push_back(gigabyte);
    streams.emplace_back(gigabyte.begin(), gigabyte.begin() + 16);
    const AllocationCounter counter;
    for (const Bytes& stream : streams) {
        const auto read = Reader();
        EXPECT_EQ(read->Deserialize(TreeWith(stream).get(), entities), KARUnchanged);
        EXPECT_EQ(read->GetBody(), nullptr);
    }
    EXPECT_LT(counter.Bytes(), 8U << 20U);
}

TEST_F(ShapeBody, ReadingGivesWhatTheSetterGives)
{
    const auto tree = TreeWith(StreamOf({body}));
    for (const KARStatus status : {KARFailure, KARUnchanged, KARSuccess}) {
        auto* const answering = new AnsweringShape;
        const QOBSharedHandle<KARMPShapeBody> handle(answering);
        answering->answers = status;
        EXPECT_EQ(answering->Deserialize(tree.get(), entities), status);
        EXPECT_EQ(answering->sets, 1);
        EXPECT_EQ(answering->GetBody() != nullptr, status == KARSuccess);
    }
}

TEST_F(ShapeBody, NeedsItsElementAndReportsWhatCannotBeAdded)
{
    EXPECT_EQ(shape->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(shape->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
    shape->SetBody(body);
    ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
        EXPECT_EQ(shape->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
        EXPECT_EQ(TakeReports() != 0, failing != 0);
    });
}

// The tree's own allocations throw; those of the conversion are failed checks.
TEST_F(ShapeBody, FailedConversionsAreReportedAndLeaveNoReferenceBehind)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    shape->SetBody(body);
    int reported = 0;
    bool written = false;
    for (std::size_t failing = 1; !written; ++failing) {
        ASSERT_LT(failing, 2000U);
        TestSerializer root;
        AllocationCounter counter;
        counter.FailAllocation(failing);
        try {
            EXPECT_EQ(shape->Serialize(&root), KARSuccess);
            counter.FailAllocation(0);
            written = root.Has(L"ShapeBody/@stream");
            reported += written ? 0 : 1;
        } catch (const std::bad_alloc&) {
        }
        counter.FailAllocation(0);
        TakeReports();
    }
    EXPECT_GT(reported, 5);
    const auto tree = TreeWith(StreamOf({body}));
    bool read = false;
    for (std::size_t failing = 1; !read; ++failing) {
        ASSERT_LT(failing, 2000U);
        const auto reader = Reader();
        AllocationCounter counter;
        counter.FailAllocation(failing);
        try {
            read = reader->Deserialize(tree.get(), entities) == KARSuccess;
        } catch (const std::bad_alloc&) {
        }
        counter.FailAllocation(0);
        EXPECT_EQ(read, reader->GetBody() != nullptr);
        TakeReports();
    }
    EXPECT_EQ(body->GetRefCount(), 2U);
}

TEST_F(ShapeBody, IsSharedByAClonedWorldAndGivenBack)
{
    {
        const auto world = KARMPWorld::create(QOBBasicWorld::create(L"w"));
        shape->SetBody(body);
        world->Add<KARMPShape>(shape);
        const auto clone = world->Clone();
        EXPECT_EQ(body->GetRefCount(), 3U);
    }
    shape.detach();
    EXPECT_EQ(body->GetRefCount(), 1U);
}

#if defined(__GNUC__)

TEST_F(ShapeBody, HasItsOperationsBehindThoseOfAPlanarShape)
{
    using Getter = KARStatus (KARMPShape2D::*)(int, QOBSharedHandle<KARMPBody2D>&) const;
    ExpectSlotsBehind(
        VirtualSlot(static_cast<Getter>(&KARMPShape2D::GetLinkedBody)),
        {VirtualSlot(&KARMPShapeBody::SetBody), VirtualSlot(&KARMPShapeBody::GetBody)});
}

#endif

} // namespace
