#pragma once

#include "KARMPEntity.h"

class KARIMPConnectorLoader;
class KARMPBody;
class KARMPGeometry;
class KARMPVariable;

/// Base of the elements that act between two bodies, springs and bushings among them. It keeps the
/// bodies, the geometries and the variables; it computes no force.
class KARMP_API KARMPConnector : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPConnector, KARMPEntity)

public:
    /// Writes the links into the concrete connector's element. A null serializer or a failing base
    /// is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the links from the concrete connector's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the connector's loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPConnectorLoader*& loader) const;
    using Super::GetLoader;
    /// Stores one of the two bodies; KARMPBody::LinkToConnector makes the other side of the link. A
    /// null handle is a failed check and a failure, and the former body stays.
    virtual KARStatus SetFirstBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_firstBody.Set(body);
    }
    /// Gives one of the two bodies; a null handle and a failure without one.
    virtual KARStatus GetFirstBody(QOBSharedHandle<KARMPBody>& body) const
    {
        return m_firstBody.Get(body);
    }
    virtual KARStatus SetSecondBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_secondBody.Set(body);
    }
    virtual KARStatus GetSecondBody(QOBSharedHandle<KARMPBody>& body) const
    {
        return m_secondBody.Get(body);
    }
    /// Appends a link. A null handle is a failed check and a failure; an entity that is linked
    /// already gives 1.
    virtual KARStatus LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry);
    /// Gives the link at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetLinkedGeometry(int index, QOBSharedHandle<KARMPGeometry>& geometry) const
    {
        return m_linkedGeometries.Get(index, geometry);
    }
    virtual int GetLinkedGeometryCount() const { return m_linkedGeometries.Count(); }
    virtual KARStatus LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable)
    {
        return m_linkedVariables.Add(variable);
    }
    virtual KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& variable) const
    {
        return m_linkedVariables.Get(index, variable);
    }
    virtual int GetLinkedVariableCount() const { return m_linkedVariables.Count(); }

    /// Lets the first body go if it is the one, otherwise the second. A null handle is a failed
    /// check and a failure; another body gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body);
    /// Takes a link out. A null handle is a failed check and a failure; an entity that is not
    /// linked gives 1.
    KARStatus RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
    {
        return m_linkedGeometries.Remove(geometry);
    }
    KARStatus RemoveVariable(const QOBSharedHandle<KARMPVariable>& variable)
    {
        return m_linkedVariables.Remove(variable);
    }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPConnector();
    /// A copy has no links.
    KARMPConnector(const KARMPConnector& source, CopyMode mode);
    ~KARMPConnector() override;

private:
    KARMPLink<KARMPBody> m_firstBody;
    KARMPLink<KARMPBody> m_secondBody;
    KARMPLinkList<KARMPGeometry> m_linkedGeometries;
    KARMPLinkList<KARMPVariable> m_linkedVariables;
};
