// Builds the tree of a document from XML.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPMessages.h"
#include "KARMPNodeArena.h"
#include "KARMPRepeatedTexts.h"
#include "KARMPSourceText.h"
#include "KARMPTextEscapes.h"

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// The parsed form goes away while the tree is built, so that never both are whole in memory.
class TreeBuilder
{
public:
    /// Parses a file into a document.
    static Document ReadFile(const std::filesystem::path& path, const Limits& limits);
    /// Parses a text into a document.
    static Document ReadText(std::string text, std::string name, const Limits& limits);

private:
    /// An element that is being read.
    struct Level
    {
        pugi::xml_node source;
        pugi::xml_node next;
        KARMPDocumentReader* node;
        /// Where the element's children and its text begin in the lists of all levels.
        std::size_t firstChild;
        std::size_t textStart;
        bool hasElements;
        bool hasText;
    };

    TreeBuilder(Document& document, std::string& text);

    void Run();
    bool CheckBytes();
    bool Parse(SourceText& lines);
    bool TellParseError(const pugi::xml_parse_result& result, SourceText& lines);
    bool FindRoot(SourceText& lines, pugi::xml_node& root);
    bool CheckDeclaration(const pugi::xml_node& declaration);
    bool ReadVersion(const pugi::xml_node& root, SourceText& lines);
    bool BuildTree(pugi::xml_node root, SourceText& lines);
    bool Enter(pugi::xml_node source, SourceText& lines);
    void Leave();
    bool ReadAttributes(const pugi::xml_node& source, KARMPDocumentReader& node);
    void ReadText(Level& level, const pugi::xml_node& source);
    karmp::NodeText Decode(const char* raw, TextPlace place, const KARMPDocumentReader& node,
                           std::string_view attribute);
    karmp::NodeText ValueText(std::wstring_view text);
    bool WideName(const char* name, const KARMPDocumentReader* node, SourcePlace place);
    bool CountNode(SourcePlace place);
    bool Fail(Code code, std::string text, SourcePlace place, std::string path = {});
    std::size_t NumberOfName(const Level& parent, const Level& child) const;
    std::string Path() const;

    Document& m_document;
    Messages m_messages;
    std::string& m_text;
    pugi::xml_document m_source;
    std::vector<Level> m_levels;
    std::vector<KARMPDeserializer*> m_children;
    std::wstring m_texts;
    std::size_t m_nodes = 0;
    NodeArena& m_memory;
    RepeatedTexts m_names;
    RepeatedTexts m_values;
    karmp::NodeText m_version;
    const karmp::NodeText* m_name = nullptr;
    std::wstring m_value;
};

} // namespace karmp::documents
