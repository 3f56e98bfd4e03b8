// What an extract costs where one entity is linked to many.
#include "AllocationCounter.h"
#include "BuiltWorlds.h"
#include "ExtractionTesting.h"
#include "KARMPAxialSpring.h"
#include "KARMPCoincidence.h"
#include "KARMPPoint.h"

namespace karmp::documents {

namespace {

// Twice the bytes for twice the entities, and no more than a tenth of that besides.
void ExpectLinear(std::size_t few, std::size_t twice)
{
    EXPECT_LT(static_cast<double>(twice), 2.2 * static_cast<double>(few));
}

constexpr int Few = 1'000;

std::size_t BytesFor(const Built& built, const std::vector<QOBSharedHandle<KARMPBody>>& bodies)
{
    const AllocationCounter allocations;
    const Extraction extract = ExtractWorld(*built.world, bodies);
    EXPECT_TRUE(extract.world);
    return allocations.Bytes();
}

std::size_t BytesWithConstraintsOnOnePoint(int count)
{
    Built built;
    const auto addPoint = [&built](const std::wstring& name,
                                   const QOBSharedHandle<KARMPBody>& body) {
        const auto point = built.Add<KARMPPoint>(name);
        point->SetBody(body);
        body->AddGeometry(point);
        return point;
    };
    const auto hub = built.Add<KARMPBody>(L"Hub");
    const auto arm = built.Add<KARMPBody>(L"Arm");
    const auto shared = addPoint(L"Shared", hub);
    for (int number = 0; number < count; ++number) {
        const std::wstring name = std::to_wstring(number);
        const auto constraint = built.Add<KARMPCoincidence>(L"C" + name);
        for (const auto& point : {shared, addPoint(L"P" + name, arm)}) {
            constraint->LinkToGeometry(point);
            point->LinkToConstraint(constraint);
        }
    }
    return BytesFor(built, {hub, arm});
}

std::size_t BytesWithSpringsThatStayBehind(int count)
{
    Built built;
    const auto hub = built.Add<KARMPBody>(L"Hub");
    for (int number = 0; number < count; ++number) {
        const auto spring = built.Add<KARMPAxialSpring>(std::to_wstring(number));
        spring->SetFirstBody(hub);
        hub->LinkToConnector(spring);
    }
    return BytesFor(built, {hub});
}

TEST(ExtractionCosts, AreLinearInTheConstraintsOnAPoint)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    ExpectLinear(BytesWithConstraintsOnOnePoint(Few), BytesWithConstraintsOnOnePoint(2 * Few));
}

TEST(ExtractionCosts, AreLinearInTheConnectorsThatStayBehind)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    ExpectLinear(BytesWithSpringsThatStayBehind(Few), BytesWithSpringsThatStayBehind(2 * Few));
}

} // namespace

} // namespace karmp::documents
