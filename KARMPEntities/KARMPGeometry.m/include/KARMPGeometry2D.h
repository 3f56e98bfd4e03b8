#pragma once

#include "KARMPGeometry.h"

class KARIMPGeometry2DLoader;
class KARMPBody2D;
class KARMPSketch;

/// Base of the geometric features of planar mechanisms, given in the axes of the planar body that
/// carries them and lying in the plane of a sketch.
///
/// Body and constraints are its own. Its constraints stand for the base's wherever those are asked
/// for; the base's body is another link, through a KARMPGeometry or by a spatial handle.
class KARMP_API KARMPGeometry2D : public KARMPGeometry
{
    KARMP_ABSTRACT_ENTITY(KARMPGeometry2D, KARMPGeometry)

public:
    /// Writes what the base writes, planar body and sketch into the kind's element. A null
    /// serializer or a failing base is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads it from the kind's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint) override
    {
        return m_linkedConstraints.Add(constraint);
    }
    KARStatus GetLinkedConstraint(int index,
                                  QOBSharedHandle<KARMPConstraint>& constraint) const override
    {
        return m_linkedConstraints.Get(index, constraint);
    }
    int GetLinkedConstraintCount() const override { return m_linkedConstraints.Count(); }
    /// Gives the geometry's planar loader, null without one. A failing fetch is a failed check and
    /// a failure.
    virtual KARStatus GetLoader(KARIMPGeometry2DLoader*& loader) const;
    using Super::GetLoader;
    /// Stores the planar body that carries the geometry; KARMPBody2D::AddGeometry makes the other
    /// side of the link. A null handle is a failed check and a failure, and the former body stays.
    virtual KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_body.Set(body); }
    using Super::SetBody;
    /// Gives the planar body; a null handle and a failure without one.
    virtual KARStatus GetBody(QOBSharedHandle<KARMPBody2D>& body) const { return m_body.Get(body); }
    using Super::GetBody;

    /// Lets the planar body go. A null handle is a failed check and a failure; another body gives
    /// 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_body.Remove(body); }
    /// Takes a constraint out of the list. A null handle is a failed check and a failure; a
    /// constraint that is not listed gives 1.
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_linkedConstraints.Remove(constraint);
    }
    /// Stores the sketch in whose plane the geometry lies. A null handle is a failed check and a
    /// failure.
    KARStatus SetSketch(const QOBSharedHandle<KARMPSketch>& sketch) { return m_sketch.Set(sketch); }
    /// Gives the sketch; a null handle and a failure without one.
    KARStatus GetSketch(QOBSharedHandle<KARMPSketch>& sketch) const { return m_sketch.Get(sketch); }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPGeometry2D();
    /// A copy has neither body, sketch nor constraints.
    KARMPGeometry2D(const KARMPGeometry2D& source, CopyMode mode);
    ~KARMPGeometry2D() override;

private:
    KARMPLink<KARMPBody2D> m_body;
    KARMPLink<KARMPSketch> m_sketch;
    KARMPLinkList<KARMPConstraint> m_linkedConstraints;
};
