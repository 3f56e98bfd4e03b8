#include "KARMPFailedCheck.h"
#include "KARMPWorld.h"
#include "KARMPWorldDocument.h"
#include "KARPrefetch.h"

namespace {

// A component that cannot be added passes without a report of its own.
void WriteTriple(KARMPSerializer& world, std::wstring_view name, const karmp::Names<3>& names,
                 const std::array<double, 3>& values)
{
    KARMPSerializer* element = nullptr;
    if (KARFailed(world.AddElement(name, element)))
        return;
    for (std::size_t i = 0; i < names.size(); ++i) {
        KARMPSerializer* component = nullptr;
        element->AddElement(names[i], component, values[i]);
    }
}

// The entities of a large world do not fit the caches.
void PrefetchEntity(const karmp::RegistryCore& listed, std::size_t index)
{
    constexpr std::size_t usualSize = 640;
    if (index < listed.Count())
        kar::Prefetch(listed.At(index)._getReferent(), usualSize);
}

template <class T>
void WriteRegistry(const KARMPRegistry<T>& listed, karmp::ElementWriter& root,
                   std::wstring_view name)
{
    if (listed.Count() == 0)
        return;
    const karmp::ElementWriter registry = root.Child(name);
    for (int i = 0; registry && i < listed.Count(); ++i) {
        PrefetchEntity(listed.Core(), static_cast<std::size_t>(i) + kar::PrefetchDistance);
        QOBSharedHandle<T> entry;
        listed.Get(i, entry);
        const QOBSharedHandle<KARMPEntity> entity(entry, QOBSharedBase::WriteLock);
        KARStatus status = KARFailure;
        if (entity && !registry.Node()->WriteEntity(*entity, status))
            status = entity->Serialize(registry.Node());
        KARMPVerify(!KARFailed(status));
        registry.Node()->ChildrenComplete();
    }
    root.Node()->ChildrenComplete();
}

} // namespace

KARStatus KARMPWorld::Serialize(KARMPSerializer* serializer) const
{
    KARMPSerializer* node = nullptr;
    if (serializer == nullptr || KARFailed(serializer->AddElement(karmp::WorldElement, node)))
        return KARFailure;

    karmp::ElementWriter world(node);
    world.Attribute(karmp::LinearTolerance, m_linearTolerance);
    world.Attribute(karmp::AngularTolerance, m_angularTolerance);
    WriteTriple(*node, karmp::Origin, karmp::OriginNames,
                {m_origin.GetX(), m_origin.GetY(), m_origin.GetZ()});
    WriteTriple(*node, karmp::Size, karmp::SizeNames, m_size);
    WriteTriple(*node, karmp::Gravity, karmp::GravityNames,
                {m_gravity.GetX(), m_gravity.GetY(), m_gravity.GetZ()});

    if (karmp::ElementWriter globals = world.Child(karmp::Globals)) {
        globals.Reference(karmp::GlobalBody, m_globalBody);
        globals.Reference(karmp::GlobalAxisSystem, m_globalAxisSystem);
        globals.Reference(karmp::GlobalTime, m_globalTime);
    }
    // The tree of a large world is many times the size of its text, so it need not be held as a
    // whole.
    node->ChildrenComplete();
    karmp::ForEachRegistryElement([&](auto element) {
        WriteRegistry(Registry<typename decltype(element)::Type>(), world, element.name);
    });
    return KARSuccess;
}
