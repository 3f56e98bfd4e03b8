#pragma once

#include "KARMPShape.h"

class KARIMPShape2DLoader;
class KARMPBody2D;

/// Base of the shapes of planar bodies.
///
/// Its bodies are its own; the number of bodies is theirs also through a KARMPShape. Spatial bodies
/// may be linked by spatial handles, and are neither counted nor written nor told of the shape's
/// end.
class KARMP_API KARMPShape2D : public KARMPShape
{
    KARMP_ABSTRACT_ENTITY(KARMPShape2D, KARMPShape)

public:
    /// Writes what every entity has and the planar bodies into the concrete shape's element. A null
    /// serializer or a failing entity is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads it from the concrete shape's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// The number of planar bodies.
    int GetLinkedBodyCount() const override { return m_bodies.Count(); }
    /// Gives the shape's planar loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPShape2DLoader*& loader) const;
    using Super::GetLoader;
    /// Lists a planar body that has this shape; KARMPBody2D::LinkToShape makes the other side of
    /// the link. A null handle is a failed check and a failure; a body that is listed already gives
    /// 1.
    virtual KARStatus LinkToBody(const QOBSharedHandle<KARMPBody2D>& body)
    {
        return m_bodies.Add(body);
    }
    using Super::LinkToBody;
    /// Gives the planar body at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody2D>& body) const;
    using Super::GetLinkedBody;

    /// Takes a planar body out of the list. A null handle is a failed check and a failure; a body
    /// that is not listed gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_bodies.Remove(body); }
    using Super::RemoveBody;

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPShape2D();
    /// A copy has no bodies.
    KARMPShape2D(const KARMPShape2D& source, CopyMode mode);
    ~KARMPShape2D() override;

private:
    KARMPLinkList<KARMPBody2D> m_bodies;
};
