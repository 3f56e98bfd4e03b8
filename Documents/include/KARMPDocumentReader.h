// A document that is read: its nodes and the tree that they make.
#pragma once

#include "KARMPDeserializer.h"
#include "KARMPDocumentDiagnostics.h"
#include "KARMPDocumentLimits.h"
#include "KARMPDocumentsExport.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace karmp {

struct ElementRecord;

namespace documents {

class Document;
class DocumentNodes;
class DocumentParser;
class DocumentSource;
struct SourcePosition;

} // namespace documents
} // namespace karmp

/// A node of the element tree that a document is loaded into. It knows its position in the source
/// and is filled when it is first read. The nodes of a document live as long as the
/// karmp::documents::Document that they belong to; but what is filled below an entity's element
/// while a KARMPReadingPlace names that element, as a world does for each entity that it reads, is
/// freed when the KARMPReadingPlace is destroyed.
class KARMP_DOCUMENTS_API KARMPDocumentReader final : public KARMPDeserializer
{
public:
    ~KARMPDocumentReader() override;

    /// "line:column" of the element's name.
    std::wstring Location() const override;
    /// Line of the element's name from 1, found by a binary search.
    std::size_t Line() const;
    /// Byte of the element's name in its line from 1, found by a binary search.
    std::size_t Column() const;
    /// Line and column of the name of an attribute, the last one of that name; false, with the
    /// position of the element's name, when it has none.
    bool FindAttribute(std::wstring_view name, std::size_t& line, std::size_t& column) const;
    /// Line and column of the first character of the text that is no blank; false, with the
    /// position of the element's name, when there is none.
    bool FindText(std::size_t& line, std::size_t& column) const;
    /// True when the element holds a text, which may be empty where there are no elements.
    bool HasText() const { return HasValue(); }

    /// Does nothing: nodes are allocated in an arena of their document and freed with it.
    static void operator delete(void* memory);

private:
    friend class karmp::documents::DocumentNodes;
    friend class karmp::documents::DocumentSource;
    KARMPDocumentReader(const karmp::ElementRecord& record, unsigned depth,
                        karmp::documents::DocumentSource& source,
                        karmp::documents::DocumentNodes& memory);
    karmp::documents::SourcePosition Position() const;

    /// Elements above this one, as far as it matters.
    std::uint8_t m_depth;
    const karmp::ElementRecord& m_record;
    karmp::documents::DocumentSource& m_source;
};

namespace karmp::documents {

/// A reference to an entity of a wrong class.
struct WrongReference
{
    std::uint32_t record;
    /// Null when the node has been freed.
    const KARMPDocumentReader* node;
};

/// How much of a document is checked.
enum class CheckLevel : std::uint8_t {
    None,     ///< Nothing but the syntax.
    Form,     ///< Names, texts, versions, identifiers and references.
    Mechanism ///< The meaning too, as warnings: a motor without a variable, a spring with one body.
};

/// A parsed document: its tree and the messages about it.
class KARMP_DOCUMENTS_API Document
{
public:
    /// Parses a file.
    static Document ReadFile(const std::filesystem::path& path, const Limits& limits = {});
    /// Parses a text in memory, which messages call by `name`.
    static Document ReadText(std::string text, std::string name = "<text>",
                             const Limits& limits = {});

    Document(Document&&) noexcept;
    Document& operator=(Document&&) noexcept;
    ~Document();

    /// The root element, every node at the document's version; null when there is no tree: an error
    /// of syntax, a limit exceeded, a wrong root.
    const KARMPDocumentReader* Root() const { return m_root; }
    /// The version that the root names, the current one when it names none.
    const std::wstring& Version() const { return m_version; }
    /// The name that messages call the document by.
    const std::string& Name() const { return m_name; }
    /// The messages of parsing and of the calls of Check.
    const Diagnostics& Messages() const { return m_messages; }

    /// Compares the tree with what the entity classes read and adds what it finds to the messages:
    /// unknown classes, elements and attributes, missing items, values of a wrong kind, identifiers
    /// carried twice, references to unknown entities or to a wrong class. At CheckLevel::Mechanism
    /// also what is well-formed but nothing that a mechanism can mean.
    void Check(CheckLevel level = CheckLevel::Mechanism);

    /// Makes the references to a wrong class that Check found refer to no entity, so that the
    /// entity classes skip them instead of failing on the whole document. Attributes that were
    /// filled between the two calls, outside of a reading, keep their values.
    void DropWrongReferences();

private:
    friend class DocumentParser;
    Document(std::string name, const Limits& limits);

    std::unique_ptr<DocumentSource> m_source;
    KARMPDocumentReader* m_root = nullptr;
    std::string m_name;
    std::wstring m_version;
    Limits m_limits;
    Diagnostics m_messages;
    std::vector<WrongReference> m_wrongReferences;
    std::wstring m_unusedIdentifier;
};

} // namespace karmp::documents
