#include "KARMP3DRep.h"
#include "AllocationCounter.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "SceneBlocks.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

#include <new>
#include <span>

namespace {

/// A representation that notes and answers what it is given.
class AnsweringRep : public KARMP3DRep
{
public:
    KARStatus Set3DRep(KAR3DRep* rep) override
    {
        ++sets;
        if (destroys)
            rep->Destroy();
        return answers != KARSuccess ? answers : KARMP3DRep::Set3DRep(rep);
    }

    int sets = 0;
    KARStatus answers = KARSuccess;
    bool destroys = false;
};

/// A shape with a representation. Each test gives back all nodes that it makes.
class Rep3D : public KARMPTestFixture
{
protected:
    Rep3D() { shape->SetIdentifier(L"R1"); }
    ~Rep3D() override
    {
        shape.detach();
        EXPECT_EQ(KAR3DRep::GetAliveCount(), m_before);
    }
    /// Nodes made since the test began, without the bag of its shape.
    int Nodes() const { return KAR3DRep::GetAliveCount() - m_before - 1; }
    static std::unique_ptr<TestDeserializer> TreeWith(const std::wstring& stream)
    {
        auto tree = std::make_unique<TestDeserializer>(L"Rep3D");
        tree->Attribute(L"id", L"R1").Attribute(L"name", L"r").Attribute(L"isActive", L"yes");
        tree->Attribute(L"stream", stream);
        return tree;
    }
    static std::unique_ptr<TestDeserializer> TreeWith(std::span<const unsigned char> block)
    {
        return TreeWith(kar::Base64EncodeWide(block));
    }

private:
    int m_before = KAR3DRep::GetAliveCount();

protected:
    QOBSharedHandle<KARMP3DRep> shape = KARMP3DRep::create(L"r");
    KARMPEntityTable entities;
};

TEST_F(Rep3D, IsNewlyWithoutNodes)
{
    EXPECT_EQ(shape->Get3DRep(), nullptr);
    EXPECT_EQ(shape->GetMasterRep(), nullptr);
    EXPECT_EQ(shape->Set3DRep(nullptr), KARSuccess);
    EXPECT_EQ(shape->SetMasterRep(nullptr), KARSuccess);
    EXPECT_EQ(Nodes(), 0);
}

TEST_F(Rep3D, TakesANodeIntoItsBagAndDestroysTheFormer)
{
    KAR3DRep* const first = MakeMesh();
    KAR3DRep* const second = MakeScene();
    EXPECT_EQ(shape->Set3DRep(first), KARSuccess);
    EXPECT_EQ(shape->Get3DRep(), first);
    ASSERT_NE(first->GetBag(), nullptr);
    KAR3DBagRep* const bag = first->GetBag();
    EXPECT_EQ(shape->Set3DRep(second), KARSuccess);
    EXPECT_EQ(shape->Get3DRep(), second);
    EXPECT_EQ(bag->GetChildren(), std::vector<KAR3DRep*>{second});
    EXPECT_EQ(Nodes(), 3);
    EXPECT_EQ(shape->Set3DRep(nullptr), KARSuccess);
    EXPECT_EQ(shape->Get3DRep(), nullptr);
    EXPECT_EQ(Nodes(), 0);
}

TEST_F(Rep3D, KeepsANodeThatIsSetAgain)
{
    KAR3DRep* const mesh = MakeMesh();
    shape->Set3DRep(mesh);
    EXPECT_EQ(shape->Set3DRep(mesh), KARSuccess);
    EXPECT_EQ(shape->Get3DRep(), mesh);
    EXPECT_EQ(mesh->GetBag()->GetChildren().size(), 1U);
    EXPECT_EQ(Nodes(), 1);
}

TEST_F(Rep3D, HasASecondNodeOfItsOwn)
{
    KAR3DRep* const mesh = MakeMesh();
    KAR3DRep* const master = MakePolyline();
    shape->Set3DRep(mesh);
    EXPECT_EQ(shape->SetMasterRep(master), KARSuccess);
    EXPECT_EQ(shape->SetMasterRep(master), KARSuccess);
    EXPECT_EQ(shape->GetMasterRep(), master);
    EXPECT_EQ(master->GetBag(), mesh->GetBag());
    shape->Set3DRep(nullptr);
    EXPECT_EQ(shape->GetMasterRep(), master);
    shape->SetMasterRep(MakeMesh());
    EXPECT_EQ(Nodes(), 1);
}

TEST_F(Rep3D, HasNoNodeThatWasDestroyedThroughTheOtherField)
{
    KAR3DRep* const mesh = MakeMesh();
    shape->Set3DRep(mesh);
    EXPECT_EQ(shape->SetMasterRep(mesh), KARSuccess);
    shape->Set3DRep(nullptr);
    EXPECT_EQ(shape->GetMasterRep(), nullptr);
    KAR3DBagRep* const scene = MakeScene();
    shape->Set3DRep(scene);
    // The master stands in the scene, until it goes to the shape's bag.
    KAR3DRep* const part = scene->GetChildren()[0];
    shape->SetMasterRep(part);
    EXPECT_EQ(scene->GetChildren().size(), 1U);
    shape->Set3DRep(nullptr);
    EXPECT_EQ(shape->GetMasterRep(), part);
}

TEST_F(Rep3D, KeepsAPartOfTheNodeThatItReplaces)
{
    KAR3DBagRep* const scene = MakeScene();
    KAR3DRep* const part = scene->GetChildren()[0];
    shape->Set3DRep(scene);
    EXPECT_EQ(shape->Set3DRep(part), KARSuccess);
    EXPECT_EQ(shape->Get3DRep(), part);
    EXPECT_EQ(Nodes(), 1);
}

TEST_F(Rep3D, HasNoNodeThatSomebodyElseDestroyed)
{
    KAR3DRep* const mesh = MakeMesh();
    shape->Set3DRep(mesh);
    {
        const auto other = KARMP3DRep::create(L"o");
        EXPECT_EQ(other->Set3DRep(mesh), KARSuccess);
        EXPECT_EQ(shape->Get3DRep(), mesh);
    }
    EXPECT_EQ(shape->Get3DRep(), nullptr);
    KAR3DRep* const bagged = MakeMesh();
    shape->Set3DRep(bagged);
    bagged->GetBag()->Destroy();
    EXPECT_EQ(shape->Get3DRep(), nullptr);
    // Without a bag the shape only points to its node.
    const KAR3DRepOwner<KAR3DRep> own(MakeMesh());
    EXPECT_EQ(shape->Set3DRep(own.get()), KARSuccess);
    EXPECT_EQ(own->GetBag(), nullptr);
    {
        const auto copy = KARMP3DRep::clone(shape, QOBDynamicObject::CopyDefault);
        ASSERT_NE(copy->Get3DRep(), nullptr);
        EXPECT_NE(copy->Get3DRep(), own.get());
        EXPECT_NE(copy->Get3DRep()->GetBag(), nullptr);
    }
    shape = KARMP3DRep::create(L"r");
}

TEST_F(Rep3D, CopyHasCopiesOfAllNodesInABagOfItsOwn)
{
    KAR3DBagRep* const scene = MakeScene();
    KAR3DRep* const master = MakePolyline();
    shape->SetMasterRep(master);
    shape->Set3DRep(scene);
    {
        const auto copy = KARMP3DRep::clone(shape, QOBDynamicObject::CopyDefault);
        ASSERT_NE(copy->Get3DRep(), nullptr);
        EXPECT_NE(copy->Get3DRep(), scene);
        EXPECT_EQ(CgrOf(*copy->Get3DRep()), CgrOf(*scene));
        EXPECT_NE(copy->GetMasterRep(), master);
        EXPECT_EQ(copy->GetMasterRep()->GetKind(), KAR3DRepKind::Polyline);
        EXPECT_EQ(copy->Get3DRep()->GetBag(), copy->GetMasterRep()->GetBag());
        EXPECT_NE(copy->Get3DRep()->GetBag(), scene->GetBag());
        EXPECT_EQ(Nodes(), 4 + 1 + 4);
        shape->Set3DRep(nullptr);
        EXPECT_NE(copy->Get3DRep(), nullptr);
    }
    EXPECT_EQ(Nodes(), 1);
}

TEST_F(Rep3D, CopyOfOneNodeInBothFieldsIsOneNodeInBoth)
{
    KAR3DRep* const mesh = MakeMesh();
    shape->Set3DRep(mesh);
    shape->SetMasterRep(mesh);
    const auto copy = KARMP3DRep::clone(shape, QOBDynamicObject::CopyDefault);
    EXPECT_EQ(copy->Get3DRep(), copy->GetMasterRep());
    EXPECT_EQ(Nodes(), 1 + 2);
    EXPECT_EQ(KARMP3DRep::clone(KARMP3DRep::create(L""), QOBDynamicObject::CopyDefault)->Get3DRep(),
              nullptr);
}

TEST_F(Rep3D, CopyOfANodeInTheBagOfAnotherShapeIsItsOwn)
{
    const auto other = KARMP3DRep::create(L"o");
    shape->Set3DRep(MakeScene());
    other->Set3DRep(shape->Get3DRep());
    const auto copy = KARMP3DRep::clone(shape, QOBDynamicObject::CopyDefault);
    ASSERT_NE(copy->Get3DRep(), nullptr);
    EXPECT_NE(copy->Get3DRep(), shape->Get3DRep());
    EXPECT_NE(copy->Get3DRep()->GetBag(), nullptr);
}

TEST_F(Rep3D, CopyLeavesNothingBehindWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    shape->Set3DRep(MakeScene());
    const int before = Nodes();
    bool failed = true;
    for (std::size_t failing = 1; failed; ++failing) {
        ASSERT_LT(failing, 1000U);
        {
            AllocationCounter counter;
            counter.FailAllocation(failing);
            try {
                KARMP3DRep::clone(shape, QOBDynamicObject::CopyDefault);
                failed = false;
            } catch (const std::bad_alloc&) {
            }
        }
        EXPECT_EQ(Nodes(), before);
    }
}

TEST_F(Rep3D, IsWrittenAsABlockAndComesBack)
{
    shape->Set3DRep(MakeScene());
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Rep3D/@id"), L"R1");
    EXPECT_EQ(root.Text(L"Rep3D/@stream"), kar::Base64EncodeWide(CgrOf(*shape->Get3DRep())));
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    for (const bool asText : {false, true}) {
        const auto read = KARMP3DRep::create(L"");
        read->Set3DRep(MakePolyline());
        EXPECT_EQ(
            read->Deserialize(TestDeserializer::From(root, {.asText = asText}).get(), entities),
            KARSuccess);
        ASSERT_NE(read->Get3DRep(), nullptr);
        EXPECT_EQ(CgrOf(*read->Get3DRep()), CgrOf(*shape->Get3DRep()));
        EXPECT_EQ(read->GetMasterRep(), nullptr);
        TestSerializer again;
        read->Serialize(&again);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(Rep3D, WithBodiesIsWrittenAsAnyShape)
{
    shape->Set3DRep(MakeMesh());
    const auto body = KARMPBody::create(L"b");
    body->SetIdentifier(L"B1");
    entities.Set(L"B1", body);
    shape->LinkToBody(body);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Rep3D/Bodies/Body/@id"), L"B1");
    const auto read = KARMP3DRep::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(read->GetLinkedBodyCount(), 1);
    read->orphanObject();
    shape->orphanObject();
}

TEST_F(Rep3D, WithoutARepresentationIsReportedAndSucceeds)
{
    shape->SetMasterRep(MakeMesh());
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"Rep3D/@stream"));
    const auto read = KARMP3DRep::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(read->Get3DRep(), nullptr);
}

TEST_F(Rep3D, ThatIsTooDeepToBeStoredIsReportedAndSucceeds)
{
    KAR3DRep* tower = MakeMesh();
    for (int bag = 0; bag < KARMaximumRepDepth; ++bag) {
        KAR3DBagRep* const outer = KAR3DBagRep::CreateRep();
        outer->AddChild(tower);
        tower = outer;
    }
    shape->Set3DRep(tower);
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"Rep3D/@stream"));
}

TEST_F(Rep3D, TextThatIsNoBase64IsReportedAndFails)
{
    for (const wchar_t* const text : {L"", L"====", L"AAA", L"\u0141AAA"}) {
        const auto read = KARMP3DRep::create(L"");
        KAR3DRep* const former = MakePolyline();
        read->Set3DRep(former);
        EXPECT_EQ(read->Deserialize(TreeWith(text).get(), entities), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(read->Get3DRep(), former);
    }
}

TEST_F(Rep3D, DamagedBlocksFailWithoutAReportAndAllocateNothingThatTheyAnnounce)
{
    const KAR3DRepOwner<KAR3DRep> scene(MakeScene());
    const BlockBytes whole = CgrOf(*scene);
    std::vector<BlockBytes> blocks;
    for (std::size_t index = 0; index < whole.size(); ++index) {
        BlockBytes flipped = whole;
        flipped[index] = static_cast<unsigned char>(flipped[index] ^ 0x10U);
        blocks.push_back(flipped);
        if (index != 0)
            blocks.emplace_back(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(index));
    }
    BlockBytes gigabyte = whole;
    gigabyte[11] = 0x40; // of the payload's length
    blocks.push_back(gigabyte);
    blocks.emplace_back(gigabyte.begin(), gigabyte.begin() + 10);
    const AllocationCounter counter;
    for (const BlockBytes& block : blocks) {
        const auto read = KARMP3DRep::create(L"");
        EXPECT_EQ(read->Deserialize(TreeWith(block).get(), entities), KARFailure);
        EXPECT_EQ(read->Get3DRep(), nullptr);
    }
    EXPECT_LT(counter.Bytes(), 4U << 20U);
}

TEST_F(Rep3D, ReadingGivesWhatTheSetterGives)
{
    const KAR3DRepOwner<KAR3DRep> mesh(MakeMesh());
    const auto tree = TreeWith(CgrOf(*mesh));
    for (const KARStatus status : {KARFailure, KARUnchanged, KARSuccess}) {
        auto* const answering = new AnsweringRep;
        const QOBSharedHandle<KARMP3DRep> handle(answering);
        answering->answers = status;
        answering->destroys = status == KARUnchanged;
        EXPECT_EQ(answering->Deserialize(tree.get(), entities), status);
        EXPECT_EQ(answering->sets, 1);
    }
}

TEST_F(Rep3D, NeedsItsElementAndReportsWhatCannotBeAdded)
{
    EXPECT_EQ(shape->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(shape->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(shape->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
    shape->Set3DRep(MakeMesh());
    ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
        EXPECT_EQ(shape->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
        EXPECT_EQ(TakeReports() != 0, failing != 0);
    });
}

TEST_F(Rep3D, FailedConversionsAreReportedAndGiveNothing)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    shape->Set3DRep(MakeScene());
    const auto tree = TreeWith(CgrOf(*shape->Get3DRep()));
    const int before = Nodes();
    KARStatus status = KARFailure;
    int failures = 0;
    bool hasFailed = true;
    for (std::size_t failing = 1; hasFailed; ++failing) {
        ASSERT_LT(failing, 1000U);
        status = KARFailure;
        auto* const read = new AnsweringRep;
        const QOBSharedHandle<KARMP3DRep> handle(read);
        AllocationCounter counter;
        counter.FailAllocation(failing);
        try {
            status = read->Deserialize(tree.get(), entities);
            failures += status == KARFailure ? 1 : 0;
        } catch (const std::bad_alloc&) {
        }
        hasFailed = counter.Count() >= failing;
        counter.FailAllocation(0);
        EXPECT_EQ(status == KARSuccess, read->Get3DRep() != nullptr);
    }
    TakeReports();
    EXPECT_EQ(status, KARSuccess);
    // The narrow text, the bytes, and what the nodes take.
    EXPECT_GT(failures, 5);
    EXPECT_EQ(Nodes(), before);
}

TEST_F(Rep3D, ThatCannotBeReadStaysInItsWorldWithoutANode)
{
    const auto world = KARMPWorld::create(QOBBasicWorld::create(L"w"));
    const auto broken = KARMP3DRep::create(L"broken");
    broken->SetIdentifier(L"R2");
    shape->Set3DRep(MakeMesh());
    world->Add<KARMPShape>(broken);
    world->Add<KARMPShape>(shape);
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    ExpectReports(1); // the one without a node
    const auto read = KARMPWorld::create(QOBBasicWorld::create(L"r"));
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get()), KARSuccess);
    ExpectReports(2); // the missing stream, and the world on the shape's failure
    ASSERT_EQ(read->Count<KARMPShape>(), 2);
    for (int index = 0; index < 2; ++index) {
        QOBSharedHandle<KARMPShape> found;
        read->Get(index, found);
        const QOBSharedHandle<KARMP3DRep> rep(found);
        EXPECT_EQ(rep->Get3DRep() != nullptr, rep->getEntityName() == L"r");
    }
}

TEST_F(Rep3D, IsCopiedWithItsWorld)
{
    {
        const auto world = KARMPWorld::create(QOBBasicWorld::create(L"w"));
        shape->Set3DRep(MakeMesh());
        world->Add<KARMPShape>(shape);
        const auto clone = world->Clone();
        EXPECT_EQ(Nodes(), 1 + 2);
    }
    EXPECT_EQ(Nodes(), 1);
}

#if defined(__GNUC__)

TEST_F(Rep3D, HasItsOperationsBehindThoseOfAShape)
{
    ExpectSlotsBehind(VirtualSlot(&KARMPShape::GetLinkedBodyCount),
                      {VirtualSlot(&KARMP3DRep::Set3DRep), VirtualSlot(&KARMP3DRep::Get3DRep),
                       VirtualSlot(&KARMP3DRep::SetMasterRep),
                       VirtualSlot(&KARMP3DRep::GetMasterRep)});
}

#endif

/// The environment is read when the library is loaded.
class Rep3DProcess : public Rep3D
{};

TEST_F(Rep3DProcess, IsLeftOutOfDocumentsAndReadingThemFails)
{
    shape->Set3DRep(MakeMesh());
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Rep3D/@id"), L"R1");
    EXPECT_FALSE(root.Has(L"Rep3D/@stream"));
    const auto read = KARMP3DRep::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARFailure);
    ExpectReports(1);
    // What another process wrote is read all the same.
    EXPECT_EQ(read->Deserialize(TreeWith(CgrOf(*shape->Get3DRep())).get(), entities), KARSuccess);
    TakeReports();
    EXPECT_NE(read->Get3DRep(), nullptr);
}

TEST_F(Rep3DProcess, IsWrittenAndReadInThePlainForm)
{
    shape->Set3DRep(MakeScene());
    TestSerializer root;
    EXPECT_EQ(shape->Serialize(&root), KARSuccess);
    BlockBytes bytes;
    ASSERT_TRUE(kar::Base64Decode(std::wstring_view(root.Text(L"Rep3D/@stream")), bytes));
    const KAR3DRepOwner<KAR3DRep> plain(KARReadSceneGraph(bytes.data(), bytes.size()));
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(CgrOf(*plain), CgrOf(*shape->Get3DRep()));
    const auto read = KARMP3DRep::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_NE(read->Get3DRep(), nullptr);
    EXPECT_EQ(shape->Deserialize(TreeWith(CgrOf(*plain)).get(), entities), KARFailure);
    TakeReports();
}

} // namespace
