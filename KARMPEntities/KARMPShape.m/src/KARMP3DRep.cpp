#include "KARMP3DRep.h"

#include "KAR3DBagRep.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPStreamElement.h"
#include "KARProcessServices.h"
#include "KARSceneGraphBlocks.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

KARMP_DEFINE_ENTITY(KARMP3DRep, "66D45B5C-0DE5-4455-92BC-5BF454612AB0");

namespace {

const bool IsRepLeftOut = KARGetEnv("DONT_SERIALIZE_REP") != nullptr;
const bool IsSceneGraphDumped = KARGetEnv("DUMP_SCENEGRAPH_ONLY") != nullptr;

constexpr std::wstring_view BlockName = L"stream";
constexpr auto BlockSetting = static_cast<KARSettingCgr>(71);

struct FreeBlock
{
    void operator()(void* block) const { std::free(block); }
};

/// The node of a copied bag that stands where `rep` stands in the bag.
KAR3DRep* Counterpart(const KAR3DRep& rep, const KAR3DBagRep& bag, KAR3DBagRep& copy)
{
    std::vector<std::ptrdiff_t> path;
    for (const KAR3DRep* node = &rep; node != &bag; node = node->GetBag()) {
        const auto& siblings = node->GetBag()->GetChildren();
        path.push_back(std::find(siblings.begin(), siblings.end(), node) - siblings.begin());
    }
    KAR3DRep* found = &copy;
    for (auto index = path.rbegin(); index != path.rend(); ++index)
        found = static_cast<KAR3DBagRep*>(found)->GetChildren()[static_cast<std::size_t>(*index)];
    return found;
}

} // namespace

// Code reads the block: what Set3DRep gives is the result.
template <>
struct karmp::ContentOf<KARMP3DRep>
{
    using C = KARMP3DRep;
    static constexpr auto Block =
        Attribute(Stream<&C::GetBlock>(BlockName, "The scene graph of the shape."))
            .Through<&C::SetBlock>()
            .When<&C::IsRepWritten>()
            .Required();
    static constexpr auto List = Element(L"Rep3D", "What a body looks like, as a scene graph.",
                                         LenientFrame, Unequal(Block, Block.Coded()))
                                     .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMP3DRep);

KARMP3DRep::KARMP3DRep() : m_bag(KAR3DBagRep::CreateRep()) {}

KARMP3DRep::KARMP3DRep(const KARMP3DRep& source, CopyMode mode) : Super(source, mode)
{
    // Without a bag of its own the source has nodes of others alone.
    KAR3DRepOwner<KAR3DRep> bag(source.m_bag ? source.m_bag->Duplicate()
                                             : KAR3DBagRep::CreateRep());
    m_bag = static_cast<KAR3DBagRep*>(bag.get());
    CopyNode(source.m_rep, source.m_bag.Get(), m_rep);
    CopyNode(source.m_masterRep, source.m_bag.Get(), m_masterRep);
    static_cast<void>(bag.release()); // this shape's now
}

KARMP3DRep::~KARMP3DRep()
{
    if (m_bag)
        m_bag->Destroy();
}

// A node that stands elsewhere than in the shape's bag was given to another shape as well.
void KARMP3DRep::CopyNode(const Node& source, const KAR3DBagRep* sourceBag, Node& field)
{
    if (!source)
        return;
    if (sourceBag != nullptr && source->IsWithin(*sourceBag)) {
        field = Counterpart(*source.Get(), *sourceBag, *m_bag.Get());
        return;
    }
    KAR3DRepOwner<KAR3DRep> copy(source->Duplicate());
    m_bag->AddChild(copy.get());
    field = copy.release();
}

KARStatus KARMP3DRep::Replace(Node& field, KAR3DRep* rep)
{
    if (field.Get() == rep)
        return KARSuccess;
    if (field) {
        // The new node may stand within the old one, which is destroyed with all that it holds.
        if (rep != nullptr && rep->GetBag() != nullptr && rep->IsWithin(*field.Get()))
            rep->GetBag()->RemoveChild(rep);
        field->Destroy();
    }
    field = rep;
    if (rep != nullptr && m_bag)
        m_bag->AddChild(rep);
    return KARSuccess;
}

KARStatus KARMP3DRep::Set3DRep(KAR3DRep* rep)
{
    return Replace(m_rep, rep);
}

KARStatus KARMP3DRep::SetMasterRep(KAR3DRep* rep)
{
    return Replace(m_masterRep, rep);
}

bool KARMP3DRep::IsRepWritten() const
{
    return !IsRepLeftOut;
}

KARStatus KARMP3DRep::GetBlock(std::vector<unsigned char>& bytes) const
{
    void* block = nullptr;
    std::size_t size = 0;
    const KARStatus status = IsSceneGraphDumped
                                 ? KARWriteSceneGraph(m_rep.Get(), block, size, BlockSetting)
                                 : KARWriteCgr(m_rep.Get(), block, size, BlockSetting, nullptr, 0);
    const std::unique_ptr<void, FreeBlock> owner(block);
    if (block == nullptr)
        return KARFailed(status) ? status : KARFailure;
    const auto* const first = static_cast<const unsigned char*>(block);
    bytes.assign(first, first + size);
    return KARSuccess;
}

KARStatus KARMP3DRep::SetBlock(const std::vector<unsigned char>& bytes)
{
    KAR3DRepOwner<KAR3DRep> rep(
        (IsSceneGraphDumped ? KARReadSceneGraph : KARReadCgr)(bytes.data(), bytes.size()));
    if (rep == nullptr)
        return KARFailure;
    const Node given(rep.get());
    const KARStatus status = Set3DRep(rep.get());
    if (!given || given->GetBag() != nullptr || Get3DRep() == given.Get())
        static_cast<void>(rep.release()); // it was destroyed or taken
    return status;
}

KARStatus KARMP3DRep::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteContent<Super>(*this, serializer);
}

KARStatus KARMP3DRep::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"Rep3D");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::StreamBytes bytes;
    return karmp::ReadStreamAttribute(element, BlockName, bytes) ? SetBlock(bytes) : KARFailure;
}
