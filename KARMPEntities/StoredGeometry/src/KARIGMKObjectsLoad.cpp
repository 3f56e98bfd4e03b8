#include "KARIGMKObjectsLoad.h"

#include "GMKChecksum.h"
#include "GMKReader.h"

#include <new>
#include <utility>

namespace {

using kar::GMKReader;

bool ReadHeader(KARMathStream& stream)
{
    std::uint32_t mark = 0;
    std::uint32_t version = 0;
    std::uint64_t length = 0;
    std::uint32_t checksum = 0;
    return stream.ReadUInt32(mark) && stream.ReadUInt32(version) && stream.ReadUInt64(length) &&
           stream.ReadUInt32(checksum) && mark == kar::BlockMark && version == kar::BlockVersion &&
           length == stream.GetRemaining() && checksum == kar::Checksum(stream.Peek());
}

/// The listed objects; none when the payload is not one that was saved.
std::vector<KARIGMKObject*> ReadPayload(KARMathStream& stream, GMKReader& reader)
{
    const std::size_t count = reader.Count(kar::SmallestRecord);
    const std::size_t listed = reader.Count(sizeof(std::uint32_t));
    reader.Reserve(count);
    for (std::size_t i = 0; i < count && !reader.Failed(); ++i)
        reader.Object();
    std::vector<KARIGMKObject*> roots;
    for (std::size_t i = 0; i < listed && !reader.Failed(); ++i)
        roots.push_back(reader.Reference<KARIGMKObject>());
    if (reader.Failed() || stream.GetRemaining() != 0)
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
    if (mode != 0 || !ReadHeader(m_stream))
        return KARFailure;
    GMKReader reader(m_stream);
    const std::vector<KARIGMKObject*> roots = ReadPayload(m_stream, reader);
    if (roots.empty())
        return KARFailure;
    return HandOver(reader, roots, factory, objects);
} catch (const std::bad_alloc&) {
    return KAROutOfMemory;
}
