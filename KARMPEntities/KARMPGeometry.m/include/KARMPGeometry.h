#pragma once

#include "KARMPEntity.h"
#include "KARMPLink.h"

class KARIMPGeometryLoader;
class KARMPBody;
class KARMPConstraint;

/// Base of the geometric features that a mechanism refers to: points, lines, curves and so on,
/// given in the axes of the body that carries them. A geometry moves by its body moving.
class KARMP_API KARMPGeometry : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPGeometry, KARMPEntity)

public:
    /// Writes body and constraints into the kind's element. A null serializer or a failing base is
    /// a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads body and constraints from the kind's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the geometry's loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPGeometryLoader*& loader) const;
    using Super::GetLoader;
    /// Stores the body that carries the geometry; KARMPBody::AddGeometry makes the other side of
    /// the link. A null handle is a failed check and a failure, and the former body stays.
    virtual KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) { return m_body.Set(body); }
    /// Gives the body; a null handle and a failure without one.
    virtual KARStatus GetBody(QOBSharedHandle<KARMPBody>& body) const { return m_body.Get(body); }
    /// Lists a constraint that uses the geometry. A null handle is a failed check and a failure; a
    /// constraint that is listed already gives 1.
    virtual KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_linkedConstraints.Add(constraint);
    }
    /// Gives the constraint at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetLinkedConstraint(int index,
                                          QOBSharedHandle<KARMPConstraint>& constraint) const
    {
        return m_linkedConstraints.Get(index, constraint);
    }
    virtual int GetLinkedConstraintCount() const { return m_linkedConstraints.Count(); }

    /// Lets the body go. A null handle is a failed check and a failure; another body gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body) { return m_body.Remove(body); }
    /// Takes a constraint out of the list. A null handle is a failed check and a failure; a
    /// constraint that is not listed gives 1.
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_linkedConstraints.Remove(constraint);
    }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPGeometry();
    /// A copy has no body and no constraints.
    KARMPGeometry(const KARMPGeometry& source, CopyMode mode);
    ~KARMPGeometry() override;

    /// What the accessors of the kinds do: they copy and answer 0.
    template <class Value>
    static KARStatus Copy(const Value& from, Value& to)
    {
        to = from;
        return KARSuccess;
    }

private:
    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPGeometry>(&T::SetBody, &T::GetBody, &T::LinkToConstraint,
                                                    &T::GetLinkedConstraint,
                                                    &T::GetLinkedConstraintCount);
    };

    KARMPLink<KARMPBody> m_body;
    KARMPLinkList<KARMPConstraint> m_linkedConstraints;
};
