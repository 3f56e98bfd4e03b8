#pragma once

#include "KARMPDocumentLimits.h"
#include "KARMPMessages.h"
#include "KARMPSourceText.h"

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace karmp::documents {

/// Tells what is wrong with the bytes of a document, from a tree of all its elements. Only
/// documents that DocumentScanner finds out of the ordinary need it.
class DocumentFaults
{
public:
    DocumentFaults(std::string text, const SourceText& lines, const Limits& limits,
                   Messages& messages);

    /// Tells of the faults, and gives the version that the root names. False when the document
    /// cannot be read.
    bool Tell(std::wstring& version);

    /// True for the target of an instruction that is the declaration of a document.
    static bool IsDeclaration(std::string_view target);
    /// True when a whole declaration is one of a document that is read; `lapse` is what is not
    /// well-formed about it, or empty.
    static bool IsGoodDeclaration(std::string_view declaration, std::string_view& lapse);

private:
    /// Visits the nodes of the XML parser in the order of the document.
    class Walk;

    pugi::xml_parse_result Load();
    std::string SyntaxFault(const pugi::xml_parse_result& result) const;
    bool ReportParseError(const pugi::xml_parse_result& result);
    bool FindRoot(pugi::xml_node& root);
    bool CheckDeclaration(const pugi::xml_node& declaration);
    bool ReadVersion(const pugi::xml_node& root, std::wstring& read);
    bool CheckElement(const pugi::xml_node& element, std::size_t depth);
    bool CheckAttributes(const pugi::xml_node& element);
    void CheckReferences(const char* raw, const pugi::xml_node& element, const char* attribute);
    bool CountNode() { return ++m_nodes <= m_limits.nodes; }
    bool ReportOpenBracket(const char* value, const pugi::xml_node& element, const char* attribute);
    bool ReportTooMany(SourcePosition position, const pugi::xml_node& inside);
    bool ReportTooLong(std::string_view name, std::string_view kind, SourcePosition position,
                       const pugi::xml_node& inside);
    bool Fail(Code code, std::string text, SourcePosition position, std::string path = {});
    SourcePosition PositionOf(const char* text) const;
    std::string Path(pugi::xml_node element) const;

    std::string m_text;
    const SourceText& m_lines;
    const Limits& m_limits;
    Messages& m_messages;
    pugi::xml_document m_parsed;
    std::size_t m_nodes = 0;
};

} // namespace karmp::documents
