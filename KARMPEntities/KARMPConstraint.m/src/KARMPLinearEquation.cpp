#include "KARMPLinearEquation.h"

#include "KARMPContentTakeBack.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPLinearEquation, "F2C5A6F7-8429-48EB-BAEB-587A98C2490F");

namespace {

constexpr std::wstring_view ElementName = L"LinearEquation";
constexpr std::wstring_view ConstantName = L"ConstantTerm";
constexpr std::wstring_view HasConstantName = L"HasConstantTerm";
constexpr std::wstring_view ConstantValueName = L"ConstantTermValue";
constexpr std::wstring_view TermsName = L"LinearTermDataContainer";
constexpr std::wstring_view TermName = L"LinearTerm";
constexpr std::wstring_view TermIndexName = L"LinearTermIndex";
constexpr std::wstring_view TermValueName = L"LinearTermValue";

// The capacity grows in blocks, always to the multiple above what is asked for.
constexpr std::size_t TermBlock = 32;

constexpr karmp::Names<2> ConstantNames{HasConstantName, ConstantValueName};

// The content of a term, which is a coefficient in the list of the equation.
struct TermContent
{
    // The equation knows it, not the term.
    static KARStatus Index(const double&, int&) { return KARFailure; }
    static double Coefficient(const double& term) { return term; }
    static void SetCoefficient(double& term, double coefficient) { term = coefficient; }

    static constexpr auto List = karmp::Base(
        "A term of a linear equation.", karmp::LenientFrame,
        karmp::Integer<&Index>(TermIndexName, "The index of the term, which does not place it.")
            .Coded(),
        karmp::Number<&Coefficient>(TermValueName, "The coefficient.")
            .ZeroIfMissing()
            .Through<&SetCoefficient>()
            .Coded());
};

} // namespace

// Code writes and reads it: the last term alone decides whether the terms failed, an equation
// without terms fails, and the reader makes terms of all elements in the list, whatever their
// names.
template <>
struct karmp::ContentOf<KARMPLinearEquation>
{
    using C = KARMPLinearEquation;
    static constexpr auto List =
        Element(ElementName, "A linear relation among variables.", CountingFrame,
                OptionalNumber<&C::m_constant, &C::m_hasConstant>(ConstantName, ConstantNames,
                                                                  "The constant term.")
                    .Required()
                    .Coded(),
                TakenBackFrom<&C::m_terms>(
                    AddedBy<&C::AddLinearTerm>(DescribedRecords<&C::m_terms>(
                        TermsName, TermName, &RecordContent<TermContent>,
                        "The coefficients of the constraint's variables, in the order of these.")))
                    .Required()
                    .AnyName());
};
KARMP_DESCRIBE_CONTENT(KARMPLinearEquation, KARMPConstraint);

KARMPLinearEquation::KARMPLinearEquation() = default;

KARMPLinearEquation::KARMPLinearEquation(const KARMPLinearEquation& source, CopyMode mode)
    : Super(source, mode), m_hasConstant(source.m_hasConstant)
{}

KARMPLinearEquation::~KARMPLinearEquation() = default;

KARStatus KARMPLinearEquation::AddLinearTerm(double coefficient)
{
    if (m_terms.size() == m_terms.capacity()) {
        // A long list asks for a share more, or each block would copy all that came before.
        const std::size_t wanted = m_terms.size() + 1 + m_terms.size() / 8;
        m_terms.reserve((wanted & ~(TermBlock - 1)) + TermBlock);
    }
    m_terms.push_back(coefficient);
    return KARSuccess;
}

KARStatus KARMPLinearEquation::SetLinearTerm(int index, double coefficient)
{
    const auto position = static_cast<std::size_t>(index);
    if (position >= m_terms.size())
        return KARUnchanged;
    m_terms[position] = coefficient;
    return KARSuccess;
}

KARStatus KARMPLinearEquation::GetLinearTerm(int index, double& coefficient) const
{
    const auto position = static_cast<std::size_t>(index);
    const bool listed = position < m_terms.size();
    coefficient = listed ? m_terms[position] : 0.0;
    return listed ? KARSuccess : KARUnchanged;
}

KARStatus KARMPLinearEquation::SetConstantTerm(double constant)
{
    m_constant = constant;
    m_hasConstant = true;
    return KARSuccess;
}

KARStatus KARMPLinearEquation::GetConstantTerm(double& constant) const
{
    constant = m_constant;
    return KARSuccess;
}

KARStatus KARMPLinearEquation::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, ElementName);
    // The direct base would add an element of its own.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    if (!element || !element.Base(KARMPConstraint::Serialize(element.Node())))
        return KARFailure;
    const bool constantWritten = WriteConstant(element.Node());
    const bool termsWritten = WriteTerms(element.Node());
    return KARMPVerify(constantWritten && termsWritten) ? KARSuccess : KARFailure;
}

bool KARMPLinearEquation::WriteConstant(KARMPSerializer* element) const
{
    karmp::ElementWriter constant(element, ConstantName);
    if (!constant)
        return false;
    const bool hasConstant = HasConstantTerm();
    constant.Value(HasConstantName, hasConstant);
    double value = 0.0;
    if (hasConstant && constant.Base(GetConstantTerm(value)))
        constant.Value(ConstantValueName, value);
    return !KARFailed(constant.Status());
}

bool KARMPLinearEquation::WriteTerms(KARMPSerializer* element) const
{
    karmp::ElementWriter list(element, TermsName);
    if (!list)
        return false;
    // The last term decides, whatever became of those before it; without terms it stays a failure.
    bool lastWritten = false;
    const int count = static_cast<int>(m_terms.size());
    for (int index = 0; index < count; ++index) {
        karmp::ElementWriter term = list.Child(TermName);
        double value = 0.0;
        if (term && term.Base(GetLinearTerm(index, value))) {
            term.Value(TermIndexName, index);
            term.Value(TermValueName, value);
        }
        lastWritten = !KARFailed(term.Status());
    }
    return lastWritten;
}

KARStatus KARMPLinearEquation::Deserialize(const KARMPDeserializer* deserializer,
                                           const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, ElementName);
    // The direct base would look for an element of its own.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    if (!element || !element.Base(KARMPConstraint::Deserialize(element.Node(), entities)))
        return KARFailure;
    const bool constantRead = ReadConstant(element.Node());
    const bool termsRead = ReadTerms(element.Node());
    return constantRead && termsRead ? KARSuccess : KARFailure;
}

bool KARMPLinearEquation::ReadConstant(const KARMPDeserializer* element)
{
    using karmp::Absent;
    karmp::ElementReader constant =
        karmp::ElementReader(element).Child(ConstantName, Absent::ReportAndFail);
    if (!constant)
        return false;
    bool hasConstant = false;
    constant.Value(HasConstantName, hasConstant, Absent::ReportAndZero);
    double value = 0.0;
    if (hasConstant && constant.Value(ConstantValueName, value, Absent::ReportAndFail))
        constant.Base(SetConstantTerm(value));
    return !KARFailed(constant.Status());
}

bool KARMPLinearEquation::ReadTerms(const KARMPDeserializer* element)
{
    using karmp::Absent;
    const karmp::ElementReader list =
        karmp::ElementReader(element).Child(TermsName, Absent::ReportAndFail);
    if (!list)
        return false;
    // Any child counts as a term. Its index has to be there and does not place it.
    KARMPDeserializer::ElementVector terms;
    list.Node()->AppendElements(terms);
    for (const KARMPDeserializer* node : terms) {
        karmp::ElementReader term(node);
        int index = 0;
        term.Value(TermIndexName, index, Absent::ReportAndKeep);
        double value = 0.0;
        term.Value(TermValueName, value, Absent::ReportAndZero);
        karmp::ElementReader::Set(AddLinearTerm(value));
    }
    return true;
}
