#include "KARMPDiagnostic.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPDiagnostic, "D458FD7D-6C18-4186-952E-83D8698D715A");

namespace {

constexpr karmp::Names<6> IDWords{L"Unspecified",           L"Redundant",
                                  L"Inconsistent",          L"UnderConstrained",
                                  L"SingularConfiguration", L"NotConverged"};

} // namespace

template <>
struct karmp::ContentOf<KARMPDiagnostic>
{
    using C = KARMPDiagnostic;
    static constexpr auto List =
        Base("A finding of a solver about entities of a model.", LenientFrame,
             WordOf<&C::m_diagnosticID>(L"DiagnosticID", IDWords, "What the finding is about."),
             Text<&C::m_message>(L"Message", "The message for people."),
             References<&C::m_entities, &C::AddEntity>(L"Entities", L"Entity",
                                                       "The entities that the finding is about.")
                 .Removing<&C::RemoveEntity>()
                 .InOrder())
            .OutOfDocuments();
};
KARMP_DESCRIBE_CONTENT(KARMPDiagnostic);

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
