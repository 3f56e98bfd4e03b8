#include "KARSceneGraphBlocks.h"

#include "RepReader.h"
#include "RepWriter.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using kar::RepForm;
using kar::RepReader;
using kar::RepWriter;

/// Writes the records of a node and all below it; false beyond the bounds.
bool WriteNodes(RepWriter& writer, const KAR3DRep& first)
{
    struct Open
    {
        const KAR3DRep* rep;
        int depth;
    };
    std::vector<Open> open{{&first, 1}};
    for (int count = 1; !open.empty(); ++count) {
        const Open node = open.back();
        open.pop_back();
        if (count > KARMaximumRepCount || node.depth > KARMaximumRepDepth)
            return false;
        writer.Node(*node.rep);
        if (node.rep->GetKind() != KAR3DRepKind::Bag)
            continue;
        const auto& children = static_cast<const KAR3DBagRep*>(node.rep)->GetChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            open.push_back({*child, node.depth + 1});
    }
    return !writer.Failed();
}

KARStatus Write(const KAR3DRep* rep, void*& block, std::size_t& size, int setting, RepForm form)
try {
    block = nullptr;
    size = 0;
    if (rep == nullptr)
        return KARFailure;
    KARMathStream payload;
    RepWriter writer(payload, form);
    writer.Integer(setting);
    if (!WriteNodes(writer, *rep))
        return KARFailure;
    KARMathStream stream;
    kar::WriteBlock(stream, kar::BlockFormOf(form), payload.GetBytes());
    block = std::malloc(stream.GetLength());
    if (block == nullptr)
        return KAROutOfMemory;
    stream.GetMemoryCopy(block, stream.GetLength(), size);
    return KARSuccess;
} catch (const std::bad_alloc&) {
    return KAROutOfMemory;
}

/// Reads the records of a node and all below it; null when they are none or beyond the bounds.
KAR3DRepOwner<KAR3DRep> ReadNodes(RepReader& reader)
{
    struct Open
    {
        KAR3DBagRep* bag;
        std::size_t missing;
    };
    kar::ReadRep read = reader.Node();
    KAR3DRepOwner<KAR3DRep> first = std::move(read.rep);
    std::vector<Open> open;
    const auto enter = [&open](KAR3DRep* rep, std::size_t children) {
        if (children != 0)
            open.push_back({static_cast<KAR3DBagRep*>(rep), children});
    };
    enter(first.get(), read.children);
    int count = 1;
    while (!open.empty()) {
        if (open.back().missing == 0) {
            open.pop_back();
            continue;
        }
        --open.back().missing;
        if (++count > KARMaximumRepCount || open.size() >= KARMaximumRepDepth)
            return nullptr;
        read = reader.Node();
        if (read.rep == nullptr)
            return nullptr;
        KAR3DRep* const rep = read.rep.get();
        open.back().bag->AddChild(rep);
        static_cast<void>(read.rep.release()); // the bag's now
        enter(rep, read.children);
    }
    return first;
}

KAR3DRep* Read(const void* block, std::size_t size, RepForm form)
try {
    KARMathStream stream(block, size);
    if (!kar::ReadBlockHeader(stream, kar::BlockFormOf(form)))
        return nullptr;
    RepReader reader(stream, form);
    reader.Integer(); // the setting, which decides nothing
    KAR3DRepOwner<KAR3DRep> first = ReadNodes(reader);
    return reader.IsAtEnd() ? first.release() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace

KARStatus KARWriteCgr(const KAR3DRep* rep, void*& block, std::size_t& size, KARSettingCgr setting,
                      const void* options, int mode)
{
    const bool isKnown = options == nullptr && mode == 0;
    return Write(isKnown ? rep : nullptr, block, size, setting, RepForm::Compact);
}

KAR3DRep* KARReadCgr(const void* block, std::size_t size)
{
    return Read(block, size, RepForm::Compact);
}

KARStatus KARWriteSceneGraph(const KAR3DRep* rep, void*& block, std::size_t& size,
                             KARSettingCgr setting)
{
    return Write(rep, block, size, setting, RepForm::Plain);
}

KAR3DRep* KARReadSceneGraph(const void* block, std::size_t size)
{
    return Read(block, size, RepForm::Plain);
}
