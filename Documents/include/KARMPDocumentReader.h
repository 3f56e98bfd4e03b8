// KARMPDocumentReader is the node of the element tree that a document is loaded into.
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

namespace karmp::documents {

class Document;
class DocumentNodes;
class DocumentParser;
class DocumentSource;
struct ElementRecord;
struct SourcePlace;

} // namespace karmp::documents

/// A node knows its position in the source and is filled when it is first read. The nodes of a
/// document live as long as the karmp::documents::Document that they belong to; but what is filled
/// below an entity's element while a KARMPReadingPlace names that element, as a world does for each
/// entity that it reads, is freed with the KARMPReadingPlace.
class KARMP_DOCUMENTS_API KARMPDocumentReader final : public KARMPDeserializer
{
public:
    ~KARMPDocumentReader() override;

    /// "line:column" of the element's name.
    std::wstring Location() const override;
    /// Line of the element's name from 1, found by a search.
    std::size_t Line() const;
    /// Byte of the element's name in its line from 1, found by a search.
    std::size_t Column() const;
    /// True when the element holds a text, which may be empty where there are no elements.
    bool HasText() const { return HasValue(); }

    /// The memory of nodes comes from their document and is freed with it.
    static void operator delete(void* memory);

private:
    friend class karmp::documents::DocumentNodes;
    friend class karmp::documents::DocumentSource;
    KARMPDocumentReader(const karmp::documents::ElementRecord& record, unsigned depth,
                        karmp::documents::DocumentSource& source,
                        karmp::documents::DocumentNodes& memory);
    karmp::documents::SourcePlace Place() const;

    /// Elements above this one, as far as it matters.
    std::uint8_t m_depth;
    const karmp::documents::ElementRecord& m_record;
    karmp::documents::DocumentSource& m_source;
};

namespace karmp::documents {

/// A reference to an entity of a wrong class.
struct WrongReference
{
    std::uint32_t record;
    /// Null when its node has ended.
    const KARMPDocumentReader* node;
};

/// A parsed document: its tree and what there is to say about it.
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
    /// What parsing, and the calls of Check, had to say.
    const Diagnostics& Messages() const { return m_messages; }

    /// Compares the tree with what the entity classes read and adds what it finds to the messages:
    /// unknown classes, elements and attributes, missing items, values of a wrong kind, identifiers
    /// carried twice, references to nothing or to a wrong class.
    void Check();

    /// Makes the references to a wrong class, those that Check found, lead to nothing, so that the
    /// entity classes skip them instead of giving up on the whole document. Only attributes that
    /// were made between the two calls, and stay, are left as they are.
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
