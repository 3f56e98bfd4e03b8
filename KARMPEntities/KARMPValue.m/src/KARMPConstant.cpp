#include "KARMPConstant.h"

#include "KARIMPConstantLoader.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPConstant, "64F89D0B-01C3-4FB3-92E1-028FB8F66188");

KARMPConstant::KARMPConstant() = default;

KARMPConstant::KARMPConstant(const KARMPConstant& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value), m_type(source.m_type)
{}

KARMPConstant::~KARMPConstant() = default;

KARStatus KARMPConstant::GetLoader(KARIMPConstantLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPConstant::SetValue(double value, const KARString& type)
{
    m_value = value;
    m_type = type;
    return KARSuccess;
}

KARStatus KARMPConstant::GetValue(double& value) const
{
    value = m_value;
    return KARSuccess;
}

bool KARMPConstant::IsDouble() const
{
    return m_type != "int";
}

KARStatus KARMPConstant::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer, L"Constant");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    element.Value(L"Value", m_value);
    return element.Status();
}

KARStatus KARMPConstant::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer, L"Constant");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    // The tree has no place for the type word: what is read is a double.
    double value = 0.0;
    if (element.Value(L"Value", value, karmp::Absent::ReportAndKeep))
        element.Set(SetValue(value, KARString()));
    return KARSuccess;
}
