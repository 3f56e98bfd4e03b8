#include "KARMPWorld.h"

#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPFailedCheck.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"
#include "KARWBFactory.h"
#include "QOBBasicWorld.h"

namespace {

const QOBUUID s_worldID("55300D4C-9209-42f6-B898-33199D1A691B");
const QOBClassInfo s_worldInfo(typeid(KARMPWorld*), sizeof(KARMPWorld), &KARMPWorld::_CreateObject,
                               &QOBExtensionObject::ClassInfo(), nullptr);

} // namespace

const QOBUUID& KARMPWorld::ClassID()
{
    return s_worldID;
}

const QOBClassInfo& KARMPWorld::ClassInfo()
{
    return s_worldInfo;
}

std::string KARMPWorld::ClassName()
{
    return ClassInfo().getName();
}

std::string KARMPWorld::getClassName() const
{
    return ClassInfo().getName();
}

const QOBClassInfo& KARMPWorld::getClassInfo() const
{
    return ClassInfo();
}

const QOBUUID& KARMPWorld::getClassID() const
{
    return ClassID();
}

bool KARMPWorld::isInstanceOf(const QOBClassInfo& info) const
{
    return ClassInfo().isInstanceOf(info);
}

bool KARMPWorld::isDerivedFrom(const QOBClassInfo& info) const
{
    return ClassInfo().isDerivedFrom(info);
}

QOBSharedHandle<KARMPWorld> KARMPWorld::create(QOBSharedHandle<QOBBasicWorld> basicWorld)
{
    return CreateObject(std::move(basicWorld));
}

QOBSharedHandle<KARMPWorld> KARMPWorld::CreateObject(QOBSharedHandle<QOBBasicWorld> basicWorld)
{
    QOBSharedHandle<KARMPWorld> world(new KARMPWorld, QOBSharedBase::NoLock);
    world->bindExtension(basicWorld);
    return world;
}

QOBSharedHandle<KARMPWorld> KARMPWorld::clone(QOBSharedHandle<KARMPWorld> source, CopyMode mode,
                                              QOBSharedHandle<QOBBasicWorld> basicWorld)
{
    return CloneObject({source, QOBSharedBase::NoLock}, mode, std::move(basicWorld));
}

QOBSharedHandle<KARMPWorld> KARMPWorld::CloneObject(QOBSharedHandle<KARMPWorld> source,
                                                    CopyMode mode,
                                                    QOBSharedHandle<QOBBasicWorld> basicWorld)
{
    const QOBSharedHandle<KARMPWorld> locked(source, QOBSharedBase::ReadLock);
    if (!locked)
        return {};
    const QOBSharedObject* copy = locked->duplicateObject(mode, basicWorld);
    if (copy == nullptr)
        return {};
    QOBSharedHandle<KARMPWorld> world(copy, QOBSharedBase::NoLock);
    copy->removeReference();
    world->bindExtension(basicWorld);
    return world;
}

void KARMPWorld::destroy(QOBSharedHandle<KARMPWorld>& world)
{
    DestroyObject({world, QOBSharedBase::NoLock});
    world.detach();
}

void KARMPWorld::DestroyObject(QOBSharedHandle<KARMPWorld> world)
{
    const QOBSharedHandle<KARMPWorld> locked(world, QOBSharedBase::WriteLock);
    if (locked)
        locked->orphanObject();
}

QOBSharedObject* KARMPWorld::_CreateObject()
{
    QOBSharedObject* world = new KARMPWorld;
    world->addReference();
    return world;
}

QOBSharedObject* KARMPWorld::_replicateObject() const
{
    return _CreateObject();
}

QOBSharedObject* KARMPWorld::_duplicateObject(CopyMode mode) const
{
    QOBSharedObject* copy = new KARMPWorld(*this, mode);
    copy->addReference();
    return copy;
}

KARMPWorld::KARMPWorld()
{
    CreateGlobals();
    m_equationFactory = std::make_shared<KARWBFactory>();
}

void KARMPWorld::CreateGlobals()
{
    m_globalBody = KARMPBody::create(L"GlobalBody");
    m_globalAxisSystem = KARMPAxisSystem::create(L"GlobalAxisSystem");
    // Before they hold one another, so that they are freed when an allocation fails.
    m_ownGlobals.body = m_globalBody;
    m_ownGlobals.axisSystem = m_globalAxisSystem;
    const QOBSharedHandle<KARMPBody> body(m_globalBody, QOBSharedBase::WriteLock);
    const QOBSharedHandle<KARMPGeometry> axisSystem(m_globalAxisSystem, QOBSharedBase::WriteLock);
    if (KARMPVerify(body && axisSystem)) {
        body->AddGeometry(axisSystem);
        axisSystem->SetBody(body);
        body->Fix();
        Add(body);
        Add(axisSystem);
    }

    m_globalTime = KARMPVariable::create(L"GlobalTime");
    const QOBSharedHandle<KARMPVariable> time(m_globalTime, QOBSharedBase::WriteLock);
    if (KARMPVerify(static_cast<bool>(time))) {
        time->SetPhysicalQuantity(KARMPPhysicalQuantity::Time);
        Add(time);
    }
}

KARMPWorld::KARMPWorld(const KARMPWorld& source, CopyMode)
    : QOBExtensionObject(source),
      m_ownGlobals(source.m_ownGlobals),
      m_lastEntityId(source.m_lastEntityId),
      m_linearTolerance(source.m_linearTolerance),
      m_angularTolerance(source.m_angularTolerance),
      m_origin(source.m_origin),
      m_size(source.m_size),
      m_gravity(source.m_gravity),
      m_registries(source.m_registries),
      m_globalBody(source.m_globalBody),
      m_globalAxisSystem(source.m_globalAxisSystem),
      m_globalTime(source.m_globalTime),
      m_equationFactory(source.m_equationFactory),
      m_lengthUnit()
{}

KARMPWorld::~KARMPWorld()
{
    m_loader = nullptr;
    m_equationFactory.reset();
    if (m_table != nullptr)
        m_table->Release();
    m_table = nullptr;
    m_groundBody.detach();
    m_globalTime.detach();
    m_globalAxisSystem.detach();
    m_globalBody.detach();
}

KARMPWorld::OwnGlobals::OwnGlobals() = default;
KARMPWorld::OwnGlobals::OwnGlobals(const OwnGlobals& source) = default;

KARMPWorld::OwnGlobals::~OwnGlobals()
{
    // This handle and the other global: while anybody else holds one of the two, they stay as they
    // are.
    constexpr unsigned int Unreachable = 2;
    if (body && axisSystem && body->getReferenceCount() == Unreachable &&
        axisSystem->getReferenceCount() == Unreachable)
        KARMPAxisSystem::destroy(axisSystem);
}

void KARMPWorld::orphanObject()
{
    if (isOrphaned())
        return;
    orphanMembers();
    QOBExtensionObject::orphanObject();
}

void KARMPWorld::orphanMembers()
{
    RemoveGlobals();
}

KARStatus KARMPWorld::RemoveGlobals()
{
    if (m_globalBody && m_globalAxisSystem)
        KARMPAxisSystem::destroy(m_globalAxisSystem);
    return KARSuccess;
}

KARStatus KARMPWorld::SetOrigin(const KARMathPoint& origin)
{
    m_origin = origin;
    return KARSuccess;
}

KARStatus KARMPWorld::GetOrigin(KARMathPoint& origin) const
{
    origin = m_origin;
    return KARSuccess;
}

KARStatus KARMPWorld::SetSize(double x, double y, double z)
{
    m_size = {x, y, z};
    return KARSuccess;
}

KARStatus KARMPWorld::GetSize(double& x, double& y, double& z) const
{
    x = m_size[0];
    y = m_size[1];
    z = m_size[2];
    return KARSuccess;
}

KARStatus KARMPWorld::SetGravity(const KARMathVector& gravity)
{
    m_gravity = gravity;
    return KARSuccess;
}

KARStatus KARMPWorld::GetGravity(KARMathVector& gravity) const
{
    gravity = m_gravity;
    return KARSuccess;
}

KARStatus KARMPWorld::GetWBFactory(KARWBFactory*& factory) const
{
    factory = m_equationFactory.get();
    return KARMPVerify(factory != nullptr) ? KARSuccess : KARFailure;
}

KARStatus KARMPWorld::SetLinearTolerance(double tolerance)
{
    m_linearTolerance = tolerance;
    return KARSuccess;
}

KARStatus KARMPWorld::SetAngularTolerance(double tolerance)
{
    m_angularTolerance = tolerance;
    return KARSuccess;
}

KARStatus KARMPWorld::GetLengthUnit(KARMPUnit::Enum& unit) const
{
    unit = m_lengthUnit;
    return KARSuccess;
}

KARStatus KARMPWorld::SetLengthUnit(KARMPUnit::Enum unit)
{
    m_lengthUnit = unit;
    return KARSuccess;
}

KARStatus KARMPWorld::GetGlobalBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_globalBody;
    return KARSuccess;
}

KARStatus KARMPWorld::SetGlobalBody(const QOBSharedHandle<KARMPBody>& body)
{
    m_globalBody = body;
    return KARSuccess;
}

KARStatus KARMPWorld::GetGlobalAxisSystem(QOBSharedHandle<KARMPAxisSystem>& axisSystem) const
{
    axisSystem = m_globalAxisSystem;
    return KARSuccess;
}

KARStatus KARMPWorld::SetGlobalAxisSystem(const QOBSharedHandle<KARMPAxisSystem>& axisSystem)
{
    m_globalAxisSystem = axisSystem;
    return KARSuccess;
}

KARStatus KARMPWorld::GetGlobalTime(QOBSharedHandle<KARMPVariable>& time) const
{
    time = m_globalTime;
    return KARSuccess;
}

KARStatus KARMPWorld::SetGlobalTime(const QOBSharedHandle<KARMPVariable>& time)
{
    m_globalTime = time;
    return KARSuccess;
}

KARStatus KARMPWorld::GetGroundBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_groundBody;
    return KARSuccess;
}

KARStatus KARMPWorld::SetGroundBody(const QOBSharedHandle<KARMPBody>& body)
{
    m_groundBody = body;
    return KARSuccess;
}

KARStatus KARMPWorld::SetLoader(KARBaseUnknown* loader, int kind)
{
    if (loader == nullptr && kind != 0)
        return KARUnchanged;
    m_loader = loader;
    m_loaderKind = kind;
    return KARSuccess;
}

KARStatus KARMPWorld::GetLoader(KARBaseUnknown*& loader, int& kind) const
{
    if (m_loader == nullptr)
        return KARUnchanged;
    loader = m_loader;
    kind = m_loaderKind;
    return KARSuccess;
}

KARStatus KARMPWorld::SetTable(KARBaseUnknown* table)
{
    if (table == nullptr)
        return KARUnchanged;
    m_table = table;
    m_table->AddRef();
    return KARSuccess;
}

KARStatus KARMPWorld::GetTable(KARBaseUnknown*& table) const
{
    if (m_table == nullptr)
        return KARUnchanged;
    table = m_table;
    table->AddRef();
    return KARSuccess;
}

template <>
KARStatus KARMPWorld::Add(const QOBSharedHandle<KARMPValue>& value)
{
    PlaceValue(value);
    return Registry<KARMPValue>().Add(value);
}

template <>
KARStatus KARMPWorld::Add(KARBaseUnknown_var key1, KARBaseUnknown_var key2,
                          const QOBSharedHandle<KARMPValue>& value)
{
    PlaceValue(value);
    return Registry<KARMPValue>().Add(key1, key2, value);
}

// A value finds its world through the entity that the world extends, under which it stands.
void KARMPWorld::PlaceValue(const QOBSharedHandle<KARMPValue>& value)
{
    const QOBSharedHandle<QOBBasicEntity> parent(getExtendible(), QOBSharedBase::WriteLock);
    if (KARMPVerify(static_cast<bool>(parent)) && !parent->hasLogicalChild(value))
        parent->addLogicalChild(value);
}

KARStatus KARMPWorld::EmptyWorld()
{
    karmp::Families::ForEach(
        [this](auto family) { EmptyRegistry<typename decltype(family)::Type>(); });
    return KARSuccess;
}
