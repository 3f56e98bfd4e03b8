// Builds the tree of a document from XML.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentSource.h"
#include "KARMPMessages.h"
#include "KARMPRepeatedNames.h"
#include "KARMPTextEscapes.h"

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// The tree refers to the bytes of the document for what stands for itself there.
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

    TreeBuilder(Document& document, std::string text);

    void Run();
    bool CheckBytes();
    bool Parse();
    bool TellParseError(const pugi::xml_parse_result& result);
    bool FindRoot(pugi::xml_node& root);
    bool CheckDeclaration(const pugi::xml_node& declaration);
    bool ReadVersion(const pugi::xml_node& root);
    bool BuildTree(pugi::xml_node root);
    bool Enter(pugi::xml_node source);
    void Leave();
    bool ReadAttributes(pugi::xml_attribute attribute, KARMPDocumentReader& node);
    void TellRepeatedAttributes(const KARMPDocumentReader& node);
    void ReadText(Level& level, const pugi::xml_node& source);
    bool StandsForItself(const char* raw) const;
    karmp::NodeText Decode(const char* raw, TextPlace place, const KARMPDocumentReader& node,
                           const char* attribute);
    bool CountNode() { return ++m_nodes <= m_document.m_limits.nodes; }
    bool TellTooMany(SourcePlace place);
    bool TellTooLong(std::string_view name, std::string_view kind, SourcePlace place);
    bool Fail(Code code, std::string text, SourcePlace place, std::string path = {});
    SourcePlace PlaceOf(const char* text) const;
    std::size_t NumberOfName(const Level& parent, const Level& child) const;
    std::string Path() const;

    Document& m_document;
    DocumentSource& m_source;
    Messages m_messages;
    pugi::xml_document m_parsed;
    std::vector<Level> m_levels;
    std::vector<KARMPDeserializer*> m_children;
    std::vector<KARMPDocumentReader::Attribute> m_attributes;
    std::wstring m_texts;
    std::size_t m_nodes = 0;
    bool m_givesBack = false;
    RepeatedNames m_names;
    karmp::NodeText m_version;
    std::wstring m_value;
};

} // namespace karmp::documents
