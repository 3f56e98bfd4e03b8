#pragma once

#include "KARMPEntity.h"
#include "KARUnicodeString.h"

/// A finding of a solver about some entities of a model: what it is about and a message.
///
/// It is told about, not stored: no registry takes it and it has no element of its own, so that
/// writing it puts what every entity writes on the node that is given.
class KARMP_API KARMPDiagnostic : public KARMPEntity
{
    KARMP_ENTITY(KARMPDiagnostic, KARMPEntity)

protected:
    /// Drops the entities.
    void ClearContainers() override;

public:
    /// What the finding is about, as agreed with the solver; always 0.
    virtual KARStatus SetDiagnosticID(KARMPDiagnosticID::Enum id);
    virtual KARStatus GetDiagnosticID(KARMPDiagnosticID::Enum& id) const;
    /// The message for people; always 0.
    virtual KARStatus SetMessageString(const KARUnicodeString& message);
    virtual KARStatus GetMessageString(KARUnicodeString& message) const;

    /// Appends an entity. A null handle is a failed check and a failure; an entity that is listed
    /// already gives 1.
    KARStatus AddEntity(const QOBSharedHandle<KARMPEntity>& entity)
    {
        return m_entities.Add(entity);
    }
    /// Takes an entity out and keeps the order of the rest. A null handle is a failed check and a
    /// failure; an entity that is not listed gives 1.
    KARStatus RemoveEntity(const QOBSharedHandle<KARMPEntity>& entity)
    {
        return m_entities.Remove(entity);
    }
    /// Gives the entity at an index from 0; outside the list a null handle and a failure.
    KARStatus GetEntity(int index, QOBSharedHandle<KARMPEntity>& entity) const
    {
        return m_entities.Get(index, entity);
    }
    int GetEntityCount() const { return m_entities.Count(); }

protected:
    KARMPDiagnostic();
    /// A copy takes the number and the message; it has no entities.
    KARMPDiagnostic(const KARMPDiagnostic& source, CopyMode mode);
    ~KARMPDiagnostic() override;

private:
    KARMPDiagnosticID::Enum m_diagnosticID = KARMPDiagnosticID::Unspecified;
    KARUnicodeString m_message;
    KARMPLinkList<KARMPEntity> m_entities;
};
