// What the reading of a document gives, as a text that can be compared.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocuments.h"
#include "KARMPFailedCheck.h"
#include "KARMPReadCurves.h"
#include "KARMPReadingPlace.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace karmp::documents {

/// Notes each failed check with the place of the element that is read.
class NotedChecks final : private KARMPFailedCheckListener
{
public:
    const std::string& Notes() const { return m_notes; }

private:
    void OnFailedCheck(const char* file, int line) override
    {
        const KARMPDeserializer* const node = KARMPReadingPlace::Current();
        m_notes += std::string(file) + ':' + std::to_string(line) + " at " +
                   (node != nullptr ? kar::ToUtf8(node->Location()) : std::string("none")) + '\n';
    }

    std::string m_notes;
};

/// Makes the nodes of an element and of all below it.
inline void FillNodes(const KARMPDeserializer& node)
{
    KARMPDeserializer::ElementVector children;
    node.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children)
        FillNodes(*child);
}

/// A node of a caller's own, which nothing but the public operations can read: a copy of another
/// one with all below it.
class CopiedNode final : public KARMPDeserializer
{
public:
    explicit CopiedNode(const KARMPDeserializer& source) : m_location(source.Location())
    {
        SetId(source.Id());
        SetVersion(source.Version());
        for (std::size_t index = 0; index < source.GetAttributeCount(); ++index) {
            std::wstring value;
            source.GetAttribute(source.GetAttributeId(index), value);
            AddAttributeValue(source.GetAttributeId(index), std::move(value));
        }
        if (std::wstring value; source.HasValue()) {
            source.GetValue(value);
            SetValue(std::move(value));
        }
        ElementVector children;
        source.AppendOrderedElements(children);
        for (const KARMPDeserializer* child : children)
            AddElement(child->Id(), new CopiedNode(*child));
    }
    std::wstring Location() const override { return m_location; }

private:
    std::wstring m_location;
};

/// Replaces identifiers that are not of the document: each run makes other ones.
inline std::string WithoutNewIdentifiers(std::string saved, std::string_view text)
{
    constexpr std::string_view mark = "id=\"";
    for (std::size_t at = saved.find(mark); at != saved.npos; at = saved.find(mark, at + 1)) {
        const std::size_t begin = at + mark.size();
        const std::size_t size = saved.find('"', begin) - begin;
        if (text.find(saved.substr(begin, size)) == text.npos)
            saved.replace(begin, size, "new");
    }
    return saved;
}

/// Whether a document is read from its records, from nodes that are all filled before, or from
/// copies of these, which know nothing of a document.
enum class ReadFrom { Records, Nodes, Copies };

/// The status or exception of reading a document, the failed checks, and the world as it is saved;
/// empty for a text that is no document.
inline std::string OutcomeOfReading(const std::string& text, ReadFrom from,
                                    const Limits& limits = Limits())
{
    const Document document = Document::ReadText(text, "text", limits);
    if (document.Root() == nullptr)
        return {};
    if (from == ReadFrom::Nodes)
        FillNodes(*document.Root());
    std::optional<CopiedNode> copy;
    if (from == ReadFrom::Copies)
        copy.emplace(*document.Root());
    const KARMPDeserializer* root = document.Root();
    if (copy)
        root = &*copy;
    const auto world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    const NotedChecks checks;
    std::string outcome;
    try {
        const ReadCurves curves(*world);
        outcome = std::to_string(world->Deserialize(root)) + '\n';
    } catch (const std::exception& exception) {
        outcome = exception.what();
    }
    outcome += checks.Notes();
    std::string saved;
    SaveOptions options;
    options.check = false;
    static_cast<void>(SaveText(world, saved, options)); // the text is compared, reports are not
    return outcome + WithoutNewIdentifiers(saved, text);
}

} // namespace karmp::documents
