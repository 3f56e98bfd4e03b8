// Objects that carry extensions, and the extensions.
//
// An extension and its host share one life: a reference to either keeps both, and both go when the
// last reference to any of them goes.
#pragma once

#include "KARStatus.h"
#include "QOBNotificationAgent.h"

#include <memory>
#include <vector>

class QOBExtensionObject;

/// A host of extensions, which are known by the GUID of their class.
class KAR_API QOBExtendibleObject : public QOBNotificationAgent
{
    QOB_CLASS(QOBExtendibleObject)

public:
    /// True when an extension of that class is bound to this object.
    bool hasExtension(const QOBUUID& id) const;
    /// The first extension of that class, null when there is none.
    QOBSharedHandle<QOBExtensionObject> getExtension(const QOBUUID& id) const;

protected:
    using QOBNotificationAgent::QOBNotificationAgent;
    /// A copy has no extensions.
    QOBExtendibleObject(const QOBExtendibleObject& source) noexcept : QOBNotificationAgent(source)
    {}
    ~QOBExtendibleObject() override;

    /// Calls orphanObject on every extension.
    void orphanExtensions();
    /// Deletes every extension, first to last. For a destructor alone.
    void deleteExtensions() noexcept;

private:
    friend class QOBExtensionObject;
    using Extensions = std::vector<QOBExtensionObject*>;

    QOBExtensionObject* find(const QOBUUID& id) const;

    std::unique_ptr<Extensions> m_extensions;
};

/// An object bound to a host whose life it shares.
class KAR_API QOBExtensionObject : public QOBNotificationAgent
{
    QOB_CLASS(QOBExtensionObject)

public:
    /// Ties this extension to a host for good. A null host, or a second host, is a failure.
    KARStatus bindExtension(const QOBSharedHandle<QOBExtendibleObject>& host);
    /// The host, null while the extension is free.
    QOBSharedHandle<QOBExtendibleObject> getExtendible() const;

    /// Hook for extensions that must tie members to a new host; does nothing here.
    virtual void bindMembers();
    /// A copy of this extension for another host, carrying one reference; null where none can be
    /// made. The caller binds it.
    virtual QOBSharedObject* duplicateObject(CopyMode mode,
                                             QOBSharedHandle<QOBNotificationAgent> host) const;
    using QOBNotificationAgent::duplicateObject;

protected:
    QOBExtensionObject() = default;
    /// A copy is not bound.
    QOBExtensionObject(const QOBExtensionObject& source);
    ~QOBExtensionObject() override;

private:
    friend class QOBCountedObject;
    friend class QOBExtendibleObject;

    QOBExtendibleObject* m_host = nullptr;
};
