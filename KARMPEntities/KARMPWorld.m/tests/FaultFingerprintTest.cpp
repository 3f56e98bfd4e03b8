// What every class answers and reports when its tree cannot be written in full, or is damaged when
// it is read, as texts that are kept in golden, one line a fault:
//
//     missing /Body/Weight/Mass: 0 [KARMPBody.cpp] ~Body/Weight/Mass
//
// that is the fault, the status, the sources that report with the number of their reports, and how
// the tree that is written then differs from that of an unharmed entity: "-" items are missing, "+"
// items are added, "=" items have the value that they had before the reading, "~" items have other
// values. What is read into has all values set and no links. Of an item that is missing or added
// with its subtree only the item is named. A fault of reading that changes nothing has no line.
#include "EnvironmentVariable.h"
#include "FilledEntities.h"
#include "GoldenFile.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "KARMPVersions.h"
#include "KARTextConversion.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace {

std::string PrintStatus(KARStatus status)
{
    switch (status) {
    case KARFailure:
        return "failure";
    case KARUnexpected:
        return "unexpected";
    case KAROutOfMemory:
        return "out of memory";
    default:
        return std::to_string(status);
    }
}

/// The sources of reports with their numbers, "[A.cpp x2, B.cpp]"; empty without reports.
std::string PrintReports(const std::map<std::string, int>& reports)
{
    std::string text;
    for (const auto& [file, count] : reports)
        text += (text.empty() ? " [" : ", ") + file +
                (count > 1 ? " x" + std::to_string(count) : std::string());
    return text.empty() ? text : text + "]";
}

/// The values of a tree by their paths; elements without a value are there as well.
using Items = std::map<std::string, std::string>;

void AddItems(const TestSerializer& node, const std::string& path, Items& items)
{
    using Variable = KARMPSerializationVariable;
    const auto print = [](const Variable& variable) {
        std::ostringstream text;
        text.precision(17);
        if (variable.type == Variable::Double)
            text << variable.value.doubleValue;
        else if (variable.type == Variable::Int)
            text << variable.value.intValue;
        else if (variable.type == Variable::Bool)
            text << std::boolalpha << variable.value.boolValue;
        else if (variable.type == Variable::String)
            text << '"' << kar::ToUtf8(variable.value.stringValue);
        return text.str();
    };
    items[path] = print(node.GetVariable());
    for (int index = 0; index < static_cast<int>(node.GetAttributeCount()); ++index) {
        const Variable attribute = node.GetAttribute(index);
        items[path + "/@" + kar::ToUtf8(attribute.name)] = print(attribute);
    }
    std::map<std::string, int> numbers;
    for (std::size_t index = 0; index < node.GetElementCount(); ++index) {
        const std::string name = kar::ToUtf8(node.Child(index).GetId());
        const int number = numbers[name]++;
        std::string child = path.empty() ? name : path + "/" + name;
        if (number > 0)
            child += "[" + std::to_string(number) + "]";
        AddItems(node.Child(index), child, items);
    }
}

Items ItemsOf(const TestSerializer& root)
{
    Items items;
    AddItems(root, {}, items);
    return items;
}

/// True when the item's element is one that `items` does not have either.
bool IsBelowMissing(const std::string& path, const Items& items)
{
    const std::size_t slash = path.rfind('/');
    return slash != std::string::npos && !items.contains(path.substr(0, slash));
}

/// How a tree differs from the one that it should be.
std::string Difference(const Items& whole, const Items& items, const Items& former = {})
{
    std::string text;
    for (const auto& [path, value] : whole) {
        const auto found = items.find(path);
        if (found != items.end() && found->second != value) {
            const auto before = former.find(path);
            const bool kept = before != former.end() && before->second == found->second;
            text += (kept ? " =" : " ~") + path;
        }
        if (found == items.end() && !IsBelowMissing(path, items))
            text += " -" + path;
    }
    for (const auto& [path, value] : items)
        if (!whole.contains(path) && !IsBelowMissing(path, whole))
            text += " +" + path;
    return text;
}

/// The faults of one class at one version.
class FaultFingerprint : public KARMPTestFixture
{
protected:
    /// All faults of a class at a version, a line each.
    std::string Faults(const std::string& name, std::wstring_view version);
    /// The lines without those of reading that tell what an unharmed tree gives, too.
    std::string WithEffect(const std::string& faults) const;

private:
    /// Claims the reports and prints them.
    std::string Reports();
    std::string WritingFaults(std::wstring_view version);
    std::string ReadingFaults(const TestSerializer& tree);
    std::string TableFaults(const TestSerializer& tree);
    std::string MissingTrees(std::wstring_view version);
    /// Reads a tree into a new entity; the answer without the difference to the unharmed one.
    std::string Answer(const KARMPDeserializer* node, const KARMPEntityTable& table,
                       FilledEntities& entities, Items& items);
    /// Reads a tree with a fault.
    std::string Damaged(const KARMPDeserializer* node);

    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
    EnvironmentVariable dumpOctets{"DUMP_OCTET_AS_UTF8", "1"};
    EnvironmentVariable leaveOutCurves{"DONT_SERIALIZE_CURVE", nullptr};
    std::string m_name;
    std::wstring_view m_version;
    std::string m_answer; // to an unharmed tree
    Items m_unharmed;
    Items m_former; // of what is read into
};

std::string FaultFingerprint::Reports()
{
    std::map<std::string, int> reports;
    for (const std::string& location : UnclaimedReports()) {
        const std::size_t start = location.rfind('/') + 1;
        ++reports[location.substr(start, location.rfind(':') - start)];
    }
    TakeReports();
    return PrintReports(reports);
}

std::string FaultFingerprint::WritingFaults(std::wstring_view version)
{
    FilledEntities entities;
    const auto entity = entities.Make(m_name, Filling::Full);
    std::string text;
    Items whole;
    ForEachFailedCreation(version, [&](TestSerializer& root, std::size_t failing) {
        const KARStatus status = entity->Serialize(&root);
        const Items items = ItemsOf(root);
        if (failing == 0)
            whole = items;
        text += "creation " + std::to_string(failing) + ": " + PrintStatus(status) + Reports() +
                Difference(whole, items) + "\n";
    });
    text += "no serializer: " + PrintStatus(entity->Serialize(nullptr)) + Reports() + "\n";
    return text;
}

std::string FaultFingerprint::Answer(const KARMPDeserializer* node, const KARMPEntityTable& table,
                                     FilledEntities& entities, Items& items)
{
    const auto entity = entities.Make(m_name, Filling::Values);
    std::string text;
    try {
        text = PrintStatus(entity->Deserialize(node, table));
    } catch (const QOBEInvalidCast&) {
        text = "wrong cast";
    }
    text += Reports();
    TestSerializer root(m_version);
    const KARStatus status = entity->Serialize(&root);
    const std::string reports = Reports();
    if (KARFailed(status) || !reports.empty())
        text += ", written with " + PrintStatus(status) + reports;
    items = ItemsOf(root);
    return text;
}

std::string FaultFingerprint::Damaged(const KARMPDeserializer* node)
{
    FilledEntities entities;
    Items items;
    const std::string answer = Answer(node, entities.Table(), entities, items);
    return answer + Difference(m_unharmed, items, m_former) + "\n";
}

std::string FaultFingerprint::ReadingFaults(const TestSerializer& tree)
{
    const auto line = [this](const char* fault, const std::wstring& path, const auto& root) {
        return fault + kar::ToUtf8(path) + ": " + Damaged(&root);
    };
    std::string text;
    const TestTreeForm form{.versionOnEveryNode = true};
    ForEachMissingItem(tree, form, [&](TestDeserializer& root, const std::wstring& path) {
        text += line("missing ", path, root);
    });
    // A text among numbers, and a number among texts.
    ForEachSpoiltValue(tree, form, [&](TestDeserializer& root, const std::wstring& path) {
        text += line("of another kind ", path, root);
    });
    const TestTreeForm texts{.asText = true, .versionOnEveryNode = true};
    ForEachSpoiltValue(tree, texts, [&](TestDeserializer& root, const std::wstring& path) {
        text += line("as \"?\" ", path, root);
    });
    return text;
}

std::string FaultFingerprint::TableFaults(const TestSerializer& tree)
{
    const auto node = TestDeserializer::From(tree, {.versionOnEveryNode = true});
    const QOBSharedHandle<KARMPEntity> other(KARMPConstant::create(L"other"));
    std::string text;
    const auto add = [&](const char* fault, const auto& fill) {
        FilledEntities entities;
        KARMPEntityTable table;
        fill(entities, table);
        Items items;
        const std::string answer = Answer(node.get(), table, entities, items);
        text += fault + (": " + answer) + Difference(m_unharmed, items, m_former) + "\n";
    };
    add(
        "references to nothing", [](const auto&, auto&) {});
    add(
        "references to null handles",
        [](const auto& entities, auto& table) { entities.FillTable(table, {}); });
    add("references to another class",
        [&other](const auto& entities, auto& table) { entities.FillTable(table, other); });
    return text;
}

std::string FaultFingerprint::MissingTrees(std::wstring_view version)
{
    TestDeserializer empty;
    empty.At(version);
    TestDeserializer other;
    other.At(version).Add(L"Other").At(version).Attribute(L"id", L"other");
    return "no deserializer: " + Damaged(nullptr) + "no element: " + Damaged(&empty) +
           "another element: " + Damaged(&other);
}

std::string FaultFingerprint::Faults(const std::string& name, std::wstring_view version)
{
    m_name = name;
    m_version = version;
    std::string text = WritingFaults(version);
    FilledEntities entities;
    TestSerializer tree(version);
    entities.Make(name, Filling::Full)->Serialize(&tree);
    TakeReports();
    const auto node = TestDeserializer::From(tree, {.versionOnEveryNode = true});
    TestSerializer former(version);
    entities.Make(name, Filling::Values)->Serialize(&former);
    TakeReports();
    m_former = ItemsOf(former);
    FilledEntities linked;
    m_answer = Answer(node.get(), linked.Table(), linked, m_unharmed);
    text += "unharmed: " + m_answer + "\n";
    return text + ReadingFaults(tree) + TableFaults(tree) + MissingTrees(version);
}

std::string FaultFingerprint::WithEffect(const std::string& faults) const
{
    std::string text;
    std::istringstream lines(faults);
    for (std::string line; std::getline(lines, line);) {
        const bool ofReading = line.find(" /") < line.find(':');
        if (!ofReading || !line.ends_with(": " + m_answer))
            text += line + "\n";
    }
    return text;
}

/// The lines of a text that are not among those of another one.
std::string OnlyIn(const std::string& text, const std::string& other)
{
    std::set<std::string> known;
    std::istringstream others(other);
    for (std::string line; std::getline(others, line);)
        known.insert(line);
    std::string only;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (!known.contains(line))
            only += line + "\n";
    return only;
}

TEST_F(FaultFingerprint, OfEachClassIsTheOneThatIsKept)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        const std::string early = Faults(name, karmp::R2015x_0);
        const std::string now = Faults(name, karmp::CurrentVersion);
        const std::string text = "== R2018.1\n" + WithEffect(now) +
                                 "== R2015x.0, where it differs\n" + OnlyIn(early, now);
        ExpectGolden(name + ".faults", text);
    }
}

} // namespace
