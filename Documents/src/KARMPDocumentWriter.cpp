#include "KARMPDocumentWriter.h"

#include "KARMPMessages.h"
#include "KARMPTextCapacity.h"
#include "KARMPWholeFile.h"
#include "KARMPXmlRenderer.h"
#include "KARTextConversion.h"

#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

using karmp::documents::Code;
using karmp::documents::Diagnostics;
using karmp::documents::Doubles;
using karmp::documents::Limits;
using karmp::documents::Messages;

KARMPDocumentWriter::KARMPDocumentWriter(std::wstring_view version, Doubles doubles)
    : KARMPSerializer(std::make_unique<karmp::NodeMemory>())
{
    SetVersion(version);
    SetExactDoubles(doubles == Doubles::Exact);
}

KARMPDocumentWriter::~KARMPDocumentWriter() = default;

KARMPSerializer* KARMPDocumentWriter::CreateChildElement()
{
    return ::new (Memory()->Allocate(sizeof(KARMPDocumentWriter))) KARMPDocumentWriter(*Memory());
}

Diagnostics KARMPDocumentWriter::RenderXml(std::string& bytes, const Limits& limits) const
{
    Diagnostics diagnostics;
    Messages messages(diagnostics, {}, limits.diagnostics);
    const std::size_t before = bytes.size();
    bool rendered = false;
    try {
        // The text of a model takes about a quarter of the size of its tree.
        if (GetId().empty())
            karmp::documents::ReserveMore(bytes, Memory()->Size() / 3);
        rendered = karmp::documents::XmlRenderer(bytes, limits, messages).Render(*this);
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, "an allocation failed while the document was written");
    } catch (const std::length_error&) {
        messages.Error(Code::OutOfMemory, "the document is too large for memory");
    }
    if (!rendered)
        bytes.resize(before);
    return diagnostics;
}

Diagnostics KARMPDocumentWriter::SaveXml(const std::filesystem::path& path,
                                         const Limits& limits) const
{
    std::string bytes;
    Diagnostics diagnostics = RenderXml(bytes, limits);
    for (auto& item : diagnostics.items)
        item.file = path.string();
    if (!diagnostics.HasErrors())
        diagnostics.Append(karmp::documents::WriteWholeFile(path, bytes));
    return diagnostics;
}

KARStatus KARMPDocumentWriter::Render(std::wstring& text) const
{
    std::string bytes;
    if (RenderXml(bytes).HasErrors())
        return KARFailure;
    try {
        text += kar::ToWide(bytes);
    } catch (const std::bad_alloc&) {
        return KAROutOfMemory;
    }
    return KARSuccess;
}

KARStatus KARMPDocumentWriter::Save(const char* path) const
{
    return path != nullptr && !SaveXml(path).HasErrors() ? KARSuccess : KARFailure;
}
