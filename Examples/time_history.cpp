// A slider-crank runs for two seconds in a hundred time steps. The application tells what to run by
// an analysis case: an initial condition and two analysis steps with their parameters. A loader on
// the variable of the crank's angle stands for the solver: it knows the motion in closed form,
// moves the bodies and raises a diagnostic where crank and rod stand in line. After each time step
// the results arrive in bulk, and the application writes them as a table of comma-separated values.
#include "CrankMotion.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>

using namespace karmp::model;

namespace {

constexpr double StartAngle = -1.25; // rad
constexpr int TimeSteps = 50;        // of each analysis step

using Path = KAROmxArray<KARString>;
using Quantity = KARMPPhysicalQuantity;

/// The solver's side of the crank's angle. The variable owns it.
class CrankLoader : public KARIMPVariableLoader
{
public:
    CrankLoader(const SliderCrank& parts, const double& velocity, KARMPDiagnostic& deadCenter)
        : m_parts(parts), m_velocity(velocity), m_deadCenter(deadCenter)
    {}
    KARStatus SetValue(double angle) override
    {
        const CrankState motion = MotionAt(angle, m_velocity);
        motion.crank.Apply(*m_parts.crank);
        motion.rod.Apply(*m_parts.rod);
        motion.slider.Apply(*m_parts.slider);
        if (std::exchange(m_isAbove, std::sin(angle) > 0.0) != m_isAbove)
            for (const auto& body : {m_parts.crank, m_parts.rod, m_parts.slider})
                m_deadCenter.AddEntity(body);
        return KARSuccess;
    }
    KARStatus SetMinValue(double) override { return KARSuccess; }
    KARStatus SetMaxValue(double) override { return KARSuccess; }
    KARStatus Fix() override { return KARSuccess; }
    KARStatus Unfix() override { return KARSuccess; }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    const SliderCrank& m_parts;
    const double& m_velocity;
    KARMPDiagnostic& m_deadCenter;
    bool m_isAbove = StartAngle > 0.0;
};

/// The mechanism with the set-up of its analysis, and where the drive has brought the crank.
struct TimeHistory
{
    Model model{"Time history", {.gravity = {0.0, -9.81, 0.0}}};
    SliderCrank parts = AddSliderCrank(model, StartAngle);
    Ref<KARMPAnalysisCase> analysis = model.Add<KARMPAnalysisCase>("Run");
    Ref<KARMPInitialCondition> initial = model.Add<KARMPInitialCondition>("Start at rest");
    QOBSharedHandle<KARMPDiagnostic> deadCenter = KARMPDiagnostic::create(L"Dead centre");
    double time = 0.0, angle = 0.0, velocity = 0.0; // s, rad, rad/s

    TimeHistory()
    {
        const auto start = Add<KARMPParameter>("Start at rest.crank", "", parts.angle);
        start->AddChild(
            AddNumber<KARMPParameter>("Start at rest.crank.angle", Quantity::Angle, StartAngle));
        start->AddChild(AddNumber<KARMPParameter>("Start at rest.crank.velocity",
                                                  Quantity::AngularVelocity, 0.0));
        initial->AddParameter(start);
        AddStep("Run-up", 2.0);
        AddStep("Steady run", 0.0);

        analysis->AddOutput(AddNumber<KARMPOutput>("Run.time", Quantity::Time, 0.0));
        analysis->AddOutput(AddFlag<KARMPString>("Run.analysis step", "string", Quantity::Time));
        AddOutputs("Run.crank", parts.crank, "angle", Quantity::Angle, Quantity::AngularVelocity)
            ->AddChild(
                AddFlag<KARMPBoolean>("Run.crank.past dead centre", "bool", Quantity::Angle));
        AddOutputs("Run.slider", parts.slider, "position", Quantity::Length, Quantity::Velocity);
        deadCenter->SetDiagnosticID(KARMPDiagnosticID::SingularConfiguration);
        deadCenter->SetMessageString("these bodies stand in line");
        parts.angle->SetLoader(new CrankLoader(parts, velocity, *deadCenter));
    }

    /// An attribute, whose path's last part is that of its name, tied to what it is about.
    template <class Attribute>
    Ref<Attribute> Add(const std::string& name, const char* type,
                       const Ref<KARMPEntity>& about = {})
    {
        const auto attribute = model.Add<Attribute>(name);
        attribute->SetID(KARString(name.substr(name.rfind('.') + 1).c_str()));
        attribute->SetType(type);
        if (about) {
            const auto support = model.Add<KARMPSupport>(name + ".support");
            support->SetTarget(about);
            attribute->AddSupport(support);
        }
        return attribute;
    }
    template <class Attribute>
    Ref<Attribute> AddNumber(const std::string& name, Quantity::Enum quantity, double number)
    {
        const auto attribute = Add<Attribute>(name, "double");
        attribute->AddValue(model.Constant(name + ".value", quantity, number));
        return attribute;
    }
    /// A flag or a text, which documents of older versions do not keep without a quantity.
    template <class Value>
    Ref<KARMPOutput> AddFlag(const std::string& name, const char* type, Quantity::Enum quantity)
    {
        const auto output = Add<KARMPOutput>(name, type);
        const auto value = model.Add<Value>(name + ".value");
        value->SetPhysicalQuantity(quantity);
        output->AddValue(value);
        return output;
    }
    void AddStep(const std::string& name, double acceleration)
    {
        const auto step = model.Add<KARMPAnalysisStep>(name);
        step->AddParameter(AddNumber<KARMPParameter>(name + ".duration", Quantity::Time, 1.0));
        step->AddParameter(AddNumber<KARMPParameter>(name + ".acceleration",
                                                     Quantity::AngularAcceleration, acceleration));
        analysis->AddAnalysisStep(step);
    }
    /// The coordinate of a body and its rate.
    Ref<KARMPOutput> AddOutputs(const std::string& name, const Ref<KARMPBody>& body,
                                const char* coordinate, Quantity::Enum quantity,
                                Quantity::Enum rate)
    {
        const auto output = Add<KARMPOutput>(name, "", body);
        output->AddChild(AddNumber<KARMPOutput>(name + '.' + coordinate, quantity, 0.0));
        output->AddChild(AddNumber<KARMPOutput>(name + ".velocity", rate, 0.0));
        analysis->AddOutput(output);
        return output;
    }

    /// Sets the mechanism where its initial condition says, and runs all steps of the case. The
    /// result stream of a step gets a line for each time step.
    void Run()
    {
        initial->GetParameterValue(Path{"crank", "angle"}, 0, angle);
        initial->GetParameterValue(Path{"crank", "velocity"}, 0, velocity);
        for (int index = 0; index < analysis->GetAnalysisStepCount(); ++index) {
            QOBSharedHandle<KARMPAnalysisStep> step;
            double duration = 0.0, acceleration = 0.0;
            analysis->GetAnalysisStep(index, step);
            step->GetParameterValue(Path{"duration"}, 0, duration);
            step->GetParameterValue(Path{"acceleration"}, 0, acceleration);
            const double startTime = time, startAngle = angle, startVelocity = velocity;
            const auto lines = std::make_shared<KARString>();
            for (int at = 1; at <= TimeSteps; ++at) {
                const double passed = duration * at / TimeSteps;
                time = startTime + passed;
                angle = startAngle + (startVelocity + acceleration * passed / 2.0) * passed;
                velocity = startVelocity + acceleration * passed;
                parts.angle->SetValue(angle);
                analysis->UpdateOutputs(Results(*step));
                *lines += Line();
            }
            step->UpdateResultStream(lines);
        }
    }
    /// What the mechanism does at this moment, by the paths of the outputs.
    KAROmxOMap<KARString, KAROmxAny> Results(const KARMPAnalysisStep& step) const
    {
        KARMathVector sliderVelocity, turn;
        parts.slider->GetVelocity(sliderVelocity, turn);
        KAROmxOMap<KARString, KAROmxAny> results;
        results.Insert("time", time);
        results.Insert("analysis step", KARUnicodeString(kar::ToUtf8(step.getEntityName())));
        results.Insert("crank.angle", angle);
        results.Insert("crank.velocity", velocity);
        results.Insert("crank.past dead centre", std::sin(angle) > 0.0);
        results.Insert("slider.position", PositionOf(parts.slider).GetVector().GetX());
        results.Insert("slider.velocity", sliderVelocity.GetX());
        return results;
    }
    /// The outputs of the case as a line, read by their paths.
    KARString Line() const
    {
        std::ostringstream line;
        KARUnicodeString text;
        unsigned char isPast = 0;
        analysis->GetOutputValue(Path{"analysis step"}, 0, text);
        analysis->GetOutputValue(Path{"crank", "past dead centre"}, 0, isPast);
        line << text.Text() << ',' << (isPast != 0 ? "yes" : "no");
        for (const Path& path : {Path{"time"}, Path{"crank", "angle"}, Path{"crank", "velocity"},
                                 Path{"slider", "position"}, Path{"slider", "velocity"}})
            line << ',' << NumberAt(*analysis, path);
        line << '\n';
        return KARString(line.str().c_str());
    }
    static double NumberAt(const KARMPAnalysisCase& analysis, const Path& path)
    {
        double number = 0.0;
        analysis.GetOutputValue(path, 0, number);
        return number;
    }
};

/// Writes what the steps of a case gave.
bool WriteTable(const KARMPAnalysisCase& analysis, const char* file)
{
    std::ofstream table(file);
    table << "analysis step,past dead centre,time [s],crank angle [rad],crank velocity [rad/s],"
             "slider position [m],slider velocity [m/s]\n";
    for (int index = 0; index < analysis.GetAnalysisStepCount(); ++index) {
        QOBSharedHandle<KARMPAnalysisStep> step;
        analysis.GetAnalysisStep(index, step);
        table << step->GetResultStream()->Text();
    }
    return static_cast<bool>(table.flush());
}

} // namespace

int main()
{
    ::setenv("MOT_DUMP_OUTPUTS", "1", 1); // documents of this program hold its outputs
    TimeHistory history;
    history.Run();
    KARUnicodeString message;
    history.deadCenter->GetMessageString(message);
    std::cout << "At the dead centre " << message.Text() << ": "
              << history.deadCenter->GetEntityCount() << '\n';
    if (history.deadCenter->GetEntityCount() != 3 ||
        !WriteTable(*history.analysis, "time-history.csv"))
        return 1;
    if (const auto saved = history.model.Save("time-history.xml", {}); !saved)
        return saved.Report();
    const auto again = Load("time-history.xml");
    if (again.Report() != 0)
        return 1;
    // The outputs, as the document keeps them on a grid of 1e-12, are what the drive ends with.
    const auto analysis = again->Find<KARMPAnalysisCase>("Run");
    const double position = TimeHistory::NumberAt(*analysis, Path{"slider", "position"});
    const double expected = MotionAt(history.angle, 0.0).slider.origin.real();
    std::cout << "At the end the slider stands at " << position << " m\n";
    return TimeHistory::NumberAt(*analysis, Path{"time"}) == 2.0 &&
                   std::abs(position - expected) < 1e-12
               ? 0
               : 1;
}
