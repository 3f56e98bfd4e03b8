// What every class writes and reads against its schema and its table of items.
#include "AskedNames.h"
#include "EnvironmentVariable.h"
#include "FilledEntities.h"
#include "KARMPGenericFactory.h"
#include "KARMPItems.h"
#include "KARMPSchema.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>

using karmp::ItemInfo;
using karmp::ItemKind;
using karmp::ItemPresence;
using karmp::SchemaItem;
using karmp::SchemaOf;
using karmp::Value;

namespace {

/// Classes of the factory without a list, with the reason.
const std::map<std::string, std::string> Unlisted{
    {"KARMPDiagnostic", "it has no element and stands in no document"},
};

/// Items that no entity of these tests writes, by class, or of all classes, with the reason.
const std::map<std::pair<std::string, std::string>, std::string> Unwritten{
    {{"", "Outputs"}, "written and read when the environment asks for it, decided once a process"},
    {{"KARMPScrew", "Equation"}, "the constraint of these tests' screw is no equation"},
};

/// Classes whose reader finds nothing in what they write, with the reason.
const std::map<std::string, std::string> Unread{
    {"KARMPCone", "its reader asks for the element of another class"},
};

/// Items that a reader asks another node for than the element of its class, with the reason.
const std::map<std::pair<std::string, std::string>, std::string> AskedElsewhere{
    {{"KARMPGenericEntity", "@categoryID"}, "asked for at the node that the reader is given"},
};

bool IsListed(const std::map<std::pair<std::string, std::string>, std::string>& list,
              const std::string& className, const std::string& path)
{
    return list.count({"", path}) != 0 || list.count({className, path}) != 0;
}

const SchemaItem* FindAt(const std::vector<SchemaItem>& items, std::wstring_view name,
                         std::wstring_view version)
{
    const auto found = std::find_if(items.begin(), items.end(), [&](const SchemaItem& item) {
        return (item.anyName || item.name == name) && item.Applies(version);
    });
    return found != items.end() ? &*found : nullptr;
}

/// An item by a path such as "Weight/Mass" or "Bodies/Body/@id" below an element of the schema;
/// null when some name in it is unknown at the version. `known` becomes the path in the schema.
const SchemaItem* Resolve(const SchemaItem& element, std::wstring_view path,
                          std::wstring_view version, std::string& known)
{
    const SchemaItem* item = &element;
    known.clear();
    while (item != nullptr && !path.empty()) {
        const std::size_t end = std::min(path.find(L'/'), path.size());
        const std::wstring_view name = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        const bool isAttribute = name.front() == L'@';
        item = isAttribute ? FindAt(item->attributes, name.substr(1), version)
                           : FindAt(item->elements, name, version);
        if (!known.empty())
            known += '/';
        known += item != nullptr && item->anyName ? std::string("*") : kar::ToUtf8(name);
    }
    return item;
}

/// The paths of all items at a version, "a/b/@c".
void CollectPaths(const SchemaItem& element, const std::string& path, std::wstring_view version,
                  std::map<std::string, const SchemaItem*>& paths)
{
    for (const SchemaItem& attribute : element.attributes)
        if (attribute.Applies(version))
            paths[path + '@' + kar::ToUtf8(attribute.name)] = &attribute;
    for (const SchemaItem& child : element.elements) {
        if (!child.Applies(version))
            continue;
        const std::string name = child.anyName ? "*" : kar::ToUtf8(child.name);
        paths[path + name] = &child;
        CollectPaths(child, path + name + '/', version, paths);
    }
}

class SchemaGuard : public KARMPTestFixture
{
protected:
    /// What a reader asked for, by the path in the schema; null for what the version does not have.
    using Asked = std::map<std::string, const SchemaItem*>;
    Asked Read(const std::string& className, const TestSerializer& tree, std::wstring_view version);
    void CheckWritten(const std::string& className, const TestSerializer& node,
                      const SchemaItem& item, const std::string& path, std::wstring_view version);
    std::set<std::string> m_written;
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
    EnvironmentVariable m_dumpOctets{"DUMP_OCTET_AS_UTF8", "1"};
    EnvironmentVariable m_leaveOutCurves{"DONT_SERIALIZE_CURVE", nullptr};
};

void SchemaGuard::CheckWritten(const std::string& className, const TestSerializer& node,
                               const SchemaItem& item, const std::string& path,
                               std::wstring_view version)
{
    for (int index = 0; index < static_cast<int>(node.GetAttributeCount()); ++index) {
        const std::wstring name = node.GetAttribute(index).name;
        const SchemaItem* const attribute = FindAt(item.attributes, name, version);
        EXPECT_TRUE(attribute != nullptr && attribute->isWritten)
            << className << " writes " << path << '@' << kar::ToUtf8(name);
        m_written.insert(path + '@' + kar::ToUtf8(name));
    }
    for (std::size_t index = 0; index < static_cast<std::size_t>(node.GetElementCount()); ++index) {
        const TestSerializer& child = node.Child(index);
        const std::wstring name(child.GetId());
        const SchemaItem* const element = FindAt(item.elements, name, version);
        EXPECT_TRUE(element != nullptr && element->isWritten)
            << className << " writes " << path << kar::ToUtf8(name);
        if (element == nullptr)
            continue;
        const std::string childPath =
            path + (element->anyName ? std::string("*") : kar::ToUtf8(name));
        m_written.insert(childPath);
        CheckWritten(className, child, *element, childPath + '/', version);
    }
}

// Reads a tree with an ear on it: what each path is in the schema at the version, or null.
SchemaGuard::Asked SchemaGuard::Read(const std::string& className, const TestSerializer& tree,
                                     std::wstring_view version)
{
    AskedNames names;
    const auto root = TestDeserializer::From(tree, {.versionOnEveryNode = true});
    names.Hear(*root);
    FilledEntities entities;
    entities.New(className)->Deserialize(root.get(), entities.Table());
    TakeReports();
    Asked asked;
    for (const std::wstring& path : names.Paths()) {
        std::wstring_view below = path;
        below.remove_prefix(below.find_first_not_of(L'/'));
        // The class's own element.
        if (below.find(L'/') == std::wstring_view::npos)
            continue;
        below.remove_prefix(below.find(L'/') + 1);
        std::string itemPath;
        const SchemaItem* const item = Resolve(*SchemaOf(className), below, version, itemPath);
        asked.emplace(item != nullptr ? itemPath : kar::ToUtf8(below), item);
    }
    return asked;
}

TEST_F(SchemaGuard, EveryClassHasAListOrAReason)
{
    for (const std::string& name : MadeClasses()) {
        const SchemaItem* const schema = SchemaOf(name);
        EXPECT_EQ(schema == nullptr, Unlisted.count(name) != 0) << name;
        EXPECT_TRUE(schema == nullptr || !schema->name.empty()) << name;
    }
}

TEST_F(SchemaGuard, WhatIsWrittenIsKnownAndWhatIsKnownIsWritten)
{
    for (const std::string& name : MadeClasses()) {
        const SchemaItem* const schema = SchemaOf(name);
        if (schema == nullptr)
            continue;
        for (const std::wstring_view version : AllVersions) {
            m_written.clear();
            for (const Filling filling : {Filling::Nothing, Filling::Full, Filling::Other}) {
                FilledEntities entities;
                TestSerializer root(version);
                entities.Make(name, filling)->Serialize(&root);
                TakeReports();
                ASSERT_EQ(root.GetElementCount(), 1) << name;
                EXPECT_EQ(root.Child(0).GetId(), schema->name) << name;
                CheckWritten(name, root.Child(0), *schema, {}, version);
            }
            std::map<std::string, const SchemaItem*> known;
            CollectPaths(*schema, {}, version, known);
            for (const auto& [path, item] : known) {
                const std::string first = path.substr(0, path.find_first_of("/@", 1));
                if (item->isWritten && m_written.count(path) == 0 &&
                    !IsListed(Unwritten, name, first))
                    ADD_FAILURE() << name << " never writes " << path << " at "
                                  << kar::ToUtf8(version);
            }
        }
    }
}

TEST_F(SchemaGuard, WhatIsKnownIsAskedForByTheReader)
{
    for (const std::string& name : MadeClasses()) {
        const SchemaItem* const schema = SchemaOf(name);
        if (schema == nullptr || Unread.count(name) != 0)
            continue;
        for (const std::wstring_view version : AllVersions) {
            std::map<std::string, const SchemaItem*> known;
            CollectPaths(*schema, {}, version, known);
            for (const Filling filling : {Filling::Full, Filling::Other}) {
                FilledEntities full;
                TestSerializer tree(version);
                full.Make(name, filling)->Serialize(&tree);
                TakeReports();
                m_written.clear();
                CheckWritten(name, tree.Child(0), *schema, {}, version);
                const Asked asked = Read(name, tree, version);
                for (const std::string& path : m_written) {
                    const SchemaItem& item = *known.at(path);
                    const bool isReferenceName = path.find("/@name") != std::string::npos;
                    if (item.isRead && !item.anyName && asked.count(path) == 0 &&
                        !isReferenceName && !IsListed(AskedElsewhere, name, path))
                        ADD_FAILURE() << name << " does not ask for " << path << " at "
                                      << kar::ToUtf8(version);
                }
            }
        }
    }
}

TEST_F(SchemaGuard, WhatTheReaderAsksForIsKnownAtTheVersion)
{
    for (const std::string& name : MadeClasses()) {
        if (SchemaOf(name) == nullptr || Unread.count(name) != 0)
            continue;
        for (const std::wstring_view version : AllVersions) {
            FilledEntities full;
            TestSerializer tree(version);
            full.Make(name, Filling::Full)->Serialize(&tree);
            TakeReports();
            for (const auto& [path, item] : Read(name, tree, version))
                if (item == nullptr)
                    ADD_FAILURE() << name << " asks for " << path << " at " << kar::ToUtf8(version)
                                  << ", which is unknown";
                else if (!item->isRead)
                    ADD_FAILURE() << name << " asks for " << path << ", which is written only";
        }
    }
}

TEST_F(SchemaGuard, NoElementHoldsMoreItemsThanACheckCanMark)
{
    for (const std::string& name : MadeClasses()) {
        const SchemaItem* const schema = SchemaOf(name);
        EXPECT_TRUE(schema == nullptr ||
                    (schema->elements.size() <= 64 && schema->attributes.size() <= 64))
            << name;
    }
}

/// The names of the items that a class or one derived from it has.
std::set<std::wstring_view> ItemNamesBelow(std::string_view className)
{
    std::set<std::wstring_view> itemNames;
    for (const ItemInfo& item : karmp::ItemsOf(className))
        itemNames.insert(item.name);
    for (const std::string& name : MadeClasses()) {
        QOBSharedHandle<KARMPEntity> entity;
        if (KARFailed(KARMPFactory::Create(name, entity)))
            continue;
        const auto* info = &entity->getClassInfo();
        while (info != nullptr && info->getName() != className)
            info = info->getParent();
        if (info == nullptr)
            continue;
        for (const ItemInfo& item : karmp::ItemsOf(name))
            itemNames.insert(item.name);
    }
    return itemNames;
}

TEST_F(SchemaGuard, ALinkOfTwoSidesIsNamedByBoth)
{
    for (const std::string& name : MadeClasses()) {
        for (const ItemInfo& row : karmp::ItemsOf(name)) {
            std::wstringstream others{std::wstring(row.otherSide)};
            for (std::wstring other; others >> other;)
                EXPECT_EQ(ItemNamesBelow(row.target).count(other), 1U)
                    << name << '.' << kar::ToUtf8(row.name) << " names " << kar::ToUtf8(other)
                    << " of " << row.target;
        }
    }
}

TEST_F(SchemaGuard, ItemsOfAClassHaveNamesOfTheirOwnAndASentence)
{
    // Two elements of a sketch function are told apart by their order; the components of a force
    // and of a torque by their groups.
    const std::set<std::wstring_view> repeated{L"Direction", L"Vx", L"Vy", L"Vz"};
    for (const std::string& name : MadeClasses()) {
        std::set<std::wstring_view> names;
        std::set<std::wstring> paths;
        for (const ItemInfo& row : karmp::ItemsOf(name)) {
            EXPECT_TRUE(names.insert(row.name).second || repeated.contains(row.name))
                << name << ' ' << kar::ToUtf8(row.path);
            EXPECT_TRUE(paths.insert(row.path).second) << name << ' ' << kar::ToUtf8(row.path);
            EXPECT_FALSE(row.says.empty()) << name << ' ' << kar::ToUtf8(row.path);
        }
    }
}

/// True for equal values; doubles may differ by the rounding of a direction that is normalised.
bool AreEqual(const Value& left, const Value& right)
{
    const auto* const first = std::get_if<karmp::NumberArray>(&left);
    const auto* const second = std::get_if<karmp::NumberArray>(&right);
    if (first == nullptr || second == nullptr)
        return left == right;
    return std::equal(first->begin(), first->end(), second->begin(), second->end(),
                      [](double a, double b) { return std::abs(a - b) <= 1e-15; });
}

/// Items for which the tests have no value to set, with the reason.
const std::map<std::pair<std::string, std::string>, std::string> NothingToSet{
    {{"", "Outputs"}, "no entity of these tests has one"},
};

TEST_F(SchemaGuard, AnItemThatIsSetIsThere)
{
    for (const std::string& name : MadeClasses()) {
        for (const ItemInfo& row : karmp::ItemsOf(name)) {
            SCOPED_TRACE(name + ' ' + kar::ToUtf8(row.path));
            FilledEntities entities;
            row.Get(*entities.New(name));
            TakeReports();
            bool isSet = false;
            for (const Filling filling : {Filling::Full, Filling::Other}) {
                FilledEntities others;
                const Value value = row.Get(*others.Make(name, filling));
                TakeReports();
                const bool isNone = value.index() == 0;
                const auto* const list =
                    std::get_if<std::vector<QOBSharedHandle<KARMPEntity>>>(&value);
                if (isNone || (list != nullptr && list->empty()))
                    continue;
                const auto target = others.New(name);
                if (!row.readOnly.empty()) {
                    EXPECT_TRUE(KARFailed(row.Set(*target, value)));
                    isSet = true;
                    continue;
                }
                EXPECT_FALSE(KARFailed(row.Set(*target, value)));
                EXPECT_TRUE(AreEqual(row.Get(*target), value));
                TakeReports();
                isSet = true;
            }
            EXPECT_TRUE(isSet || !row.readOnly.empty() ||
                        IsListed(NothingToSet, name, kar::ToUtf8(row.path)));
        }
    }
}

} // namespace
