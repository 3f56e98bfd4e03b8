#include "KARMPEntity.h"

#include "KARBaseUnknown.h"
#include "KARIMPEntityLoader.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPWorld.h"
#include "KARProcessServices.h"
#include "KARTextConversion.h"
#include "KARUnicodeString.h"
#include "KARUuid.h"
#include "QOBBasicWorld.h"

#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPEntity, "980325BD-374E-4168-93FB-710D2C2E14A2");

using namespace std::literals;

namespace {

constexpr std::uint64_t UpdateEvent = 9;

// The variables count as set whatever their value.
bool IsSet(const char* variable)
{
    return KARGetEnv(variable) != nullptr;
}

} // namespace

KARMPEntity::KARMPEntity() = default;

KARMPEntity::KARMPEntity(const KARMPEntity& source, CopyMode mode)
    : QOBBasicEntity(source, mode),
      m_isActive(source.m_isActive),
      m_buildingMode(source.m_buildingMode),
      m_modelObject(source.m_modelObject),
      m_visuObject(source.m_visuObject),
      m_parentEntity(source.m_parentEntity),
      m_id(source.m_id != nullptr ? std::make_unique<const KARString>(*source.m_id) : nullptr),
      m_uniqueId(source.m_uniqueId)
{
    if (m_modelObject != nullptr)
        m_modelObject->AddRef();
}

KARMPEntity::~KARMPEntity()
{
    delete m_loader;
    m_loader = nullptr;
    if (m_modelObject != nullptr)
        m_modelObject->Release();
    m_modelObject = nullptr;
    m_identifier.reset();
    m_uniqueId = nullptr;
    m_visuObject = nullptr;
    ClearContainersBase();
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
    m_parameters.Clear();
    m_states.Clear();
    m_outputs.Clear();
    m_aggregatedElements.Clear();
    m_parentEntity.detach();
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
    object->AddRef();
    if (m_modelObject != nullptr)
        m_modelObject->Release();
    m_modelObject = object;
    return KARSuccess;
}

KARStatus KARMPEntity::GetModelObject(KARBaseUnknown*& object) const
{
    object = m_modelObject;
    if (object == nullptr)
        return KARFailure;
    object->AddRef();
    return KARSuccess;
}

KARStatus KARMPEntity::GetMPVisuObject(KARBaseUnknown*& object) const
{
    object = m_visuObject;
    if (object != nullptr)
        object->AddRef();
    return KARSuccess;
}

KARStatus KARMPEntity::SetMPVisuObject(const KARBaseUnknown* object)
{
    // Handing it out counts a reference, which a const object could not take.
    m_visuObject = const_cast<KARBaseUnknown*>(object);
    return KARSuccess;
}

KARStatus KARMPEntity::AddParameter(const QOBSharedHandle<KARMPParameter>& parameter)
{
    return m_parameters.Add(parameter);
}

KARStatus KARMPEntity::AddState(const QOBSharedHandle<KARMPState>& state)
{
    return m_states.Add(state);
}

KARStatus KARMPEntity::AddOutput(const QOBSharedHandle<KARMPOutput>& output)
{
    return m_outputs.Add(output);
}

KARStatus KARMPEntity::AddAggregatedElement(const QOBSharedHandle<KARMPEntity>& element)
{
    const KARStatus status = m_aggregatedElements.Add(element);
    if (status != KARSuccess)
        return status;
    const QOBSharedHandle<KARMPEntity> child(element, QOBSharedBase::WriteLock);
    const QOBSharedHandle<KARMPEntity> self(this, QOBSharedBase::NoLock);
    if (!KARMPVerify(child && self))
        return KARFailure;
    child->m_parentEntity = self;
    return KARSuccess;
}

KARStatus KARMPEntity::GetParameter(int index, QOBSharedHandle<KARMPParameter>& parameter) const
{
    return m_parameters.Get(index, parameter);
}

KARStatus KARMPEntity::GetState(int index, QOBSharedHandle<KARMPState>& state) const
{
    return m_states.Get(index, state);
}

KARStatus KARMPEntity::GetOutput(int index, QOBSharedHandle<KARMPOutput>& output) const
{
    return m_outputs.Get(index, output);
}

KARStatus KARMPEntity::GetAggregatedElement(int index, QOBSharedHandle<KARMPEntity>& element) const
{
    return m_aggregatedElements.Get(index, element);
}

KARStatus KARMPEntity::GetParentEntity(QOBSharedHandle<KARMPEntity>& parent) const
{
    parent = m_parentEntity;
    return parent ? KARSuccess : KARFailure;
}

KARStatus KARMPEntity::SetParentEntity(const QOBSharedHandle<KARMPEntity>& parent)
{
    if (!KARMPVerify(static_cast<bool>(parent)))
        return KARFailure;
    m_parentEntity = parent;
    return KARSuccess;
}

KARStatus KARMPEntity::SetID(const KARString& id)
{
    m_id = id.IsEmpty() ? nullptr : std::make_unique<const KARString>(id);
    return KARSuccess;
}

KARStatus KARMPEntity::SetUniqueId(const KARUuid* uniqueId)
{
    m_uniqueId = uniqueId;
    return KARSuccess;
}

KARStatus KARMPEntity::NotifyUpdate() const
{
    postEvent(UpdateEvent);
    return KARSuccess;
}

KARStatus KARMPEntity::Serialize(KARMPSerializer* serializer) const
{
    if (serializer == nullptr)
        return KARSuccess;
    static const bool nameLeftOut = IsSet("NO_MP_NAME_FOR_SERIALIZATION");
    static const bool outputsWritten = IsSet("MOT_DUMP_OUTPUTS");

    karmp::ElementWriter element(serializer);
    const std::wstring* identifier = nullptr;
    if (KARMPVerify(!KARFailed(EnsureIdentifier(identifier))))
        element.Attribute(L"id", *identifier);
    element.Attribute(L"name", nameLeftOut ? std::wstring_view() : getEntityName());
    if (karmp::AtLeast(element.Version(), karmp::R2017_1))
        element.Attribute(L"isActive", std::wstring_view(IsActive() ? L"yes" : L"no"));
    if (m_id != nullptr)
        element.Attribute(L"entityID", kar::ToWide(m_id->Text()));

    element.References(L"Parameters", L"Parameter", m_parameters);
    element.References(L"States", L"State", m_states);
    if (outputsWritten)
        element.References(L"Outputs", L"Output", m_outputs);
    element.References(L"AggregatedElements", L"Element", m_aggregatedElements);
    return KARSuccess;
}

KARStatus KARMPEntity::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    if (deserializer == nullptr)
        return KARSuccess;
    using karmp::Absent;
    karmp::ElementReader element(deserializer);
    std::wstring identifier;
    if (element.Attribute(L"id", identifier, Absent::ReportAndKeep))
        TakeIdentifier(std::move(identifier));
    std::wstring name;
    if (element.Attribute(L"name", name, Absent::ReportAndKeep))
        setEntityName(std::move(name));
    karmp::ReadText active;
    if (karmp::AtLeast(element.Version(), karmp::R2017_1) &&
        element.Attribute(L"isActive", active, Absent::ReportAndKeep)) {
        if (active.View() == L"yes"sv)
            Activate();
        else if (active.View() == L"no"sv)
            Deactivate();
    }
    std::wstring text;
    if (element.Attribute(L"entityID", text, Absent::Keep))
        SetID(KARString(kar::ToUtf8(text)));

    element.References<KARMPParameter>(
        L"Parameters", L"Parameter", entities,
        [this](const auto& entry) { return AddParameter(entry); });
    element.References<KARMPState>(L"States", L"State", entities,
                                   [this](const auto& entry) { return AddState(entry); });
    // Unlike in Serialize, the variable is looked up afresh on every call that it matters to.
    if (element.Has(L"Outputs") && IsSet("MOT_DUMP_OUTPUTS"))
        element.References<KARMPOutput>(
            L"Outputs", L"Output", entities,
            [this](const auto& entry) { return AddOutput(entry); });
    element.References<KARMPEntity>(L"AggregatedElements", L"Element", entities,
                                    [this](const auto& e) { return AddAggregatedElement(e); });
    return KARSuccess;
}
