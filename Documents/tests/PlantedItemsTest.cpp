// A mistake in each item of each class, at all versions, and variants of documents that mean the
// same as they.
#include "FilledWorld.h"
#include "KARMPDocuments.h"
#include "KARMPSchema.h"
#include "KARMPSerializationServices.h"
#include "KARTextConversion.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace karmp::documents {

namespace {

/// The text of an item in a document and where a finding about it points to.
struct Leaf
{
    std::string path;
    const SchemaItem* item;
    std::size_t offset;
    std::size_t size;
    std::size_t place;
};

struct Mistake
{
    const char* text;
    Code code;
};

const std::vector<Mistake>& MistakesOf(ItemKind kind)
{
    static const std::vector<Mistake> numbers{
        {"1.2.3", Code::InvalidValue}, {"abc", Code::InvalidValue},   {"0x1F", Code::InvalidValue},
        {"1 2", Code::InvalidValue},   {"1'000", Code::InvalidValue}, {"1e999", Code::InvalidValue},
        {"12kg", Code::InvalidValue},  {"1e-999", Code::TooSmall}};
    static const std::vector<Mistake> integers{{"1.5", Code::InvalidValue},
                                               {"two", Code::InvalidValue},
                                               {"0x1", Code::InvalidValue},
                                               {"99999999999", Code::InvalidValue}};
    static const std::vector<Mistake> codes{{"1.5", Code::InvalidValue},
                                            {"Free", Code::InvalidValue},
                                            {"999", Code::UnknownNumber},
                                            {"-1", Code::UnknownNumber}};
    static const std::vector<Mistake> flags{
        {"True", Code::InvalidValue}, {"on", Code::InvalidValue}, {"2", Code::InvalidValue}};
    static const std::vector<Mistake> words{{"Nonsense", Code::InvalidValue},
                                            {"0", Code::InvalidValue}};
    static const std::vector<Mistake> none;
    switch (kind) {
    case ItemKind::Number:
        return numbers;
    case ItemKind::Integer:
        return integers;
    case ItemKind::Code:
        return codes;
    case ItemKind::Flag:
        return flags;
    case ItemKind::Word:
        return words;
    default:
        return none;
    }
}

const SchemaItem* Find(const std::vector<SchemaItem>& items, const char* name,
                       const std::wstring& version)
{
    const std::wstring wide = kar::ToWide(name);
    for (const SchemaItem& item : items)
        if ((item.name == wide || item.anyName) && item.Applies(version))
            return &item;
    return nullptr;
}

void Collect(const std::string& text, const pugi::xml_node& node, const SchemaItem& item,
             const std::wstring& version, std::vector<Leaf>& leaves)
{
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const SchemaItem* const found = Find(item.attributes, attribute.name(), version);
        if (found == nullptr || MistakesOf(found->kind).empty())
            continue;
        const std::string start = std::string(" ") + attribute.name() + "=\"";
        const std::size_t at = text.find(start, static_cast<std::size_t>(node.offset_debug()));
        leaves.push_back({node.path() + "/@" + attribute.name(), found, at + start.size(),
                          std::string(attribute.value()).size(), at + 1});
    }
    for (const pugi::xml_node child : node.children()) {
        const SchemaItem* const found = Find(item.elements, child.name(), version);
        if (found == nullptr)
            continue;
        const pugi::xml_node value = child.first_child();
        if (value.type() == pugi::node_pcdata && !MistakesOf(found->kind).empty()) {
            const auto at = static_cast<std::size_t>(value.offset_debug());
            leaves.push_back({child.path(), found, at, std::string(value.value()).size(), at});
        }
        Collect(text, child, *found, version, leaves);
    }
}

std::size_t CharactersIn(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(),
        [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::string AllOf(const Diagnostics& found)
{
    std::string all;
    for (const Diagnostic& item : found.items)
        all += Format(item) + '\n';
    return all;
}

// Plants the next mistake of its kind into each item of the entities of a class and gives their
// number.
std::size_t PlantIn(const std::string& className, const std::wstring& version, std::size_t& turn)
{
    const FilledWorld filled(className);
    SaveOptions save;
    save.version = version;
    save.check = false;
    std::string text;
    EXPECT_FALSE(SaveText(filled.world, text, save).HasErrors()) << className;
    pugi::xml_document parsed;
    EXPECT_TRUE(parsed.load_string(text.c_str()));
    const SchemaItem* const schema = SchemaOf(className);
    if (schema == nullptr || schema->name.empty())
        return 0;
    std::vector<Leaf> leaves;
    for (const pugi::xml_node list : parsed.document_element().child("World").children()) {
        const pugi::xml_node entity = list.child(kar::ToUtf8(schema->name).c_str());
        if (entity && leaves.empty())
            Collect(text, entity, *schema, version, leaves);
    }
    const Diagnostics before = CheckText(text, "x.xml", {}, CheckLevel::Form);
    std::set<std::string> done;
    std::size_t count = 0;
    for (const Leaf& leaf : leaves) {
        if (!done.insert(leaf.path).second)
            continue;
        const std::vector<Mistake>& mistakes = MistakesOf(leaf.item->kind);
        const Mistake& mistake = mistakes[turn++ % mistakes.size()];
        std::string planted = text;
        planted.replace(leaf.offset, leaf.size, mistake.text);
        const Diagnostics found = CheckText(planted, "x.xml", {}, CheckLevel::Form);
        const std::string above = text.substr(0, leaf.place);
        const auto line =
            static_cast<std::size_t>(std::count(above.begin(), above.end(), '\n')) + 1;
        const std::size_t column = CharactersIn(above.substr(above.rfind('\n') + 1)) + 1;
        const bool isTold =
            std::any_of(found.items.begin(), found.items.end(), [&](const Diagnostic& item) {
                return item.code == mistake.code && item.line == line && item.column == column;
            });
        EXPECT_TRUE(isTold && found.items.size() == before.items.size() + 1)
            << className << ' ' << leaf.path << " = " << mistake.text << " at " << line << ':'
            << column << '\n'
            << AllOf(found);
        ++count;
    }
    return count;
}

TEST(PlantedItems, OfAllClassesAreFoundAtTheCurrentVersion)
{
    std::size_t turn = 0;
    std::size_t count = 0;
    for (const std::string& className : MadeClasses())
        count += PlantIn(className, std::wstring(CurrentVersion), turn);
    EXPECT_GE(count, 300U);
}

TEST(PlantedItems, OfAFewClassesAreFoundAtAllVersions)
{
    std::size_t turn = 5;
    std::size_t count = 0;
    for (const std::wstring_view version : KnownVersions())
        for (const char* const className :
             {"KARMPBody", "KARMPVariable", "KARMPConstant", "KARMPRevolute", "KARMPDistance"})
            count += PlantIn(className, std::wstring(version), turn);
    EXPECT_GE(count, 200U);
}

/// Documents that mean the same as another one.
class SoundVariant : public ::testing::Test
{
protected:
    /// Checks a variant of each example.
    static void ExpectNoFindings(const std::function<std::string(std::string)>& change)
    {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS)) {
            if (entry.path().extension() != ".xml")
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string text(std::istreambuf_iterator<char>(file), {});
            const std::string changed = change(text);
            EXPECT_NE(changed, text) << entry.path();
            LoadOptions options;
            options.check = CheckLevel::Mechanism;
            const Diagnostics found = LoadText(changed, "x.xml", options).diagnostics;
            EXPECT_TRUE(found.items.empty()) << entry.path() << '\n' << AllOf(found);
            ++count;
        }
        EXPECT_GE(count, 11U);
    }

    static std::string Replaced(std::string text, const std::string& part, const std::string& other)
    {
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + other.size()))
            text.replace(at, part.size(), other);
        return text;
    }

    static std::string Rewritten(const std::string& text, unsigned flags,
                                 const std::function<void(pugi::xml_node)>& change = {})
    {
        pugi::xml_document document;
        EXPECT_TRUE(document.load_string(text.c_str()));
        struct Walker : pugi::xml_tree_walker
        {
            bool for_each(pugi::xml_node& node) override
            {
                if (node.type() == pugi::node_element)
                    elements.push_back(node);
                return true;
            }
            std::vector<pugi::xml_node> elements;
        } walker;
        document.traverse(walker);
        if (change)
            for (const pugi::xml_node node : walker.elements)
                change(node);
        std::ostringstream stream;
        document.save(stream, " ", flags);
        return stream.str();
    }
};

TEST_F(SoundVariant, WithOtherLineEndsGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) { return Replaced(text, "\n", "\r\n"); });
}

TEST_F(SoundVariant, WithoutIndentationGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) { return Rewritten(text, pugi::format_raw); });
}

TEST_F(SoundVariant, WithAttributesOnLinesOfTheirOwnGivesNoFinding)
{
    ExpectNoFindings(
        [](const std::string& text) { return Rewritten(text, pugi::format_indent_attributes); });
}

TEST_F(SoundVariant, InSingleQuotesGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Rewritten(text, pugi::format_raw | pugi::format_attribute_single_quote);
    });
}

TEST_F(SoundVariant, WithAMarkOfItsByteOrderGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) { return "\xEF\xBB\xBF" + text; });
}

TEST_F(SoundVariant, WithoutADeclarationGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) { return text.substr(text.find("<KARMP")); });
}

TEST_F(SoundVariant, WithCommentsGivesNoFinding)
{
    ExpectNoFindings(
        [](const std::string& text) { return Replaced(text, ">\n", "><!-- </World> & < -->\n"); });
}

TEST_F(SoundVariant, WithBlanksAroundNumbersGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Replaced(Replaced(text, "<Mass>", "<Mass>\n "), "</Mass>", "\t</Mass>");
    });
}

TEST_F(SoundVariant, WithOtherFormsOfNumbersGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Replaced(Replaced(text, "<Px>0<", "<Px>+0.000e0<"), "<Vx>0<", "<Vx>.0E+5<");
    });
}

TEST_F(SoundVariant, WithOtherFormsOfFlagsGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Replaced(Replaced(text, ">false<", ">0<"), ">true<", ">YES<");
    });
}

TEST_F(SoundVariant, WithoutNamesOfReferencesGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Rewritten(
            text, pugi::format_raw,
            [](pugi::xml_node node) {
                if (!node.attribute("isActive") && node.attribute("id"))
                    node.remove_attribute("name");
            });
    });
}

TEST_F(SoundVariant, WithAttributesInAnotherOrderGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Rewritten(
            text, pugi::format_raw,
            [](pugi::xml_node node) {
                if (const pugi::xml_attribute last = node.last_attribute()) {
                    node.prepend_copy(last);
                    node.remove_attribute(node.last_attribute());
                }
            });
    });
}

TEST_F(SoundVariant, WithElementsOfEntitiesInAnotherOrderGivesNoFinding)
{
    ExpectNoFindings([](const std::string& text) {
        return Rewritten(
            text, pugi::format_raw,
            [](pugi::xml_node node) {
                if (node.attribute("isActive") && node.last_child() != node.first_child())
                    node.prepend_move(node.last_child());
            });
    });
}

TEST(FindingsReference, IsTheOneInTheDocumentation)
{
    std::ifstream file(KARMP_FINDINGS_REFERENCE, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_TRUE(text == FindingsReference()) << "docs/findings.md is stale";
}

TEST(FindingsReference, HasEachCodeOnceInItsPlace)
{
    std::set<std::string_view> texts;
    for (std::size_t index = 0; index < Findings().size(); ++index) {
        const Finding& finding = Findings()[index];
        EXPECT_EQ(static_cast<std::size_t>(finding.code), index) << finding.text;
        EXPECT_TRUE(texts.insert(finding.text).second) << finding.text;
        EXPECT_EQ(FindCode(finding.text), finding.code);
        EXPECT_FALSE(finding.says.empty() || finding.cause.empty() || finding.cure.empty());
    }
    EXPECT_EQ(Findings().back().code, Code::Failed);
    EXPECT_FALSE(FindCode("no-such-code"));
}

} // namespace

} // namespace karmp::documents
