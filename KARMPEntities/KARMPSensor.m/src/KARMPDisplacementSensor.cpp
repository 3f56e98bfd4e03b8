#include "KARMPDisplacementSensor.h"

#include "KARMPBody.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPSensorUpdate.h"
#include "KARMPTransformationElement.h"

#include <utility>

KARMP_DEFINE_ENTITY(KARMPDisplacementSensor, "C1FACC58-6FB0-4d0f-AEA9-04CCBF7EE9C5");

KARMPDisplacementSensor::KARMPDisplacementSensor() = default;
KARMPDisplacementSensor::KARMPDisplacementSensor(const KARMPDisplacementSensor& source,
                                                 CopyMode mode)
    : Super(source, mode), m_displacement(source.m_displacement)
{}
KARMPDisplacementSensor::~KARMPDisplacementSensor() = default;

KARStatus KARMPDisplacementSensor::RemoveParent()
{
    if (!m_body)
        return KARSuccess;
    const QOBSharedHandle<KARMPDisplacementSensor> self(this);
    const KARStatus status = std::exchange(m_body, nullptr)->RemoveDisplacementSensor(self);
    return KARFailed(status) ? status : KARSuccess;
}

KARStatus KARMPDisplacementSensor::Reset()
{
    m_displacement = KARMathTransformation();
    return KARSuccess;
}

KARStatus KARMPDisplacementSensor::Update()
{
    return karmp::UpdateByLoader<KARIMPEntityLoader>(*this, KARSuccess);
}

KARStatus KARMPDisplacementSensor::SetBody(const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    m_body = body;
    return KARSuccess;
}

KARStatus KARMPDisplacementSensor::GetBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_body;
    return body ? KARSuccess : KARFailure;
}

KARStatus KARMPDisplacementSensor::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    if (m_body != body)
        return KARUnchanged;
    m_body.detach();
    return KARSuccess;
}

void KARMPDisplacementSensor::SetDisplacement(const KARMathTransformation& displacement)
{
    m_displacement = displacement;
}

void KARMPDisplacementSensor::GetDisplacement(KARMathTransformation& displacement) const
{
    displacement = m_displacement;
}

KARStatus KARMPDisplacementSensor::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"DisplacementSensor");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    if (m_body)
        element.Reference(L"Body", m_body);
    if (karmp::ElementWriter child = element.Child(L"Displacement"))
        karmp::WriteTransformation(child, m_displacement);
    return element.Status();
}

KARStatus KARMPDisplacementSensor::Deserialize(const KARMPDeserializer* deserializer,
                                               const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"DisplacementSensor");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.Reference<KARMPBody>(L"Body", entities,
                                 [this](const auto& body) { return SetBody(body); });
    if (karmp::ElementReader child = element.Child(L"Displacement", karmp::Absent::ReportAndFail))
        karmp::ReadTransformation(child, m_displacement);
    return element.Status();
}
