#include "QOBBasicEntity.h"

#include "KARPrefetch.h"
#include "QOBBasicWorld.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace {

using Slots = std::vector<QOBSharedHandle<QOBBasicEntity>>;

// Many children do not fit the caches, so that a walk over them asks for them ahead.
template <class Visit>
void ForEachChild(const Slots& slots, const Visit& visit)
{
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        if (slot + kar::PrefetchDistance < slots.size())
            kar::Prefetch(slots[slot + kar::PrefetchDistance].get(), kar::PrefetchedBytes);
        if (slots[slot])
            visit(*slots[slot]);
    }
}

// Lets the children go, first to last.
void Release(Slots& slots)
{
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        if (slot + kar::FarPrefetchDistance < slots.size())
            kar::Prefetch(slots[slot + kar::FarPrefetchDistance].get(), sizeof(QOBSharedObject));
        slots[slot].detach();
    }
}

} // namespace

QOB_DEFINE_CLASS(QOBBasicEntity, QOBExtendibleObject);

const wchar_t QOBBasicEntity::ExternalNameSeparator = L'\\';

QOBBasicEntity::~QOBBasicEntity()
{
    releaseChildren();
}

void QOBBasicEntity::setEntityName(const std::wstring& name)
{
    m_name.Set(name);
}

const std::wstring& QOBBasicEntity::getEntityName(EntityNameMode, wchar_t) const
{
    return m_name.Get();
}

QOBSharedHandle<QOBBasicWorld> QOBBasicEntity::getWorld() const
{
    return QOBSharedHandle<QOBBasicWorld>(m_world);
}

KARStatus QOBBasicEntity::addLogicalChild(const QOBSharedHandle<QOBBasicEntity>& child)
{
    if (!child)
        return KARFailure;
    if (child == this)
        return KARFailure;
    // Only an entity with children can be an ancestor, so that placing a leaf costs no walk.
    if (child->getLogicalChildCount() > 0) {
        for (const QOBBasicEntity* above = m_parent; above != nullptr; above = above->m_parent)
            if (child == above)
                return KARFailure;
    }
    if (hasLogicalChild(child))
        return KARUnchanged;

    // The new slot first: when its allocation fails the child keeps its former one.
    if (m_children == nullptr)
        m_children = std::make_unique<Children>();
    if (m_children->slots.size() == std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("QOB basic entity: too many children");
    m_children->slots.push_back(child);
    child->leaveParent();
    child->m_parent = this;
    child->m_slot = static_cast<std::uint32_t>(m_children->slots.size() - 1);
    ++m_children->count;
    child->enterWorld(m_world);
    return KARSuccess;
}

bool QOBBasicEntity::hasLogicalChild(const QOBSharedHandle<QOBBasicEntity>& child) const
{
    return child && child->m_parent == this;
}

std::size_t QOBBasicEntity::getLogicalChildCount() const
{
    return m_children != nullptr ? m_children->count : 0;
}

void QOBBasicEntity::visitLogicalChildren(const std::function<void(QOBBasicEntity&)>& visit) const
{
    if (m_children != nullptr)
        ForEachChild(m_children->slots, visit);
}

void QOBBasicEntity::orphanObject()
{
    leaveParent();
    enterWorld(nullptr);
    releaseChildren();
    QOBExtendibleObject::orphanObject();
}

QOBSharedObject* QOBBasicEntity::_replicateObject() const
{
    const QOBCreateFunction replicate = getClassInfo().getOperations().replicate;
    return replicate != nullptr ? replicate() : nullptr;
}

QOBSharedObject* QOBBasicEntity::_duplicateObject(CopyMode mode) const
{
    const QOBDuplicateFunction duplicate = getClassInfo().getOperations().duplicate;
    return duplicate != nullptr ? duplicate(*this, mode) : nullptr;
}

std::wstring QOBBasicEntity::getEntityTypeName() const
{
    const std::string& name = getClassInfo().getName();
    return std::wstring(name.begin(), name.end());
}

void QOBBasicEntity::clearHistory() {}

double QOBBasicEntity::getSimulationTime() const
{
    return 0.0;
}

void QOBBasicEntity::resetEntity() {}

// Tells this entity and all below it. A hierarchy may be deep, and a destructor must not need
// memory, so that the walk stores nothing but where it is.
void QOBBasicEntity::enterWorld(QOBBasicWorld* world)
{
    if (m_world == world)
        return;
    QOBBasicEntity* entity = this;
    while (entity != nullptr) {
        entity->m_world = world;
        QOBBasicEntity* next = entity->childFrom(0);
        while (next == nullptr && entity != this) {
            next = entity->m_parent->childFrom(entity->m_slot + std::size_t{1});
            entity = entity->m_parent;
        }
        entity = next;
    }
}

QOBBasicEntity* QOBBasicEntity::childFrom(std::size_t slot) const
{
    if (m_children == nullptr)
        return nullptr;
    const auto& slots = m_children->slots;
    while (slot < slots.size() && !slots[slot])
        ++slot;
    return slot < slots.size() ? slots[slot].get() : nullptr;
}

// The caller holds a handle on this entity: its parent may hold the last one otherwise.
void QOBBasicEntity::leaveParent()
{
    if (m_parent == nullptr)
        return;
    QOBBasicEntity* parent = std::exchange(m_parent, nullptr);
    QOBSharedHandle<QOBBasicEntity> own = std::move(parent->m_children->slots[m_slot]);
    --parent->m_children->count;
    parent->compactChildren();
}

void QOBBasicEntity::compactChildren()
{
    auto& slots = m_children->slots;
    if (slots.size() < 16 || slots.size() < 2 * m_children->count)
        return;
    std::uint32_t next = 0;
    for (auto& child : slots) {
        if (!child)
            continue;
        child->m_slot = next;
        if (&slots[next] != &child)
            slots[next] = std::move(child);
        ++next;
    }
    slots.resize(next);
}

void QOBBasicEntity::releaseChildren()
{
    if (m_children == nullptr)
        return;
    const std::unique_ptr<Children> children = std::move(m_children);
    ForEachChild(children->slots, [](QOBBasicEntity& child) {
        child.m_parent = nullptr;
        child.enterWorld(nullptr);
    });
    Release(children->slots);
}

QOBBasicEntity::FormerChildren::~FormerChildren()
{
    for (const std::unique_ptr<Children>& family : families)
        Release(family->slots);
}

QOBBasicEntity::FormerChildren QOBBasicEntity::orphanLogicalChildren()
{
    // One entity's teardown may orphan another one, whose list of siblings is no longer where its
    // parent had it, so that all of them leave before the first is orphaned.
    FormerChildren former;
    const auto take = [&former](std::unique_ptr<Children> family) {
        if (family == nullptr)
            return;
        ForEachChild(family->slots, [](QOBBasicEntity& child) { child.m_parent = nullptr; });
        former.families.push_back(std::move(family));
    };
    take(std::move(m_children));
    for (std::size_t next = 0; next < former.families.size(); ++next) {
        ForEachChild(
            former.families[next]->slots,
            [&take](QOBBasicEntity& child) {
                take(std::move(child.m_children));
                child.orphanObject();
            });
    }
    return former;
}
