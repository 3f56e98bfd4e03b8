// Numbers and forces of a model, and the frames of force sensors.
#include "KARMPModelReading.h"

#include "KARMPAxisSystem.h"
#include "KARMPConnectorSpatialForceSensor.h"
#include "KARMPConstant.h"
#include "KARMPConstraint.h"
#include "KARMPJoint.h"
#include "KARMPJointSpatialForceSensor.h"
#include "KARMPJointTable.h"
#include "KARMPLinearSpring.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <limits>
#include <variant>

namespace karmp::model {

namespace {

// The number of a constant.
std::optional<double> NumberIn(const QOBSharedHandle<KARMPEntity>& value)
{
    double number = 0.0;
    const auto* const constant = dynamic_cast<const KARMPConstant*>(value.get());
    return constant != nullptr && !KARFailed(constant->GetValue(number))
               ? std::optional<double>(number)
               : std::nullopt;
}

using Names = KAROmxArray<KARString>;

Names NamesIn(std::string_view path)
{
    Names names;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('.', begin), path.size());
        names.Append(KARString(std::string(path.substr(begin, end - begin)).c_str()));
        begin = end + 1;
    }
    return names;
}

template <class A>
QOBSharedHandle<KARMPValue> ValueAt(const KARMPEntity& entity, const Names& names,
                                    KARStatus (KARMPEntity::*get)(const Names&, QOBSharedHandle<A>&)
                                        const)
{
    QOBSharedHandle<A> attribute;
    QOBSharedHandle<KARMPValue> value;
    if (!KARFailed((entity.*get)(names, attribute)))
        attribute->KARMPAttribute::GetValue(0, value);
    return value;
}

// What a sensor of a class measures; null for a sensor of another class.
template <class S, class T>
QOBSharedHandle<T> MeasuredBy(const KARMPSensor* sensor,
                              KARStatus (S::*get)(QOBSharedHandle<T>&) const)
{
    QOBSharedHandle<T> measured;
    if (const auto* const measuring = dynamic_cast<const S*>(sensor))
        (measuring->*get)(measured);
    return measured;
}

// The frame of what the first constraint of a joint, or a connector, is held on.
template <class Owner>
KARStatus ReadFrameOn(const QOBSharedHandle<Owner>& owner, KARMPAxisMode::Enum mode,
                      KARMathAxis& frame)
{
    QOBSharedHandle<KARMPGeometry> geometry;
    if (owner)
        owner->GetLinkedGeometry(mode == KARMPAxisMode::SecondBody ? 1 : 0, geometry);
    if (!geometry)
        return KARFailure;
    frame = mode == KARMPAxisMode::World ? KARMathAxis() : FrameOf(Ref(geometry));
    return KARSuccess;
}

} // namespace

Result<double> NumberOf(const Ref<KARMPEntity>& entity, std::string_view item, std::size_t index,
                        Where where)
{
    const ItemInfo* const info = FindItem(entity->getClassInfo(), kar::ToWide(item));
    const Value value = info != nullptr ? info->Get(*entity) : Value();
    const auto quoted = [item] { return '"' + std::string(item) + '"'; };
    if (const auto* const numbers = std::get_if<NumberArray>(&value)) {
        if (index < numbers->size())
            return (*numbers)[index];
        return Outcome(Problem{TitleOf(*entity) + " has no number of index " +
                                   std::to_string(index) + " in " + quoted() + ", which has " +
                                   std::to_string(numbers->size()),
                               KARFailure, where});
    }
    if (const auto* const target = std::get_if<QOBSharedHandle<KARMPEntity>>(&value))
        if (const auto number = NumberIn(*target))
            return *number;
    if (const int* const number = std::get_if<int>(&value))
        return static_cast<double>(*number);
    if (const double* const number = std::get_if<double>(&value))
        return *number;
    return Outcome(Problem{TitleOf(*entity) + " has no number " + quoted(), KARFailure, where});
}

Result<double> NumberAt(const QOBClassInfo& attributes, const Ref<KARMPEntity>& entity,
                        std::string_view path, Where where)
{
    const auto names = NamesIn(path);
    QOBSharedHandle<KARMPValue> value;
    if (&attributes == &KARMPParameter::ClassInfo())
        value = ValueAt<KARMPParameter>(*entity, names, &KARMPEntity::GetParameter);
    else if (&attributes == &KARMPState::ClassInfo())
        value = ValueAt<KARMPState>(*entity, names, &KARMPEntity::GetState);
    else if (&attributes == &KARMPOutput::ClassInfo())
        value = ValueAt<KARMPOutput>(*entity, names, &KARMPEntity::GetOutput);
    if (const auto number = NumberIn(value))
        return *number;
    return Outcome(Problem{TitleOf(*entity) + " has no number at \"" + std::string(path) + '"',
                           KARFailure, where});
}

KARMathAxis FrameOf(const Ref<KARMPGeometry>& geometry)
{
    QOBSharedHandle<KARMPBody> body;
    KARMathAxis frame;
    geometry->GetBody(body);
    const KARMathTransformation position = body ? PositionOf(Ref(body)) : KARMathTransformation();
    if (const auto system = geometry.As<KARMPAxisSystem>()) {
        system->GetAxisSystem(frame);
        return position * frame;
    }
    frame = position * frame;
    frame.SetOrigin(PlaceOf(geometry));
    return frame;
}

double ForceOf(const Ref<KARMPLinearSpring>& spring)
{
    QOBSharedHandle<KARMPGeometry> first;
    QOBSharedHandle<KARMPGeometry> second;
    double stiffness = 0.0;
    double restLength = 0.0;
    spring->GetLinkedGeometry(0, first);
    spring->GetLinkedGeometry(1, second);
    if (!first || !second)
        return std::numeric_limits<double>::quiet_NaN();
    spring->GetStiffness(stiffness);
    spring->GetRestLength(restLength);
    return stiffness * (restLength - (PlaceOf(Ref(second)) - PlaceOf(Ref(first))).Norm());
}

KARStatus JointForceLoader::ReadJointFrame(KARMathAxis& frame)
{
    return ReadFrame(KARMPAxisMode::FirstBody, frame);
}

KARStatus JointForceLoader::ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame)
{
    const auto joint = MeasuredBy(m_sensor, &KARMPJointSpatialForceSensor::GetJoint);
    return ReadFrameOn(joint ? FirstConstraintOf(*joint) : nullptr, mode, frame);
}

KARStatus ConnectorForceLoader::ReadConnectorFrame(KARMathAxis& frame)
{
    return ReadFrame(KARMPAxisMode::FirstBody, frame);
}

KARStatus ConnectorForceLoader::ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame)
{
    return ReadFrameOn(MeasuredBy(m_sensor, &KARMPConnectorSpatialForceSensor::GetConnector), mode,
                       frame);
}

} // namespace karmp::model
