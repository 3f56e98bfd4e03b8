// Any bytes as a document: they give a world, or messages that say why not; what was loaded can be
// saved.
#include "KARMPDocuments.h"
#include "KARMPWorld.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const karmp::documents::LoadResult loaded = karmp::documents::LoadUntrusted(bytes);
    if (loaded.world) {
        std::string text;
        static_cast<void>(karmp::documents::SaveText(loaded.world, text));
    }
    return 0;
}
