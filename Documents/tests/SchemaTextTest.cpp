// The schema as texts: languages, versions, one class, and the reference that is kept in docs.
#include "KARMPDocumentSchemas.h"
#include "KARMPDocuments.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using karmp::documents::CheckText;
using karmp::documents::ClassReference;
using karmp::documents::Code;
using karmp::documents::FormatReference;
using karmp::documents::SchemaLanguage;
using karmp::documents::SchemaText;

std::string ContentOf(const char* path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void ExpectPart(const std::string& text, const std::string& part)
{
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nis not in\n" << text;
}

TEST(SchemaText, IsThereInEachLanguageForEachVersion)
{
    for (const std::wstring_view version : karmp::documents::KnownVersions()) {
        ExpectPart(SchemaText(SchemaLanguage::RelaxNgCompact, version), "element KARMPDocument");
        for (const auto language : {SchemaLanguage::RelaxNg, SchemaLanguage::Xsd}) {
            pugi::xml_document document;
            EXPECT_TRUE(document.load_string(SchemaText(language, version).c_str()));
        }
    }
}

TEST(SchemaText, IsEmptyForAnUnknownVersion)
{
    EXPECT_EQ(SchemaText(SchemaLanguage::Xsd, L"R1999.0"), "");
    EXPECT_EQ(SchemaText(SchemaLanguage::RelaxNg, L""), "");
}

TEST(SchemaText, HoldsTheItemsOfItsVersionAlone)
{
    const std::string before = SchemaText(SchemaLanguage::RelaxNgCompact, karmp::R2015x_0);
    const std::string now = SchemaText(SchemaLanguage::RelaxNgCompact);
    EXPECT_EQ(before.find("attribute isActive"), std::string::npos);
    ExpectPart(before, "attribute minvalue");
    ExpectPart(now, "attribute isActive");
    EXPECT_EQ(now.find("attribute minvalue"), std::string::npos);
    ExpectPart(before, "string \"R2015x.0\"");
    ExpectPart(now, "string \"R2018.1\"");
}

TEST(SchemaText, TellsTheMeaningOfItems)
{
    ExpectPart(SchemaText(SchemaLanguage::RelaxNgCompact), "## The mass.\n");
    ExpectPart(SchemaText(SchemaLanguage::RelaxNg), "<a:documentation>The mass.</a:documentation>");
    ExpectPart(SchemaText(SchemaLanguage::Xsd), "<xs:documentation>The mass.</xs:documentation>");
}

TEST(ClassReference, ListsWhatAClassHoldsByEitherName)
{
    const std::string text = ClassReference("Body");
    EXPECT_EQ(text.substr(0, text.find('\n')), "Body: A rigid body. Class KARMPBody.");
    ExpectPart(text, "\n  @is_fixed: one of: no, yes, expected.");
    ExpectPart(text, "\n  OutOfWorld: true or false, expected, since R2016.1.");
    ExpectPart(text, "\n    Mass: number (Mass), expected. The mass.\n");
    ExpectPart(text, "\n    Geometry: reference to KARMPGeometry, optional, repeated.");
    EXPECT_EQ(ClassReference("KARMPBody"), text);
    EXPECT_EQ(ClassReference("Wheel"), "");
    EXPECT_EQ(ClassReference(""), "");
}

TEST(ClassReference, NamesWhatCanBeSetWithItsValues)
{
    const std::string body = ClassReference("Body");
    const auto at = body.find("\nItems that can be set, ");
    ASSERT_NE(at, std::string::npos);
    const std::string items = body.substr(at);
    for (const char* const line :
         {"is_fixed: yes or no", "name: a text", "Weight/Mass: a number (Mass)",
          "Weight/COG: 3 numbers: Px, Py, Pz",
          "Position: 12 numbers: translation, rotation by columns",
          "AggregatedElements: entities or None",
          "Geometries: entities of class KARMPGeometry or None",
          "DisplacementSensor: an entity of class KARMPDisplacementSensor or None"})
        ExpectPart(items, std::string("\n  ") + line + '\n');
    EXPECT_EQ(items.find("\n  id:"), std::string::npos); // never changes
    const std::string variable = ClassReference("Variable");
    ExpectPart(variable, "\n  MinValue: a number or None\n");
    ExpectPart(variable, "\n  Type: one of: Free, Constant, Controlled\n");
}

// "karmp schema --reference > docs/format.md" brings the file up to date.
TEST(FormatReference, IsTheOneInTheDocumentation)
{
    EXPECT_TRUE(ContentOf(KARMP_FORMAT_REFERENCE) == FormatReference())
        << "docs/format.md is stale";
}

TEST(FormatReference, TellsDefaultsOfBothFormsOfAnItem)
{
    const std::string text = FormatReference();
    ExpectPart(text, "| `@is_fixed` | one of: no, yes | expected |  | no |");
    ExpectPart(text, " | expected | below R2017.0 | 0 | ");
    ExpectPart(text, " | 1, 0, 0, 0, 1, 0, 0, 0, 1 | The rotation matrix by columns. |");
}

// The class records of planar classes name spatial bases whose content they do not have.
TEST(FormatReference, TellsAllOfAClassThatLeavesOutWhatItsBaseHolds)
{
    const std::string text = FormatReference();
    ExpectPart(text, "Class `KARMPBody2D`, with all that `KARMPEntity` holds.");
    ExpectPart(text, "| `Bodies/Body2D` | reference to KARMPBody2D | optional, repeated |");
    ExpectPart(text, "Class `KARMPShapeBody`, with all that `KARMPShape2D` holds.");
    ExpectPart(text, "Class `KARMP3DRep`, with all that `KARMPShape` holds.");
}

// The class record of a layer does not tell that a layer is an interaction.
TEST(FormatReference, HasCollisionLayersAmongTheInteractions)
{
    const std::string text = FormatReference();
    const std::size_t family = text.find("\n## Interactions\n");
    ASSERT_NE(family, std::string::npos);
    const std::size_t layer = text.find("\n### CollisionLayer\n", family);
    EXPECT_LT(layer, text.find("\n## ", family + 1));
}

TEST(DocumentCheck, TakesACollisionLayerForAnInteraction)
{
    const auto messages = CheckText(
        R"(<KARMPDocument version="R2018.1"><World><Interactions>
<CollisionLayer id="l" name="l" isActive="yes"/>
</Interactions></World></KARMPDocument>)");
    EXPECT_EQ(messages.Find(Code::UnknownClass), nullptr);
    EXPECT_EQ(messages.Find(Code::WrongRegistry), nullptr);
}

TEST(DocumentCheck, KnowsTheDisplacementSensor)
{
    const auto messages = CheckText(
        R"(<KARMPDocument version="R2018.1"><World><Sensors>
<DisplacementSensor id="s" name="s" isActive="yes"><Unknown/></DisplacementSensor>
</Sensors></World></KARMPDocument>)");
    const auto* const unknown = messages.Find(Code::UnknownElement);
    ASSERT_NE(unknown, nullptr);
    EXPECT_EQ(unknown->path, "/KARMPDocument/World/Sensors/DisplacementSensor/Unknown");
}

TEST(DocumentCheck, TellsAWordThatIsNone)
{
    const auto messages = CheckText(
        R"(<KARMPDocument version="R2018.1"><World><Values>
<Boolean id="b" name="b" isActive="yes"><Value>true</Value></Boolean>
</Values></World></KARMPDocument>)");
    const auto* const fault = messages.Find(Code::InvalidValue);
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->path, "/KARMPDocument/World/Values/Boolean/Value");
    EXPECT_EQ(
        fault->text,
        "\"true\" is not known here (did you mean \"TRUE\"?); FALSE or TRUE was expected, and "
        "FALSE is read");
}

} // namespace
