#include "KAROmxAny.h"
#include "KAROmxArray.h"
#include "KAROmxBaseVector.h"
#include "KAROmxOMap.h"

#include <gtest/gtest.h>

#include <array>

namespace {

class Item : public KARCountedUnknown
{};

const std::array<unsigned char, 4> Bytes = {1, 0, 255, 4};

} // namespace

TEST(Array, CountsFromOne)
{
    KAROmxArray<KARString> path;
    EXPECT_EQ(path.Size(), 0);
    path.Append("arm");
    path.Append("motor");
    EXPECT_EQ(path.Size(), 2);
    EXPECT_EQ(path.GetR(1), "arm");
    EXPECT_EQ(path.GetR(2), "motor");
    path[2] = "axis";
    EXPECT_EQ(std::as_const(path)[2], "axis");
}

TEST(Array, APositionOutsideIsHarmless)
{
    KAROmxArray<KARString> path = {"arm"};
    for (const int position : {-1, 0, 2, 1000000}) {
        EXPECT_EQ(path.GetR(position), "");
        path[position] = "lost";
        EXPECT_EQ(path[position], "");
        EXPECT_EQ(path.GetR(position), "");
    }
    EXPECT_EQ(path, (KAROmxArray<KARString>{"arm"}));
}

TEST(Array, CopiesAreIndependent)
{
    KAROmxArray<KARString> first = {"a", "b"};
    KAROmxArray<KARString> second(first);
    EXPECT_EQ(first, second);
    second.Append("c");
    second[1] = "z";
    EXPECT_EQ(first, (KAROmxArray<KARString>{"a", "b"}));
    first = second;
    EXPECT_EQ(first.Size(), 3);
    first.RemoveAll();
    EXPECT_EQ(first.Size(), 0);
    EXPECT_EQ(second.Size(), 3);
}

TEST(Array, AppendsAnEntryOfItself)
{
    KAROmxArray<KARString> path = {"a long text that needs memory of its own"};
    for (int i = 0; i < 20; ++i)
        path.Append(path.GetR(1));
    EXPECT_EQ(path.GetR(21), path.GetR(1));
}

TEST(Array, IsWalkedInOrder)
{
    const KAROmxArray<int> numbers = {3, 1, 2};
    EXPECT_EQ(std::vector<int>(numbers.begin(), numbers.end()), (std::vector<int>{3, 1, 2}));
}

TEST(OrderedMap, InsertReplacesAndLocateFinds)
{
    KAROmxOMap<KARString, int> map;
    EXPECT_TRUE(map.Insert("b", 1));
    EXPECT_FALSE(map.Insert("b", 2));
    EXPECT_TRUE(map.Insert("a", 3));
    EXPECT_EQ(map.Size(), 2);
    ASSERT_NE(map.Locate("b"), nullptr);
    EXPECT_EQ(*map.Locate("b"), 2);
    *map.Locate("b") = 5;
    EXPECT_EQ(*std::as_const(map).Locate("b"), 5);
    EXPECT_EQ(map.Locate("B"), nullptr);
    EXPECT_TRUE(map.Remove("b"));
    EXPECT_FALSE(map.Remove("b"));
    EXPECT_EQ(map.Locate("b"), nullptr);
    map.RemoveAll();
    EXPECT_EQ(map.Size(), 0);
}

TEST(OrderedMap, IteratorWalksByKey)
{
    KAROmxOMap<KARString, KAROmxAny> map;
    map.Insert("speed", 2.5);
    map.Insert("angle", 7);
    map.Insert("state", "idle");
    std::vector<KARString> keys;
    KAROmxBaseMapIter entry(map);
    while (entry.Next()) {
        keys.push_back(entry._Key());
        EXPECT_EQ(&entry._Value(), map.Locate(entry._Key()));
    }
    EXPECT_EQ(keys, (std::vector<KARString>{"angle", "speed", "state"}));
    EXPECT_FALSE(entry.Next());
    EXPECT_FALSE(entry.Next());
}

TEST(OrderedMap, IteratorThatStandsOnNoEntryGivesDefaults)
{
    KAROmxOMap<KARString, int> map;
    map.Insert("a", 5);
    KAROmxBaseMapIter entry(map);
    EXPECT_EQ(entry._Key(), "");
    EXPECT_EQ(entry._Value(), 0);
    EXPECT_TRUE(entry.Next());
    EXPECT_EQ(entry._Value(), 5);
    EXPECT_FALSE(entry.Next());
    EXPECT_EQ(entry._Key(), "");
    EXPECT_EQ(entry._Value(), 0);
    const KAROmxOMap<KARString, int> empty;
    EXPECT_FALSE((KAROmxBaseMapIter(empty).Next()));
}

TEST(Any, GivesBackWhatItHolds)
{
    bool truth = false;
    EXPECT_TRUE(KAROmxAny(true).TryGetBoolean(truth));
    EXPECT_TRUE(truth);
    int integer = 0;
    EXPECT_TRUE(KAROmxAny(-3).TryGetInt(integer));
    EXPECT_EQ(integer, -3);
    double number = 0.0;
    EXPECT_TRUE(KAROmxAny(0.5).TryGetDouble(number));
    EXPECT_EQ(number, 0.5);
    for (const KAROmxAny& any :
         {KAROmxAny("text"), KAROmxAny(KARString("text")), KAROmxAny(KARUnicodeString("text"))}) {
        KARUnicodeString unicode;
        EXPECT_TRUE(any.TryGetString(unicode));
        EXPECT_EQ(unicode, "text");
        KARString narrow;
        EXPECT_TRUE(any.TryGetString(narrow));
        EXPECT_EQ(narrow, "text");
    }
}

TEST(Any, NothingIsConverted)
{
    const std::vector<KAROmxAny> values = {KAROmxAny(),    KAROmxAny(true),
                                           KAROmxAny(1),   KAROmxAny(1.0),
                                           KAROmxAny("1"), KAROmxAny(_SEQUENCE_octet(Bytes))};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto kind = static_cast<KAROmxAnyKind>(i);
        EXPECT_EQ(values[i].Kind(), kind);
        bool truth = false;
        int integer = -7;
        double number = -7.0;
        KARUnicodeString text("old");
        KARString narrow("old");
        EXPECT_EQ(values[i].TryGetBoolean(truth), kind == KAROmxAnyKind::Boolean);
        EXPECT_EQ(truth, kind == KAROmxAnyKind::Boolean);
        EXPECT_EQ(values[i].TryGetInt(integer), kind == KAROmxAnyKind::Int);
        EXPECT_EQ(integer, kind == KAROmxAnyKind::Int ? 1 : -7);
        EXPECT_EQ(values[i].TryGetDouble(number), kind == KAROmxAnyKind::Double);
        EXPECT_EQ(number, kind == KAROmxAnyKind::Double ? 1.0 : -7.0);
        EXPECT_EQ(values[i].TryGetString(text), kind == KAROmxAnyKind::String);
        EXPECT_EQ(text, kind == KAROmxAnyKind::String ? "1" : "old");
        EXPECT_EQ(values[i].TryGetString(narrow), kind == KAROmxAnyKind::String);
        EXPECT_EQ(narrow, kind == KAROmxAnyKind::String ? "1" : "old");
    }
}

TEST(Any, TellsItsSize)
{
    EXPECT_EQ(KAROmxAny().Size(), 0);
    EXPECT_EQ(KAROmxAny(false).Size(), 1);
    EXPECT_EQ(KAROmxAny(12).Size(), 1);
    EXPECT_EQ(KAROmxAny("text").Size(), 1);
    EXPECT_EQ(KAROmxAny(_SEQUENCE_octet()).Size(), 0);
    EXPECT_EQ(KAROmxAny(_SEQUENCE_octet(Bytes)).Size(), 4);
}

TEST(Any, CopiesItsOctets)
{
    const KAROmxAny any{_SEQUENCE_octet(Bytes)};
    std::array<unsigned char, 6> array = {9, 9, 9, 9, 9, 9};
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Octets, array.data(), 6), 4);
    EXPECT_EQ(array, (std::array<unsigned char, 6>{1, 0, 255, 4, 9, 9}));
    array.fill(9);
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Octets, array.data(), 2), 2);
    EXPECT_EQ(array, (std::array<unsigned char, 6>{1, 0, 9, 9, 9, 9}));
}

TEST(Any, CopiesNothingWhenTheRequestDoesNotFit)
{
    const KAROmxAny any{_SEQUENCE_octet(Bytes)};
    std::array<unsigned char, 2> array = {9, 9};
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Double, array.data(), 2), 0);
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Octets, nullptr, 2), 0);
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Octets, array.data(), 0), 0);
    EXPECT_EQ(any.CopyToCArray(KAROmxAnyKind::Octets, array.data(), -1), 0);
    EXPECT_EQ(KAROmxAny("ab").CopyToCArray(KAROmxAnyKind::Octets, array.data(), 2), 0);
    EXPECT_EQ(KAROmxAny("ab").CopyToCArray(KAROmxAnyKind::String, array.data(), 2), 0);
    EXPECT_EQ(KAROmxAny(_SEQUENCE_octet()).CopyToCArray(KAROmxAnyKind::Octets, array.data(), 2), 0);
    EXPECT_EQ(array, (std::array<unsigned char, 2>{9, 9}));
}

TEST(BaseVector, HoldsAReferenceOnEachEntry)
{
    Item* item = new Item;
    {
        KAROmxBaseVector vector;
        vector._Append(item);
        vector._Append(nullptr);
        vector._Append(item);
        EXPECT_EQ(item->GetRefCount(), 3U);
        EXPECT_EQ(vector.Size(), 3);
        EXPECT_EQ(vector._GetItem(1), item);
        EXPECT_EQ(vector._GetItem(2), nullptr);
        EXPECT_EQ(vector._GetItem(3), item);
        EXPECT_EQ(item->GetRefCount(), 3U);
        const KAROmxBaseVector copy(vector);
        EXPECT_EQ(item->GetRefCount(), 5U);
        vector.RemoveAll();
        EXPECT_EQ(vector.Size(), 0);
        EXPECT_EQ(item->GetRefCount(), 3U);
    }
    EXPECT_EQ(item->GetRefCount(), 1U);
    item->Release();
}

TEST(BaseVector, APositionOutsideGivesNull)
{
    KAROmxBaseVector vector;
    Item* item = new Item;
    vector._Append(item);
    item->Release();
    for (const int position : {-1, 0, 2})
        EXPECT_EQ(vector._GetItem(position), nullptr);
}
