// What differs between documents: none between those of one content, one for each item changed.
#include "DifferenceTesting.h"
#include "EnvironmentVariable.h"
#include "FilledWorld.h"
#include "KARMPClassItems.h"
#include "KARMPDocuments.h"
#include "KARMPItems.h"
#include "KARMPSchema.h"
#include "KARMPSerializationServices.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace karmp::documents {

namespace {

using Handles = std::vector<Handle>;

QOBSharedHandle<KARMPWorld> Load(const pugi::xml_document& document)
{
    std::ostringstream text;
    document.save(text);
    const LoadResult loaded = LoadText(text.str());
    EXPECT_TRUE(loaded.diagnostics.items.empty());
    return loaded.world;
}

using Nodes = std::vector<pugi::xml_node>;

Nodes ChildrenOf(pugi::xml_node node)
{
    Nodes children;
    for (const pugi::xml_node child : node.children())
        if (child.type() == pugi::node_element)
            children.push_back(child);
    return children;
}

/// Makes of a document one of the same content in another order and with other identifiers.
class Remaker
{
public:
    explicit Remaker(pugi::xml_document& document)
        : m_world(document.document_element().child("World"))
    {}

    void Shuffle()
    {
        Shuffle(m_world);
        ForEachEntity([this](pugi::xml_node entity) {
            const std::wstring element = kar::ToWide(std::string_view(entity.name()));
            const auto items = ItemsOf(KARMPSerializationServices::to_type(element));
            EXPECT_FALSE(items.empty());
            for (const ItemInfo& item : items)
                if (item.kind == ItemKind::References && !item.isInOrder)
                    Shuffle(entity.child(kar::ToUtf8(item.name).c_str()));
        });
        for (const pugi::xml_node family : ChildrenOf(m_world))
            if (family.child("Ox") == nullptr)
                Shuffle(family);
    }
    void Rename()
    {
        Nodes pending{m_world};
        while (!pending.empty()) {
            const pugi::xml_node node = pending.back();
            pending.pop_back();
            if (pugi::xml_attribute id = node.attribute("id")) {
                const auto [entry, isNew] =
                    m_identifiers.emplace(id.value(), "N" + std::to_string(m_identifiers.size()));
                id = entry->second.c_str();
            }
            for (const pugi::xml_node child : ChildrenOf(node))
                pending.push_back(child);
        }
    }
    void DropNames()
    {
        ForEachEntity([](pugi::xml_node entity) { entity.attribute("name") = ""; });
    }

private:
    void ForEachEntity(const std::function<void(pugi::xml_node)>& visit)
    {
        for (const pugi::xml_node family : ChildrenOf(m_world))
            for (const pugi::xml_node entity : ChildrenOf(family))
                if (entity.attribute("isActive"))
                    visit(entity);
    }
    void Shuffle(pugi::xml_node node)
    {
        Nodes children = ChildrenOf(node);
        std::shuffle(children.begin(), children.end(), m_random);
        for (const pugi::xml_node child : children)
            node.append_move(child);
    }

    pugi::xml_node m_world;
    std::map<std::string, std::string> m_identifiers;
    std::mt19937 m_random{7};
};

// Outputs are part of what is compared.
class DocumentDifference : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
};

TEST_F(DocumentDifference, IsNothingBetweenAnExampleAndItself)
{
    for (const std::filesystem::path& example : Examples())
        EXPECT_EQ(DifferenceOf(LoadFile(example).world, LoadFile(example).world), "") << example;
}

// A collision layer is filed in no registry when it is read, because its class record names no
// family, so what is saved next has no layers.
bool IsLinkToALayer(const Difference& difference)
{
    return difference.kind == DifferenceKind::LinkLost && difference.target &&
           difference.target->getClassName() == "KARMPCollisionLayer";
}

TEST_F(DocumentDifference, IsNothingBetweenAnExampleAndWhatItIsReloadedAs)
{
    for (const std::filesystem::path& example : Examples()) {
        const auto world = LoadFile(example).world;
        // The model library saves all digits, most of which are off the grid.
        const bool isExact = example.filename() == "four-bar.xml";
        SaveOptions options;
        options.doubles = isExact ? Doubles::Exact : Doubles::Snapped;
        std::string text;
        EXPECT_FALSE(SaveText(world, text, options).HasErrors());
        std::vector<Difference> differences = FindDifferences(*world, *LoadText(text).world);
        const std::size_t toLayers = std::erase_if(differences, IsLinkToALayer);
        EXPECT_EQ(TextOf(differences), "") << example;
        EXPECT_EQ(toLayers != 0, example.filename() == "collision.xml") << example;
    }
}

TEST_F(DocumentDifference, IsNothingBetweenAnExampleAndOneInAnotherOrderWithOtherIdentifiers)
{
    for (const std::filesystem::path& example : Examples()) {
        pugi::xml_document document;
        ASSERT_TRUE(document.load_file(example.c_str()));
        const auto world = Load(document);
        Remaker remaker(document);
        remaker.Shuffle();
        EXPECT_EQ(DifferenceOf(world, Load(document)), "") << example;
        remaker.Rename();
        EXPECT_EQ(DifferenceOf(world, Load(document)), "") << example;
    }
}

TEST_F(DocumentDifference, IsNothingBetweenExamplesWithoutNamesWithOtherIdentifiers)
{
    for (const std::filesystem::path& example : Examples()) {
        pugi::xml_document document;
        ASSERT_TRUE(document.load_file(example.c_str()));
        Remaker remaker(document);
        remaker.DropNames();
        const auto world = Load(document);
        remaker.Shuffle();
        remaker.Rename();
        EXPECT_EQ(DifferenceOf(world, Load(document)), "") << example;
    }
}

TEST_F(DocumentDifference, IsNothingBetweenEmptyDocuments)
{
    const std::string text = "<KARMPDocument version=\"R2018.1\"><World/></KARMPDocument>";
    LoadOptions options;
    options.check = CheckLevel::None;
    const auto world = LoadText(text, "empty", options).world;
    EXPECT_EQ(DifferenceOf(world, LoadText(text, "empty", options).world), "");
    EXPECT_NE(DifferenceOf(world, LoadFile(Examples()[0]).world), "");
    EXPECT_NE(DifferenceOf(LoadFile(Examples()[0]).world, world), "");
}

/// Items that cannot be set to another value here, with the reason.
const std::set<std::pair<std::string, std::wstring>> NotSet{
    // The equation of a coupling is the first equation among its constraints, whichever is set.
    {"KARMPCable", L"Equation"},
    {"KARMPGear", L"Equation"},
    {"KARMPRack", L"Equation"},
    // The constraints of these tests' screw are no equations.
    {"KARMPScrew", L"Equation"},
    // The values of both filled motors combine their target types to the same one.
    {"KARMPMotor", L"TargetType"},
};

bool IsSettable(const ItemInfo& item)
{
    return item.CanGet() && item.readOnly.empty();
}

/// The classes that documents hold.
std::vector<std::string> ClassesInDocuments()
{
    std::vector<std::string> names = MadeClasses();
    std::erase_if(names, [](const std::string& name) { return SchemaOf(name) == nullptr; });
    return names;
}

TEST_F(DocumentDifference, OfEachItemOfEachClassIsOne)
{
    int compared = 0;
    for (const std::string& className : ClassesInDocuments()) {
        const FilledWorld before(className);
        const FilledWorld other(className, Filling::Other);
        for (const ItemInfo& item : ItemsOf(className)) {
            if (!IsSettable(item) || item.kind == ItemKind::References ||
                item.kind == ItemKind::Records)
                continue;
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            const FilledWorld after(className);
            ASSERT_EQ(DifferenceOf(before.world, after.world), "");
            const Value old = item.Get(*after.entity);
            const KARStatus status = item.Set(*after.entity, OtherValue(item, after, other));
            const bool isSet = !KARFailed(status) && item.Get(*after.entity) != old;
            EXPECT_EQ(isSet, NotSet.count({className, item.path}) == 0);
            if (!isSet)
                continue;
            ++compared;
            const auto differences = FindDifferences(*before.world, *after.world);
            ASSERT_EQ(differences.size(), 1U) << TextOf(differences);
            EXPECT_EQ(differences[0].item, item.path);
            EXPECT_EQ(differences[0].before.get(), before.entity.get());
        }
    }
    EXPECT_GT(compared, 300);
}

/// Lists that hold the same entities as another list of their class.
const std::set<std::pair<std::string, std::wstring>> ListedTwice{
    {"KARMPCollisionInterLayer", L"Collidables"},
    {"KARMPCollisionInterLayer", L"CollisionLayers"},
    {"KARMPCollisionLayer", L"Collidables"},
    {"KARMPCollisionLayer", L"Entities"},
};

TEST_F(DocumentDifference, OfEachEntryOfEachListOfEachClassIsOne)
{
    int compared = 0;
    for (const std::string& className : ClassesInDocuments()) {
        const FilledWorld before(className, Filling::Nothing);
        for (const ItemInfo& item : ItemsOf(className)) {
            if (!IsSettable(item) || item.kind != ItemKind::References)
                continue;
            SCOPED_TRACE(className + ' ' + kar::ToUtf8(item.path));
            const FilledWorld after(className, Filling::Nothing);
            const Handle target = after.Other(item.target, {});
            if (!target || KARFailed(item.Set(*after.entity, Handles{target}))) {
                // No entity of the tests is an output.
                EXPECT_EQ(item.path, L"Outputs");
                continue;
            }
            ++compared;
            const auto differences = FindDifferences(*before.world, *after.world);
            // With a variable an expression gets its position.
            const bool isMapped = className == "KARMPExpression" && item.path == L"Variables";
            // Layers and inter-layers write their collidables under two names.
            const bool isTwice = ListedTwice.count({className, item.path}) != 0;
            ASSERT_EQ(differences.size(), isMapped || isTwice ? 2U : 1U) << TextOf(differences);
            const auto gained =
                std::find_if(differences.begin(), differences.end(),
                             [&item](const Difference& one) { return one.item == item.path; });
            ASSERT_NE(gained, differences.end()) << TextOf(differences);
            EXPECT_EQ(gained->kind, DifferenceKind::LinkGained);
            EXPECT_EQ(gained->target.get(), target.get());
            EXPECT_TRUE(isTwice || gained == differences.begin()) << TextOf(differences);
        }
    }
    EXPECT_GT(compared, 200);
}

/// The path of an element below another one as ClassItems has it.
std::wstring PathOf(pugi::xml_node node, pugi::xml_node below)
{
    std::wstring path;
    for (; node != below; node = node.parent()) {
        int number = 1;
        for (pugi::xml_node other = node.previous_sibling(node.name()); other;
             other = other.previous_sibling(node.name()))
            ++number;
        std::wstring step = kar::ToWide(std::string_view(node.name()));
        if (number > 1)
            step += L'[' + std::to_wstring(number) + L']';
        path = path.empty() ? step : step + L'/' + path;
    }
    return path;
}

/// A text and an attribute of an element that items do not give.
using Leaf = std::pair<std::wstring, pugi::xml_node>;

std::vector<Leaf> LeavesNotGiven(pugi::xml_node entity, const ClassItems& items)
{
    std::vector<Leaf> leaves;
    Nodes pending = ChildrenOf(entity);
    while (!pending.empty()) {
        const pugi::xml_node node = pending.back();
        pending.pop_back();
        const std::wstring path = PathOf(node, entity);
        if (items.IsGiven(path))
            continue;
        const Nodes children = ChildrenOf(node);
        pending.insert(pending.end(), children.begin(), children.end());
        for (const pugi::xml_attribute attribute : node.attributes())
            leaves.emplace_back(path + L'/' + kar::ToWide(std::string_view(attribute.name())),
                                node);
        if (children.empty() && node.text())
            leaves.emplace_back(path, node);
    }
    return leaves;
}

/// Another number; false for a text that is none.
bool Change(const Leaf& leaf)
{
    const std::string name = kar::ToUtf8(leaf.first.substr(leaf.first.rfind(L'/') + 1));
    const pugi::xml_attribute attribute = leaf.second.attribute(name.c_str());
    const std::string text = attribute ? attribute.value() : leaf.second.text().get();
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != 0)
        return false;
    std::ostringstream other;
    other << number + 1.0;
    return attribute ? pugi::xml_attribute(attribute).set_value(other.str().c_str())
                     : leaf.second.text().set(other.str().c_str());
}

/// Numbers that reading does not take as they are, with the reason.
bool IsRead(const std::wstring& path)
{
    // The term's position says it. A stream says how long it is, a list how many records it has.
    return !path.ends_with(L"LinearTermIndex") && !path.ends_with(L"Stream/length") &&
           !path.ends_with(L"/number");
}

TEST_F(DocumentDifference, OfEachNumberThatAClassWritesByCodeIsOne)
{
    int compared = 0;
    for (const std::string& className : MadeClasses()) {
        const FilledWorld filled(className);
        const ClassItems& items = ClassItems::Of(*filled.entity);
        if (!items.HasMore(*filled.entity))
            continue;
        SCOPED_TRACE(className);
        std::string text;
        EXPECT_FALSE(SaveText(filled.world, text).HasErrors());
        LoadOptions options;
        options.check = CheckLevel::None;
        const auto before = LoadText(text, className, options).world;
        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(text.c_str()));
        const auto find = [](const pugi::xml_document& where) {
            return where.select_node("//*[@id='filled' and @isActive]").node();
        };
        const std::size_t count = LeavesNotGiven(find(document), items).size();
        for (std::size_t i = 0; i < count; ++i) {
            pugi::xml_document copy;
            copy.reset(document);
            const Leaf leaf = LeavesNotGiven(find(copy), items)[i];
            if (!IsRead(leaf.first) || !Change(leaf))
                continue;
            std::ostringstream changed;
            copy.save(changed, "", pugi::format_raw);
            const auto after = LoadText(changed.str(), className, options).world;
            ++compared;
            const auto differences = FindDifferences(*before, *after);
            EXPECT_EQ(differences.size(), 1U) << kar::ToUtf8(leaf.first) << '\n'
                                              << TextOf(differences);
            if (!differences.empty())
                EXPECT_EQ(differences[0].item, leaf.first);
        }
    }
    EXPECT_GT(compared, 100);
}

} // namespace

} // namespace karmp::documents
