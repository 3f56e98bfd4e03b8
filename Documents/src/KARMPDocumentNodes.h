#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentRecords.h"
#include "KARMPNodeSource.h"

#include <cstdint>
#include <string_view>

namespace karmp::documents {

/// An arena of a document's nodes that fills them from the document's records. A document has two:
/// one for the nodes that stay, one for what is filled while an entity is read. A node's children
/// are allocated in the node's own arena, those of the entity's node that is read in the second
/// one.
class DocumentNodes final : public NodeSource
{
public:
    /// A node without content.
    KARMPDocumentReader* Make(const ElementRecord& record, unsigned depth, DocumentSource& source);

    void FillAttributes(KARMPDeserializer& node) override;
    void FillContent(KARMPDeserializer& node) override;
    bool FindAttribute(const KARMPDeserializer& node, std::wstring_view name,
                       AsciiText& value) const override;
    bool LacksElement(const KARMPDeserializer& node, std::wstring_view name) const override;
    RecordedElement Recorded(const KARMPDeserializer& node) const override;
    DocumentNodes& ContentMemory(const KARMPDeserializer& node) override;
    void BeginReading(const KARMPDeserializer& node) noexcept override;
    void EndReading(const KARMPDeserializer& node) noexcept override;

    /// The index of a node's record.
    static std::uint32_t Number(const KARMPDocumentReader& node);
    /// True between BeginReading and EndReading of a node that is freed afterwards.
    static bool IsRead(const KARMPDocumentReader& node);
    /// The parts of a node that are filled when they are first read.
    static std::uint8_t PartsToFill(const ElementRecord& record) noexcept;
    /// Sets what a node holds before it is filled: a plain text.
    static void Begin(KARMPDocumentReader& node) noexcept;

private:
    static void FillText(KARMPDocumentReader& node, NodeMemory& memory);
};

} // namespace karmp::documents
