#include "QOBSharedObject.h"

#include "KARSmallMemory.h"
#include "QOBExtension.h"

#include <new>
#include <vector>

namespace {

const QOBClassInfo s_QOBDynamicObjectInfo(typeid(QOBDynamicObject*), sizeof(QOBDynamicObject),
                                          nullptr, nullptr, nullptr);

using ObjectList = std::vector<const QOBCountedObject*>;

// False, with nothing changed, when the allocation fails.
bool Append(ObjectList& list, const QOBCountedObject* object) noexcept
{
    try {
        list.push_back(object);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

void* QOBDynamicObject::operator new(std::size_t size)
{
    return kar::AllocateSmall(size);
}

void QOBDynamicObject::operator delete(void* memory, std::size_t size) noexcept
{
    kar::FreeSmall(memory, size);
}

void QOBDynamicObject::operator delete[](void* memory, std::size_t) noexcept
{
    ::operator delete[](memory);
}

const QOBClassInfo& QOBDynamicObject::ClassInfo()
{
    return s_QOBDynamicObjectInfo;
}

QOBDynamicObject::~QOBDynamicObject() = default;

std::string QOBDynamicObject::getClassName() const
{
    return ClassInfo().getName();
}

const QOBClassInfo& QOBDynamicObject::getClassInfo() const
{
    return ClassInfo();
}

bool QOBDynamicObject::isInstanceOf(const QOBClassInfo& info) const
{
    return ClassInfo().isInstanceOf(info);
}

bool QOBDynamicObject::isDerivedFrom(const QOBClassInfo& info) const
{
    return ClassInfo().isDerivedFrom(info);
}

void QOBDynamicObject::orphanObject() {}

QOBSharedObject* QOBDynamicObject::_replicateObject() const
{
    return nullptr;
}

QOBSharedObject* QOBDynamicObject::_duplicateObject(CopyMode) const
{
    return nullptr;
}

QOBSharedObject* QOBDynamicObject::replicateObject() const
{
    return _replicateObject();
}

QOBSharedObject* QOBDynamicObject::duplicateObject(CopyMode mode) const
{
    return _duplicateObject(mode);
}

const QOBUUID& QOBDynamicObject::getClassID() const
{
    static const QOBUUID none("");
    return none;
}

QOB_DEFINE_CLASS(QOBCountedObject, QOBDynamicObject);

QOBCountedObject::~QOBCountedObject() = default;

void QOBCountedObject::firstReferenceOfHosted() const noexcept
{
    static_cast<const QOBExtensionObject*>(this)->m_host->addReference();
}

void QOBCountedObject::lastReferenceGone(std::uint32_t count) const noexcept
{
    if ((count & HostedBit) != 0)
        static_cast<const QOBExtensionObject*>(this)->m_host->removeReference();
    else
        destroy(this);
}

// A destructor releases handles and so may destroy further objects. Past a depth that no ordinary
// model reaches these wait for their turn, so that a long chain of handles cannot overflow the
// stack. The list of them is the outermost call's own: handles with static storage are destroyed
// after all that has thread storage.
void QOBCountedObject::destroy(const QOBCountedObject* object) noexcept
{
    constexpr int MaximumDepth = 64;
    thread_local int depth = 0;
    thread_local ObjectList* waiting = nullptr;

    object->m_count.store(DyingCount, std::memory_order_relaxed);
    if (depth >= MaximumDepth && Append(*waiting, object))
        return;
    ++depth;
    if (depth == 1) {
        ObjectList later;
        waiting = &later;
        delete object;
        while (!later.empty()) {
            const QOBCountedObject* next = later.back();
            later.pop_back();
            delete next;
        }
    } else {
        delete object;
    }
    --depth;
}

QOB_DEFINE_CLASS(QOBSharedObject, QOBCountedObject);

QOBSharedObject::~QOBSharedObject() = default;

void QOBSharedObject::orphanObject()
{
    m_orphaned = true;
}
