#include "KARIMPBodyLoader.h"
#include "KARIMPConstraintLoader.h"
#include "KARIMPVariableLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPFailedCheck.h"
#include "KARMPSensor.h"
#include "KARMPShape.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"

namespace {

using Where = KARMPSourceLocation;

/// Whether an entity that cannot be had is a failed check.
enum class Missing { Report, PassOver };

// Calls `step` with each entity that is listed when the walk begins, up to the first that gives
// false; true when none did. A step may take entities out of the world.
template <class T, class Step>
bool ForEachWhile(const KARMPWorld& world, Step step, Missing missing = Missing::Report,
                  Where where = Where::current())
{
    const int count = world.Count<T>();
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<T> listed;
        world.Get(index, listed);
        const QOBSharedHandle<T> entity(listed, QOBSharedBase::WriteLock);
        if (!entity) {
            if (missing == Missing::Report)
                KARMPVerify(false, where);
            continue;
        }
        if (!step(*entity))
            return false;
    }
    return true;
}

template <class T, class Step>
KARStatus ForEach(const KARMPWorld& world, Step step, Where where = Where::current())
{
    const auto go = [&step](T& entity) {
        step(entity);
        return true;
    };
    ForEachWhile<T>(world, go, Missing::Report, where);
    return KARSuccess;
}

// A loader that cannot be fetched is reported by the variable alone.
KARStatus TellControlled(const KARMPWorld& world, KARStatus (KARIMPVariableLoader::*tell)())
{
    return ForEach<KARMPVariable>(
        world,
        [tell](const KARMPVariable& variable) {
            if (variable.GetType() != KARMPVariableType::Controlled || !variable.HasValue())
                return;
            KARIMPVariableLoader* loader = nullptr;
            if (variable.GetLoader(loader) == KARSuccess && loader != nullptr)
                (loader->*tell)();
        });
}

// Tells the loader of an entity; the one who cannot fetch it reports, besides the entity.
template <class Loader, class T>
void Tell(const T& entity, KARStatus (Loader::*tell)(), Where where = Where::current())
{
    Loader* loader = nullptr;
    if (KARMPVerify(!KARFailed(entity.GetLoader(loader)), where) && loader != nullptr)
        (loader->*tell)();
}

KARStatus TellFree(const KARMPWorld& world, KARStatus (KARIMPBodyLoader::*tell)())
{
    return ForEach<KARMPBody>(
        world,
        [tell](const KARMPBody& body) {
            if (!body.IsFixed())
                Tell(body, tell);
        });
}

KARStatus ForEachActiveSensor(const KARMPWorld& world, KARStatus (KARMPSensor::*operation)())
{
    return ForEach<KARMPSensor>(
        world,
        [operation](KARMPSensor& sensor) {
            if (sensor.IsActive())
                (sensor.*operation)();
        });
}

bool HasShape(const KARMPBody& body)
{
    for (int index = 0; index < body.GetLinkedShapeCount(); ++index) {
        QOBSharedHandle<KARMPShape> shape;
        if (KARMPVerify(!KARFailed(body.GetLinkedShape(index, shape)) &&
                        QOBSharedHandle<KARMPShape>(shape, QOBSharedBase::WriteLock)))
            return true;
    }
    return false;
}

} // namespace

KARStatus KARMPWorld::FixAllControlledVariables()
{
    return TellControlled(*this, &KARIMPVariableLoader::Fix);
}

KARStatus KARMPWorld::UnfixAllControlledVariables()
{
    return TellControlled(*this, &KARIMPVariableLoader::Unfix);
}

KARStatus KARMPWorld::FixAllFreeBodies()
{
    return TellFree(*this, &KARIMPBodyLoader::HoldBody);
}

KARStatus KARMPWorld::UnfixAllFreeBodies()
{
    return TellFree(*this, &KARIMPBodyLoader::ReleaseBody);
}

bool KARMPWorld::IsSatisfied() const
{
    const auto holds = [](const KARMPConstraint& constraint) {
        return !constraint.IsActive() || constraint.IsSatisfied();
    };
    return ForEachWhile<KARMPConstraint>(*this, holds, Missing::PassOver);
}

bool KARMPWorld::IsSatisfied(double& worst) const
{
    worst = 0.0;
    ForEach<KARMPConstraint>(*this, [&worst](const KARMPConstraint& constraint) {
        double residual = 0.0;
        constraint.IsSatisfied(residual);
        if (residual > worst)
            worst = residual;
    });
    return true;
}

bool KARMPWorld::IsWeighted() const
{
    return ForEachWhile<KARMPBody>(
        *this,
        [](const KARMPBody& body) {
            double mass = 0.0;
            return !HasShape(body) || !KARMPVerify(!KARFailed(body.GetMass(mass))) || mass != 0.0;
        });
}

KARStatus KARMPWorld::ResetSensors()
{
    return ForEachActiveSensor(*this, &KARMPSensor::Reset);
}

KARStatus KARMPWorld::UpdateSensors()
{
    return ForEachActiveSensor(*this, &KARMPSensor::Update);
}

KARStatus KARMPWorld::UpdateConstraintParameters()
{
    return ForEach<KARMPConstraint>(
        *this,
        [](const KARMPConstraint& constraint) {
            Tell(constraint, &KARIMPConstraintLoader::UpdateParameters);
        });
}
