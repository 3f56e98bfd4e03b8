// A slider-crank runs for two seconds in a hundred time steps. The application tells what to run by
// an analysis case: an initial condition and two analysis steps with their parameters. A loader on
// the variable of the crank's angle stands for the solver: it knows the motion in closed form,
// moves the bodies and raises a diagnostic where crank and rod stand in line. After each time step
// the results arrive in bulk, and the application writes them as a table of comma-separated values.
#include "CrankMotion.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr double StartAngle = -1.25; // rad
constexpr double Duration = 1.0;     // s, of each analysis step
constexpr double Acceleration = 2.0; // rad/s2, of the run-up
constexpr int TimeSteps = 50;        // of each analysis step

using Path = KAROmxArray<KARString>;
using Results = KAROmxOMap<KARString, KAROmxAny>;
using Quantity = KARMPPhysicalQuantity;

/// Where a drive has brought the crank.
struct DriveState
{
    double time = 0.0;     // s
    double angle = 0.0;    // rad
    double velocity = 0.0; // rad/s

    DriveState After(double duration, double acceleration) const
    {
        return {time + duration, angle + (velocity + acceleration * duration / 2.0) * duration,
                velocity + acceleration * duration};
    }
};

/// The solver's side of the crank's angle. The variable owns it.
class CrankLoader : public KARIMPVariableLoader
{
public:
    using Raise = std::function<void(const QOBSharedHandle<KARMPDiagnostic>&)>;

    CrankLoader(const SliderCrank& parts, const DriveState& drive, Raise raise)
        : m_parts(parts), m_drive(drive), m_raise(std::move(raise))
    {}

    KARStatus SetValue(double angle) override
    {
        const CrankState motion = MotionAt(angle, m_drive.velocity);
        Move(*m_parts.crank, motion.crank);
        Move(*m_parts.rod, motion.rod);
        Move(*m_parts.slider, motion.slider);
        const bool isAbove = std::sin(angle) > 0.0;
        if (std::exchange(m_isAbove, isAbove) != isAbove)
            m_raise(DeadCenter());
        return KARSuccess;
    }
    KARStatus SetMinValue(double) override { return KARSuccess; }
    KARStatus SetMaxValue(double) override { return KARSuccess; }
    KARStatus Fix() override { return KARSuccess; }
    KARStatus Unfix() override { return KARSuccess; }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    static void Move(KARMPBody& body, const PlaneMotion& motion)
    {
        body.SetPosition(KARMathTransformation(motion.Frame()), 0);
        body.SetVelocity(motion.velocity, Across(motion.rate));
    }

    /// What the solver has to say where the slider stands still though the crank turns.
    QOBSharedHandle<KARMPDiagnostic> DeadCenter() const
    {
        const auto diagnostic = KARMPDiagnostic::create(L"Dead centre");
        diagnostic->SetDiagnosticID(KARMPDiagnosticID::SingularConfiguration);
        diagnostic->SetMessageString("these bodies stand in line");
        for (const auto& body : {m_parts.crank, m_parts.rod, m_parts.slider})
            diagnostic->AddEntity(body);
        return diagnostic;
    }

    const SliderCrank& m_parts;
    const DriveState& m_drive;
    Raise m_raise;
    bool m_isAbove = StartAngle > 0.0;
};

/// The mechanism with the set-up of its analysis, and the solver's diagnostics.
class TimeHistory
{
public:
    TimeHistory()
    {
        AddInitialCondition();
        AddStep(L"Run-up", Acceleration);
        AddStep(L"Steady run", 0.0);
        AddOutputs();
        m_parts.angle->SetLoader(new CrankLoader(m_parts, m_drive, [this](const auto& diagnostic) {
            m_diagnostics.emplace_back(m_drive.time, diagnostic);
        }));
    }

    const QOBSharedHandle<KARMPWorld>& World() const { return m_mechanism.World(); }
    const QOBSharedHandle<KARMPAnalysisCase>& Case() const { return m_case; }
    const SliderCrank& Parts() const { return m_parts; }
    const DriveState& Drive() const { return m_drive; }
    /// With the times in s at which they were raised.
    const auto& Diagnostics() const { return m_diagnostics; }

    /// Sets the mechanism where its initial condition says, and runs all steps of the case.
    void Run()
    {
        m_initial->GetParameterValue(Path{"crank", "angle"}, 0, m_drive.angle);
        m_initial->GetParameterValue(Path{"crank", "velocity"}, 0, m_drive.velocity);
        for (int index = 0; index < m_case->GetAnalysisStepCount(); ++index) {
            QOBSharedHandle<KARMPAnalysisStep> step;
            m_case->GetAnalysisStep(index, step);
            RunStep(*step);
        }
    }

private:
    /// Runs one analysis step; its result stream gets a line for each time step.
    void RunStep(KARMPAnalysisStep& step)
    {
        double duration = 0.0;
        double acceleration = 0.0;
        step.GetParameterValue(Path{"duration"}, 0, duration);
        step.GetParameterValue(Path{"acceleration"}, 0, acceleration);
        const DriveState start = m_drive;
        const auto lines = std::make_shared<KARString>();
        for (int index = 1; index <= TimeSteps; ++index) {
            m_drive = start.After(duration * index / TimeSteps, acceleration);
            m_parts.angle->SetValue(m_drive.angle);
            m_case->UpdateOutputs(ResultsOf(step));
            *lines += LineOf(*m_case);
        }
        step.UpdateResultStream(lines);
    }

    /// What the mechanism does at this moment, by the paths of the outputs.
    Results ResultsOf(const KARMPAnalysisStep& step) const
    {
        KARMathVector velocity;
        KARMathVector angularVelocity;
        m_parts.slider->GetVelocity(velocity, angularVelocity);
        Results results;
        results.Insert("time", m_drive.time);
        results.Insert("analysis step", KARUnicodeString(kar::ToUtf8(step.getEntityName())));
        results.Insert("crank.angle", m_drive.angle);
        results.Insert("crank.velocity", m_drive.velocity);
        results.Insert("crank.past dead centre", std::sin(m_drive.angle) > 0.0);
        results.Insert("slider.position", PositionOf(*m_parts.slider).GetVector().GetX());
        results.Insert("slider.velocity", velocity.GetX());
        return results;
    }

    /// The outputs of a case as a line, read by their paths.
    static KARString LineOf(const KARMPAnalysisCase& analysis)
    {
        std::ostringstream line;
        KARUnicodeString text;
        unsigned char isPast = 0;
        analysis.GetOutputValue(Path{"analysis step"}, 0, text);
        analysis.GetOutputValue(Path{"crank", "past dead centre"}, 0, isPast);
        line << text.Text() << ',' << (isPast != 0 ? "yes" : "no");
        for (const Path& path : {Path{"time"}, Path{"crank", "angle"}, Path{"crank", "velocity"},
                                 Path{"slider", "position"}, Path{"slider", "velocity"}}) {
            double number = 0.0;
            analysis.GetOutputValue(path, 0, number);
            line << ',' << number;
        }
        line << '\n';
        return KARString(std::string_view(line.str()));
    }

    /// Names an attribute by its path and gives it a value, unless the value is null.
    template <class Attribute>
    QOBSharedHandle<Attribute> AddAttribute(const std::wstring& owner, const std::string& id,
                                            const char* type,
                                            const QOBSharedHandle<KARMPValue>& value)
    {
        const std::wstring name = owner + L'.' + kar::ToWide(std::string_view(id));
        const auto attribute = m_mechanism.File<KARMPAttribute>(Attribute::create(name), name);
        attribute->SetID(KARString(std::string_view(id)));
        attribute->SetType(type);
        if (value)
            attribute->AddValue(m_mechanism.File<KARMPValue>(value, name + L".value"));
        return attribute;
    }
    /// A value of a quantity: documents of older versions keep no flag or text without one either.
    template <class Value>
    static QOBSharedHandle<KARMPValue> About(Quantity::Enum quantity)
    {
        const auto value = Value::create(L"Value");
        value->SetPhysicalQuantity(quantity);
        return value;
    }
    static QOBSharedHandle<KARMPValue> Number(Quantity::Enum quantity, double number)
    {
        const auto value = KARMPConstant::create(L"Number");
        value->SetPhysicalQuantity(quantity);
        value->SetValue(number, "double");
        return value;
    }

    void AddInitialCondition()
    {
        const std::wstring name = L"Start at rest";
        m_initial =
            m_mechanism.File<KARMPInitialCondition>(KARMPInitialCondition::create(name), name);
        const auto crank = AddAttribute<KARMPParameter>(name, "crank", "", {});
        crank->AddChild(AddAttribute<KARMPParameter>(name + L".crank", "angle", "double",
                                                     Number(Quantity::Angle, StartAngle)));
        crank->AddChild(AddAttribute<KARMPParameter>(name + L".crank", "velocity", "double",
                                                     Number(Quantity::AngularVelocity, 0.0)));
        Support(*crank, m_parts.angle);
        m_initial->AddParameter(crank);
    }

    void AddStep(const std::wstring& name, double acceleration)
    {
        const auto step =
            m_mechanism.File<KARMPAnalysisStep>(KARMPAnalysisStep::create(name), name);
        step->AddParameter(AddAttribute<KARMPParameter>(name, "duration", "double",
                                                        Number(Quantity::Time, Duration)));
        step->AddParameter(AddAttribute<KARMPParameter>(
            name, "acceleration", "double", Number(Quantity::AngularAcceleration, acceleration)));
        m_case->AddAnalysisStep(step);
    }

    void AddOutputs()
    {
        const auto add = [this](const std::string& id, const char* type, const auto& value) {
            const auto output = AddAttribute<KARMPOutput>(L"Run", id, type, value);
            m_case->AddOutput(output);
            return output;
        };
        add("time", "double", Number(Quantity::Time, 0.0));
        add("analysis step", "string", About<KARMPString>(Quantity::Time));
        AddBodyOutputs(add("crank", "", nullptr), m_parts.crank, "angle", Quantity::Angle,
                       Quantity::AngularVelocity)
            ->AddChild(AddAttribute<KARMPOutput>(L"Run.crank", "past dead centre", "bool",
                                                 About<KARMPBoolean>(Quantity::Angle)));
        AddBodyOutputs(add("slider", "", nullptr), m_parts.slider, "position", Quantity::Length,
                       Quantity::Velocity);
    }

    /// The coordinate of a body and its rate, below an output that is tied to the body.
    QOBSharedHandle<KARMPOutput> AddBodyOutputs(const QOBSharedHandle<KARMPOutput>& output,
                                                const QOBSharedHandle<KARMPBody>& body,
                                                const char* coordinate, Quantity::Enum quantity,
                                                Quantity::Enum rate)
    {
        const std::wstring& name = output->getEntityName();
        output->AddChild(
            AddAttribute<KARMPOutput>(name, coordinate, "double", Number(quantity, 0.0)));
        output->AddChild(AddAttribute<KARMPOutput>(name, "velocity", "double", Number(rate, 0.0)));
        Support(*output, body);
        return output;
    }

    /// Ties an attribute to the entity that it is about.
    void Support(KARMPAttribute& attribute, const QOBSharedHandle<KARMPEntity>& target)
    {
        const std::wstring name = attribute.getEntityName() + L".support";
        const auto support = m_mechanism.File<KARMPSupport>(KARMPSupport::create(name), name);
        support->SetTarget(target);
        attribute.AddSupport(support);
    }

    DriveState m_drive; // outlives the loader
    std::vector<std::pair<double, QOBSharedHandle<KARMPDiagnostic>>> m_diagnostics;
    MechanismBuilder m_mechanism{L"Time history", {0.0, -9.81, 0.0}};
    SliderCrank m_parts = AddSliderCrank(m_mechanism, StartAngle);
    QOBSharedHandle<KARMPAnalysisCase> m_case =
        m_mechanism.File<KARMPAnalysisCase>(KARMPAnalysisCase::create(L"Run"), L"Run");
    QOBSharedHandle<KARMPInitialCondition> m_initial;
};

/// Writes what the steps of a case gave; the number of lines.
int WriteTable(const KARMPAnalysisCase& analysis, const char* file)
{
    std::ofstream table(file);
    int lines = 0;
    table << "analysis step,past dead centre,time [s],crank angle [rad],crank velocity [rad/s],"
             "slider position [m],slider velocity [m/s]\n";
    for (int index = 0; index < analysis.GetAnalysisStepCount(); ++index) {
        QOBSharedHandle<KARMPAnalysisStep> step;
        analysis.GetAnalysisStep(index, step);
        const std::string& text = step->GetResultStream()->Text();
        lines += static_cast<int>(std::count(text.begin(), text.end(), '\n'));
        table << text;
    }
    std::cout << file << " holds " << lines << " time steps\n";
    return table.flush() ? lines : 0;
}

/// Prints the diagnostics; true when there is one, about the three bodies.
bool TellDiagnostics(const TimeHistory& history)
{
    for (const auto& [time, diagnostic] : history.Diagnostics()) {
        KARUnicodeString message;
        diagnostic->GetMessageString(message);
        std::cout << "At " << time << " s " << message.Text() << ':';
        for (int index = 0; index < diagnostic->GetEntityCount(); ++index) {
            QOBSharedHandle<KARMPEntity> entity;
            diagnostic->GetEntity(index, entity);
            std::cout << ' ' << kar::ToUtf8(entity->getEntityName());
        }
        std::cout << '\n';
    }
    return history.Diagnostics().size() == 1 &&
           history.Diagnostics().front().second->GetEntityCount() == 3;
}

/// Whether the outputs of a case, as a document keeps them, are what the drive ends with.
bool HoldsTheEnd(const KARMPWorld& world, const DriveState& drive)
{
    constexpr double Grid = 1e-12; // of the numbers in documents
    const auto analysis = FindByName<KARMPAnalysisCase>(world, L"Run");
    double angle = 0.0;
    double time = 0.0;
    double position = 0.0;
    analysis->GetOutputValue(Path{"crank", "angle"}, 0, angle);
    analysis->GetOutputValue(Path{"time"}, 0, time);
    analysis->GetOutputValue(Path{"slider", "position"}, 0, position);
    const double expected = MotionAt(drive.angle, 0.0).slider.origin.GetX();
    std::cout << "At the end the slider stands at " << position << " m\n";
    return time == 2.0 * Duration && std::abs(angle - drive.angle) < Grid &&
           std::abs(position - expected) < Grid;
}

} // namespace

int main()
{
    ::setenv("MOT_DUMP_OUTPUTS", "1", 1); // documents of this program hold its outputs
    TimeHistory history;
    history.Run();
    if (WriteTable(*history.Case(), "time-history.csv") != 2 * TimeSteps ||
        !TellDiagnostics(history))
        return 1;
    if (!IsQuiet(karmp::documents::SaveFile(history.World(), "time-history.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("time-history.xml");
    const bool isWhole =
        IsQuiet(loaded.diagnostics) && loaded.world && HoldsTheEnd(*loaded.world, history.Drive());
    return isWhole ? 0 : 1;
}
