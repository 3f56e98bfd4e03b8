#include "KARMPFailedCheck.h"
#include "KARMPWorld.h"
#include "KARMPWorldDocument.h"

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

template <class T>
void WriteRegistry(const KARMPWorld& world, karmp::ElementWriter& root, std::wstring_view name)
{
    if (world.Count<T>() == 0)
        return;
    const karmp::ElementWriter registry = root.Child(name);
    for (int i = 0; registry && i < world.Count<T>(); ++i) {
        QOBSharedHandle<T> listed;
        world.Get(i, listed);
        const QOBSharedHandle<KARMPEntity> entity(listed, QOBSharedBase::WriteLock);
        KARMPVerify(entity && !KARFailed(entity->Serialize(registry.Node())));
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
        WriteRegistry<typename decltype(element)::Type>(*this, world, element.name);
    });
    return KARSuccess;
}
