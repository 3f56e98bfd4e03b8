#include "KAR3DRepWalk.h"
#include "KARBase64.h"
#include "KARSceneGraphBlocks.h"
#include "RepFormat.h"
#include "SceneSamples.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace {

using namespace samples;

using Bytes = std::vector<std::uint8_t>;

constexpr auto Setting = static_cast<KARSettingCgr>(71);

/// One of the two forms of blocks.
struct Form
{
    const char* name;
    kar::RepForm form;
    KARStatus (*write)(const KAR3DRep* rep, void*& block, std::size_t& size);
    KAR3DRep* (*read)(const void* block, std::size_t size);
};

KARStatus WriteCgr(const KAR3DRep* rep, void*& block, std::size_t& size)
{
    return KARWriteCgr(rep, block, size, Setting, nullptr, 0);
}

KARStatus WriteSceneGraph(const KAR3DRep* rep, void*& block, std::size_t& size)
{
    return KARWriteSceneGraph(rep, block, size, Setting);
}

class SceneGraphBlock : public testing::TestWithParam<Form>
{
protected:
    ~SceneGraphBlock() override { EXPECT_EQ(KAR3DRep::GetAliveCount(), m_before); }

    static Bytes Write(const KAR3DRep& rep)
    {
        void* block = nullptr;
        std::size_t size = 0;
        EXPECT_EQ(GetParam().write(&rep, block, size), KARSuccess);
        const auto* const first = static_cast<const std::uint8_t*>(block);
        Bytes bytes(first, first + size);
        std::free(block);
        return bytes;
    }
    static RepOwner Read(const Bytes& bytes)
    {
        return RepOwner(GetParam().read(bytes.data(), bytes.size()));
    }
    static bool IsPlain() { return GetParam().form == kar::RepForm::Plain; }
    /// A block of this payload, with a checksum that fits.
    static Bytes BlockOf(std::span<const std::uint8_t> payload)
    {
        KARMathStream stream;
        kar::WriteBlock(stream, kar::BlockFormOf(GetParam().form), payload);
        return {stream.GetBytes().begin(), stream.GetBytes().end()};
    }
    static Bytes Sealed(const Bytes& bytes)
    {
        return BlockOf(std::span(bytes).subspan(kar::BlockHeaderSize));
    }
    /// A number as the form stores counts.
    static void PutCount(KARMathStream& payload, std::uint32_t count)
    {
        if (IsPlain()) {
            payload.WriteUInt32(count);
            return;
        }
        for (; count >= 0x80U; count >>= 7U)
            payload.WriteByte(static_cast<std::uint8_t>(count | 0x80U));
        payload.WriteByte(static_cast<std::uint8_t>(count));
    }
    static void PutNode(KARMathStream& payload, KAR3DRepKind kind, int parts = 0)
    {
        payload.WriteByte(static_cast<std::uint8_t>(kind));
        payload.WriteByte(static_cast<std::uint8_t>(parts));
    }
    static KARMathStream NewPayload()
    {
        KARMathStream payload;
        payload.WriteInt32(Setting);
        return payload;
    }
    static RepOwner ReadPayload(const KARMathStream& payload)
    {
        return Read(BlockOf(payload.GetBytes()));
    }

private:
    int m_before = KAR3DRep::GetAliveCount();
};

} // namespace

INSTANTIATE_TEST_SUITE_P(BothForms, SceneGraphBlock,
                         testing::Values(Form{"Cgr", kar::RepForm::Compact, WriteCgr, KARReadCgr},
                                         Form{"SceneGraph", kar::RepForm::Plain, WriteSceneGraph,
                                              KARReadSceneGraph}),
                         [](const auto& form) { return std::string(form.param.name); });

TEST_P(SceneGraphBlock, ComesBackAsItWas)
{
    const RepOwner all = OneOfEach();
    all->SetTransformation(QuarterTurn());
    const Bytes bytes = Write(*all);
    const RepOwner read = Read(bytes);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetTransformation(), QuarterTurn());
    EXPECT_EQ(read->GetBag(), nullptr);
    std::vector<const KAR3DRep*> nodes;
    KARForEach3DRep(*read, [&nodes](const KAR3DRepPlace& place) { nodes.push_back(place.rep); });
    ASSERT_EQ(nodes.size(), 6U);
    const auto& mesh = dynamic_cast<const KAR3DMeshRep&>(*nodes[1]);
    EXPECT_EQ(mesh.GetVertices()[3], KARMathPoint(0, 0, 1));
    EXPECT_EQ(mesh.GetTriangles(),
              (std::vector<KARTriangle>{{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}}));
    EXPECT_TRUE(mesh.GetNormals().empty());
    EXPECT_EQ(nodes[2]->GetColour(), (KARColour{0.25, 0.5, 0.75, 0.125}));
    EXPECT_EQ(nodes[2]->GetTransformation(), QuarterTurn());
    EXPECT_EQ(dynamic_cast<const KAR3DMeshRep&>(*nodes[3]).GetNormals()[2],
              KARMathVector(0.6, 0, 0.8));
    const auto& line = dynamic_cast<const KAR3DPolylineRep&>(*nodes[4]);
    EXPECT_EQ(line.GetTransformation(), QuarterTurn());
    EXPECT_EQ(line.GetPoints()[1], KARMathPoint(1, 1, 0));
    EXPECT_FALSE(line.GetColour());
    EXPECT_TRUE(dynamic_cast<const KAR3DBagRep&>(*nodes[5]).GetChildren().empty());
    EXPECT_EQ(Write(*read), bytes);
}

TEST_P(SceneGraphBlock, HasOnlyTheNodeAndWhatIsBelow)
{
    const RepOwner all = OneOfEach();
    const KAR3DRep* const mesh = static_cast<const KAR3DBagRep&>(*all).GetChildren()[0];
    const RepOwner read = Read(Write(*mesh));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetKind(), KAR3DRepKind::Mesh);
}

TEST_P(SceneGraphBlock, KeepsIndicesOfAllSizesAndEmptyMeshes)
{
    std::vector<KARMathPoint> vertices(100'000);
    const std::vector<KARTriangle> triangles{
        {0, 99'999, 0}, {63, 64, 65}, {127, 128, 16'383}, {16'384, 1, 99'998}};
    const RepOwner mesh(KAR3DMeshRep::CreateRep(std::move(vertices), triangles));
    const RepOwner read = Read(Write(*mesh));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(static_cast<const KAR3DMeshRep&>(*read).GetTriangles(), triangles);
    const RepOwner empty(KAR3DMeshRep::CreateRep({}, {}));
    EXPECT_NE(Read(Write(*empty)), nullptr);
}

TEST_P(SceneGraphBlock, BeginsWithItsMarkAndTheSetting)
{
    const RepOwner line(Zigzag());
    const Bytes bytes = Write(*line);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), IsPlain() ? "KCSG" : "KCRG");
    EXPECT_EQ(bytes[kar::BlockHeaderSize], 71);
}

TEST_P(SceneGraphBlock, IsNotReadByTheOtherForm)
{
    const RepOwner all = OneOfEach();
    const Bytes bytes = Write(*all);
    EXPECT_EQ((IsPlain() ? KARReadCgr : KARReadSceneGraph)(bytes.data(), bytes.size()), nullptr);
}

TEST_P(SceneGraphBlock, OfANullNodeIsNull)
{
    void* block = &block;
    std::size_t size = 5;
    EXPECT_EQ(GetParam().write(nullptr, block, size), KARFailure);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(GetParam().read(nullptr, 0), nullptr);
    EXPECT_EQ(GetParam().read(nullptr, 100), nullptr);
}

TEST_P(SceneGraphBlock, GoesDownToTheMaximumDepthAndNoFurther)
{
    const RepOwner highest = Tower(KARMaximumRepDepth);
    const Bytes bytes = Write(*highest);
    const RepOwner read = Read(bytes);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(Write(*read), bytes);

    const RepOwner higher = Tower(KARMaximumRepDepth + 1);
    void* block = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(GetParam().write(higher.get(), block, size), KARFailure);
    EXPECT_EQ(block, nullptr);
    for (const int bags : {KARMaximumRepDepth, KARMaximumRepDepth + 1, 1'000'000}) {
        KARMathStream payload = NewPayload();
        for (int bag = 1; bag <= bags; ++bag) {
            PutNode(payload, KAR3DRepKind::Bag);
            PutCount(payload, bag < bags ? 1 : 0);
        }
        EXPECT_EQ(ReadPayload(payload) != nullptr, bags <= KARMaximumRepDepth) << bags;
    }
}

TEST_P(SceneGraphBlock, HasUpToTheMaximumOfNodesAndNoMore)
{
    const BagOwner bag = NewBag();
    for (int node = 1; node < KARMaximumRepCount; ++node)
        bag->AddChild(KAR3DBagRep::CreateRep());
    EXPECT_NE(Read(Write(*bag)), nullptr);
    bag->AddChild(KAR3DBagRep::CreateRep());
    void* block = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(GetParam().write(bag.get(), block, size), KARFailure);
    KARMathStream payload = NewPayload();
    PutNode(payload, KAR3DRepKind::Bag);
    PutCount(payload, KARMaximumRepCount);
    for (int node = 0; node < KARMaximumRepCount; ++node) {
        PutNode(payload, KAR3DRepKind::Bag);
        PutCount(payload, 0);
    }
    EXPECT_EQ(ReadPayload(payload), nullptr);
}

TEST_P(SceneGraphBlock, FlippedCutOffOrWithAnAppendixIsRefused)
{
    const RepOwner all = OneOfEach();
    Bytes bytes = Write(*all);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        for (const unsigned int mask : {0x01U, 0x80U, 0xFFU}) {
            Bytes damaged = bytes;
            damaged[index] = static_cast<std::uint8_t>(damaged[index] ^ mask);
            EXPECT_EQ(Read(damaged), nullptr) << index;
        }
        EXPECT_EQ(GetParam().read(bytes.data(), index), nullptr);
        if (index >= kar::BlockHeaderSize) {
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(index));
            EXPECT_EQ(Read(Sealed(cut)), nullptr) << index;
        }
    }
    bytes.push_back(0);
    EXPECT_EQ(Read(bytes), nullptr);
    EXPECT_EQ(Read(Sealed(bytes)), nullptr);
}

TEST_P(SceneGraphBlock, ChangedWithAFittingChecksumIsRefusedOrAWholeSceneGraph)
{
    const RepOwner all = OneOfEach();
    const Bytes bytes = Write(*all);
    int refused = 0;
    for (std::size_t index = kar::BlockHeaderSize; index < bytes.size(); ++index) {
        for (const int value : {0, 1, 2, 3, 4, 7, 8, 0x7F, 0x80, 0x81, 0xF0, 0xFF}) {
            Bytes damaged = bytes;
            damaged[index] = static_cast<std::uint8_t>(value);
            const RepOwner read = Read(damaged = Sealed(damaged));
            if (read == nullptr) {
                ++refused;
                continue;
            }
            // The setting, which is not kept, is the one thing that may differ.
            const Bytes again = Write(*read);
            EXPECT_TRUE(index < kar::BlockHeaderSize + 4 || again == damaged) << index;
        }
    }
    EXPECT_GT(refused, 400);
}

TEST_P(SceneGraphBlock, NothingIsAllocatedByWhatABlockAnnounces)
{
    for (const KAR3DRepKind kind :
         {KAR3DRepKind::Bag, KAR3DRepKind::Mesh, KAR3DRepKind::Polyline}) {
        for (const std::uint32_t count : {2U, 1000U, 0x40000000U, 0xFFFFFFFFU}) {
            KARMathStream payload = NewPayload();
            PutNode(payload, kind);
            PutCount(payload, count);
            const AllocationCounter counter;
            EXPECT_EQ(ReadPayload(payload), nullptr);
            EXPECT_LT(counter.Bytes(), 2000U);
        }
    }
    // A length of a gigabyte in ten bytes, and in a whole header.
    Bytes bytes = BlockOf({});
    bytes[11] = 0x40;
    const AllocationCounter counter;
    EXPECT_EQ(Read(bytes), nullptr);
    bytes.resize(10);
    EXPECT_EQ(Read(bytes), nullptr);
    EXPECT_LT(counter.Bytes(), 2000U);
}

TEST_P(SceneGraphBlock, RecordsThatNoWriterWritesAreRefused)
{
    const auto refuses = [](int kind, int parts) {
        KARMathStream payload = NewPayload();
        PutNode(payload, static_cast<KAR3DRepKind>(kind), parts);
        PutCount(payload, 0);
        if (kind == static_cast<int>(KAR3DRepKind::Mesh))
            PutCount(payload, 0);
        return ReadPayload(payload) == nullptr;
    };
    EXPECT_FALSE(refuses(1, 0));
    EXPECT_FALSE(refuses(2, 0));
    EXPECT_TRUE(refuses(0, 0));
    EXPECT_TRUE(refuses(3, 0)) << "a polyline without points";
    EXPECT_TRUE(refuses(4, 0));
    EXPECT_TRUE(refuses(1, kar::NormalsPart));
    EXPECT_TRUE(refuses(2, kar::NormalsPart)) << "normals of no vertices";
    EXPECT_TRUE(refuses(2, 8));
}

TEST_P(SceneGraphBlock, AnIdentityThatIsWrittenOutIsRefused)
{
    for (const double shift : {0.0, 1.0}) {
        KARMathStream payload = NewPayload();
        PutNode(payload, KAR3DRepKind::Bag, kar::TransformationPart);
        for (const double value : {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, shift, 0.0, 0.0})
            payload.WriteDouble(value);
        PutCount(payload, 0);
        EXPECT_EQ(ReadPayload(payload) != nullptr, shift != 0.0);
    }
}

TEST_P(SceneGraphBlock, BagsWithAColourOrTransformationThatIsNoneAreRefused)
{
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    for (const double value : {0.5, 2.0, NaN}) {
        for (const int part : {kar::ColourPart, kar::TransformationPart}) {
            KARMathStream payload = NewPayload();
            PutNode(payload, KAR3DRepKind::Bag, part);
            for (int i = 0; i < (part == kar::ColourPart ? 4 : 12); ++i)
                payload.WriteDouble(value);
            PutCount(payload, 1);
            PutNode(payload, KAR3DRepKind::Bag);
            PutCount(payload, 0);
            const bool isGood = value == 0.5 || (value == 2.0 && part == kar::TransformationPart);
            EXPECT_EQ(ReadPayload(payload) != nullptr, isGood);
        }
    }
}

TEST_P(SceneGraphBlock, FailsWithoutALeakWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    const RepOwner all = OneOfEach();
    const Bytes bytes = Write(*all);
    const int before = KAR3DRep::GetAliveCount();
    KARStatus status = KAROutOfMemory;
    for (std::size_t failing = 1; status != KARSuccess; ++failing) {
        void* block = &block;
        std::size_t size = 1;
        AllocationCounter counter;
        counter.FailAllocation(failing);
        status = GetParam().write(all.get(), block, size);
        EXPECT_TRUE(status == KARSuccess || (status == KAROutOfMemory && block == nullptr));
        std::free(block);
    }
    KAR3DRep* read = nullptr;
    for (std::size_t failing = 1; read == nullptr; ++failing) {
        ASSERT_LT(failing, 1000U);
        AllocationCounter counter;
        counter.FailAllocation(failing);
        read = GetParam().read(bytes.data(), bytes.size());
        if (read == nullptr)
            EXPECT_EQ(KAR3DRep::GetAliveCount(), before);
    }
    read->Destroy();
}

TEST(CgrBlock, IsRefusedWithOptionsOrAnotherMode)
{
    const RepOwner line(Zigzag());
    void* block = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(KARWriteCgr(line.get(), block, size, Setting, &size, 0), KARFailure);
    EXPECT_EQ(KARWriteCgr(line.get(), block, size, Setting, nullptr, 1), KARFailure);
    EXPECT_EQ(block, nullptr);
}

TEST(CgrBlock, StoresNeighbouringIndicesInAByteEach)
{
    const RepOwner mesh(Tetrahedron());
    void* block = nullptr;
    std::size_t size = 0;
    ASSERT_EQ(WriteCgr(mesh.get(), block, size), KARSuccess);
    std::free(block);
    // Header, setting, kind, parts, two counts, vertices, triangles.
    EXPECT_EQ(size, kar::BlockHeaderSize + 4 + 2 + 2 + 4 * 24 + 4 * 3);
}

TEST(CgrBlock, RefusesAnIndexBeforeTheFirstAndANumberWithANeedlessByte)
{
    const auto read = [](std::initializer_list<int> triangle) {
        KARMathStream payload;
        payload.WriteInt32(Setting);
        for (const int byte : {2, 0, 1})
            payload.WriteByte(static_cast<std::uint8_t>(byte));
        for (int coordinate = 0; coordinate < 3; ++coordinate)
            payload.WriteDouble(0.0);
        payload.WriteByte(1);
        for (const int byte : triangle)
            payload.WriteByte(static_cast<std::uint8_t>(byte));
        KARMathStream block;
        kar::WriteBlock(block, kar::BlockFormOf(kar::RepForm::Compact), payload.GetBytes());
        return RepOwner(KARReadCgr(block.GetBytes().data(), block.GetLength()));
    };
    EXPECT_NE(read({0, 0, 0}), nullptr);
    EXPECT_EQ(read({1, 2, 0}), nullptr);
    EXPECT_EQ(read({2, 1, 0}), nullptr);
    EXPECT_EQ(read({0x80, 0x00, 0, 0}), nullptr);
    EXPECT_EQ(read({0x80, 0x80, 0x80, 0x80, 0x80, 0x00, 0, 0}), nullptr);
}
