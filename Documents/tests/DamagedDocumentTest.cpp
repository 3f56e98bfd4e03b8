// Every single damage to a document: what could be read is there, and nothing was lost in silence.
#include "KARMPDocuments.h"
#include "KARMPWorld.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using karmp::documents::LoadResult;
using karmp::documents::LoadText;

/// Two bodies on a joint with a constraint, and all that hangs on them.
constexpr const char* Reference = KARMP_EXAMPLE_DOCUMENTS "/slider-crank.xml";

std::string TextOf(const pugi::xml_document& document)
{
    std::ostringstream stream;
    document.save(stream, "", pugi::format_raw);
    return stream.str();
}

std::string SavedForm(const LoadResult& loaded)
{
    std::string text;
    if (loaded.world)
        EXPECT_FALSE(karmp::documents::SaveText(loaded.world, text).HasErrors());
    return text;
}

class DamagedDocument : public ::testing::Test
{
protected:
    DamagedDocument()
    {
        EXPECT_TRUE(m_reference.load_file(Reference));
        const LoadResult loaded = LoadText(TextOf(m_reference));
        EXPECT_TRUE(loaded.diagnostics.items.empty());
        m_sound = SavedForm(loaded);
    }

    /// The elements below the root, in document order.
    static std::vector<pugi::xml_node> ElementsOf(const pugi::xml_document& document)
    {
        std::vector<pugi::xml_node> elements;
        struct Walker : pugi::xml_tree_walker
        {
            explicit Walker(std::vector<pugi::xml_node>& found) : m_found(found) {}
            bool for_each(pugi::xml_node& node) override
            {
                if (node.type() == pugi::node_element && depth() > 0)
                    m_found.push_back(node);
                return true;
            }
            std::vector<pugi::xml_node>& m_found;
        } walker(elements);
        pugi::xml_node root = document;
        root.traverse(walker);
        return elements;
    }

    /// Damages each element in turn and loads what is left.
    void ForEachElement(const std::function<bool(pugi::xml_node)>& damage)
    {
        const std::size_t count = ElementsOf(m_reference).size();
        ASSERT_GT(count, 100U);
        std::size_t damaged = 0;
        for (std::size_t index = 0; index < count; ++index) {
            pugi::xml_document copy;
            copy.reset(m_reference);
            const pugi::xml_node element = ElementsOf(copy)[index];
            const std::string path = element.path();
            if (!damage(element))
                continue;
            ++damaged;
            ExpectNothingLostInSilence(TextOf(copy), path);
        }
        EXPECT_GT(damaged, 0U);
    }

    void ExpectNothingLostInSilence(const std::string& text, const std::string& path) const
    {
        const LoadResult loaded = LoadText(text);
        if (!loaded.world) {
            EXPECT_TRUE(loaded.diagnostics.HasErrors()) << path;
            return;
        }
        if (loaded.diagnostics.items.empty())
            EXPECT_EQ(SavedForm(loaded), m_sound) << path;
    }

    pugi::xml_document m_reference;
    std::string m_sound;
};

TEST_F(DamagedDocument, WithoutOneElementTellsWhatIsMissing)
{
    ForEachElement([](pugi::xml_node element) { return element.parent().remove_child(element); });
}

TEST_F(DamagedDocument, WithOneElementTwiceTellsSo)
{
    ForEachElement([](pugi::xml_node element) {
        return static_cast<bool>(element.parent().insert_copy_after(element, element));
    });
}

TEST_F(DamagedDocument, WithOneElementRenamedTellsSo)
{
    ForEachElement([](pugi::xml_node element) { return element.set_name("Renamed"); });
}

TEST_F(DamagedDocument, WithoutOneAttributeTellsWhatIsMissing)
{
    for (const char* name : {"id", "name", "isActive", "is_fixed", "bodyOrientation",
                             "linear_tolerance", "angular_tolerance"}) {
        SCOPED_TRACE(name);
        ForEachElement([name](pugi::xml_node element) {
            // The name of a reference is for readers of the text only.
            const bool isEntity = element.attribute("isActive") || element.attribute("is_fixed");
            if (std::string(name) == "name" && !isEntity)
                return false;
            return element.remove_attribute(name);
        });
    }
}

TEST_F(DamagedDocument, WithOneAttributeRenamedTellsSo)
{
    ForEachElement([](pugi::xml_node element) {
        pugi::xml_attribute last = element.last_attribute();
        return last && last.set_name("renamed");
    });
}

TEST_F(DamagedDocument, WithOneIdentifierTwiceTellsSo)
{
    ForEachElement([](pugi::xml_node element) {
        const pugi::xml_attribute identifier = element.attribute("id");
        return identifier && element.attribute("isActive") &&
               std::string(identifier.value()) != "Rod" &&
               pugi::xml_attribute(identifier).set_value("Rod");
    });
}

TEST_F(DamagedDocument, WithOneReferenceToNothingTellsSo)
{
    ForEachElement([](pugi::xml_node element) {
        pugi::xml_attribute identifier = element.attribute("id");
        return identifier && !element.attribute("isActive") && identifier.set_value("nobody");
    });
}

TEST_F(DamagedDocument, WithOneReferenceToAWrongClassKeepsTheRest)
{
    ForEachElement([](pugi::xml_node element) {
        pugi::xml_attribute identifier = element.attribute("id");
        // A variable fits where a constraint refers to variables, and nowhere else.
        return identifier && !element.attribute("isActive") &&
               std::string(element.name()) != "Variable" &&
               std::string(element.name()) != "GlobalTime" && identifier.set_value("Crank angle");
    });
}

TEST_F(DamagedDocument, WithAnyTextInsteadOfANumberIsReported)
{
    ForEachElement([](pugi::xml_node element) {
        const bool isLeaf = element.first_child() &&
                            element.first_child() == element.last_child() &&
                            element.first_child().type() == pugi::node_pcdata;
        return isLeaf && element.text().set("?");
    });
}

} // namespace
