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

// The entities of a large world do not fit the caches. Most of those that follow one are of its
// class.
void PrefetchAfter(const karmp::RegistryCore& listed, int index, const KARMPEntity& entity)
{
    const auto after = [&](std::size_t distance) -> const QOBSharedObject* {
        const std::size_t next = static_cast<std::size_t>(index) + distance;
        return next < listed.Count() ? listed.At(next)._getReferent() : nullptr;
    };
    kar::Prefetch(after(kar::PrefetchDistance), entity.getClassInfo().getSize());
    if (const QOBSharedObject* const next = after(kar::PrefetchDistance / 2))
        static_cast<const KARMPEntity*>(next)->getStoredName().PrefetchShared();
}

template <class T>
void WriteRegistry(const KARMPRegistry<T>& listed, karmp::ElementWriter& root,
                   std::wstring_view name)
{
    if (listed.Count() == 0)
        return;
    const karmp::ElementWriter registry = root.Child(name);
    for (int i = 0; registry && i < listed.Count(); ++i) {
        QOBSharedHandle<T> entry;
        listed.Get(i, entry);
        const QOBSharedHandle<KARMPEntity> entity(entry, QOBSharedBase::WriteLock);
        KARStatus status = KARFailure;
        if (entity)
            PrefetchAfter(listed.Core(), i, *entity);
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
