#pragma once

#include "KARMPEntity.h"

class KARIMPShapeLoader;
class KARMPBody;

/// Base of what bodies look like and collide with.
class KARMP_API KARMPShape : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPShape, KARMPEntity)

public:
    /// Writes the bodies into the concrete shape's element. A null serializer or a failing base is
    /// a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the bodies from the concrete shape's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the shape's loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPShapeLoader*& loader) const;
    using Super::GetLoader;
    /// Lists a body that has this shape; KARMPBody::LinkToShape makes the other side of the link. A
    /// null handle is a failed check and a failure; a body that is listed already gives 1.
    virtual KARStatus LinkToBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_bodies.Add(body);
    }
    /// Gives the body at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body) const;
    virtual int GetLinkedBodyCount() const { return m_bodies.Count(); }

    /// Takes a body out of the list. A null handle is a failed check and a failure; a body that is
    /// not listed gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body) { return m_bodies.Remove(body); }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPShape();
    /// A copy has no bodies.
    KARMPShape(const KARMPShape& source, CopyMode mode);
    ~KARMPShape() override;

private:
    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPShape>(&T::LinkToBody, &T::GetLinkedBody,
                                                 &T::GetLinkedBodyCount);
    };

    KARMPLinkList<KARMPBody> m_bodies;
};
