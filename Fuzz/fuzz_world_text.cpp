// A world from any bytes as a document, at the version that the number of bytes chooses: what is
// written from the lists of its contents is what its nodes give, byte by byte.
#include "KARMPDocumentWriter.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    namespace documents = karmp::documents;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const documents::LoadResult loaded = documents::LoadUntrusted(bytes);
    if (!loaded.world)
        return 0;
    documents::SaveOptions options;
    options.version = documents::KnownVersions()[size % documents::KnownVersions().size()];
    options.doubles = size % 2 != 0 ? documents::Doubles::Exact : documents::Doubles::Snapped;
    options.check = false;
    std::string text;
    const bool isSaved = !documents::SaveText(loaded.world, text, options).HasErrors();
    KARMPDocumentWriter nodes(options.version, options.doubles);
    std::string rendered;
    const bool isRendered = !KARFailed(loaded.world->Serialize(&nodes)) &&
                            !nodes.RenderXml(rendered, options.limits).HasErrors();
    if (isSaved != isRendered || (isSaved && text != rendered))
        std::abort();
    return 0;
}
