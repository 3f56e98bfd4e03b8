#include "KARMPEntity.h"

#include "KARBaseUnknown.h"
#include "KARIMPEntityLoader.h"
#include "KARMPAttributeIndex.h"
#include "KARMPContentWalk.h"
#include "KARMPOutput.h"
#include "KARMPOutputGate.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "KARUnicodeString.h"
#include "KARUuid.h"
#include "QOBBasicWorld.h"

#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPEntity, "980325BD-374E-4168-93FB-710D2C2E14A2");

using namespace std::literals;

namespace {

constexpr std::uint64_t UpdateEvent = 9;

} // namespace

template <>
struct karmp::ContentOf<KARMPEntity>
{
    using C = KARMPEntity;

    static KARStatus Identifier(const C& entity, std::wstring& identifier)
    {
        const kar::SharedText* text = nullptr;
        const KARStatus status = entity.EnsureIdentifier(text);
        if (!KARFailed(status))
            identifier = text->Copy();
        return status;
    }
    // An entity that has an identifier keeps it, which is no fault of the document.
    static void TakeIdentifier(C& entity, std::wstring_view identifier)
    {
        entity.TakeIdentifier(identifier);
    }
    static std::wstring Name(const C& entity)
    {
        return C::IsNameWritten() ? entity.getStoredName().Copy() : std::wstring();
    }
    static void TakeName(C& entity, std::wstring&& name) { entity.setEntityName(name); }
    // What a loader answers to the change is not the document's concern.
    static void TakeActivity(C& entity, bool isActive)
    {
        if (isActive)
            entity.Activate();
        else
            entity.Deactivate();
    }
    static bool HasApplicationID(const C& entity) { return !entity.m_id.IsEmpty(); }
    // Decided once a process for writing, each time anew for reading.
    static bool AreOutputsWritten(const C&)
    {
        static const bool written = !AreOutputsLeftOut();
        return written;
    }
    static bool AreOutputsRead(const C&) { return !AreOutputsLeftOut(); }

    template <auto List, class T>
    static KARStatus RemoveFrom(C& entity, const QOBSharedHandle<T>& target)
    {
        return entity.m_rare != nullptr ? ((*entity.m_rare).*List).Remove(target) : KARUnchanged;
    }
    static KARStatus RemoveElement(C& entity, const QOBSharedHandle<KARMPEntity>& element)
    {
        const KARStatus status = RemoveFrom<&C::RareMembers::aggregatedElements>(entity, element);
        if (status == KARSuccess && element->Rare().parentEntity.Handle().get() == &entity)
            element->MakeRare().parentEntity.Clear();
        return status;
    }

    // Of the getters of an attribute, the one that takes an index.
    template <class T>
    using ByIndex = KARStatus (C::*)(int, QOBSharedHandle<T>&) const;

    static constexpr ContentFrame Frame{{.nullNode = KARSuccess, .silentNull = true},
                                        {.nullNode = KARSuccess, .silentNull = true}};
    static constexpr auto List =
        Base(
            "Anything that lives in a world.", Frame,
            Attribute(Text<&Identifier>(L"id", "The identifier by which the document knows it.")
                          .Required()
                          .FixedBecause("An identifier never changes once it is given.")
                          .Through<&TakeIdentifier>()),
            Attribute(Text<&Name>(L"name", "The name for people.").Through<&TakeName>()),
            Since(R2017_1, Attribute(WordOf<&C::IsActive>(L"isActive", NoYes,
                                                          "Whether a solver takes it into account.")
                                         .KnownWordsOnly()
                                         .Through<&TakeActivity>())),
            Attribute(Text<&C::GetID>(L"entityID", "Free text of the modelling application.")
                          .Optional()
                          .When<&HasApplicationID>()
                          .Through<&C::SetID>()),
            References<&C::GetParameterCount,
                       static_cast<ByIndex<KARMPParameter>>(&C::GetParameter), &C::AddParameter>(
                L"Parameters", L"Parameter", "Numbers and texts kept with it.")
                .Removing<&RemoveFrom<&C::RareMembers::parameters, KARMPParameter>>(),
            References<&C::GetStateCount, static_cast<ByIndex<KARMPState>>(&C::GetState),
                       &C::AddState>(L"States", L"State", "Attributes that describe its state.")
                .Removing<&RemoveFrom<&C::RareMembers::states, KARMPState>>(),
            References<&C::GetOutputCount, static_cast<ByIndex<KARMPOutput>>(&C::GetOutput),
                       &C::AddOutput>(L"Outputs", L"Output", "Results that a solver keeps with it.")
                .Removing<&RemoveFrom<&C::RareMembers::outputs, KARMPOutput>>()
                .When<&AreOutputsWritten>()
                .WhenRead<&AreOutputsRead>(),
            References<&C::GetAggregatedElementCount, &C::GetAggregatedElement,
                       &C::AddAggregatedElement>(L"AggregatedElements", L"Element",
                                                 "The entities that it is made of.")
                .Removing<&RemoveElement>())
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPEntity);

constinit const KARMPEntity::NoMembers KARMPEntity::s_none;

KARMPEntity::KARMPEntity() = default;

KARMPEntity::KARMPEntity(const KARMPEntity& source, CopyMode mode)
    : QOBBasicEntity(source, mode),
      m_buildingMode(source.m_buildingMode),
      m_rare(source.m_rare != nullptr ? source.m_rare->Copied() : nullptr),
      m_id(source.m_id),
      m_isActive(source.m_isActive)
{}

KARMPEntity::~KARMPEntity()
{
    delete m_loader;
    m_loader = nullptr;
    if (m_rare == nullptr)
        return;
    if (m_rare->modelObject != nullptr)
        m_rare->modelObject->Release();
    m_rare->modelObject = nullptr;
    m_rare->uniqueId = nullptr;
    m_rare->visuObject = nullptr;
    ClearContainersBase();
}

std::unique_ptr<KARMPEntity::RareMembers> KARMPEntity::RareMembers::Copied() const
{
    auto copy = std::make_unique<RareMembers>();
    copy->modelObject = modelObject;
    copy->visuObject = visuObject;
    copy->parentEntity = parentEntity;
    copy->uniqueId = uniqueId;
    if (modelObject != nullptr)
        modelObject->AddRef();
    return copy;
}

KARMPEntity::RareMembers& KARMPEntity::MakeRare()
{
    if (m_rare == nullptr)
        m_rare = std::make_unique<RareMembers>();
    return *m_rare;
}

void KARMPEntity::orphanObject()
{
    if (isOrphaned())
        return;
    // Both are empty here; a family that links to others overrides them and nothing else.
    RemoveParent();
    ClearContainers();
    orphanMembers();
    QOBBasicEntity::orphanObject();
}

void KARMPEntity::orphanMembers()
{
    ClearContainersBase();
}

void KARMPEntity::ClearContainersBase()
{
    if (m_rare == nullptr)
        return;
    m_rare->parameters.Clear();
    m_rare->states.Clear();
    m_rare->outputs.Clear();
    m_rare->aggregatedElements.Clear();
    m_rare->parentEntity.Clear();
}

void KARMPEntity::ClearContainers() {}

KARStatus KARMPEntity::RemoveParent()
{
    return KARSuccess;
}

KARStatus KARMPEntity::SetBuildingMode(KARMPBuildingMode::Enum mode)
{
    m_buildingMode = mode;
    return KARSuccess;
}

KARStatus KARMPEntity::GetBuildingMode(KARMPBuildingMode::Enum& mode) const
{
    mode = m_buildingMode;
    return KARSuccess;
}

KARStatus KARMPEntity::SetLoader(KARIMPEntityLoader* loader)
{
    m_loader = loader;
    return KARSuccess;
}

KARStatus KARMPEntity::GetLoader(KARIMPEntityLoader*& loader) const
{
    loader = m_loader;
    return KARSuccess;
}

KARStatus KARMPEntity::IsInWorld(bool& inWorld) const
{
    inWorld = static_cast<bool>(getWorld());
    return KARSuccess;
}

KARStatus KARMPEntity::GetWorld(QOBSharedHandle<KARMPWorld>& world) const
{
    const QOBSharedHandle<QOBBasicWorld> basicWorld(getWorld(), QOBSharedBase::WriteLock);
    if (!KARMPVerify(static_cast<bool>(basicWorld)))
        return KARFailure;
    if (!KARMPVerify(basicWorld->hasExtension(KARMPWorld::ClassID())))
        return KARFailure;
    world = QOBSharedHandle<KARMPWorld>(basicWorld->getExtension(KARMPWorld::ClassID()));
    return KARMPVerify(static_cast<bool>(world)) ? KARSuccess : KARFailure;
}

KARStatus KARMPEntity::Activate()
{
    if (m_isActive)
        return KARSuccess;
    m_isActive = true;
    return m_loader != nullptr ? m_loader->OnActivate() : KARSuccess;
}

KARStatus KARMPEntity::Deactivate()
{
    if (!m_isActive)
        return KARSuccess;
    m_isActive = false;
    return m_loader != nullptr ? m_loader->OnDeactivate() : KARSuccess;
}

bool KARMPEntity::IsActive() const
{
    return m_isActive;
}

int KARMPEntity::IsThreadSafe() const
{
    return 1;
}

KARStatus KARMPEntity::SetModelObject(KARBaseUnknown* object)
{
    if (!KARMPVerify(object != nullptr))
        return KARFailure;
    // The new reference first: the object may be the one that is held.
    KARBaseUnknown*& held = MakeRare().modelObject;
    object->AddRef();
    if (held != nullptr)
        held->Release();
    held = object;
    return KARSuccess;
}

KARStatus KARMPEntity::GetModelObject(KARBaseUnknown*& object) const
{
    object = Rare().modelObject;
    if (object == nullptr)
        return KARFailure;
    object->AddRef();
    return KARSuccess;
}

KARStatus KARMPEntity::GetMPVisuObject(KARBaseUnknown*& object) const
{
    object = Rare().visuObject;
    if (object != nullptr)
        object->AddRef();
    return KARSuccess;
}

KARStatus KARMPEntity::SetMPVisuObject(const KARBaseUnknown* object)
{
    // The getter counts a reference, which a const object could not take.
    if (object != nullptr || m_rare != nullptr)
        MakeRare().visuObject = const_cast<KARBaseUnknown*>(object);
    return KARSuccess;
}

KARStatus KARMPEntity::AddParameter(const QOBSharedHandle<KARMPParameter>& parameter)
{
    return MakeRare().parameters.Add(parameter);
}

KARStatus KARMPEntity::AddState(const QOBSharedHandle<KARMPState>& state)
{
    return MakeRare().states.Add(state);
}

KARStatus KARMPEntity::AddOutput(const QOBSharedHandle<KARMPOutput>& output)
{
    return MakeRare().outputs.Add(output);
}

KARStatus KARMPEntity::AddAggregatedElement(const QOBSharedHandle<KARMPEntity>& element)
{
    const KARStatus status = MakeRare().aggregatedElements.Add(element);
    if (status != KARSuccess)
        return status;
    const QOBSharedHandle<KARMPEntity> child(element, QOBSharedBase::WriteLock);
    const QOBSharedHandle<KARMPEntity> self(this, QOBSharedBase::NoLock);
    return child->MakeRare().parentEntity.Set(self);
}

KARStatus KARMPEntity::SetParentEntity(const QOBSharedHandle<KARMPEntity>& parent)
{
    return MakeRare().parentEntity.Set(parent);
}

KARStatus KARMPEntity::SetID(const KARString& id)
{
    if (m_isIndexed && IDText() != id.Text()) {
        karmp::AttributeIndex::Outdate();
        m_isIndexed = false;
    }
    m_id = id;
    return KARSuccess;
}

KARStatus KARMPEntity::SetUniqueId(const KARUuid* uniqueId)
{
    if (uniqueId != nullptr || m_rare != nullptr)
        MakeRare().uniqueId = uniqueId;
    return KARSuccess;
}

KARStatus KARMPEntity::NotifyUpdate() const
{
    postEvent(UpdateEvent);
    return KARSuccess;
}

KARStatus KARMPEntity::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteContent(ClassContent(), this, serializer, nullptr);
}

KARStatus KARMPEntity::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    return karmp::ReadContent(ClassContent(), this, deserializer, entities, nullptr);
}
