#include "KARIGMKObjectsLoad.h"

#include "GMKReader.h"

#include <new>
#include <utility>

namespace {

using kar::GMKReader;

/// The listed objects; none when the payload is not one that was saved.
std::vector<KARIGMKObject*> ReadPayload(GMKReader& reader)
{
    const std::size_t count = reader.Count(kar::SmallestRecord);
    const std::size_t listed = reader.Count(sizeof(std::uint32_t));
    reader.Reserve(count);
    for (std::size_t i = 0; i < count && !reader.Failed(); ++i)
        reader.Object();
    std::vector<KARIGMKObject*> roots;
    for (std::size_t i = 0; i < listed && !reader.Failed(); ++i)
        roots.push_back(reader.Reference<KARIGMKObject>());
    if (!reader.IsAtEnd())
        roots.clear();
    return roots;
}

/// Gives the objects to the factory, which is made where there is none, and lists the roots.
KARStatus HandOver(GMKReader& reader, const std::vector<KARIGMKObject*>& roots,
                   KARGeometricFactory*& factory, KARListPtrKARIGMKObject& objects)
{
    KARGeometricFactory* target = factory != nullptr ? factory : KARGeometricFactory::Create();
    try {
        KARListPtrKARIGMKObject listed = objects;
        for (KARIGMKObject* root : roots)
            listed.Append(root);
        target->Adopt(reader.Objects());
        reader.Detach();
        objects = std::move(listed);
    } catch (...) {
        if (factory == nullptr)
            target->Release();
        throw;
    }
    factory = target;
    return KARSuccess;
}

} // namespace

KARStatus KARIGMKObjectsLoad::Load(KARGeometricFactory*& factory, KARListPtrKARIGMKObject& objects,
                                   int mode)
try {
    if (mode != 0 || !kar::ReadBlockHeader(m_stream, kar::ObjectBlock))
        return KARFailure;
    GMKReader reader(m_stream);
    const std::vector<KARIGMKObject*> roots = ReadPayload(reader);
    if (roots.empty())
        return KARFailure;
    return HandOver(reader, roots, factory, objects);
} catch (const std::bad_alloc&) {
    return KAROutOfMemory;
}
