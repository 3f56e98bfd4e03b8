#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentSource.h"
#include "KARMPMessages.h"
#include "KARMPRepeatedNames.h"

#include <pugixml.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// Parses the bytes of one document into records and checks all of them before a node is created.
/// Gives messages, and a root when there is a tree.
class DocumentParser
{
public:
    /// Parses a file into a document.
    static Document ReadFile(const std::filesystem::path& path, const Limits& limits);
    /// Parses a text into a document.
    static Document ReadText(std::string text, std::string name, const Limits& limits);

private:
    /// Visits the nodes of the XML parser in the order of the document.
    class Walk;

    DocumentParser(Document& document, std::string text);

    void Run();
    bool CheckBytes();
    bool Parse();
    bool ReportFaultyBytes();
    std::string SyntaxFault(const pugi::xml_parse_result& result) const;
    bool ReportParseError(const pugi::xml_parse_result& result);
    bool FindRoot(pugi::xml_node& root);
    bool CheckDeclaration(const pugi::xml_node& declaration);
    bool ReadVersion(const pugi::xml_node& root);

    bool RecordAll();
    bool RecordElement(const pugi::xml_node& element, std::size_t depth);
    bool RecordAttributes(const pugi::xml_node& element);
    void RecordPiece(const char* raw, bool isCData);
    void CloseTo(std::size_t depth);
    Offset OffsetOf(const char* text) const;
    RepeatedNames::Name NameOf(const char* bytes);
    bool StandsForItself(const char* raw) const;
    bool ReportOpenBracket(const char* value, const pugi::xml_node& element, const char* attribute);
    void ReportRepeatedAttributes(const pugi::xml_node& element, std::size_t first);
    void CheckReferences(const char* raw, const pugi::xml_node& element, const char* attribute);
    bool CountNode() { return ++m_nodes <= m_document.m_limits.nodes; }
    bool ReportTooMany(SourcePosition position, const pugi::xml_node& inside);
    bool ReportTooLong(std::string_view name, std::string_view kind, SourcePosition position,
                       const pugi::xml_node& inside);
    bool Fail(Code code, std::string text, SourcePosition position, std::string path = {});
    SourcePosition PositionOf(const char* text) const;
    std::string Path(pugi::xml_node element) const;

    /// An open element: its index and that of its last piece of text.
    struct Open
    {
        std::uint32_t number;
        std::uint32_t lastPiece;
    };

    Document& m_document;
    DocumentSource& m_source;
    DocumentRecords& m_records;
    Messages m_messages;
    pugi::xml_document m_parsed;
    RepeatedNames m_names;
    std::vector<Open> m_open;
    std::size_t m_nodes = 0;
    bool m_hasReferences = false;
    /// Line feeds in attributes are the only bytes that need decoding.
    bool m_isClean = false;
    std::wstring m_value;
};

} // namespace karmp::documents
