#include "KARMPDiagnostic.h"

KARMP_DEFINE_ENTITY(KARMPDiagnostic, "D458FD7D-6C18-4186-952E-83D8698D715A");

KARMPDiagnostic::KARMPDiagnostic() = default;
KARMPDiagnostic::KARMPDiagnostic(const KARMPDiagnostic& source, CopyMode mode)
    : Super(source, mode), m_diagnosticID(source.m_diagnosticID), m_message(source.m_message)
{}
KARMPDiagnostic::~KARMPDiagnostic() = default;

void KARMPDiagnostic::ClearContainers()
{
    m_entities.Clear();
}

KARStatus KARMPDiagnostic::SetDiagnosticID(KARMPDiagnosticID::Enum id)
{
    m_diagnosticID = id;
    return KARSuccess;
}

KARStatus KARMPDiagnostic::GetDiagnosticID(KARMPDiagnosticID::Enum& id) const
{
    id = m_diagnosticID;
    return KARSuccess;
}

KARStatus KARMPDiagnostic::SetMessageString(const KARUnicodeString& message)
{
    m_message = message;
    return KARSuccess;
}

KARStatus KARMPDiagnostic::GetMessageString(KARUnicodeString& message) const
{
    message = m_message;
    return KARSuccess;
}
