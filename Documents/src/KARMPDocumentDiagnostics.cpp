#include "KARMPDocumentDiagnostics.h"

#include "KARMPMessages.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace karmp::documents {

std::string_view CodeText(Code code)
{
    switch (code) {
    case Code::CannotOpen:
        return "cannot-open";
    case Code::CannotRead:
        return "cannot-read";
    case Code::CannotWrite:
        return "cannot-write";
    case Code::Empty:
        return "empty";
    case Code::Encoding:
        return "encoding";
    case Code::Syntax:
        return "syntax";
    case Code::Reference:
        return "reference";
    case Code::Doctype:
        return "doctype";
    case Code::TooLarge:
        return "too-large";
    case Code::TooDeep:
        return "too-deep";
    case Code::TooManyNodes:
        return "too-many-nodes";
    case Code::NameTooLong:
        return "name-too-long";
    case Code::TooManyDiagnostics:
        return "too-many-diagnostics";
    case Code::WrongRoot:
        return "wrong-root";
    case Code::MissingVersion:
        return "missing-version";
    case Code::UnknownVersion:
        return "unknown-version";
    case Code::InvalidName:
        return "invalid-name";
    case Code::DuplicateAttribute:
        return "duplicate-attribute";
    case Code::UnknownElement:
        return "unknown-element";
    case Code::UnknownAttribute:
        return "unknown-attribute";
    case Code::UnexpectedText:
        return "unexpected-text";
    case Code::OtherVersion:
        return "other-version";
    case Code::UnknownClass:
        return "unknown-class";
    case Code::MissingElement:
        return "missing-element";
    case Code::MissingAttribute:
        return "missing-attribute";
    case Code::InvalidValue:
        return "invalid-value";
    case Code::DuplicateElement:
        return "duplicate-element";
    case Code::DuplicateIdentifier:
        return "duplicate-identifier";
    case Code::UnresolvedReference:
        return "unresolved-reference";
    case Code::WrongClass:
        return "wrong-class";
    case Code::OneSidedLink:
        return "one-sided-link";
    case Code::WrongRegistry:
        return "wrong-registry";
    case Code::NotFinite:
        return "not-finite";
    case Code::NotReadBack:
        return "not-read-back";
    case Code::AlreadyInWorld:
        return "already-in-world";
    case Code::MotorWithoutVariable:
        return "motor-without-variable";
    case Code::SharedVariable:
        return "shared-variable";
    case Code::ForceWithoutTarget:
        return "force-without-target";
    case Code::ConnectorWithoutBody:
        return "connector-without-body";
    case Code::ValueWithoutQuantity:
        return "value-without-quantity";
    case Code::SensorWithoutTarget:
        return "sensor-without-target";
    case Code::WrongCount:
        return "wrong-count";
    case Code::RuleWithoutBody:
        return "rule-without-body";
    case Code::SharedByLayers:
        return "shared-by-layers";
    case Code::NoLayer:
        return "no-layer";
    case Code::UnreachablePath:
        return "unreachable-path";
    case Code::AmbiguousPath:
        return "ambiguous-path";
    case Code::SeveralValues:
        return "several-values";
    case Code::UnknownStep:
        return "unknown-step";
    case Code::BodyWithoutSketch:
        return "body-without-sketch";
    case Code::SketchWithoutBody:
        return "sketch-without-body";
    case Code::UnreadableStream:
        return "unreadable-stream";
    case Code::WrongLength:
        return "wrong-length";
    case Code::ShapeWithoutBody:
        return "shape-without-body";
    case Code::RepWithoutMesh:
        return "rep-without-mesh";
    case Code::MixedDimensions:
        return "mixed-dimensions";
    case Code::LostMaterials:
        return "lost-materials";
    case Code::FailedCheck:
        return "failed-check";
    case Code::InvalidCast:
        return "invalid-cast";
    case Code::OutOfMemory:
        return "out-of-memory";
    case Code::Failed:
        break;
    }
    return "failed";
}

std::string_view SeverityText(Severity severity)
{
    return severity == Severity::Error ? "error" : "warning";
}

bool LosesContent(const Diagnostic& diagnostic)
{
    switch (diagnostic.code) {
    case Code::UnknownElement:
    case Code::UnknownAttribute:
    case Code::UnexpectedText:
    case Code::OtherVersion:
    case Code::InvalidValue:
    case Code::DuplicateElement:
        return true;
    default:
        return diagnostic.severity == Severity::Error;
    }
}

std::string Format(const Diagnostic& diagnostic)
{
    std::string text = diagnostic.file;
    if (diagnostic.line != 0) {
        text += ':';
        text += std::to_string(diagnostic.line);
        if (diagnostic.column != 0) {
            text += ':';
            text += std::to_string(diagnostic.column);
        }
    }
    if (!text.empty())
        text += ": ";
    text += SeverityText(diagnostic.severity);
    text += ": ";
    text += diagnostic.text;
    text += " [";
    text += CodeText(diagnostic.code);
    text += ']';
    if (!diagnostic.path.empty()) {
        text += " at ";
        text += diagnostic.path;
    }
    return text;
}

std::size_t Diagnostics::Count(Severity severity) const
{
    return static_cast<std::size_t>(std::count_if(
        items.begin(), items.end(),
        [severity](const Diagnostic& item) { return item.severity == severity; }));
}

const Diagnostic* Diagnostics::Find(Code code) const
{
    const auto found = std::find_if(items.begin(), items.end(),
                                    [code](const Diagnostic& item) { return item.code == code; });
    return found != items.end() ? &*found : nullptr;
}

void Diagnostics::Append(Diagnostics further)
{
    std::move(further.items.begin(), further.items.end(), std::back_inserter(items));
}

void Messages::Add(Severity severity, Code code, std::string text, std::string path,
                   std::size_t line, std::size_t column)
{
    if (Full())
        return;
    if (m_target.items.size() == m_limit) {
        m_target.items.push_back({Severity::Error,
                                  Code::TooManyDiagnostics,
                                  m_name,
                                  0,
                                  0,
                                  {},
                                  "too many messages; the rest is not shown"});
        return;
    }
    m_target.items.push_back(
        {severity, code, m_name, line, column, std::move(path), std::move(text)});
}

} // namespace karmp::documents
