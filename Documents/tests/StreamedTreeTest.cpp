// Trees that are rendered while they are written: the text and the messages are those of a tree
// that is rendered when it is complete.
#include "AllocationCounter.h"
#include "KARMPDocumentWriter.h"
#include "KARMPStreamedTree.h"
#include "TreeBuilding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <string>

using namespace karmp::documents;

namespace {

using Write = std::function<void(KARMPSerializer& root)>;

constexpr double Infinity = std::numeric_limits<double>::infinity();

// The text of a tree that is rendered while it is written, or the message.
std::string Streamed(const Write& write, const Limits& limits = {})
{
    std::string text = "before";
    Diagnostics diagnostics;
    Messages messages(diagnostics, {}, limits.diagnostics);
    StreamedTree tree(karmp::CurrentVersion, Doubles::Snapped, text, limits, messages);
    write(tree.Root());
    const bool rendered = tree.Finish();
    EXPECT_EQ(rendered, diagnostics.items.empty());
    EXPECT_LE(diagnostics.items.size(), 1U);
    if (diagnostics.items.empty())
        return text;
    EXPECT_EQ(text, "before");
    return Format(diagnostics.items[0]);
}

// The same of a tree that is rendered when it is complete.
std::string Whole(const Write& write, const Limits& limits = {})
{
    std::string text = "before";
    KARMPDocumentWriter root;
    write(root);
    const Diagnostics diagnostics = root.RenderXml(text, limits);
    return diagnostics.items.empty() ? text : Format(diagnostics.items.at(0));
}

void ExpectSame(const Write& write, const Limits& limits = {})
{
    EXPECT_EQ(Streamed(write, limits), Whole(write, limits));
}

// A message that ends so, with its path.
void ExpectMessage(const Write& write, const std::string& end)
{
    const std::string message = Streamed(write);
    EXPECT_TRUE(message.ends_with(end)) << message;
    EXPECT_EQ(message, Whole(write));
}

void AddEntity(KARMPSerializer& list, int number)
{
    KARMPSerializer* const entity = Add(list, number % 3 == 0 ? L"Body" : L"Joint");
    entity->AddAttribute(L"id", L"identifier " + std::to_wstring(number));
    KARMPSerializer* const position = Add(*entity, L"Position");
    Add(*position, L"Px", 0.5 * number);
    Add(*position, L"Py", number);
    Add(*entity, L"Text", L"a text of its own " + std::to_wstring(number));
    entity->AddAttribute(L"late", number);
    list.ChildrenComplete();
}

void AddWorld(KARMPSerializer& root, int count)
{
    KARMPSerializer* const world = Add(root, L"World");
    world->AddAttribute(L"tolerance", 0.25);
    KARMPSerializer* const origin = Add(*world, L"Origin");
    Add(*origin, L"Ox", 1.5);
    world->ChildrenComplete();
    for (const wchar_t* name : {L"Bodies", L"Joints", L"Constraints"}) {
        KARMPSerializer* const list = Add(*world, name);
        for (int number = 0; number < count; ++number)
            AddEntity(*list, number);
        world->ChildrenComplete();
    }
}

} // namespace

TEST(StreamedTree, RendersWhatATreeHolds)
{
    ExpectSame([](KARMPSerializer&) {});
    ExpectSame([](KARMPSerializer& root) { root.ChildrenComplete(); });
    for (const int count : {0, 1, 2, 5, 500}) {
        ExpectSame([count](KARMPSerializer& root) { AddWorld(root, count); });
        ExpectSame([count](KARMPSerializer& root) {
            AddWorld(root, count);
            root.ChildrenComplete();
            AddWorld(root, count);
            root.AddAttribute(L"count", count);
        });
    }
}

TEST(StreamedTree, KeepsTheVersionAndExactDoubles)
{
    std::string text;
    Diagnostics diagnostics;
    Messages messages(diagnostics, {}, 1);
    const Limits limits;
    StreamedTree tree(L"R2016.1", Doubles::Exact, text, limits, messages);
    KARMPSerializer* const list = Add(tree.Root(), L"List");
    for (int number = 0; number < 3; ++number) {
        Add(*Add(*list, L"Item"), L"Value", 1e-13);
        list->ChildrenComplete();
    }
    EXPECT_EQ(Add(*list, L"Item")->Version(), L"R2016.1");
    EXPECT_TRUE(tree.Finish());
    EXPECT_NE(text.find("<KARMPDocument version=\"R2016.1\">"), std::string::npos);
    EXPECT_NE(text.rfind("<Value>1e-13</Value>"), text.find("<Value>1e-13</Value>"));
    EXPECT_EQ(text.find("<Value>0</Value>"), std::string::npos);
}

TEST(StreamedTree, AnOpenElementTakesAttributesToItsEnd)
{
    const Write write = [](KARMPSerializer& root) {
        KARMPSerializer* const world = Add(root, L"World");
        KARMPSerializer* const list = Add(*world, L"List");
        AddEntity(*list, 1);
        list->AddAttribute(L"text", std::wstring(100, L'x') + L"<");
        AddEntity(*list, 2);
        world->AddAttribute(L"first", 1);
        list->SetVersion(std::wstring(100, L'v'));
        list->AddAttribute(L"number", 2.5);
        list->AddAttribute(L"flag", true);
        AddEntity(*list, 3);
        world->AddAttribute(L"second", 2);
        root.AddAttribute(L"third", 3);
    };
    const std::string text = Streamed(write);
    EXPECT_EQ(text, Whole(write));
    EXPECT_NE(text.find(" third=\"3\">\n <World first=\"1\" second=\"2\">\n  <List text=\"x"),
              std::string::npos)
        << text;
}

TEST(StreamedTree, ChildrenThatAreNotCompleteTakeMore)
{
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const world = Add(root, L"World");
        KARMPSerializer* const early = Add(*world, L"Early");
        KARMPSerializer* const list = Add(*world, L"List");
        AddEntity(*list, 1);
        AddEntity(*list, 2);
        Add(*early, L"Later", 1);
        early->AddAttribute(L"later", 2);
        AddEntity(*list, 3);
    });
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const world = Add(root, L"World");
        KARMPSerializer* const list = Add(*world, L"List");
        AddEntity(*list, 1);
        KARMPSerializer* const open = Add(*list, L"Open");
        KARMPSerializer* const other = Add(*world, L"Other");
        AddEntity(*other, 2);
        Add(*open, L"Later", 1);
        AddEntity(*list, 3);
        world->ChildrenComplete();
        AddEntity(*Add(*world, L"Third"), 4);
    });
}

TEST(StreamedTree, NodesBeforeACompleteOneKeepTheirOrder)
{
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const list = Add(root, L"List");
        AddEntity(*list, 1);
        KARMPSerializer* const entity = Add(*list, L"Entity");
        Add(*entity, L"First", L"text");
        AddEntity(*Add(*entity, L"Second"), 2);
        list->ChildrenComplete();
    });
}

TEST(StreamedTree, NumbersOfAGroupStandOnOneLineHoweverTheyCome)
{
    for (const int count : {1, 5, 12, 13, 30}) {
        const Write write = [count](KARMPSerializer& root) {
            KARMPSerializer* const group = Add(root, L"Group");
            for (int number = 0; number < count; ++number) {
                Add(*group, L"N", number);
                group->ChildrenComplete();
            }
        };
        ExpectSame(write);
        EXPECT_EQ(Streamed(write).find("<Group><N>") != std::string::npos, count <= 12);
        ExpectSame([write](KARMPSerializer& root) {
            write(root);
            root.ChildrenComplete();
            write(root);
            root.ChildrenComplete();
        });
    }
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const group = Add(root, L"Group", L"with a text");
        Add(*group, L"N", 1);
        group->ChildrenComplete();
        Add(*group, L"N", 2);
    });
}

TEST(StreamedTree, AWorldMayStandInAnEntity)
{
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const list = Add(*Add(root, L"World"), L"List");
        for (int number = 0; number < 20; ++number) {
            AddEntity(*list, number);
            KARMPSerializer* const entity = Add(*list, L"Assembly");
            AddWorld(*entity, number);
            entity->AddAttribute(L"number", number);
            Add(*entity, L"After", number);
            list->ChildrenComplete();
        }
    });
}

TEST(StreamedTree, ANameMayReplaceAnother)
{
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* const list = Add(root, L"List");
        for (const wchar_t letter : {L'a', L'b', L'c', L'd', L'e'}) {
            KARMPSerializer* const entity = Add(*list, L"Entity");
            // Names of this length are not shared by the process.
            const std::wstring name(60, letter);
            entity->AddAttribute(name, 1);
            Add(*Add(*entity, name), name, std::wstring(60, letter));
            list->ChildrenComplete();
        }
    });
}

TEST(StreamedTree, AMessageHasThePathThatItHasInTheWholeTree)
{
    const auto write = [](int wrong, int count, bool close) {
        return [=](KARMPSerializer& root) {
            KARMPSerializer* const world = Add(root, L"World");
            AddEntity(*Add(*world, L"List"), 0);
            world->ChildrenComplete();
            KARMPSerializer* const list = Add(*world, L"List");
            for (int number = 0; number < count; ++number) {
                if (number == wrong) {
                    Add(*Add(*list, L"Body"), L"Fine");
                    Add(*Add(*list, L"Body"), L"no name");
                }
                AddEntity(*list, number);
            }
            if (close) {
                world->ChildrenComplete();
                Add(*world, L"List");
            }
        };
    };
    ExpectMessage(write(0, 1, false), " at /KARMPDocument/World/List[2]/Body[2]/no name");
    ExpectMessage(write(4, 9, false), " at /KARMPDocument/World/List[2]/Body[4]/no name");
    ExpectMessage(write(4, 9, true), " at /KARMPDocument/World/List[2]/Body[4]/no name");
    ExpectMessage(
        [](KARMPSerializer& root) {
            KARMPSerializer* const world = Add(root, L"World");
            KARMPSerializer* const list = Add(*world, L"List");
            AddEntity(*list, 0);
            AddEntity(*list, 3);
            KARMPSerializer* const other = Add(*world, L"Other");
            Add(*Add(*other, L"Body"), L"Fine");
            Add(*Add(*other, L"Body"), L"no name");
            world->ChildrenComplete();
        },
        " at /KARMPDocument/World/Other/Body[2]/no name");
    // Later siblings decide whether a number is in the path.
    for (const bool more : {false, true}) {
        ExpectMessage(
            [more](KARMPSerializer& root) {
                KARMPSerializer* const list = Add(root, L"List");
                AddEntity(*list, 1);
                Add(*Add(*list, L"Body"), L"no name");
                list->ChildrenComplete();
                AddEntity(*list, more ? 3 : 1);
            },
            more ? "/List/Body[1]/no name" : "/List/Body/no name");
    }
}

TEST(StreamedTree, NumbersThatAreNotFiniteAreToldOfWithTheirEntities)
{
    std::string text;
    Diagnostics diagnostics;
    Diagnostics numbers;
    Messages messages(diagnostics, {}, 1);
    Messages told(numbers, {}, 10);
    const Limits limits;
    StreamedTree tree(karmp::CurrentVersion, Doubles::Snapped, text, limits, messages, &told);
    KARMPSerializer* const list = Add(*Add(tree.Root(), L"World"), L"List");
    list->AddAttribute(L"tolerance", Infinity);
    KARMPSerializer* const entity = Add(*list, L"Entity");
    entity->AddAttribute(L"id", L"1");
    entity->AddAttribute(L"name", L"one");
    for (int number = 0; number < 3; ++number)
        Add(*Add(*entity, L"Group"), L"N", number == 1 ? -Infinity : 0.5);
    Add(*entity, L"N", std::nan(""));
    Add(*entity, L"N", 1.5)->AddAttribute(L"length", Infinity);
    Add(*Add(*list, L"Entity"), L"N", Infinity);
    list->ChildrenComplete();
    EXPECT_TRUE(tree.Finish());
    std::string all;
    for (const Diagnostic& item : numbers.items)
        all += Format(item) + '\n';
    const std::string place = "[not-finite] at /KARMPDocument/World/List";
    EXPECT_EQ(all, "warning: World: \"tolerance\" is infinite " + place +
                       "/@tolerance\n"
                       "warning: Entity \"one\" [1]: \"N\" is infinite " +
                       place +
                       "/Entity[1]/Group[2]/N\n"
                       "warning: Entity \"one\" [1]: \"N\" is no number " +
                       place +
                       "/Entity[1]/N[1]\n"
                       "warning: Entity \"one\" [1]: \"length\" is infinite " +
                       place +
                       "/Entity[1]/N[2]/@length\n"
                       "warning: World: \"N\" is infinite " +
                       place + "/Entity[2]/N\n");
}

TEST(StreamedTree, TheFirstFailureOfTheDocumentIsReported)
{
    const auto write = [](int step) {
        return [step](KARMPSerializer& root) {
            KARMPSerializer* const world = Add(root, L"World");
            world->AddAttribute(L"twice", 1);
            KARMPSerializer* const list = Add(*world, L"List");
            AddEntity(*list, 0);
            Add(*list, L"no name");
            AddEntity(*list, 1);
            if (step > 0)
                list->AddAttribute(L"n o", 1);
            if (step > 1)
                world->AddAttribute(L"twice", 2);
            if (step > 2)
                root.AddAttribute(L"version", 1);
            world->ChildrenComplete();
        };
    };
    ExpectMessage(write(0), " at /KARMPDocument/World/List/no name");
    ExpectMessage(write(1), " at /KARMPDocument/World/List");
    ExpectMessage(write(2), " at /KARMPDocument/World");
    ExpectMessage(write(3), " at /KARMPDocument");
    // Without a failure within, the wrong attributes are found when their element is closed.
    ExpectMessage(
        [](KARMPSerializer& root) {
            KARMPSerializer* const world = Add(root, L"World");
            KARMPSerializer* const list = Add(*world, L"List");
            AddEntity(*list, 0);
            list->AddAttribute(L"twice", 1);
            list->AddAttribute(L"twice", 2);
            world->ChildrenComplete();
            Add(*world, L"no name");
        },
        "\"twice\" stands twice [duplicate-attribute] at /KARMPDocument/World/List");
}

TEST(StreamedTree, EveryLimitHoldsExactly)
{
    const Write write = [](KARMPSerializer& root) { AddWorld(root, 4); };
    Limits limits;
    for (std::size_t depth = 0; depth < 8; ++depth) {
        limits.depth = depth;
        ExpectSame(write, limits);
    }
    EXPECT_EQ(Streamed(write, limits), Streamed(write));
    for (std::size_t length = 0; length < 12; ++length) {
        limits.nameLength = length;
        ExpectSame(write, limits);
    }
    EXPECT_EQ(Streamed(write, limits), Streamed(write));
    limits.bytes = Streamed(write).size();
    EXPECT_EQ(Streamed(write, limits), Streamed(write));
    --limits.bytes;
    ExpectSame(write, limits);
    EXPECT_NE(Streamed(write, limits), Streamed(write));
}

TEST(StreamedTree, ADeepTreeIsNoMatterOfTheStack)
{
    constexpr int depth = 9'000;
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* node = &root;
        for (int level = 0; level < depth; ++level)
            node = Add(*node, L"Level");
        AddWorld(*node, 3);
    });
    ExpectSame([](KARMPSerializer& root) {
        KARMPSerializer* node = &root;
        for (int level = 0; level < depth; ++level) {
            KARMPSerializer* const child = Add(*node, L"Level");
            Add(*child, L"Leaf");
            node->ChildrenComplete();
            node = Add(*node, L"Level");
        }
    });
}

TEST(StreamedTree, ANodeRendersByItselfWhileItHoldsItsChildren)
{
    std::string bytes;
    Diagnostics diagnostics;
    Messages messages(diagnostics, {}, 1);
    const Limits limits;
    StreamedTree tree(karmp::CurrentVersion, Doubles::Snapped, bytes, limits, messages);
    KARMPSerializer* const list = Add(tree.Root(), L"List");
    Add(*Add(*list, L"Entity"), L"Value", 1);
    std::wstring text;
    EXPECT_EQ(list->Render(text), KARSuccess);
    EXPECT_EQ(text, L"<List>\n <Entity><Value>1</Value></Entity>\n</List>\n");
    list->ChildrenComplete();
    EXPECT_EQ(list->Render(text), KARFailure);
    EXPECT_EQ(list->Save("/dev/null"), KARFailure);
    KARMPSerializer* const entity = Add(*list, L"Entity");
    text.clear();
    EXPECT_EQ(entity->Render(text), KARSuccess);
    EXPECT_EQ(text, L"<Entity/>\n");
}

TEST(StreamedTree, TakesNoMoreMemoryForMoreChildren)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const auto bytesFor = [](int count) {
        std::string text;
        text.reserve(10'000'000);
        Diagnostics diagnostics;
        Messages messages(diagnostics, {}, 1);
        const Limits limits;
        const AllocationCounter allocations;
        StreamedTree tree(karmp::CurrentVersion, Doubles::Snapped, text, limits, messages);
        KARMPSerializer* const list = Add(tree.Root(), L"List");
        for (int number = 0; number < count; ++number) {
            KARMPSerializer* const entity = Add(*list, L"Entity");
            Add(*Add(*entity, L"Element"), L"Text", L"a text that the tree copies");
            list->ChildrenComplete();
        }
        EXPECT_TRUE(tree.Finish());
        return allocations.Bytes();
    };
    // Only the list of the children grows, by far less than their own size.
    EXPECT_LT(bytesFor(50'000), 50'000U * 50U);
}

TEST(StreamedTree, AFailedAllocationLeavesNothingBehind)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const Write write = [](KARMPSerializer& root) { AddWorld(root, 20); };
    const std::string expected = Streamed(write);
    std::size_t failures = 0;
    for (std::size_t number = 1;; ++number) {
        std::string text = "before";
        Diagnostics diagnostics;
        Messages messages(diagnostics, {}, 1);
        const Limits limits;
        AllocationCounter allocations;
        allocations.FailAllocation(number);
        try {
            StreamedTree tree(karmp::CurrentVersion, Doubles::Snapped, text, limits, messages);
            write(tree.Root());
            EXPECT_TRUE(tree.Finish());
        } catch (const std::bad_alloc&) {
            ++failures;
            continue;
        }
        EXPECT_EQ(text, expected);
        break;
    }
    EXPECT_GT(failures, 10U);
}
