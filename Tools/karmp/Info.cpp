#include "Commands.h"
#include "EntityText.h"
#include "KARMPAnalysisCase.h"
#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPFamilies.h"
#include "KARMPMotor.h"
#include "KARMPSensor.h"
#include "KARMPSupport.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "MechanismParts.h"
#include "Mobility.h"
#include "Output.h"
#include "Subjects.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <set>

namespace karmp::tool {

namespace {

/// The title of a family: the name of its element in words.
template <class T>
std::string FamilyTitle()
{
    std::string title;
    for (const wchar_t character : RegistryElementName<T>()) {
        const bool begins = character >= L'A' && character <= L'Z' && !title.empty();
        if (begins)
            title += ' ';
        title += static_cast<char>(begins ? character - L'A' + L'a' : character);
    }
    return title;
}

/// What is printed, section by section, as text or as JSON.
class Report
{
public:
    explicit Report(bool isJson) : m_isJson(isJson) {}

    bool IsJson() const { return m_isJson; }
    /// `note` stands behind the title of a text.
    void Add(std::string_view title, const Columns& lines, std::string_view note = {},
             const std::string& end = {})
    {
        if (m_isJson) {
            std::cout << (m_isFirst ? "" : ",") << "\n  " << JsonText(title) << ": "
                      << lines.Json(4);
        } else {
            std::cout << (m_isFirst ? "" : "\n") << Bold(title) << note << '\n';
            lines.Print(2);
            std::cout << end;
        }
        m_isFirst = false;
    }

private:
    bool m_isJson;
    bool m_isFirst = true;
};

using ClassCounts = std::map<std::string, int>;

template <class T>
ClassCounts CountClasses(const KARMPWorld& world)
{
    ClassCounts counts;
    const int count = world.Count<T>();
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<T> entity;
        if (world.Get<T>(index, entity) == KARSuccess)
            ++counts[entity.getClassInfo().getName()];
    }
    return counts;
}

template <class Triple>
std::string TripleText(const Triple& triple)
{
    return '(' + NumberText(triple.GetX()) + ", " + NumberText(triple.GetY()) + ", " +
           NumberText(triple.GetZ()) + ')';
}

template <class T>
std::string GlobalText(const QOBSharedHandle<T>& entity)
{
    if (!entity)
        return "none";
    std::wstring identifier;
    entity->GetIdentifier(identifier);
    return Title(entity->getEntityName(), identifier);
}

void PrintSettings(Report& report, const KARMPWorld& world, std::wstring_view version)
{
    KARMathPoint origin;
    KARMathVector gravity;
    std::array<double, 3> size{};
    world.GetOrigin(origin);
    world.GetGravity(gravity);
    world.GetSize(size[0], size[1], size[2]);
    Columns lines;
    lines.Add("Version", Printable(version));
    lines.Add("Linear tolerance", NumberText(world.GetLinearTolerance()));
    lines.Add("Angular tolerance", NumberText(world.GetAngularTolerance()));
    lines.Add("Origin", TripleText(origin));
    lines.Add("Size", TripleText(KARMathVector(size[0], size[1], size[2])));
    lines.Add("Gravity", TripleText(gravity));
    report.Add("Settings", lines);
}

void PrintGlobals(Report& report, const KARMPWorld& world)
{
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world.GetGlobalBody(body);
    world.GetGlobalAxisSystem(axisSystem);
    world.GetGlobalTime(time);
    Columns lines;
    lines.Add("Body", GlobalText(body));
    lines.Add("Axis system", GlobalText(axisSystem));
    lines.Add("Time", GlobalText(time));
    report.Add("Globals", lines);
}

void PrintEntities(Report& report, const KARMPWorld& world)
{
    Columns lines;
    int total = 0;
    Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        if (world.Count<T>() == 0)
            return;
        total += world.Count<T>();
        lines.Add(FamilyTitle<T>(), std::to_string(world.Count<T>()));
        for (const auto& [className, count] : CountClasses<T>(world))
            lines.Add("  " + WithoutPrefix(className), "  " + std::to_string(count));
    });
    lines.Add("Total", std::to_string(total));
    report.Add("Entities", lines);
}

struct BodyTotals
{
    int moving = 0;
    int fixed = 0;
    int withoutMass = 0;
    double mass = 0.0;
    KARMathVector moment; // of mass, in the world's frame
};

BodyTotals SumBodies(const KARMPWorld& world)
{
    BodyTotals totals;
    for (int index = 0; index < world.GetBodyCount(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (world.Get<KARMPBody>(index, body) != KARSuccess)
            continue;
        const bool isFixed = IsFixed(*body);
        const double mass = MassOf(*body);
        ++(isFixed ? totals.fixed : totals.moving);
        if (mass == 0.0 && !isFixed)
            ++totals.withoutMass;
        totals.mass += mass;
        totals.moment += (CenterOf(*body) - KARMathPoint()) * mass;
    }
    return totals;
}

void PrintMasses(Report& report, const BodyTotals& totals)
{
    Columns lines;
    lines.Add("Moving bodies", std::to_string(totals.moving));
    lines.Add("Fixed bodies", std::to_string(totals.fixed));
    lines.Add("Moving bodies without mass", std::to_string(totals.withoutMass));
    lines.Add("Total mass", NumberText(totals.mass));
    if (totals.mass > 0.0)
        lines.Add("Centre of mass", TripleText(totals.moment * (1.0 / totals.mass)));
    report.Add("Bodies", lines);
}

// The entities of a family, each with what it refers to: the steps of an analysis case, for one.
template <class T>
void PrintTargets(Report& report, const KARMPWorld& world, const char* title)
{
    const int most = report.IsJson() ? world.Count<T>() : 20;
    const int count = world.Count<T>();
    if (count == 0)
        return;
    Columns lines;
    for (int index = 0; index < std::min(count, most); ++index) {
        QOBSharedHandle<T> entity;
        if (world.Get<T>(index, entity) == KARSuccess)
            lines.Add(TitleOf(*entity) + (entity->IsActive() ? "" : " (inactive)"),
                      TargetsText(*entity));
    }
    report.Add(title, lines, {},
               count > most ? "  and " + std::to_string(count - most) + " more\n" : std::string());
}

// A motor drives when it is active and has a target; a freedom is a variable of a constraint.
int CountDrivenVariables(const KARMPWorld& world)
{
    std::set<const KARMPVariable*> driven;
    for (int index = 0; index < world.Count<KARMPActuator>(); ++index) {
        QOBSharedHandle<KARMPActuator> actuator;
        world.Get<KARMPActuator>(index, actuator);
        const auto* const motor = dynamic_cast<const KARMPMotor*>(actuator.get());
        QOBSharedHandle<KARMPVariable> variable;
        if (motor != nullptr && motor->IsActive() &&
            motor->GetTargetType() != KARMPMotorTargetType::NotSpecified &&
            motor->GetVariable(variable) == KARSuccess && variable &&
            variable->GetLinkedConstraintCount() > 0)
            driven.insert(variable.get());
    }
    return static_cast<int>(driven.size());
}

void PrintMobility(Report& report, const KARMPWorld& world)
{
    if (world.Count<KARMPJoint>() == 0)
        return;
    const Mobility mobility = EstimateMobility(world);
    Columns lines;
    lines.Add("As a spatial mechanism", std::to_string(mobility.spatial));
    if (mobility.mayBePlanar)
        lines.Add("As a planar mechanism", std::to_string(mobility.planar));
    if (world.Count<KARMPActuator>() > 0) {
        const int driven = CountDrivenVariables(world);
        std::string left = std::to_string(mobility.spatial - driven);
        if (mobility.mayBePlanar)
            left += " in space, " + std::to_string(mobility.planar - driven) + " in the plane";
        lines.Add("Driven variables", std::to_string(driven));
        lines.Add("Left free", std::move(left));
    }
    if (mobility.notCounted > 0)
        lines.Add("Joints not counted", std::to_string(mobility.notCounted));
    report.Add("Mobility", lines, " (an estimate: Grübler count from the joint kinds)");
}

} // namespace

int RunInfo(const InfoOptions& options)
{
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    const KARMPWorld& world = *loaded->world;
    Report report(options.json);
    if (options.json)
        std::cout << '{';
    PrintSettings(report, world, loaded->version);
    PrintGlobals(report, world);
    PrintEntities(report, world);
    PrintMasses(report, SumBodies(world));
    PrintTargets<KARMPActuator>(report, world, "Drives");
    PrintTargets<KARMPConnector>(report, world, "Force elements");
    PrintTargets<KARMPSensor>(report, world, "Sensors");
    PrintTargets<KARMPAnalysisCase>(report, world, "Analysis cases");
    PrintTargets<KARMPSupport>(report, world, "Supports");
    PrintMobility(report, world);
    if (options.json)
        std::cout << ",\n  \"file\": " << JsonText(options.file) << "\n}\n";
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool
