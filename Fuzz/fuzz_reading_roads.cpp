// Any bytes as a document that is read from its records, and from its nodes after all of them are
// filled: both give the same world.
#include "KARMPCurve.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace {

void Fill(const KARMPDeserializer& node)
{
    KARMPDeserializer::ElementVector children;
    node.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children)
        Fill(*child);
}

// The status and the world as it is saved, without the identifiers that each run makes anew.
std::string Outcome(std::string_view bytes, bool isFilled)
{
    using namespace karmp::documents;
    const Document document = Document::ReadText(std::string(bytes), "fuzz", Limits::Tight());
    if (document.Root() == nullptr)
        return {};
    if (isFilled)
        Fill(*document.Root());
    const auto world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    std::string outcome;
    try {
        outcome = std::to_string(world->Deserialize(document.Root()));
    } catch (const std::exception& exception) {
        outcome = exception.what();
    }
    for (int index = 0; index < world->Count<KARMPGeometry>(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        if (world->Get(index, geometry) == KARSuccess &&
            geometry.isDerivedFrom(KARMPCurve::ClassInfo()))
            QOBSharedHandle<KARMPCurve>(geometry)->DeleteCurveLimitsAtEnd(true);
    }
    std::string saved;
    SaveOptions options;
    options.check = false;
    static_cast<void>(SaveText(world, saved, options));
    constexpr std::string_view mark = "id=\"";
    for (std::size_t at = saved.find(mark); at != saved.npos; at = saved.find(mark, at + 1)) {
        const std::size_t begin = at + mark.size();
        const std::size_t size = saved.find('"', begin) - begin;
        if (bytes.find(saved.substr(begin, size)) == bytes.npos)
            saved.replace(begin, size, "new");
    }
    return outcome + saved;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (Outcome(bytes, false) != Outcome(bytes, true))
        std::abort();
    return 0;
}
