#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentSource.h"
#include "KARMPMessages.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace karmp::documents {

class DocumentScanner;

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
    DocumentParser(Document& document, std::string text);

    void Run();
    bool CheckBytes();
    bool Parse();
    bool ReportFaultyBytes();
    void TellOfLapses(const DocumentScanner& scanner);
    bool Fail(Code code, std::string text, SourcePosition position);

    Document& m_document;
    DocumentSource& m_source;
    Messages m_messages;
};

} // namespace karmp::documents
