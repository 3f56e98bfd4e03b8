// What calls of a model take for analyses: attributes by names, and the steps of a case.
#pragma once

#include "KARMPEnumerations.h"
#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KAROmxAny.h"
#include "KARStatus.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

class KARMPAnalysisCase;
class KARMPAnalysisStep;
class KARMPEntity;

namespace karmp::model {

/// A parameter, state or output of an entity: a number of a quantity, a flag or a text, or several
/// below one name. The name is its identifier behind that of its owner and a dot, and the element
/// of a path by which a solver finds it.
struct Attribute
{
    using Quantity = KARMPPhysicalQuantity::Enum;

    /// A number, in the unit of its quantity.
    Attribute(std::string_view called, Quantity of, double number = 0.0)
        : name(called), quantity(of), value(number)
    {}
    /// A flag. Documents of older versions keep none without a quantity.
    Attribute(std::string_view called, Quantity of, bool flag)
        : name(called), quantity(of), value(flag)
    {}
    /// A text in UTF-8, for which the same holds.
    Attribute(std::string_view called, Quantity of, const char* text)
        : name(called), quantity(of), value(std::string(text))
    {}
    /// Several below one name.
    Attribute(std::string_view called, std::vector<Attribute> children)
        : name(called), parts(std::move(children))
    {}
    /// The same, about an entity.
    Attribute(std::string_view called, Ref<KARMPEntity> subject, std::vector<Attribute> children)
        : name(called), about(std::move(subject)), parts(std::move(children))
    {}

    std::string name;
    Quantity quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    /// Nothing where there are parts.
    std::variant<std::monostate, double, bool, std::string> value;
    std::optional<Ref<KARMPEntity>> about;
    std::vector<Attribute> parts;
};

/// A step of an analysis.
struct AnalysisStepOptions
{
    std::string_view identifier;
    std::vector<Attribute> parameters = {};
};

/// The steps of an analysis in their order, and what it gives.
struct AnalysisOptions
{
    std::vector<AnalysisStepOptions> steps = {};
    std::vector<Attribute> outputs = {};
};

/// The steps of an analysis, in order.
KARMP_MODEL_API RefList<KARMPAnalysisStep> StepsOf(const Ref<KARMPAnalysisCase>& analysis);

/// What outputs are to hold, by their paths, with "." between the names.
using OutputValues = std::initializer_list<std::pair<std::string_view, KAROmxAny>>;
/// Stores what a solver found in the outputs of an entity, as its UpdateOutputs does.
KARMP_MODEL_API KARStatus UpdateOutputs(const Ref<KARMPEntity>& entity, OutputValues results);

} // namespace karmp::model
