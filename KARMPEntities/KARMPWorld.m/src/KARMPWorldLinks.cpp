#include "KARMPDisplacementSensor.h"
#include "KARMPDuplicates.h"
#include "KARMPFailedCheck.h"
#include "KARMPFunctionOfFamily.h"

namespace {

using karmp::Duplicates;
using LinkingFamilies = karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable,
                                          KARMPGeometry, KARMPShape>;

template <class T>
QOBSharedHandle<T> DuplicateOf(const QOBSharedHandle<T>& entity, const Duplicates& duplicates)
{
    const QOBSharedBase* const duplicate = duplicates.Find(entity);
    return duplicate != nullptr ? QOBSharedHandle<T>(*duplicate) : QOBSharedHandle<T>();
}

// A source and its duplicate, between whose like the links of one family are restored.
template <class C>
class Linking
{
public:
    Linking(const C& source, C& duplicate, const Duplicates& duplicates)
        : m_source(source), m_duplicate(duplicate), m_duplicates(duplicates)
    {}

    template <class T>
    void List(int (C::*count)() const, KARStatus (C::*get)(int, QOBSharedHandle<T>&) const,
              KARStatus (C::*link)(const QOBSharedHandle<T>&)) const
    {
        for (int index = 0; index < (m_source.*count)(); ++index) {
            QOBSharedHandle<T> related;
            if (KARMPVerify(!KARFailed((m_source.*get)(index, related))))
                Link(related, link);
        }
    }
    // A getter fails when there is no link.
    template <class T>
    void Single(KARStatus (C::*get)(QOBSharedHandle<T>&) const,
                KARStatus (C::*set)(const QOBSharedHandle<T>&)) const
    {
        QOBSharedHandle<T> related;
        if (!KARFailed((m_source.*get)(related)))
            Link(related, set);
    }
    // The bodies of a joint, each with its orientation.
    void OrientedBodies() const
    {
        for (int index = 0; index < m_source.GetLinkedBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            KARMPBodyOrientation::Enum orientation{};
            if (!KARMPVerify(!KARFailed(m_source.GetLinkedBody(index, body, orientation))))
                continue;
            if (const auto duplicate = DuplicateOf(body, m_duplicates))
                KARMPVerify(!KARFailed(m_duplicate.LinkToBody(duplicate, orientation)));
        }
    }

private:
    template <class T>
    void Link(const QOBSharedHandle<T>& related,
              KARStatus (C::*link)(const QOBSharedHandle<T>&)) const
    {
        if (const auto duplicate = DuplicateOf(related, m_duplicates))
            KARMPVerify(!KARFailed((m_duplicate.*link)(duplicate)));
    }

    const C& m_source;
    C& m_duplicate;
    const Duplicates& m_duplicates;
};

void Restore(const Linking<KARMPJoint>& joint)
{
    using C = KARMPJoint;
    joint.OrientedBodies();
    joint.List(&C::GetConstraintCount, &C::GetConstraint, &C::AddConstraint);
}

void Restore(const Linking<KARMPBody>& body)
{
    using C = KARMPBody;
    body.List(&C::GetGeometryCount, &C::GetGeometry, &C::AddGeometry);
    body.List(&C::GetLinkedJointCount, &C::GetLinkedJoint, &C::LinkToJoint);
    body.Single(&C::GetDisplacementSensor, &C::SetDisplacementSensor);
    body.List(&C::GetLinkedShapeCount, &C::GetLinkedShape, &C::LinkToShape);
}

void Restore(const Linking<KARMPConstraint>& constraint)
{
    using C = KARMPConstraint;
    constraint.List(&C::GetLinkedGeometryCount, &C::GetLinkedGeometry, &C::LinkToGeometry);
    constraint.Single(&C::GetJoint, &C::SetJoint);
    constraint.List(&C::GetLinkedVariableCount, &C::GetLinkedVariable, &C::LinkToVariable);
    constraint.List(&C::GetLinkedSensorCount, &C::GetLinkedSensor, &C::LinkToSensor);
}

void Restore(const Linking<KARMPVariable>& variable)
{
    using C = KARMPVariable;
    variable.List(&C::GetLinkedConstraintCount, &C::GetLinkedConstraint, &C::LinkToConstraint);
}

void Restore(const Linking<KARMPGeometry>& geometry)
{
    using C = KARMPGeometry;
    geometry.Single(&C::GetBody, &C::SetBody);
    geometry.List(&C::GetLinkedConstraintCount, &C::GetLinkedConstraint, &C::LinkToConstraint);
}

void Restore(const Linking<KARMPShape>& shape)
{
    using C = KARMPShape;
    shape.List(&C::GetLinkedBodyCount, &C::GetLinkedBody, &C::LinkToBody);
}

template <class T>
struct RestoreAs
{
    static void Call(const QOBSharedBase& source, const QOBSharedBase& duplicate,
                     const Duplicates& duplicates)
    {
        const QOBSharedHandle<T> from(source);
        const QOBSharedHandle<T> to(duplicate);
        Restore(Linking<T>(*from, *to, duplicates));
    }
};

} // namespace

void karmp::RestoreLinks(const QOBSharedList<KARMPEntity>& sources, const Duplicates& duplicates)
{
    using RestoreLinksOf = void (*)(const QOBSharedBase& source, const QOBSharedBase& duplicate,
                                    const Duplicates& duplicates);
    FunctionOfFamily<LinkingFamilies, RestoreLinksOf> functions;
    for (const QOBSharedHandle<KARMPEntity>& source : sources) {
        const QOBSharedBase* const duplicate = duplicates.Find(source);
        if (duplicate == nullptr)
            continue;
        if (const RestoreLinksOf restore = functions.Of<RestoreAs>(source.getClassInfo()))
            restore(source, *duplicate, duplicates);
    }
}
