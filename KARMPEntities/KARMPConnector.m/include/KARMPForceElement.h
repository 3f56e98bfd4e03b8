#pragma once

#include "KARMPConnector.h"

#include <string>

class KARIMPForceElementLoader;
class KARMPJoint;

/// A force whose law only the solver knows: the name of its class there, and an opaque text that
/// describes it.
class KARMP_API KARMPForceElement : public KARMPConnector
{
    KARMP_ENTITY(KARMPForceElement, KARMPConnector)

public:
    using Super::GetLoader;

    /// Writes and reads "ForceElement". Failures inside are reported; 0 but for a null node, a
    /// missing element and a failing base.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPForceElementLoader*& loader) const;

    /// Stores the joint in which the force acts, null included; always 0. The joint is not told.
    virtual KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint)
    {
        return m_joint.Assign(joint);
    }
    /// Gives the joint; a null handle and a failure without one.
    virtual KARStatus GetJoint(QOBSharedHandle<KARMPJoint>& joint) const
    {
        return m_joint.Get(joint);
    }

    /// Lets the joint go. A null handle is a failed check and a failure; another joint gives 1.
    KARStatus RemoveJoint(const QOBSharedHandle<KARMPJoint>& joint)
    {
        return m_joint.Remove(joint);
    }
    /// Stores the solver's name of the class of the force; always 0, as in what follows.
    KARStatus SetClass(const std::wstring& name);
    KARStatus GetClass(std::wstring& name) const;
    /// Stores what the solver keeps of the force, in a form of its own.
    KARStatus SetStream(const std::wstring& stream);
    KARStatus GetStream(std::wstring& stream) const;

protected:
    void ClearContainers() override;

    KARMPForceElement();
    /// A copy has class and stream, and no joint.
    KARMPForceElement(const KARMPForceElement& source, CopyMode mode);
    ~KARMPForceElement() override;

private:
    KARMPLink<KARMPJoint> m_joint;
    std::wstring m_class;
    std::wstring m_stream;
};
