#pragma once

#include "KARMPConstraint.h"

#include <array>
#include <string_view>

class KARIMPKinematicConstraintLoader;

/// Base of the constraints that stand for a joint's behaviour: the two axes it acts on, and the
/// friction in it.
///
/// A concrete class writes and reads its own element around this class's content. It fails with
/// KARUnexpected where this class fails with KARFailure.
class KARMP_API KARMPKinematicConstraint : public KARMPConstraint
{
    KARMP_ABSTRACT_ENTITY(KARMPKinematicConstraint, KARMPConstraint)

public:
    /// Writes the axes and, while friction is enabled, the friction model into the concrete class's
    /// element. Failures are reported; that of the model alone gives 0.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same. A missing axis is reported and fails, after the rest was read. A friction
    /// model is taken when there is one and does not enable friction.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// The name of the concrete class's element.
    virtual std::wstring_view getClassSerializeID_() const = 0;
    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPKinematicConstraintLoader*& loader) const;

    /// Stores the axis that is used of the first (0) or the second (1) geometry. Another index is a
    /// failed check and a failure.
    KARStatus SetSelectedAxis(int index, KARMPSelectedAxis::Enum axis);
    /// Gives an axis; another index than 0 and 1 is a failed check and a failure.
    KARStatus GetSelectedAxis(int index, KARMPSelectedAxis::Enum& axis) const;

    /// Stores the name of the friction model, free text of the solver; it does not enable friction.
    /// Always 0.
    KARStatus SetFrictionModel(const KARString& model);
    /// The name of the friction model, "none" at first.
    KARString GetFrictionModel() const { return m_frictionModel; }
    /// Enables friction for good, so that model and parameters are written.
    void EnableFriction() { m_frictionEnabled = true; }
    bool IsFrictionEnabled() const { return m_frictionEnabled; }

protected:
    KARMPKinematicConstraint();
    KARMPKinematicConstraint(const KARMPKinematicConstraint& source, CopyMode mode);
    ~KARMPKinematicConstraint() override;

private:
    std::array<KARMPSelectedAxis::Enum, 2> m_axes{KARMPSelectedAxis::Z, KARMPSelectedAxis::Z};
    KARString m_frictionModel = "none";
    bool m_frictionEnabled = false;
};
