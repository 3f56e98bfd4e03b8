#include "KARMPSurface.h"

#include "KARBody.h"
#include "KARLinearTransfoSurface.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPReadingPlace.h"
#include "KARMPStoredObject.h"
#include "KARMPStreamElement.h"
#include "KARProcessServices.h"

KARMP_DEFINE_ENTITY(KARMPSurface, "46DB95EA-E1E6-4637-A7C7-50F6C73A8492");

namespace {

constexpr std::wstring_view SurfaceStream = L"SurfaceStream";

/// Takes the references that an entity holds on a surface.
void Hold(KARBaseUnknown* surface)
{
    if (surface == nullptr)
        return;
    surface->AddRef();
    if (const auto* moved = KAROmxQI<KARLinearTransfoSurface>(surface))
        moved->GetTransformedSurface()->AddRef();
}

void LetGo(KARBaseUnknown* surface)
{
    if (surface == nullptr)
        return;
    if (const auto* moved = KAROmxQI<KARLinearTransfoSurface>(surface))
        moved->GetTransformedSurface()->Release();
    surface->Release();
}

KARStatus SurfaceBytes(const KARMPSurface& geometry, karmp::StreamBytes& bytes)
{
    KARBaseUnknown* surface = nullptr;
    return !KARFailed(geometry.GetSurface(surface)) && karmp::SaveStoredObject(surface, bytes)
               ? KARSuccess
               : KARFailure;
}

KARStatus TakeSurface(KARMPSurface& geometry, const karmp::StreamBytes& bytes)
{
    const karmp::StoredObjects stored = karmp::LoadStoredObjects(bytes);
    return stored.objects.Size() > 0 ? geometry.SetSurface(stored.objects[0]) : KARFailure;
}

// Whoever restores what a copy lacks sees by the number of surfaces that it lacks none.
constexpr auto DescribedSurface()
{
    auto item = karmp::Stream<&SurfaceBytes>(
                    SurfaceStream, "The surface, or the topological body, in its stored form.")
                    .Through<&TakeSurface>()
                    .Coded();
    item.First().count = [](const void* owner) {
        KARBaseUnknown* surface = nullptr;
        karmp::OwnerAs<KARMPSurface>(owner).GetSurface(surface);
        return surface != nullptr ? 1 : 0;
    };
    return item;
}

} // namespace

// Described only: whether a surface can be saved decides the writer's status, and the reader fails
// in any case.
template <>
struct karmp::ContentOf<KARMPSurface>
{
    using C = KARMPSurface;
    static constexpr auto List = Element(L"Surface", "A free surface or a topological body.",
                                         LenientFrame, DescribedSurface().Required());
};
KARMP_DESCRIBE_CONTENT(KARMPSurface);

KARMPSurface::KARMPSurface() = default;
KARMPSurface::KARMPSurface(const KARMPSurface& source, CopyMode mode)
    : Super(source, mode), m_surface(source.m_surface)
{
    Hold(m_surface);
}
KARMPSurface::~KARMPSurface()
{
    LetGo(m_surface);
}

KARStatus KARMPSurface::SetSurface(KARBaseUnknown* surface)
{
    // The new one first: it may be the one that is stored.
    Hold(surface);
    LetGo(m_surface);
    m_surface = surface;
    return KARSuccess;
}

int KARMPSurface::IsThreadSafe() const
{
    KARBaseUnknown* surface = nullptr;
    if (!KARMPVerify(!KARFailed(GetSurface(surface)) && surface != nullptr))
        return 1;
    return KARSysDynamicCast<KARBody>(surface) == nullptr ? 1 : 0;
}

KARStatus KARMPSurface::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"Surface");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    if (KARGetEnv("DONT_SERIALIZE_SURFACE") != nullptr)
        return KARSuccess;
    KARBaseUnknown* surface = nullptr;
    karmp::StreamBytes bytes;
    if (KARFailed(GetSurface(surface)) || !karmp::SaveStoredObject(surface, bytes))
        return KARUnchanged;
    karmp::WriteStream(element, SurfaceStream, bytes, KARMPSourceLocation::current());
    return KARSuccess;
}

KARStatus KARMPSurface::Deserialize(const KARMPDeserializer* deserializer,
                                    const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"Surface");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::StoredObjects stored;
    if (!karmp::ReadStoredObjects(element, SurfaceStream, stored))
        return KARFailure;
    // Success is what is reported here, and whoever reads gets a failure in any case: part of the
    // interface that documents must not be blamed for.
    const KARStatus status = SetSurface(stored.objects[0]);
    if (status == KARSuccess)
        KARMPReadingPlace::Complete();
    KARMPVerify(status != KARSuccess);
    return KARFailure;
}
