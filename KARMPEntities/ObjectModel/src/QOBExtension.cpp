#include "QOBExtension.h"

#include <algorithm>

QOB_DEFINE_CLASS(QOBExtendibleObject, QOBNotificationAgent);

QOBExtendibleObject::~QOBExtendibleObject()
{
    deleteExtensions();
}

void QOBExtendibleObject::deleteExtensions() noexcept
{
    if (m_extensions == nullptr)
        return;
    // From here on the extension is an object under destruction of its own, so that handles on it
    // that its destructor makes no longer reach for the host.
    for (QOBExtensionObject* extension : *m_extensions) {
        extension->m_host = nullptr;
        extension->m_count.store(DyingCount, std::memory_order_relaxed);
        delete extension;
    }
    m_extensions.reset();
}

QOBExtensionObject* QOBExtendibleObject::find(const QOBUUID& id) const
{
    if (m_extensions == nullptr)
        return nullptr;
    const auto found =
        std::find_if(m_extensions->begin(), m_extensions->end(),
                     [&id](const QOBExtensionObject* e) { return e->getClassID() == id; });
    return found != m_extensions->end() ? *found : nullptr;
}

bool QOBExtendibleObject::hasExtension(const QOBUUID& id) const
{
    return find(id) != nullptr;
}

QOBSharedHandle<QOBExtensionObject> QOBExtendibleObject::getExtension(const QOBUUID& id) const
{
    return QOBSharedHandle<QOBExtensionObject>(find(id));
}

void QOBExtendibleObject::orphanExtensions()
{
    if (m_extensions == nullptr)
        return;
    for (std::size_t i = 0; i < m_extensions->size(); ++i)
        (*m_extensions)[i]->orphanObject();
}

QOB_DEFINE_CLASS(QOBExtensionObject, QOBNotificationAgent);

QOBExtensionObject::QOBExtensionObject(const QOBExtensionObject& source)
    : QOBNotificationAgent(source)
{}

QOBExtensionObject::~QOBExtensionObject() = default;

KARStatus QOBExtensionObject::bindExtension(const QOBSharedHandle<QOBExtendibleObject>& host)
{
    if (!host || m_host != nullptr)
        return KARFailure;
    QOBExtendibleObject* referent = host.get();
    if (referent->m_extensions == nullptr)
        referent->m_extensions = std::make_unique<QOBExtendibleObject::Extensions>();
    referent->m_extensions->push_back(this);
    m_host = referent;
    if ((m_count.fetch_or(HostedBit, std::memory_order_acq_rel) & CountMask) != 0)
        referent->addReference();
    return KARSuccess;
}

QOBSharedHandle<QOBExtendibleObject> QOBExtensionObject::getExtendible() const
{
    return QOBSharedHandle<QOBExtendibleObject>(m_host);
}

void QOBExtensionObject::bindMembers() {}

QOBSharedObject* QOBExtensionObject::duplicateObject(CopyMode mode,
                                                     QOBSharedHandle<QOBNotificationAgent>) const
{
    return _duplicateObject(mode);
}
