// The tree that a document is saved from.
#pragma once

#include "KARMPDocumentDiagnostics.h"
#include "KARMPDocumentLimits.h"
#include "KARMPDocumentsExport.h"
#include "KARMPSerializer.h"
#include "KARMPVersions.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace karmp::documents {

class XmlRenderer;

/// Which doubles a tree keeps.
enum class Doubles {
    Snapped, ///< Those on the grid of 1e-12, unless the environment asks for exact ones.
    Exact    ///< All doubles as they are.
};

} // namespace karmp::documents

/// A node of the element tree that documents are saved from. A node without a name is the root of a
/// document; its rendered form is a whole document with the node's version. Any other node renders
/// as its element alone.
class KARMP_DOCUMENTS_API KARMPDocumentWriter : public KARMPSerializer
{
public:
    /// A root for a document of a version.
    explicit KARMPDocumentWriter(
        std::wstring_view version = karmp::CurrentVersion,
        karmp::documents::Doubles doubles = karmp::documents::Doubles::Snapped);
    ~KARMPDocumentWriter() override;

    /// Appends the rendered form to `text`; KARFailure or KAROutOfMemory, with `text` unchanged,
    /// where RenderXml fails.
    [[nodiscard]] KARStatus Render(std::wstring& text) const override;
    /// Saves the rendered form as SaveXml does, at the default limits.
    [[nodiscard]] KARStatus Save(const char* path) const override;

    /// Appends the rendered form to `bytes` as UTF-8. A name that is no XML name, an attribute that
    /// occurs twice, and a limit exceeded are errors, with `bytes` unchanged.
    [[nodiscard]] karmp::documents::Diagnostics RenderXml(
        std::string& bytes, const karmp::documents::Limits& limits = {}) const;
    /// Renders into a file, which is replaced as a whole or not at all.
    [[nodiscard]] karmp::documents::Diagnostics SaveXml(
        const std::filesystem::path& path, const karmp::documents::Limits& limits = {}) const;

protected:
    /// A node that is allocated in the arena of a tree and freed with it.
    explicit KARMPDocumentWriter(karmp::NodeMemory& memory) : KARMPSerializer(memory) {}

    KARMPSerializer* CreateChildElement() override;

private:
    friend class karmp::documents::XmlRenderer;
};
