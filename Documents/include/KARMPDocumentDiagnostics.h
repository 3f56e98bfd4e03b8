// Messages of saving, loading and checking a document: each has a severity, a stable code, a
// position in the file and a path in the tree.
#pragma once

#include "KARMPDocumentsExport.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// How bad a message is. After an error some content of the document is lost or wrong; a warning is
/// about content that was skipped or looks mistaken.
enum class Severity : std::uint8_t { Warning, Error };

/// What a message is about. The texts of CodeText are stable, the numbers are not.
enum class Code : std::uint8_t {
    CannotOpen,           ///< The file cannot be opened.
    CannotRead,           ///< The file, or no file, cannot be read.
    CannotWrite,          ///< The file cannot be written; what was there before is still there.
    Empty,                ///< The document has no content.
    Encoding,             ///< The document is not UTF-8.
    Syntax,               ///< The document is no well-formed XML.
    Reference,            ///< An unknown or invalid character or entity reference; kept as text.
    Doctype,              ///< The document has a document type declaration, which is refused.
    TooLarge,             ///< The document has more bytes than the limit.
    TooDeep,              ///< An element is deeper than the limit.
    TooManyNodes,         ///< There are more elements and attributes than the limit.
    NameTooLong,          ///< The name of an element or attribute is longer than the limit.
    TooManyDiagnostics,   ///< The list of messages ends here.
    WrongRoot,            ///< The root element has another name.
    MissingVersion,       ///< The root has no version; the current one is taken.
    UnknownVersion,       ///< The root's version is not one of the known ones.
    InvalidName,          ///< A node's name is no XML name.
    DuplicateAttribute,   ///< An element has two attributes of one name.
    UnknownElement,       ///< An element that nothing reads.
    UnknownAttribute,     ///< An attribute that nothing reads.
    UnexpectedText,       ///< A text in an element that has no value.
    OtherVersion,         ///< An item that is not read at the version of the document.
    UnknownClass,         ///< No entity class belongs to the element.
    MissingElement,       ///< A required element is missing.
    MissingAttribute,     ///< A required attribute is missing.
    InvalidValue,         ///< A text is not of the kind or word list of its element.
    DuplicateElement,     ///< An element that is read once occurs twice.
    DuplicateIdentifier,  ///< Two entities carry one identifier; the second replaces the first.
    UnresolvedReference,  ///< A reference to an identifier that no entity carries.
    WrongClass,           ///< A reference to an entity of a class that does not fit there.
    OneSidedLink,         ///< A link that the entity at its other end does not have.
    WrongRegistry,        ///< An entity is in the list of another family.
    NotFinite,            ///< A number to save is an infinity or no number.
    NotReadBack,          ///< What is saved of an entity is not given back by a document.
    NotKept,              ///< Comments of a document that is written again.
    AlreadyInWorld,       ///< The world that is loaded into holds entities of the document already.
    MotorWithoutVariable, ///< A motor drives no variable.
    SharedVariable,       ///< Two motors drive one variable.
    ForceWithoutTarget,   ///< A force acts on no joint or body.
    ConnectorWithoutBody, ///< A spring, bushing or force element lacks one of its bodies.
    ValueWithoutQuantity, ///< A drive or connector uses a value without a physical quantity.
    SensorWithoutTarget,  ///< A sensor measures nothing.
    WrongCount,           ///< A stated number disagrees with the list that it is about.
    RuleWithoutBody,      ///< A collision rule is about fewer than two collidables.
    SharedByLayers,       ///< Two collision layers hold one entity.
    NoLayer,              ///< A layer relation is about an entity that is no collision layer.
    UnreachablePath,      ///< The identifier of an attribute has a dot, at which paths are split.
    AmbiguousPath,        ///< Two attributes of one list have one identifier.
    SeveralValues,        ///< A state or output has several values, which no bulk update stores.
    UnknownStep,          ///< A step of an analysis case is no analysis step.
    BodyWithoutSketch,    ///< A planar body lies in no sketch.
    SketchWithoutBody,    ///< No body carries the plane of a sketch.
    UnreadableStream,     ///< A stream of stored geometry or a scene graph cannot be loaded.
    WrongLength,          ///< The stated length of a stream disagrees with the stream.
    ShapeWithoutBody,     ///< A shape belongs to no body.
    RepWithoutMesh,       ///< A scene graph shows no surface of a body.
    MixedDimensions,      ///< A constraint of a planar joint is about a geometry in space.
    LostMaterials,        ///< Materials that the document does not hold.
    DecimalComma,         ///< A number with a decimal comma.
    TooSmall,             ///< A number that is too small for a double and reads as 0.
    UnknownNumber,        ///< A number that stands for none of the words of its enumeration.
    DisabledValue,        ///< A value beside a flag that says that there is none.
    OtherName,            ///< A reference names its target by a name that the target does not have.
    RepeatedReference,    ///< A list refers to one entity twice.
    Cycle,                ///< An entity is above itself in a tree of entities.
    SecondFather,         ///< An entity is the child of two.
    TermOrder,            ///< The index of a linear term is not its place.
    MappingRange,         ///< A variable mapping is about a variable that is not linked.
    UnlinkedVariable,     ///< An equation has more or fewer variables than are linked.
    EquationText,         ///< The text of an equation does not parse.
    NegativeMass,         ///< A mass below zero.
    AsymmetricInertia,    ///< An inertia matrix that is not symmetric.
    NegativeInertia,      ///< An inertia matrix with a negative principal moment.
    ImpossibleInertia,    ///< Principal moments that break the triangle inequality.
    NoRotation,           ///< Axes that are no unit vectors at right angles.
    Reflection,           ///< Axes that are left-handed.
    NullAxis,             ///< A direction of length zero.
    ReversedLimits,       ///< A lower limit above the upper one.
    OutsideLimits,        ///< A value outside of its limits.
    NoTolerance,          ///< A tolerance of the world that is not positive.
    NoSize,               ///< A radius or a size of the world that is not positive.
    NegativeNumber,       ///< A length, coefficient or modulus below zero.
    MotorWithoutTarget,   ///< A motor lacks the value that it aims at.
    CouplingWithoutEquation, ///< A coupling without an equation.
    TooFewGeometries,        ///< A constraint on fewer geometries than it relates.
    TooFewBodies,            ///< A joint of fewer than two bodies.
    WrongQuantity,           ///< A value or variable of a quantity that does not fit.
    UnknownFreedom,          ///< A freedom of a joint that is not one of 0 to 5.
    LooseBody,               ///< A body that nothing else refers to.
    FloatingChain,           ///< Bodies that are joined with one another and with no fixed one.
    FailedCheck,             ///< The entity library reported a failed check.
    InvalidCast,             ///< The entity library failed on a reference of a wrong class.
    OutOfMemory,             ///< An allocation failed.
    Failed                   ///< Anything else made the operation fail.
};

/// The stable text of a code in lower case with hyphens, "duplicate-identifier" for one.
KARMP_DOCUMENTS_API std::string_view CodeText(Code code);
/// The code of a text; empty for a text that is none.
KARMP_DOCUMENTS_API std::optional<Code> FindCode(std::string_view text);
/// "warning" or "error".
KARMP_DOCUMENTS_API std::string_view SeverityText(Severity severity);

/// What a code means. All texts are static.
struct Finding
{
    Code code;
    std::string_view text; ///< As CodeText.
    Severity severity;     ///< Where both occur, the one that is more frequent.
    std::string_view says; ///< What is the matter, a sentence.
    std::string_view cause;
    std::string_view cure;
};
/// All codes in the order of the enumeration.
KARMP_DOCUMENTS_API const std::vector<Finding>& Findings();
/// Findings as Markdown, which is docs/findings.md.
KARMP_DOCUMENTS_API std::string FindingsReference();

/// One message.
struct Diagnostic
{
    Severity severity = Severity::Error;
    Code code = Code::Failed;
    /// The file's name as it was given, or the name given for a text in memory.
    std::string file;
    /// Line from 1; 0 when the message belongs to no line.
    std::size_t line = 0;
    /// Character in the line from 1, in code points, a tab being one; 0 when the message belongs to
    /// no character of the line.
    std::size_t column = 0;
    /// The element, or the attribute after an "@", from the root:
    /// "/KARMPDocument/World/Bodies/Body[3]". Elements count from 1 among those of one name and
    /// parent; an only one has no number.
    std::string path;
    /// What is the matter, in UTF-8, in one line.
    std::string text;
};

/// True when a message of a load or check is about content that the world which was read does not
/// hold as the document does: each error, comments, and what was skipped or replaced by another
/// value.
KARMP_DOCUMENTS_API bool LosesContent(const Diagnostic& diagnostic);

/// "file:line:column: severity: text [code] at path", without the parts that are empty.
KARMP_DOCUMENTS_API std::string Format(const Diagnostic& diagnostic);

/// The messages of one operation in the order in which they were added.
struct KARMP_DOCUMENTS_API Diagnostics
{
    std::vector<Diagnostic> items;

    /// Number of messages of a severity.
    std::size_t Count(Severity severity) const;
    /// True when there is an error among them.
    bool HasErrors() const { return Count(Severity::Error) != 0; }
    /// The first message of a code, null when there is none.
    const Diagnostic* Find(Code code) const;
    /// Appends the messages of a further operation.
    void Append(Diagnostics further);
};

} // namespace karmp::documents
