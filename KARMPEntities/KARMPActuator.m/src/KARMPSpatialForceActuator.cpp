#include "KARMPSpatialForceActuator.h"

#include "KARIMPSpatialForceActuatorLoader.h"
#include "KARMPBody.h"
#include "KARMPContentWalk.h"
#include "KARMPExpression.h"
#include "KARMPForceComponents.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPSpatialForceActuator, "37CCF0C1-A767-49B0-80C6-FA570C4C9BCB");

// Described only: the three values of a force are set together, which no item does.
template <>
struct karmp::ContentOf<KARMPSpatialForceActuator>
{
    using C = KARMPSpatialForceActuator;
    static KARStatus TakePoint(C& actuator, const KARMathPoint& point)
    {
        return actuator.SetApplicationPoint(point, C::Body());
    }
    static constexpr auto List = Element(
        L"SpatialForceActuator", "A force and a torque on a body.", LenientFrame,
        DescribeValues<&C::m_force>(L"Force", VectorNames, "The force.", "The force along an axis.",
                                    KARMPPhysicalQuantity::Force),
        DescribeValues<&C::m_torque>(L"Torque", VectorNames, "The torque.",
                                     "The torque about an axis.", KARMPPhysicalQuantity::Torque),
        Flag<&C::m_isInLocalFrame>(L"IsInLocalFrame",
                                   "Whether the components are along the body's axes."),
        NumbersElement<&C::m_applicationPoint>(L"ApplicationPoint", PointNames,
                                               "The point where the force acts.",
                                               KARMPPhysicalQuantity::Length)
            .Through<&TakePoint>(),
        Reference<&C::m_body, &C::SetBody>(L"Body", "The body on which it acts."));
};
KARMP_DESCRIBE_CONTENT(KARMPSpatialForceActuator);

namespace {

using Body = QOBSharedHandle<KARMPBody>;
using Components = karmp::ValueComponents<3>;
using Loader = KARIMPSpatialForceActuatorLoader;

KARMathTransformation PositionOf(const Body& body)
{
    KARMathTransformation position;
    const Body locked(body, QOBSharedBase::ReadLock);
    KARMPVerify(!KARFailed(locked->GetPosition(position)));
    return position;
}

// A position that cannot be inverted counts as the identity.
KARMathTransformation InverseOf(const KARMathTransformation& position)
{
    KARMathTransformation inverse;
    KARMPVerify(position.ComputeInverse(inverse));
    return inverse;
}

KARMPPhysicalQuantity::Enum QuantityOf(const QOBSharedHandle<KARMPValue>& value)
{
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    value->GetPhysicalQuantity(quantity);
    return quantity;
}

bool IsExpression(const QOBSharedHandle<KARMPValue>& value)
{
    return value.isDerivedFrom(KARMPExpression::ClassInfo());
}

std::array<double, 3> Turned(const KARMathTransformation& by, const std::array<double, 3>& numbers)
{
    const KARMathVector turned = by * KARMathVector(numbers[0], numbers[1], numbers[2]);
    return {turned.GetX(), turned.GetY(), turned.GetZ()};
}

KARStatus GiveNumbers(const Components& own, KARMathVector& vector)
{
    std::array<double, 3> numbers{};
    const KARStatus status = karmp::ReadConstants(own, numbers);
    vector = {numbers[0], numbers[1], numbers[2]};
    return status;
}

KARStatus GiveValues(const Components& own, Components& given, const Body& body)
{
    given = own;
    if (!body || !std::all_of(own.begin(), own.end(), karmp::IsConstant))
        return KARSuccess;
    std::array<double, 3> numbers{};
    if (KARFailed(karmp::ReadConstants(own, numbers)))
        return KARFailure;
    numbers = Turned(InverseOf(PositionOf(body)), numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const KARMPPhysicalQuantity::Enum quantity = QuantityOf(own[i]);
        KARMPVerify(!KARFailed(karmp::MakeConstant(nullptr, numbers[i], quantity, given[i])));
    }
    return KARSuccess;
}

} // namespace

KARMPSpatialForceActuator::KARMPSpatialForceActuator() = default;
KARMPSpatialForceActuator::KARMPSpatialForceActuator(const KARMPSpatialForceActuator& source,
                                                     CopyMode mode)
    : Super(source, mode),
      m_applicationPoint(source.m_applicationPoint),
      m_isInLocalFrame(source.m_isInLocalFrame),
      m_referencePosition(source.m_referencePosition)
{}
KARMPSpatialForceActuator::~KARMPSpatialForceActuator() = default;

KARStatus KARMPSpatialForceActuator::GetLoader(KARIMPSpatialForceActuatorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPSpatialForceActuator::TellForce() const
{
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetForce(m_force); });
}

KARStatus KARMPSpatialForceActuator::TellTorque() const
{
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetTorque(m_torque); });
}

void KARMPSpatialForceActuator::Store(Components& own, const Components& given, const Body& body)
{
    if (!body || std::any_of(given.begin(), given.end(), IsExpression))
        return karmp::StoreValues(given, own);
    std::array<double, 3> numbers{};
    if (!KARMPVerify(karmp::AreAllSet(given)) || KARFailed(karmp::ReadConstants(given, numbers)))
        return;
    numbers = Turned(PositionOf(body), numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (karmp::IsConstant(own[i])) {
            karmp::ChangeConstant(own[i], numbers[i]);
        } else {
            const KARMPPhysicalQuantity::Enum quantity = QuantityOf(given[i]);
            KARMPVerify(!KARFailed(karmp::MakeConstant(this, numbers[i], quantity, own[i])));
        }
    }
}

KARStatus KARMPSpatialForceActuator::SetForce(const KARMathVector& force)
{
    return SetForce(karmp::MakeConstants<3>(*this, {force.GetX(), force.GetY(), force.GetZ()},
                                            KARMPPhysicalQuantity::Force),
                    Body());
}

KARStatus KARMPSpatialForceActuator::SetForce(const Components& force, const Body& body)
{
    Store(m_force, force, body);
    return TellForce();
}

KARStatus KARMPSpatialForceActuator::GetForce(KARMathVector& force) const
{
    return GiveNumbers(m_force, force);
}

KARStatus KARMPSpatialForceActuator::GetForce(Components& force, const Body& body) const
{
    return GiveValues(m_force, force, body);
}

KARStatus KARMPSpatialForceActuator::SetTorque(const KARMathVector& torque)
{
    return SetTorque(karmp::MakeConstants<3>(*this, {torque.GetX(), torque.GetY(), torque.GetZ()},
                                             KARMPPhysicalQuantity::Torque),
                     Body());
}

KARStatus KARMPSpatialForceActuator::SetTorque(const Components& torque, const Body& body)
{
    Store(m_torque, torque, body);
    return TellTorque();
}

KARStatus KARMPSpatialForceActuator::GetTorque(KARMathVector& torque) const
{
    return GiveNumbers(m_torque, torque);
}

KARStatus KARMPSpatialForceActuator::GetTorque(Components& torque, const Body& body) const
{
    return GiveValues(m_torque, torque, body);
}

KARStatus KARMPSpatialForceActuator::SetBody(const Body& body)
{
    if (const KARStatus status = m_body.SetOther(body); status != KARSuccess)
        return status;
    m_referencePosition = PositionOf(body);
    return karmp::PassToLoader<Loader>(
        *this, [&](auto& loader) { return loader.SetBody(m_body.Handle()); });
}

KARStatus KARMPSpatialForceActuator::GetBody(Body& body) const
{
    body = m_body.Handle();
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator::SetApplicationPoint(const KARMathPoint& point,
                                                         const Body& body)
{
    m_applicationPoint = body ? InverseOf(m_referencePosition) * PositionOf(body) * point : point;
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetApplicationPoint(m_applicationPoint); });
}

KARStatus KARMPSpatialForceActuator::GetApplicationPoint(KARMathPoint& point) const
{
    if (!m_body)
        return KARSuccess;
    point = PositionOf(m_body.Handle()) * InverseOf(m_referencePosition) * m_applicationPoint;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator::SetIsInLocalFrame(bool isInLocalFrame)
{
    m_isInLocalFrame = isInLocalFrame;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator::IsInLocalFrame(bool& isInLocalFrame) const
{
    isInLocalFrame = m_isInLocalFrame;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"SpatialForceActuator");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    karmp::WriteValues(element, L"Force", karmp::VectorNames, m_force);
    karmp::WriteValues(element, L"Torque", karmp::VectorNames, m_torque);
    element.Value(L"IsInLocalFrame", m_isInLocalFrame);
    if (karmp::ElementWriter point = element.Child(L"ApplicationPoint"))
        point.Values(karmp::PointNames, m_applicationPoint);
    if (m_body)
        element.Reference(L"Body", m_body.Handle());
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator::Deserialize(const KARMPDeserializer* deserializer,
                                                 const KARMPEntityTable& entities)
{
    using karmp::Absent;
    karmp::ElementReader element(deserializer, L"SpatialForceActuator");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::ReadValues(
        element, L"Force", karmp::VectorNames, entities,
        [this](const auto& values) { return SetForce(values, Body()); });
    karmp::ReadValues(element, L"Torque", karmp::VectorNames, entities,
                      [this](const auto& values) { return SetTorque(values, Body()); });
    element.Value(L"IsInLocalFrame", m_isInLocalFrame, Absent::ReportAndKeep);
    if (karmp::ElementReader child = element.Child(L"ApplicationPoint", Absent::ReportAndKeep)) {
        KARMathPoint point = m_applicationPoint;
        child.Values(karmp::PointNames, point, Absent::ReportAndKeep);
        karmp::ElementReader::Set(SetApplicationPoint(point, Body()));
    }
    element.Reference<KARMPBody>(L"Body", entities,
                                 [this](const auto& body) { return SetBody(body); });
    return KARSuccess;
}
