// The mechanism that the rows on worlds build, and how their time is taken.
#pragma once

#include "KARMPEntities.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

#include <malloc.h>
#include <time.h>

using Clock = std::chrono::steady_clock;
/// How much of the mechanism is built.
enum class Content { Bodies, Joints, Springs, Motors };

inline int EntitiesPerBody(Content content)
{
    switch (content) {
    case Content::Bodies:
        return 4;
    case Content::Joints:
        return 7;
    case Content::Springs:
        return 11;
    default:
        return 14;
    }
}

/// Adds entities to the registries and to the basic world, as an application does.
class Builder
{
public:
    Builder()
        : m_basicWorld(QOBBasicWorld::create(L"Bench")), m_world(KARMPWorld::create(m_basicWorld))
    {
        m_world->GetGlobalBody(m_former);
        for (const auto& global : Globals())
            m_basicWorld->addLogicalChild(global);
    }

    void AddBody(int number, Content content)
    {
        const std::wstring name = L"Body" + std::to_wstring(number);
        const auto body = File<KARMPBody>(KARMPBody::create(name));
        body->SetPosition(KARMathTransformation(KARMathVector(0.1 * number, 0.5, 0.25)), 0);
        body->SetMass(1.0 + 0.001 * number);
        const auto point = File<KARMPGeometry>(KARMPPoint::create(name + L".Point"));
        const auto axis = File<KARMPGeometry>(KARMPAxisSystem::create(name + L".Axis"));
        point->SetPoint(KARMathPoint(0.1, 0.2, 0.3));
        for (const QOBSharedHandle<KARMPGeometry>& geometry :
             {QOBSharedHandle<KARMPGeometry>(point), QOBSharedHandle<KARMPGeometry>(axis)}) {
            geometry->SetBody(body);
            body->AddGeometry(geometry);
        }
        const auto variable = File<KARMPVariable>(KARMPVariable::create(name + L".Angle"));
        variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Angle);
        variable->SetValue(0.5);
        if (content >= Content::Joints)
            AddJoint(name, body, axis, variable);
        if (content >= Content::Springs)
            AddSpring(name, body);
        if (content >= Content::Motors)
            AddMotor(name, variable);
        m_former = body;
        m_formerAxis = axis;
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_world; }

private:
    std::vector<QOBSharedHandle<QOBBasicEntity>> Globals() const
    {
        QOBSharedHandle<KARMPBody> body;
        QOBSharedHandle<KARMPAxisSystem> axisSystem;
        QOBSharedHandle<KARMPVariable> time;
        m_world->GetGlobalBody(body);
        m_world->GetGlobalAxisSystem(axisSystem);
        m_world->GetGlobalTime(time);
        return {body, axisSystem, time};
    }

    template <class Family, class T>
    QOBSharedHandle<T> File(const QOBSharedHandle<T>& entity)
    {
        m_basicWorld->addLogicalChild(entity);
        m_world->Add<Family>(entity);
        return entity;
    }

    void AddJoint(const std::wstring& name, const QOBSharedHandle<KARMPBody>& body,
                  const QOBSharedHandle<KARMPAxisSystem>& axis,
                  const QOBSharedHandle<KARMPVariable>& variable)
    {
        const auto joint = File<KARMPJoint>(KARMPRevolute::create(name + L".Joint"));
        joint->LinkToBody(m_former, KARMPBodyOrientation::Out);
        joint->LinkToBody(body, KARMPBodyOrientation::In);
        m_former->LinkToJoint(joint);
        body->LinkToJoint(joint);
        const auto revolute = File<KARMPConstraint>(KARMPRevoluteConstraint::create(name + L".C1"));
        const auto coincidence = File<KARMPConstraint>(KARMPCoincidence::create(name + L".C2"));
        for (const QOBSharedHandle<KARMPConstraint>& constraint :
             {QOBSharedHandle<KARMPConstraint>(revolute),
              QOBSharedHandle<KARMPConstraint>(coincidence)}) {
            joint->AddConstraint(constraint);
            constraint->SetJoint(joint);
            constraint->LinkToGeometry(axis);
            axis->LinkToConstraint(constraint);
            if (m_formerAxis) {
                constraint->LinkToGeometry(m_formerAxis);
                m_formerAxis->LinkToConstraint(constraint);
            }
        }
        revolute->LinkToVariable(variable);
        variable->LinkToConstraint(revolute);
    }

    void AddSpring(const std::wstring& name, const QOBSharedHandle<KARMPBody>& body)
    {
        const auto spring = File<KARMPConnector>(KARMPLinearSpring::create(name + L".Spring"));
        spring->SetFirstBody(m_former);
        spring->SetSecondBody(body);
        m_former->LinkToConnector(spring);
        body->LinkToConnector(spring);
        spring->SetFirstAttachment(KARMathPoint(0.1, 0.2, 0.3));
        spring->SetStiffness(1000.0);
        spring->SetRestLength(0.25);
        spring->SetDampingCoefficient(10.0);
    }

    void AddMotor(const std::wstring& name, const QOBSharedHandle<KARMPVariable>& variable)
    {
        const auto motor = File<KARMPActuator>(KARMPMotor::create(name + L".Motor"));
        motor->SetVariable(variable);
        motor->SetVelocity(2.0);
        motor->SetMaxForce(50.0);
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld;
    QOBSharedHandle<KARMPWorld> m_world;
    QOBSharedHandle<KARMPBody> m_former;
    QOBSharedHandle<KARMPAxisSystem> m_formerAxis;
};

inline QOBSharedHandle<KARMPWorld> Build(std::int64_t count, Content content)
{
    Builder builder;
    for (int number = 0; number < count; ++number)
        builder.AddBody(number, content);
    return builder.World();
}

template <class Work>
double SecondsOf(Work work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The processor's time for some work, in which what else the machine does plays no part.
template <class Work>
double ProcessorSecondsOf(Work work)
{
    const auto now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    work();
    return now() - start;
}

/// Returns the heap's free memory to the system, so that what is measured next takes its memory
/// from there, as in a process that does nothing else.
inline void GiveFreeMemoryBack()
{
    ::malloc_trim(0);
}

/// Lets the heap keep what is freed, for as long as it lives.
class HeapThatKeeps
{
public:
    HeapThatKeeps() { Set(0, -1); }
    ~HeapThatKeeps() { Set(65536, 128 * 1024); }
    HeapThatKeeps(const HeapThatKeeps&) = delete;
    HeapThatKeeps& operator=(const HeapThatKeeps&) = delete;

private:
    static void Set(int mappings, int trimThreshold)
    {
        ::mallopt(M_MMAP_MAX, mappings);
        ::mallopt(M_TRIM_THRESHOLD, trimThreshold);
    }
};

/// Turns the rows' time per iteration into time per entity.
class PerEntity
{
public:
    PerEntity(benchmark::State& state, Content content)
        : m_state(state), m_entities(state.range(0) * EntitiesPerBody(content))
    {}
    ~PerEntity()
    {
        using benchmark::Counter;
        m_state.SetItemsProcessed(m_state.iterations() * m_entities);
        m_state.counters["s_per_entity"] = Counter(
            static_cast<double>(m_entities), Counter::kIsIterationInvariantRate | Counter::kInvert);
    }
    PerEntity(const PerEntity&) = delete;
    PerEntity& operator=(const PerEntity&) = delete;

private:
    benchmark::State& m_state;
    std::int64_t m_entities;
};

#define SIZES Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond)
