// Lets the factory, or operations of what it makes, fail at a chosen call.
#pragma once

#include "KARMPEntities.h"
#include "RecordingBodyLoader.h"

#include <new>

namespace karmp::model {

/// How something fails.
enum class Fault {
    Nothing, ///< The factory gives null.
    Throw,   ///< The factory throws std::bad_alloc.
    Status   ///< A virtual operation of an entity, or of a loader of it, fails with a status.
};

/// The calls up to the one that fails, of the whole program.
struct FaultCount
{
    static inline bool armed = false;
    static inline Fault fault = Fault::Nothing;
    static inline int left = 0;
    static inline KARStatus status = KARSuccess;

    /// True at the call that fails.
    static bool IsDue(Fault kind) { return armed && kind == fault && --left == 0; }
    /// What an operation gives in place of its own status.
    template <class Operation>
    static KARStatus Or(Operation operation)
    {
        return IsDue(Fault::Status) ? status : operation();
    }
};

/// Entities whose virtual operations are counted. They have the records of their bases.
class FaultyFrame : public KARMPAxisSystem
{
public:
    KARStatus SetAxisSystem(const KARMathAxis& axis) override
    {
        return FaultCount::Or([&] { return KARMPAxisSystem::SetAxisSystem(axis); });
    }
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return FaultCount::Or([&] { return KARMPAxisSystem::SetBody(body); });
    }
    KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint) override
    {
        return FaultCount::Or([&] { return KARMPAxisSystem::LinkToConstraint(constraint); });
    }
};
template <class Base>
class FaultyConstraint : public Base
{
public:
    KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint) override
    {
        return FaultCount::Or([&] { return Base::SetJoint(joint); });
    }
    KARStatus LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry) override
    {
        return FaultCount::Or([&] { return Base::LinkToGeometry(geometry); });
    }
    KARStatus LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable) override
    {
        return FaultCount::Or([&] { return Base::LinkToVariable(variable); });
    }
};
class FaultyEquation : public FaultyConstraint<KARMPLinearEquation>
{
public:
    KARStatus AddLinearTerm(double coefficient) override
    {
        return FaultCount::Or([&] { return KARMPLinearEquation::AddLinearTerm(coefficient); });
    }
    KARStatus SetConstantTerm(double constant) override
    {
        return FaultCount::Or([&] { return KARMPLinearEquation::SetConstantTerm(constant); });
    }
};
class FaultyVariable : public KARMPVariable
{
public:
    KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint) override
    {
        return FaultCount::Or([&] { return KARMPVariable::LinkToConstraint(constraint); });
    }
    KARStatus SetValue(double value) override
    {
        return FaultCount::Or([&] { return KARMPVariable::SetValue(value); });
    }
    KARStatus SetMinValue(double value) override
    {
        return FaultCount::Or([&] { return KARMPVariable::SetMinValue(value); });
    }
    KARStatus SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity) override
    {
        return FaultCount::Or([&] { return KARMPVariable::SetPhysicalQuantity(quantity); });
    }
};
template <class Base>
class FaultyValue : public Base
{
public:
    KARStatus SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity) override
    {
        return FaultCount::Or([&] { return Base::SetPhysicalQuantity(quantity); });
    }
};
class FaultyShape : public KARMP3DRep
{
public:
    KARStatus Set3DRep(KAR3DRep* rep) override
    {
        return FaultCount::Or([&] { return KARMP3DRep::Set3DRep(rep); });
    }
};
class FaultyBushing : public KARMPBushing
{
public:
    KARStatus SetFirstBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return FaultCount::Or([&] { return KARMPBushing::SetFirstBody(body); });
    }
    KARStatus SetSecondBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return FaultCount::Or([&] { return KARMPBushing::SetSecondBody(body); });
    }
    KARStatus LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry) override
    {
        return FaultCount::Or([&] { return KARMPBushing::LinkToGeometry(geometry); });
    }
};
class FaultySphere : public KARMPSphere
{
public:
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return FaultCount::Or([&] { return KARMPSphere::SetBody(body); });
    }
};
class FaultyRule : public KARMPCollisionRule
{
public:
    KARStatus RemoveCollidable(const QOBSharedHandle<KARMPEntity>& collidable) override
    {
        return FaultCount::Or([&] { return KARMPCollisionRule::RemoveCollidable(collidable); });
    }
};
/// Loaders whose answers to a move are counted; what they answer when a body is fixed is a failed
/// check alone.
class FaultyBodyLoader : public RecordingBodyLoader
{
public:
    FaultyBodyLoader() : RecordingBodyLoader(Record()) {}
    // What a move gives is the answer to this.
    KARStatus ReleaseBody() override
    {
        return FaultCount::Or([&] { return RecordingBodyLoader::ReleaseBody(); });
    }

private:
    static BodyLoaderRecord& Record()
    {
        static BodyLoaderRecord record;
        return record;
    }
};
class FaultyBody2DLoader : public RecordingBody2DLoader
{
public:
    FaultyBody2DLoader() : RecordingBody2DLoader(Record()) {}
    KARStatus ReleaseBody() override
    {
        return FaultCount::Or([&] { return RecordingBody2DLoader::ReleaseBody(); });
    }

private:
    static Body2DLoaderRecord& Record()
    {
        static Body2DLoaderRecord record;
        return record;
    }
};
/// A body with such a loader.
template <class Base, class Loader>
class FaultyBody : public Base
{
public:
    FaultyBody() { this->SetLoader(new Loader); }
};
/// An entity of a class without such operations.
template <class Base>
class PlainEntity : public Base
{};

/// Makes the factory's entities fail while it lives.
class FactoryFaults : private KARMPGenericFactoryBase
{
public:
    FactoryFaults() : m_former(GetMap())
    {
        Replace<FaultyBody<KARMPBody, FaultyBodyLoader>>("KARMPBody");
        Replace<FaultyBody<KARMPBody2D, FaultyBody2DLoader>>("KARMPBody2D");
        Replace<PlainEntity<KARMPSketch>>("KARMPSketch");
        Replace<FaultyFrame>("KARMPAxisSystem");
        Replace<PlainEntity<KARMPRevolute>>("KARMPRevolute");
        Replace<FaultyConstraint<KARMPRevoluteConstraint>>("KARMPRevoluteConstraint");
        Replace<FaultyVariable>("KARMPVariable");
        Replace<PlainEntity<KARMPGear>>("KARMPGear");
        Replace<FaultyEquation>("KARMPLinearEquation");
        Replace<FaultyValue<KARMPConstant>>("KARMPConstant");
        Replace<FaultyValue<KARMPExpression>>("KARMPExpression");
        Replace<PlainEntity<KARMPMotor>>("KARMPMotor");
        Replace<FaultyBushing>("KARMPBushing");
        Replace<FaultySphere>("KARMPSphere");
        Replace<FaultyShape>("KARMP3DRep");
        Replace<FaultyRule>("KARMPCollisionRule");
    }
    ~FactoryFaults()
    {
        for (const auto& [name, creator] : m_former)
            Register(name, creator);
    }
    FactoryFaults(const FactoryFaults&) = delete;
    FactoryFaults& operator=(const FactoryFaults&) = delete;

    /// The call of that number, from 1, fails.
    void Arm(Fault fault, int call, KARStatus status)
    {
        FaultCount::armed = true;
        FaultCount::fault = fault;
        FaultCount::left = call;
        FaultCount::status = status;
    }
    void Disarm() { FaultCount::armed = false; }

private:
    template <class Made>
    static void Replace(const char* name)
    {
        Register(
            name,
            []() -> QOBSharedHandle<KARMPEntity> {
                if (FaultCount::IsDue(Fault::Nothing))
                    return {};
                if (FaultCount::IsDue(Fault::Throw))
                    throw std::bad_alloc();
                return QOBSharedHandle<KARMPEntity>(new Made);
            });
    }

    Map m_former;
};

} // namespace karmp::model
