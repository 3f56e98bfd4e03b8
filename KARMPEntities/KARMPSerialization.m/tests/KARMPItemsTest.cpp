#include "KARMPItems.h"

#include "AllocationCounter.h"
#include "KARMPAxialSpring.h"
#include "KARMPBody.h"
#include "KARMPCollisionSensor.h"
#include "KARMPConstraintSensor.h"
#include "KARMPGenericFactory.h"
#include "KARMPJointKinds.h"
#include "KARMPLinearEquation.h"
#include "KARMPPoint.h"
#include "KARMPSketchFunction.h"
#include "KARMPTestFixture.h"

#include <algorithm>
#include <array>

using karmp::ItemInfo;
using karmp::ItemKind;
using karmp::NumberArray;
using karmp::NumberShape;
using karmp::Value;

namespace {

using Entities = std::vector<QOBSharedHandle<KARMPEntity>>;

class Items : public KARMPTestFixture
{
protected:
    // An entity and what it aggregates hold each other.
    ~Items() override { point->orphanObject(); }

    const ItemInfo& Row(std::wstring_view path)
    {
        static const ItemInfo none;
        const auto rows = karmp::ItemsOf(point->getClassInfo());
        const auto found = std::find_if(rows.begin(), rows.end(),
                                        [path](const ItemInfo& row) { return row.path == path; });
        EXPECT_NE(found, rows.end());
        return found != rows.end() ? *found : none;
    }
    Value Get(std::wstring_view path) { return Row(path).Get(*point); }
    KARStatus Set(std::wstring_view path, const Value& value)
    {
        return Row(path).Set(*point, value);
    }

    QOBSharedHandle<KARMPPoint> point = KARMPPoint::create(L"P");
    QOBSharedHandle<KARMPBody> body = KARMPBody::create(L"B");
};

TEST_F(Items, OfAClassStandBasesFirst)
{
    const auto rows = karmp::ItemsOf("KARMPPoint");
    std::vector<std::wstring_view> names;
    for (const ItemInfo& row : rows)
        names.push_back(row.name);
    EXPECT_EQ(names, (std::vector<std::wstring_view>{
                         L"id", L"name", L"isActive", L"entityID", L"Parameters", L"States",
                         L"Outputs", L"AggregatedElements", L"Body", L"Constraints", L"Origin"}));
    EXPECT_EQ(rows.data(), karmp::ItemsOf(point->getClassInfo()).data());
    EXPECT_TRUE(karmp::ItemsOf("NoSuchClass").empty());
}

TEST_F(Items, TellWhatTheyAre)
{
    const ItemInfo& origin = Row(L"Coordinates/Origin");
    EXPECT_EQ(origin.name, L"Origin");
    EXPECT_EQ(origin.kind, ItemKind::Numbers);
    EXPECT_EQ(origin.words.size(), 3U);
    EXPECT_EQ(origin.quantity, KARMPPhysicalQuantity::Length);
    EXPECT_EQ(origin.says, "The point.");
    EXPECT_TRUE(origin.readOnly.empty());
    EXPECT_EQ(Row(L"Body").target, "KARMPBody");
    EXPECT_EQ(Row(L"Body").otherSide, L"Geometries");
}

TEST_F(Items, AreFetchedAndStored)
{
    EXPECT_EQ(Get(L"Coordinates/Origin"), Value(NumberArray{0.0, 0.0, 0.0}));
    EXPECT_EQ(Set(L"Coordinates/Origin", NumberArray{1.0, 2.0, 3.0}), KARSuccess);
    KARMathPoint stored;
    EXPECT_EQ(point->GetPoint(stored), KARSuccess);
    EXPECT_EQ(stored.GetY(), 2.0);
    EXPECT_EQ(Get(L"Coordinates/Origin"), Value(NumberArray{1.0, 2.0, 3.0}));
    EXPECT_EQ(Set(L"name", std::wstring(L"New")), KARSuccess);
    EXPECT_EQ(Get(L"name"), Value(std::wstring(L"New")));
}

TEST_F(Items, OfABoolAreBoolsWhateverTheirWords)
{
    EXPECT_EQ(Get(L"isActive"), Value(true));
    EXPECT_EQ(Set(L"isActive", false), KARSuccess);
    EXPECT_FALSE(point->IsActive());
    EXPECT_EQ(Set(L"isActive", std::wstring(L"yes")), KARSuccess);
    EXPECT_TRUE(point->IsActive());
}

TEST_F(Items, OfAnotherKindAreRefused)
{
    EXPECT_EQ(Set(L"Coordinates/Origin", NumberArray{1.0, 2.0}), KARFailure);
    EXPECT_EQ(Set(L"Coordinates/Origin", 1.0), KARFailure);
    EXPECT_EQ(Set(L"isActive", std::wstring(L"maybe")), KARFailure);
    EXPECT_EQ(Set(L"name", Value()), KARFailure);
    EXPECT_EQ(Get(L"Coordinates/Origin"), Value(NumberArray{0.0, 0.0, 0.0}));
}

TEST_F(Items, ThatCannotBeSetTellWhy)
{
    EXPECT_EQ(Row(L"id").readOnly, "An identifier never changes once it is given.");
    EXPECT_EQ(Set(L"id", std::wstring(L"other")), KARFailure);
}

TEST_F(Items, ThatAreReferencesTakeEntitiesOfTheirClass)
{
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>(point)), KARFailure);
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>()), KARFailure);
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>(body)), KARSuccess);
    EXPECT_EQ(Get(L"Body"), Value(QOBSharedHandle<KARMPEntity>(body)));
}

TEST_F(Items, ThatAreListsTakeWhatTheyDoNotHold)
{
    const QOBSharedHandle<KARMPEntity> first(body);
    const QOBSharedHandle<KARMPEntity> second(KARMPBody::create(L"C"));
    EXPECT_EQ(Get(L"AggregatedElements"), Value(Entities()));
    EXPECT_EQ(Set(L"AggregatedElements", Entities{first}), KARSuccess);
    EXPECT_EQ(Set(L"AggregatedElements", Entities{first, second}), KARSuccess);
    EXPECT_EQ(Get(L"AggregatedElements"), Value(Entities{first, second}));
    EXPECT_EQ(Set(L"AggregatedElements", Entities{second}), KARFailure);
    EXPECT_EQ(Get(L"AggregatedElements"), Value(Entities{first, second}));
}

// A joint and its bodies hold one another.
TEST_F(Items, OfAListTellTheWordsOfItsEntries)
{
    const auto joint = KARMPRevolute::create(L"J");
    const auto other = KARMPBody::create(L"C");
    joint->LinkToBody(body, KARMPBodyOrientation::Out);
    joint->LinkToBody(other, KARMPBodyOrientation::In);
    const auto rows = karmp::ItemsOf(joint->getClassInfo());
    const auto bodies = std::find_if(rows.begin(), rows.end(),
                                     [](const ItemInfo& row) { return row.name == L"Bodies"; });
    ASSERT_NE(bodies, rows.end());
    EXPECT_TRUE(bodies->isInOrder);
    EXPECT_EQ(bodies->entryWord, L"bodyOrientation");
    EXPECT_EQ(bodies->Count(*joint), 2);
    EXPECT_EQ(bodies->EntryWords(*joint), (std::vector<std::wstring_view>{L"Out", L"In"}));
    joint->orphanObject();
}

TEST_F(Items, OfAListInAnyOrderSaySo)
{
    EXPECT_FALSE(Row(L"Constraints").isInOrder);
    EXPECT_EQ(Row(L"Constraints").entryWord, L"");
    EXPECT_EQ(Row(L"Constraints").Count(*point), 0);
    EXPECT_TRUE(Row(L"Constraints").EntryWords(*point).empty());
    EXPECT_EQ(Row(L"Coordinates/Origin").Count(*point), -1);
}

TEST_F(Items, ThatAreNumbersHaveTheirShape)
{
    const auto rows = karmp::ItemsOf("KARMPBody");
    const auto find = [&rows](std::wstring_view path) -> const ItemInfo& {
        return *std::find_if(rows.begin(), rows.end(),
                             [path](const ItemInfo& row) { return row.path == path; });
    };
    const ItemInfo& inertia = find(L"Weight/InertiaMatrix");
    EXPECT_EQ(inertia.shape, NumberShape::Matrix);
    EXPECT_EQ(inertia.numberCount, 9U);
    EXPECT_EQ(find(L"Position").shape, NumberShape::Transformation);
    EXPECT_EQ(find(L"Position").numberCount, 12U);
    EXPECT_EQ(find(L"Weight/COG").shape, NumberShape::Vector);

    // The entries are told row by row; the body keeps them by columns.
    const auto matrix =
        *NumberArray::MatrixByRows(std::array{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0});
    EXPECT_EQ(inertia.Set(*body, matrix), KARSuccess);
    KARMath3x3Matrix stored;
    body->GetInertiaMatrix(stored);
    EXPECT_EQ(stored.GetColumn(1)[0], 2.0);
    EXPECT_EQ(std::get<NumberArray>(inertia.Get(*body)).At(1, 2), 6.0);
    // The same numbers in a row are no matrix.
    EXPECT_EQ(inertia.Set(*body, NumberArray{1, 2, 3, 4, 5, 6, 7, 8, 9}), KARFailure);
}

TEST_F(Items, ThatAreTransformationsReadAsHomogeneousMatrices)
{
    const std::array entries{0.0, -1.0, 0.0, 7.0, 1.0, 0.0, 0.0, 8.0,
                             0.0, 0.0,  1.0, 9.0, 0.0, 0.0, 0.0, 1.0};
    const auto made = NumberArray::TransformationByRows(entries);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->Rows(), 4U);
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            EXPECT_EQ(made->At(row, column), entries[4 * row + column]);
    // The translation stands first, then the matrix by columns.
    EXPECT_EQ((*made)[0], 7.0);
    EXPECT_EQ((*made)[4], 1.0);
    EXPECT_EQ((*made)[6], -1.0);
    const auto planar =
        NumberArray::TransformationByRows(std::array{0.0, -1.0, 7.0, 1.0, 0.0, 8.0, 0.0, 0.0, 1.0});
    ASSERT_TRUE(planar);
    EXPECT_EQ(planar->size(), 6U);
    EXPECT_EQ(planar->At(0, 1), -1.0);
    EXPECT_EQ(planar->At(1, 2), 8.0);
    EXPECT_FALSE(NumberArray::TransformationByRows(std::array{1.0, 2.0}));
    EXPECT_FALSE(NumberArray::TransformationByRows(
        std::array{0.0, -1.0, 7.0, 1.0, 0.0, 8.0, 0.0, 0.5, 1.0}));
    EXPECT_FALSE(NumberArray::MatrixByRows(std::array{1.0, 2.0, 3.0}));
    EXPECT_EQ(NumberArray::MatrixByRows(std::array{1.0, 2.0, 3.0, 4.0})->At(0, 1), 2.0);
}

TEST_F(Items, ThatTakeNoValueTellWhy)
{
    const auto why = [this](std::wstring_view path, const Value& value) {
        std::string text;
        EXPECT_TRUE(KARFailed(Row(path).Set(*point, value, text)));
        return text;
    };
    EXPECT_EQ(why(L"id", std::wstring(L"x")),
              "id cannot be set: An identifier never changes once it is given.");
    EXPECT_EQ(why(L"name", 1.0), "name takes a text, not a number.");
    EXPECT_EQ(why(L"name", Value()), "name takes a text, not none.");
    EXPECT_EQ(why(L"Coordinates/Origin", NumberArray{1.0, 2.0}),
              "Coordinates/Origin takes 3 numbers (Ox, Oy, Oz), not 2 numbers.");
    EXPECT_EQ(why(L"isActive", std::wstring(L"yess")),
              "isActive takes true or false, or one of no, yes, not \"yess\" (did you mean "
              "\"yes\"?).");
    EXPECT_EQ(why(L"Body", QOBSharedHandle<KARMPEntity>(point)),
              "Body takes an entity of class KARMPBody, not KARMPPoint \"P\".");
    EXPECT_EQ(why(L"Constraints", Entities{point}),
              "Constraints takes a list of entities of class KARMPConstraint, not KARMPPoint "
              "\"P\".");
    const QOBSharedHandle<KARMPEntity> other(KARMPBody::create(L"C"));
    Set(L"AggregatedElements", Entities{body});
    EXPECT_EQ(why(L"AggregatedElements", Entities{other}),
              "AggregatedElements keeps the entries that it holds: they must come first, and the "
              "class must take those behind them.");
    std::string text = "as it was";
    EXPECT_EQ(Row(L"name").Set(*point, std::wstring(L"New"), text), KARSuccess);
    EXPECT_EQ(text, "as it was");
}

TEST_F(Items, OfLinksTakeAndDropOneTargetOnTheirSide)
{
    const ItemInfo& carrier = Row(L"Body");
    EXPECT_EQ(carrier.AddTarget(*point, body), KARSuccess);
    EXPECT_EQ(carrier.Get(*point), Value(QOBSharedHandle<KARMPEntity>(body)));
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(carrier.RemoveTarget(*point, KARMPBody::create(L"C")), KARUnchanged);
    EXPECT_EQ(carrier.RemoveTarget(*point, point), KARFailure);
    EXPECT_EQ(carrier.RemoveTarget(*point, body), KARSuccess);
    EXPECT_EQ(carrier.Get(*point), Value());
    EXPECT_EQ(carrier.Set(*point, Value(QOBSharedHandle<KARMPEntity>(body))), KARSuccess);
    EXPECT_EQ(carrier.Set(*point, Value()), KARSuccess);
    EXPECT_EQ(carrier.Set(*point, Value()), KARUnchanged);
    EXPECT_EQ(Row(L"name").AddTarget(*point, body), KARFailure);
    EXPECT_FALSE(Row(L"name").CanRemoveTarget());

    const ItemInfo& elements = Row(L"AggregatedElements");
    const auto other = KARMPBody::create(L"C");
    EXPECT_EQ(elements.AddTarget(*point, body), KARSuccess);
    EXPECT_EQ(elements.AddTarget(*point, body), KARUnchanged);
    EXPECT_EQ(elements.AddTarget(*point, other), KARSuccess);
    EXPECT_EQ(elements.RemoveTarget(*point, body), KARSuccess);
    EXPECT_EQ(elements.Get(*point), Value(Entities{other}));
}

TEST_F(Items, OfAListTakeATargetWithItsWord)
{
    const auto joint = KARMPRevolute::create(L"J");
    const ItemInfo& bodies = *karmp::FindItem(joint->getClassInfo(), L"Bodies");
    EXPECT_EQ(bodies.AddTarget(*joint, body, L"Sideways"), KARFailure);
    EXPECT_EQ(bodies.AddTarget(*joint, body, bodies.entryWords[1]), KARSuccess);
    EXPECT_EQ(bodies.EntryWords(*joint), std::vector{bodies.entryWords[1]});
    EXPECT_EQ(bodies.RemoveTarget(*joint, body), KARSuccess);
    EXPECT_EQ(bodies.Count(*joint), 0);
    joint->orphanObject();
}

TEST_F(Items, AreFoundByPathAndByAName)
{
    const QOBClassInfo& info = point->getClassInfo();
    EXPECT_EQ(karmp::FindItem(info, L"Coordinates/Origin"), &Row(L"Coordinates/Origin"));
    EXPECT_EQ(karmp::FindItem(info, L"Origin"), &Row(L"Coordinates/Origin"));
    EXPECT_EQ(karmp::FindItem(info, L"Orgin"), nullptr);
    // Two directions of one name are told apart by their paths alone.
    const auto function = KARMPSketchFunction::create(L"F");
    EXPECT_EQ(karmp::FindItem(function->getClassInfo(), L"ReferenceAxis/Direction")->says,
              "The direction of the axis.");
    EXPECT_EQ(karmp::FindItem(function->getClassInfo(), L"Direction"), nullptr);
}

TEST_F(Items, OfALinkKnowTheirOtherSides)
{
    const auto names = [](const QOBClassInfo& info, std::wstring_view name,
                          const QOBClassInfo& target) {
        std::vector<std::wstring_view> others;
        for (const ItemInfo* const other :
             karmp::OtherSidesOf(*karmp::FindItem(info, name), info, target))
            others.push_back(other->name);
        return others;
    };
    using Names = std::vector<std::wstring_view>;
    const QOBClassInfo& ofBody = body->getClassInfo();
    EXPECT_EQ(names(point->getClassInfo(), L"Body", ofBody), Names{L"Geometries"});
    const auto spring = KARMPAxialSpring::create(L"S");
    EXPECT_EQ(names(ofBody, L"Connectors", spring->getClassInfo()),
              (Names{L"FirstBody", L"SecondBody"}));
    EXPECT_EQ(names(spring->getClassInfo(), L"SecondBody", ofBody), Names{L"Connectors"});
    EXPECT_EQ(names(point->getClassInfo(), L"AggregatedElements", ofBody), Names());
    // A constraint lists sensors of all kinds; the kind that measures it names it.
    const auto sensor = KARMPConstraintSensor::create(L"M");
    const auto equation = KARMPLinearEquation::create(L"E");
    EXPECT_EQ(names(equation->getClassInfo(), L"Sensors", sensor->getClassInfo()),
              Names{L"Constraint"});
}

TEST_F(Items, ThatTheTableCannotGetSaySo)
{
    const auto canGet = [](std::string_view className, std::wstring_view path) {
        for (const ItemInfo& row : karmp::ItemsOf(className))
            if (row.path == path)
                return row.CanGet();
        ADD_FAILURE() << "no such item";
        return false;
    };
    EXPECT_TRUE(canGet("KARMPPoint", L"Coordinates/Origin"));
    EXPECT_TRUE(canGet("KARMPPoint", L"Constraints"));
    EXPECT_TRUE(canGet("KARMPExpression", L"Variables"));
    EXPECT_FALSE(canGet("KARMPExpression", L"VariableMapping/Var"));
    EXPECT_TRUE(canGet("KARMPLinearEquation", L"LinearTermDataContainer"));
    EXPECT_TRUE(canGet("KARMPSketchFunction", L"CurveSegments"));
}

TEST_F(Items, ThatAreLinksAreThoseOfTheTableThatCanBeFetched)
{
    std::vector<std::wstring_view> paths;
    for (const ItemInfo* const link : karmp::LinkItemsOf(point->getClassInfo()))
        paths.push_back(link->path);
    EXPECT_EQ(paths,
              (std::vector<std::wstring_view>{L"Parameters", L"States", L"Outputs",
                                              L"AggregatedElements", L"Body", L"Constraints"}));
    EXPECT_EQ(karmp::LinkItemsOf(point->getClassInfo()).front(), &Row(L"Parameters"));
}

TEST_F(Items, LeadToTheirTargetsOneByOne)
{
    const auto visited = [this] {
        std::vector<std::pair<std::wstring, const KARMPEntity*>> links;
        karmp::ForEachTarget(*point,
                             [&](const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target) {
                                 links.emplace_back(item.path, target.get());
                             });
        return links;
    };
    EXPECT_TRUE(visited().empty());
    const QOBSharedHandle<KARMPEntity> first(body);
    const QOBSharedHandle<KARMPEntity> second(KARMPBody::create(L"C"));
    Set(L"AggregatedElements", Entities{second, first});
    Set(L"Body", first);
    EXPECT_EQ(visited(), (std::vector<std::pair<std::wstring, const KARMPEntity*>>{
                             {L"AggregatedElements", second.get()},
                             {L"AggregatedElements", first.get()},
                             {L"Body", first.get()}}));
}

/// A record with a value in each field that has one, which differs from that of another number.
karmp::RecordValues RecordOf(const ItemInfo& records, int number)
{
    karmp::RecordValues record;
    for (const ItemInfo& field : records.fields)
        if (field.kind == ItemKind::Reference)
            record.emplace_back(QOBSharedHandle<KARMPEntity>(KARMPBody::create(L"B")));
        else if (field.kind == ItemKind::Number)
            record.emplace_back(static_cast<double>(number));
        else if (field.kind == ItemKind::Text)
            record.emplace_back(std::wstring(L"a text that is not short ") +
                                std::to_wstring(number));
        else
            record.emplace_back();
    return record;
}

/// Sets three records where two stand, the third one of which is refused, and where the allocation
/// of each number fails; the two stay as they are.
void ExpectRecordsAllOrNone(const ItemInfo& records, KARMPEntity& entity, const std::string& name)
{
    std::vector<karmp::RecordValues> values;
    for (int number = 0; number < 2; ++number)
        values.push_back(RecordOf(records, number));
    ASSERT_EQ(records.Set(entity, values), KARSuccess) << name;
    const Value before = records.Get(entity);
    values = std::get<std::vector<karmp::RecordValues>>(before);
    values.push_back(RecordOf(records, 2));
    values.emplace_back(records.fields.size() + 1);
    EXPECT_TRUE(KARFailed(records.Set(entity, values))) << name;
    EXPECT_EQ(records.Get(entity), before) << name;
    values.pop_back();
    const Value wanted(values);
    bool isSet = false;
    for (std::size_t failing = 1; !isSet && AllocationCounter::Counts; ++failing) {
        try {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            isSet = !KARFailed(records.Set(entity, wanted));
        } catch (const std::bad_alloc&) {
            isSet = false;
        }
        if (!isSet)
            ASSERT_EQ(records.Get(entity), before) << name << ", allocation " << failing;
    }
    EXPECT_EQ(records.Count(entity), AllocationCounter::Counts ? 3 : 2) << name;
}

TEST_F(Items, RecordsAreSetAllOrNone)
{
    int lists = 0;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        QOBSharedHandle<KARMPEntity> entity;
        ASSERT_EQ(KARMPFactory::Create(name, entity), KARSuccess);
        for (const ItemInfo& item : karmp::ItemsOf(entity->getClassInfo())) {
            if (item.kind != ItemKind::Records || !item.readOnly.empty() || !item.CanGet())
                continue;
            ++lists;
            // Lists of one sensor share their capacity.
            ASSERT_EQ(KARMPFactory::Create(name, entity), KARSuccess);
            ExpectRecordsAllOrNone(item, *entity, name + ' ' + std::string(item.says));
        }
    }
    EXPECT_GE(lists, 9);
}

TEST_F(Items, ContactsThatAreTakenBackLeaveNoPair)
{
    const auto sensor = KARMPCollisionSensor::create(L"S");
    const ItemInfo& forces =
        *karmp::FindItem(KARMPCollisionSensor::ClassInfo(), L"ContactForceDataContainer");
    std::vector<karmp::RecordValues> values{RecordOf(forces, 0), RecordOf(forces, 1)};
    EXPECT_EQ(forces.Set(*sensor, values), KARSuccess);
    values = forces.GetRecords(*sensor);
    values.push_back(RecordOf(forces, 2));
    values.emplace_back();
    EXPECT_TRUE(KARFailed(forces.Set(*sensor, values)));
    EXPECT_EQ(sensor->GetContactCount(), 2);
}

// In a process of its own, in which no table is made yet.
using ItemsProcess = KARMPTestFixture;

TEST_F(ItemsProcess, AllocationThatFailsLeavesNoEmptyTable)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    std::size_t failing = 0;
    std::size_t failed = 0;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        QOBSharedHandle<KARMPEntity> entity;
        ASSERT_EQ(KARMPFactory::Create(name, entity), KARSuccess);
        const QOBClassInfo& info = entity->getClassInfo();
        try {
            AllocationCounter allocations;
            allocations.FailAllocation(++failing);
            karmp::ItemsOf(info);
        } catch (const std::bad_alloc&) {
            ++failed;
        }
        EXPECT_EQ(karmp::ItemsOf(info).data(), karmp::ItemsOf(name).data())
            << name << ", allocation " << failing;
    }
    EXPECT_GT(failed, 20U);
}

} // namespace
