// The rules of shapes and of free curves and surfaces: whether their streams hold what they are
// for.
#include "KAR3DMeshRep.h"
#include "KAR3DRepWalk.h"
#include "KARBase64.h"
#include "KARBody.h"
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPShapeStreams.h"
#include "KARSceneGraphBlocks.h"

#include <string>

namespace karmp::documents {

namespace {

/// The bytes of the entity's own stream; none when it has no such attribute or no base-64 there.
StreamBytes OwnStream(const KARMPDocumentReader& entity, bool& isThere)
{
    StreamBytes bytes;
    std::wstring text;
    isThere = entity.HasAttribute(L"stream");
    if (isThere && !KARFailed(entity.GetAttribute(L"stream", text)))
        kar::Base64Decode(std::wstring_view(text), bytes);
    return bytes;
}

bool HasTriangles(const KAR3DRep& scene)
{
    bool found = false;
    KARForEach3DRep(scene, [&found](const KAR3DRepPlace& place) {
        found = found || (place.rep->GetKind() == KAR3DRepKind::Mesh &&
                          !static_cast<const KAR3DMeshRep*>(place.rep)->GetTriangles().empty());
    });
    return found;
}

} // namespace

void MechanismRules::CheckCurve(const Node& entity)
{
    const KARMPDeserializer* const list = First(entity, L"CurveSegments");
    for (const KARMPDeserializer* segment : ItemsOf(entity, L"CurveSegments"))
        if (const KARMPDeserializer* const stream = First(*segment, L"CurveStream"))
            CheckStoredStream(entity, {list, segment, stream});
}

void MechanismRules::CheckSurface(const Node& entity)
{
    if (const KARMPDeserializer* const stream = First(entity, L"SurfaceStream"))
        CheckStoredStream(entity, {stream});
}

void MechanismRules::CheckStoredStream(const Node& entity, const Way& below)
{
    const Node& stream = NodeOf(*below.back());
    std::wstring text;
    StreamBytes bytes;
    if (stream.HasText())
        stream.GetValue(text);
    kar::Base64Decode(std::wstring_view(text), bytes);
    int length = 0;
    const bool isStated =
        stream.HasAttribute(L"length") && !KARFailed(stream.GetAttribute(L"length", length));
    if (isStated && (length < 0 || static_cast<std::size_t>(length) != bytes.size()))
        m_tell(Code::WrongLength, entity, below,
               "it states " + std::to_string(length) + " bytes and holds " +
                   std::to_string(bytes.size()));
    if (LoadShapes(bytes).list.Size() == 0)
        m_tell(Code::UnreadableStream, entity, below, "no stored geometry can be loaded from it");
}

void MechanismRules::CheckShape(const Node& entity)
{
    if (ItemsOf(entity, L"Bodies").empty())
        m_tell(Code::ShapeWithoutBody, entity, {}, "the shape belongs to no body");
}

void MechanismRules::CheckRep(const Node& entity)
{
    bool isThere = false;
    const StreamBytes bytes = OwnStream(entity, isThere);
    if (!isThere)
        return;
    const KAR3DRepOwner<KAR3DRep> scene(KARReadCgr(bytes.data(), bytes.size()));
    if (scene == nullptr) {
        const KAR3DRepOwner<KAR3DRep> plain(KARReadSceneGraph(bytes.data(), bytes.size()));
        m_tell(Code::UnreadableStream, entity, {},
               plain == nullptr ? "no scene graph can be read from its stream"
                                : "its scene graph has the plain form, which is read only with "
                                  "DUMP_SCENEGRAPH_ONLY set");
        return;
    }
    if (!HasTriangles(*scene))
        m_tell(Code::RepWithoutMesh, entity, {}, "the representation has no triangle");
}

void MechanismRules::CheckShapeBody(const Node& entity)
{
    bool isThere = false;
    const StreamBytes bytes = OwnStream(entity, isThere);
    if (!isThere)
        return;
    const StoredShapes loaded = LoadShapes(bytes, ShapeHeaderMode);
    if (loaded.list.Size() != 1 || KARSysDynamicCast<KARBody>(loaded.list[1]) == nullptr)
        m_tell(Code::UnreadableStream, entity, {}, "its stream does not hold exactly one body");
}

} // namespace karmp::documents
