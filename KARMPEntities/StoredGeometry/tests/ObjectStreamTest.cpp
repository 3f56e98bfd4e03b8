#include "GMKFormat.h"
#include "KARChecksum.h"
#include "StoredSamples.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace samples;

constexpr std::size_t LengthOffset = 8;
constexpr std::size_t ChecksumOffset = 16;

void PutUInt32(ByteVector& bytes, std::size_t position, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[position + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

/// Makes length and checksum fit the payload again, so that only the inner checks are left.
ByteVector Sealed(ByteVector bytes)
{
    const std::span<const std::uint8_t> payload =
        std::span<const std::uint8_t>(bytes).subspan(kar::BlockHeaderSize);
    const std::uint32_t checksum = kar::Checksum(payload);
    PutUInt32(bytes, LengthOffset, static_cast<std::uint32_t>(payload.size()));
    PutUInt32(bytes, LengthOffset + 4, 0);
    PutUInt32(bytes, ChecksumOffset, checksum);
    return bytes;
}

/// A block of this payload.
ByteVector BlockOf(const KARMathStream& payload)
{
    KARMathStream stream;
    kar::WriteBlock(stream, kar::ObjectBlock, payload.GetBytes());
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}

void WriteKind(KARMathStream& payload, kar::StoredKind kind)
{
    payload.WriteByte(static_cast<std::uint8_t>(kind));
}

void WriteUnitPlane(KARMathStream& payload)
{
    WriteKind(payload, kar::StoredKind::PlaneSurface);
    for (const double value : {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 1})
        payload.WriteDouble(value);
}

void ExpectRefused(const ByteVector& bytes)
{
    const Loaded loaded = Load(bytes);
    EXPECT_EQ(loaded.status, KARFailure);
    EXPECT_EQ(loaded.factory, nullptr);
    EXPECT_EQ(loaded.list.Size(), 0);
}

/// Uses everything that was loaded: what passed the checks must be safe to evaluate.
void Use(const Loaded& loaded)
{
    for (int i = 1; i <= loaded.list.Size(); ++i) {
        if (const auto* curve = KARSysDynamicCast<KARCurve>(loaded.list[i])) {
            double low = 0.0;
            double high = 0.0;
            curve->GetLimits(low, high);
            EXPECT_LT(low, high);
            for (const double t : {low, 0.5 * (low + high), high}) {
                curve->EvalTangent(t);
                curve->CreateParam(t);
            }
        } else if (const auto* surface = KARSysDynamicCast<KARSurface>(loaded.list[i])) {
            const KARSurLimits limits = surface->GetLimits();
            KARMathVector normal;
            surface->EvalNormal(limits.uLow, limits.vLow, normal);
            surface->EvalNormal(limits.uHigh, limits.vHigh, normal);
        } else if (const auto* body = KARSysDynamicCast<KARBody>(loaded.list[i])) {
            body->IsClosed();
        }
    }
    EXPECT_FALSE(Save(loaded.list).empty());
}

template <typename T>
const T* At(const Loaded& loaded, int position)
{
    return KAROmxQI<T>(loaded.list[position]);
}

} // namespace

TEST(StoredStream, SavingWhatWasLoadedGivesTheSameBytes)
{
    const FactoryPointer factory = NewFactory();
    const ByteVector bytes = Save(OneOfEach(*factory));
    ASSERT_FALSE(bytes.empty());
    const Loaded loaded = Load(bytes);
    EXPECT_EQ(loaded.status, KARSuccess);
    EXPECT_EQ(loaded.list.Size(), 10);
    EXPECT_EQ(Save(loaded.list), bytes);
}

TEST(StoredStream, CurvesComeBackAsTheyWere)
{
    const FactoryPointer factory = NewFactory();
    const KARListPtrKARIGMKObject list = OneOfEach(*factory);
    const Loaded loaded = Load(Save(list));
    ASSERT_EQ(loaded.status, KARSuccess);
    ASSERT_NE(At<KARLineCurve>(loaded, 1), nullptr);
    ASSERT_NE(At<KARCircleArc>(loaded, 2), nullptr);
    ASSERT_NE(At<KAREllipseArc>(loaded, 3), nullptr);
    EXPECT_EQ(At<KARCircleArc>(loaded, 3), nullptr);
    ASSERT_NE(At<KARPolylineCurve>(loaded, 4), nullptr);
    ASSERT_NE(At<KARNurbsCurve>(loaded, 5), nullptr);
    for (int i = 1; i <= 5; ++i) {
        const auto* before = KAROmxQI<KARCurve>(list[i]);
        const auto* after = At<KARCurve>(loaded, i);
        double low[2];
        double high[2];
        before->GetLimits(low[0], high[0]);
        after->GetLimits(low[1], high[1]);
        EXPECT_EQ(low[0], low[1]);
        EXPECT_EQ(high[0], high[1]);
        for (const double t : {low[0], 0.3 * low[0] + 0.7 * high[0], high[0]}) {
            EXPECT_EQ(before->EvalPoint(t), after->EvalPoint(t));
            EXPECT_EQ(before->EvalTangent(t), after->EvalTangent(t));
        }
    }
}

TEST(StoredStream, SurfacesComeBackAsTheyWere)
{
    const FactoryPointer factory = NewFactory();
    const KARListPtrKARIGMKObject list = OneOfEach(*factory);
    const Loaded loaded = Load(Save(list));
    ASSERT_EQ(loaded.status, KARSuccess);
    ASSERT_NE(At<KARPlaneSurface>(loaded, 6), nullptr);
    ASSERT_NE(At<KARCylinderSurface>(loaded, 7), nullptr);
    ASSERT_NE(At<KARNurbsSurface>(loaded, 8), nullptr);
    ASSERT_NE(At<KARLinearTransfoSurface>(loaded, 9), nullptr);
    EXPECT_NE(
        KAROmxQI<KARPlaneSurface>(At<KARLinearTransfoSurface>(loaded, 9)->GetTransformedSurface()),
        nullptr);
    for (int i = 6; i <= 9; ++i) {
        const auto* before = KAROmxQI<KARSurface>(list[i]);
        const auto* after = At<KARSurface>(loaded, i);
        EXPECT_EQ(before->GetLimits().uLow, after->GetLimits().uLow);
        EXPECT_EQ(before->GetLimits().uHigh, after->GetLimits().uHigh);
        EXPECT_EQ(before->GetLimits().vLow, after->GetLimits().vLow);
        EXPECT_EQ(before->GetLimits().vHigh, after->GetLimits().vHigh);
        EXPECT_EQ(before->EvalPoint(0.4, 0.3), after->EvalPoint(0.4, 0.3));
    }
}

TEST(StoredStream, BodyComesBackWithItsTopology)
{
    const FactoryPointer factory = NewFactory();
    const Loaded loaded = Load(Save(ListOf(Lens(*factory))));
    const auto* body = At<KARBody>(loaded, 1);
    ASSERT_NE(body, nullptr);
    ASSERT_EQ(body->GetVertices().size(), 2U);
    ASSERT_EQ(body->GetEdges().size(), 2U);
    ASSERT_EQ(body->GetFaces().size(), 2U);
    EXPECT_EQ(body->GetVertices()[1], KARMathPoint(-1, 1, 0));
    EXPECT_EQ(body->GetEdges()[1].start, 1);
    EXPECT_EQ(body->GetEdges()[1].end, 0);
    EXPECT_EQ(body->GetEdges()[1].high, 2.0 * Pi);
    EXPECT_TRUE(body->GetFaces()[1].reversed);
    EXPECT_TRUE(body->IsClosed());
    EXPECT_EQ(body->GetEdges()[0].curve, body->GetEdges()[1].curve);
    EXPECT_EQ(
        KAROmxQI<KARLinearTransfoSurface>(body->GetFaces()[1].surface)->GetTransformedSurface(),
        body->GetFaces()[0].surface);
    // Circle, plane, moved plane and body, each once.
    EXPECT_EQ(loaded.factory->GetObjectCount(), 4);
}

TEST(StoredStream, SharedAndRepeatedObjectsStayOne)
{
    const FactoryPointer factory = NewFactory();
    KARPlaneSurface* plane = Plane(*factory);
    KARListPtrKARIGMKObject list;
    list.Append(Moved(*factory, plane));
    list.Append(plane);
    list.Append(plane);
    const Loaded loaded = Load(Save(list));
    ASSERT_EQ(loaded.list.Size(), 3);
    EXPECT_EQ(loaded.list[2], loaded.list[3]);
    EXPECT_EQ(At<KARLinearTransfoSurface>(loaded, 1)->GetTransformedSurface(), loaded.list[2]);
    EXPECT_EQ(loaded.factory->GetObjectCount(), 2);
}

TEST(StoredStream, SaveTellsWhatItWrote)
{
    const FactoryPointer factory = NewFactory();
    KARPlaneSurface* plane = Plane(*factory);
    KARLinearTransfoSurface* moved = Moved(*factory, plane);
    KARGMKStream stream;
    KARListPtrKARIGMKObject saved;
    EXPECT_EQ(KARIGMKObjectsSave(stream).Save(ListOf(moved), &saved), KARSuccess);
    ASSERT_EQ(saved.Size(), 2);
    EXPECT_EQ(saved[1], plane);
    EXPECT_EQ(saved[2], moved);
}

TEST(StoredStream, LoadOwnsThroughTheFactoryThatItMakes)
{
    const FactoryPointer source = NewFactory();
    Loaded loaded = Load(Save(ListOf(Line(*source))));
    ASSERT_NE(loaded.factory, nullptr);
    EXPECT_EQ(loaded.factory->GetRefCount(), 1U);
    KARIGMKObject* line = loaded.list[1];
    EXPECT_EQ(line->GetRefCount(), 1U);
    line->AddRef();
    loaded.factory.reset();
    EXPECT_EQ(line->GetRefCount(), 1U);
    line->Release();
}

TEST(StoredStream, LoadFillsAGivenFactoryAndAppendsToTheList)
{
    const FactoryPointer factory = NewFactory();
    KARLineCurve* line = Line(*factory);
    const ByteVector bytes = Save(ListOf(line));
    KARGMKStream stream(bytes.data(), bytes.size());
    KARGeometricFactory* given = factory.get();
    KARListPtrKARIGMKObject list = ListOf(line);
    EXPECT_EQ(KARIGMKObjectsLoad(stream).Load(given, list, 0), KARSuccess);
    EXPECT_EQ(given, factory.get());
    EXPECT_EQ(factory->GetObjectCount(), 2);
    EXPECT_EQ(list.Size(), 2);
}

TEST(StoredStream, OnlyModeZeroIsKnown)
{
    const FactoryPointer source = NewFactory();
    const ByteVector bytes = Save(ListOf(Line(*source)));
    KARGMKStream stream(bytes.data(), bytes.size());
    KARGeometricFactory* factory = nullptr;
    KARListPtrKARIGMKObject list;
    EXPECT_EQ(KARIGMKObjectsLoad(stream).Load(factory, list, 1), KARFailure);
    EXPECT_EQ(KARIGMKObjectsLoad(stream).Load(factory, list, 0), KARSuccess);
    factory->Release();
}

TEST(StoredStream, ReadsBehindAStreamHeader)
{
    const FactoryPointer source = NewFactory();
    KARGMKStream stream;
    std::size_t position = 0;
    int version = 0;
    stream.OpenWriteStreamHeader(1, position, version);
    EXPECT_EQ(KARIGMKObjectsSave(stream).Save(ListOf(Lens(*source)), nullptr), KARSuccess);
    stream.CloseWriteStreamHeader(position, version);

    KARGMKStream copy(stream.GetBytes().data(), stream.GetLength());
    EXPECT_EQ(copy.OpenReadStreamHeader(1), KARSuccess);
    KARGeometricFactory* factory = nullptr;
    KARListPtrKARIGMKObject list;
    EXPECT_EQ(KARIGMKObjectsLoad(copy).Load(factory, list, 0), KARSuccess);
    EXPECT_NE(KAROmxQI<KARBody>(list[1]), nullptr);
    factory->Release();
}

TEST(StoredStream, EmptyListsNullsAndForeignObjectsAreNotSaved)
{
    class Foreign final : public KARIGMKObject
    {};
    class Circular final : public KARIGMKObject
    {
    public:
        void GetReferences(std::vector<const KARIGMKObject*>& references) const override
        {
            references.push_back(this);
        }
    };
    const FactoryPointer factory = NewFactory();
    Foreign* foreign = new Foreign;
    Circular* circular = new Circular;
    KARListPtrKARIGMKObject withNull = ListOf(Line(*factory));
    withNull.Append(nullptr);
    KARGMKStream stream;
    for (const KARListPtrKARIGMKObject& list :
         {KARListPtrKARIGMKObject(), withNull, ListOf(foreign), ListOf(circular)})
        EXPECT_EQ(KARIGMKObjectsSave(stream).Save(list, nullptr), KARFailure);
    EXPECT_EQ(stream.GetLength(), 0U);
    foreign->Release();
    circular->Release();
}

TEST(StoredStream, StreamKeepsItsTypeFlagAndImplementation)
{
    const FactoryPointer factory = NewFactory();
    const KARGMKStream stream(1000, 11, 3, factory.get());
    EXPECT_EQ(stream.GetType(), 11);
    EXPECT_EQ(stream.GetFlag(), 3);
    EXPECT_EQ(stream.GetImplementation(), factory.get());
    EXPECT_EQ(stream.GetLength(), 0U);
    EXPECT_EQ(factory->GetRefCount(), 1U);
    EXPECT_EQ(KARGMKStream().GetType(), KARGMKStream::ObjectStream);
}

TEST(DamagedStoredStream, EveryFlippedBitIsRefused)
{
    const FactoryPointer factory = NewFactory();
    const ByteVector bytes = Save(OneOfEach(*factory));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const unsigned int mask : {0x01U, 0x80U, 0xFFU}) {
            ByteVector damaged = bytes;
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ mask);
            ExpectRefused(damaged);
        }
    }
}

TEST(DamagedStoredStream, EveryPrefixAndEveryAppendixIsRefused)
{
    const FactoryPointer factory = NewFactory();
    ByteVector bytes = Save(OneOfEach(*factory));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        ExpectRefused(
            ByteVector(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    bytes.push_back(0);
    ExpectRefused(bytes);
}

TEST(DamagedStoredStream, EveryPrefixWithAFittingChecksumIsRefused)
{
    const FactoryPointer factory = NewFactory();
    ByteVector bytes = Save(OneOfEach(*factory));
    for (std::size_t length = kar::BlockHeaderSize; length < bytes.size(); ++length) {
        ExpectRefused(
            Sealed(ByteVector(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length))));
    }
    bytes.push_back(0);
    ExpectRefused(Sealed(bytes));
}

TEST(DamagedStoredStream, EveryFlippedByteWithAFittingChecksumIsRefusedOrSafeToUse)
{
    const FactoryPointer factory = NewFactory();
    const ByteVector bytes = Save(OneOfEach(*factory));
    int refused = 0;
    for (std::size_t i = kar::BlockHeaderSize; i < bytes.size(); ++i) {
        for (const unsigned int mask : {0x01U, 0x7FU, 0x80U, 0xFFU}) {
            ByteVector damaged = bytes;
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ mask);
            const Loaded loaded = Load(Sealed(damaged));
            if (loaded.status == KARSuccess) {
                Use(loaded);
            } else {
                EXPECT_EQ(loaded.factory, nullptr);
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 0);
}

TEST(DamagedStoredStream, LargestNumberInEveryPlaceIsRefusedOrSafeToUse)
{
    const FactoryPointer factory = NewFactory();
    const ByteVector bytes = Save(OneOfEach(*factory));
    for (std::size_t i = kar::BlockHeaderSize; i + 4 <= bytes.size(); ++i) {
        for (const std::uint32_t value : {0xFFFFFFFFU, 0x7FFFFFFFU, 0x80000000U, 0x10000000U}) {
            ByteVector damaged = bytes;
            PutUInt32(damaged, i, value);
            const Loaded loaded = Load(Sealed(damaged));
            if (loaded.status == KARSuccess)
                Use(loaded);
        }
    }
}

TEST(DamagedStoredStream, CountsBeyondTheBytesAreRefused)
{
    const FactoryPointer factory = NewFactory();
    const ByteVector bytes = Save(ListOf(Polyline(*factory)));
    // Number of objects, of listed ones, and of the polyline's points behind its kind.
    for (const std::size_t position : {0U, 4U, 9U}) {
        for (const std::uint32_t count : {5U, 1000U, 0x10000000U, 0xFFFFFFFFU}) {
            ByteVector damaged = bytes;
            PutUInt32(damaged, kar::BlockHeaderSize + position, count);
            ExpectRefused(Sealed(damaged));
        }
    }
}

TEST(DamagedStoredStream, StreamWithoutListedObjectsIsRefused)
{
    KARMathStream payload;
    payload.WriteUInt32(0);
    payload.WriteUInt32(0);
    ExpectRefused(BlockOf(payload));
}

TEST(DamagedStoredStream, TowerOfTransformedSurfacesIsRefused)
{
    for (const std::uint32_t floors : {32U, 33U, 100000U}) {
        KARMathStream payload;
        payload.WriteUInt32(floors + 1);
        payload.WriteUInt32(1);
        WriteUnitPlane(payload);
        for (std::uint32_t i = 0; i < floors; ++i) {
            WriteKind(payload, kar::StoredKind::LinearTransfoSurface);
            payload.WriteUInt32(i);
            for (const double value : {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0})
                payload.WriteDouble(value);
        }
        payload.WriteUInt32(floors);
        const bool allowed =
            floors <= static_cast<std::uint32_t>(KARLinearTransfoSurface::MaximumDepth);
        EXPECT_EQ(Load(BlockOf(payload)).status, allowed ? KARSuccess : KARFailure) << floors;
    }
}

TEST(DamagedStoredStream, ReferenceToItselfOrToALaterObjectIsRefused)
{
    for (const std::uint32_t target : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        KARMathStream payload;
        payload.WriteUInt32(2);
        payload.WriteUInt32(1);
        WriteKind(payload, kar::StoredKind::LinearTransfoSurface);
        payload.WriteUInt32(target);
        for (const double value : {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0})
            payload.WriteDouble(value);
        WriteUnitPlane(payload);
        payload.WriteUInt32(0);
        ExpectRefused(BlockOf(payload));
    }
}

TEST(DamagedStoredStream, ReferenceToAnotherClassIsRefused)
{
    const FactoryPointer factory = NewFactory();
    KARListPtrKARIGMKObject list = ListOf(Line(*factory));
    list.Append(Moved(*factory, Plane(*factory)));
    ByteVector bytes = Save(list);
    // The moved surface's record ends before the two indices of the listed objects; its reference
    // stands before its twelve coefficients.
    const std::size_t reference = bytes.size() - 8 - 12 * sizeof(double) - 4;
    EXPECT_EQ(bytes[reference], 1);
    bytes[reference] = 0;
    ExpectRefused(Sealed(bytes));
}

TEST(DamagedStoredStream, KnotsThatAreNoNumbersAreRefused)
{
    for (const double knot : {std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity(), -1.0}) {
        KARMathStream payload;
        payload.WriteUInt32(1);
        payload.WriteUInt32(1);
        WriteKind(payload, kar::StoredKind::NurbsCurve);
        payload.WriteInt32(1);
        payload.WriteUInt32(4);
        for (const double value : {0.0, 0.0, knot, 1.0})
            payload.WriteDouble(value);
        payload.WriteUInt32(2);
        for (int i = 0; i < 6; ++i)
            payload.WriteDouble(i);
        payload.WriteUInt32(0);
        payload.WriteUInt32(0);
        ExpectRefused(BlockOf(payload));
    }
}

TEST(DamagedStoredStream, FailedLoadLeavesFactoryAndListAlone)
{
    const FactoryPointer factory = NewFactory();
    KARLineCurve* line = Line(*factory);
    const ByteVector bytes = Save(OneOfEach(*NewFactory()));
    // The last listed index points outside: every object has been read by then.
    ByteVector damaged = bytes;
    damaged[damaged.size() - 1] = 0x40;
    damaged = Sealed(damaged);
    KARGMKStream stream(damaged.data(), damaged.size());
    KARGeometricFactory* given = factory.get();
    KARListPtrKARIGMKObject list = ListOf(line);
    EXPECT_EQ(KARIGMKObjectsLoad(stream).Load(given, list, 0), KARFailure);
    EXPECT_EQ(factory->GetObjectCount(), 1);
    EXPECT_EQ(list.Size(), 1);
}
