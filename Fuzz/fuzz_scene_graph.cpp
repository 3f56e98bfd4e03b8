// Any bytes as a scene graph's block, and as the payload of one, in both forms: they give nodes or
// null; nodes that were read are written as the same payload.
#include "KAR3DRepWalk.h"
#include "KARSceneGraphBlocks.h"
#include "SealedBlock.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::uint32_t CgrMark = 0x4752434BU;
constexpr std::uint32_t SceneGraphMark = 0x4753434BU;
constexpr std::size_t HeaderSize = 20;

void Check(bool holds)
{
    if (!holds)
        std::abort();
}

KARStatus WriteCgr(const KAR3DRep* rep, void*& block, std::size_t& size, KARSettingCgr setting)
{
    return KARWriteCgr(rep, block, size, setting, nullptr, 0);
}

template <class Read, class Write>
void TryPayload(std::uint32_t mark, std::span<const std::uint8_t> payload, Read read, Write write)
{
    const std::vector<std::uint8_t> block = SealedBlock(mark, payload);
    const KAR3DRepOwner<KAR3DRep> rep(read(block.data(), block.size()));
    if (rep == nullptr)
        return;
    int nodes = 0;
    KARForEach3DRep(*rep, [&nodes](const KAR3DRepPlace&) { ++nodes; });
    Check(nodes > 0 && nodes <= KARMaximumRepCount);
    const KAR3DRepOwner<KAR3DRep> copy(rep->Duplicate());
    std::int32_t setting = 0;
    KARMathStream(payload.data(), payload.size()).ReadInt32(setting);
    void* again = nullptr;
    std::size_t size = 0;
    Check(write(copy.get(), again, size, static_cast<KARSettingCgr>(setting)) == KARSuccess);
    const auto* const bytes = static_cast<const std::uint8_t*>(again);
    Check(size == block.size() && std::equal(block.begin(), block.end(), bytes));
    std::free(again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> bytes(data, size);
    KAR3DRepOwner<KAR3DRep>(KARReadCgr(data, size)).reset();
    KAR3DRepOwner<KAR3DRep>(KARReadSceneGraph(data, size)).reset();
    // Of a whole block, as the seeds are, the payload alone.
    const auto payload = size >= HeaderSize && bytes[0] == 'K' && bytes[1] == 'C'
                             ? bytes.subspan(HeaderSize)
                             : bytes;
    TryPayload(CgrMark, payload, KARReadCgr, WriteCgr);
    TryPayload(SceneGraphMark, payload, KARReadSceneGraph, KARWriteSceneGraph);
    Check(KAR3DRep::GetAliveCount() == 0);
    return 0;
}
