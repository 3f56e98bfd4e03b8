// A slider-crank runs for two seconds in a hundred time steps. The application tells what to run by
// an analysis case: an initial condition and two analysis steps with their parameters. A loader on
// the variable of the crank's angle stands for the solver: it knows the motion in closed form,
// moves the bodies and raises a diagnostic where crank and rod stand in line. After each time step
// the results arrive in bulk, and the application writes them as a table of comma-separated values.
#include "CrankMotion.h"

#include <cstdlib>
#include <fstream>
#include <functional>
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

/// What an output of a case holds.
double NumberAt(const Ref<KARMPAnalysisCase>& analysis, const Path& path)
{
    double number = 0.0;
    analysis->GetOutputValue(path, 0, number);
    return number;
}

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
        using P = KARMPParameter;
        using O = KARMPOutput;
        const auto start = AddAbout<P>("Start at rest.crank", parts.angle);
        model.Set(start, {{"ChildrenParameters",
                           {AddNumber<P>(start, "angle", Quantity::Angle, StartAngle),
                            AddNumber<P>(start, "velocity", Quantity::AngularVelocity)}}});
        model.Set(initial, {{"Parameters", start}});
        model.Set(analysis, {{"Steps", {AddStep("Run-up", 2.0), AddStep("Steady run", 0.0)}}});

        const auto now = AddNumber<O>(analysis, "time", Quantity::Time);
        const auto step = AddFlag<KARMPString>(analysis, "analysis step", "string", Quantity::Time);
        const auto crank = AddAbout<O>("Run.crank", parts.crank);
        model.Set(crank,
                  {{"ChildrenOutputs",
                    {AddNumber<O>(crank, "angle", Quantity::Angle),
                     AddNumber<O>(crank, "velocity", Quantity::AngularVelocity),
                     AddFlag<KARMPBoolean>(crank, "past dead centre", "bool", Quantity::Angle)}}});
        const auto slider = AddAbout<O>("Run.slider", parts.slider);
        model.Set(slider, {{"ChildrenOutputs",
                            {AddNumber<O>(slider, "position", Quantity::Length),
                             AddNumber<O>(slider, "velocity", Quantity::Velocity)}}});
        model.Set(analysis, {{"Outputs", {now, step, crank, slider}}});
        deadCenter->SetDiagnosticID(KARMPDiagnosticID::SingularConfiguration);
        deadCenter->SetMessageString("these bodies stand in line");
        parts.angle->SetLoader(new CrankLoader(parts, velocity, *deadCenter));
    }

    /// An attribute, whose path's last part is that of its name, with what it is about.
    template <class Attribute>
    Ref<Attribute> AddAbout(const std::string& name, const Ref<KARMPEntity>& about)
    {
        return model.Add<Attribute>(
            name, {{"entityID", name.substr(name.rfind('.') + 1)},
                   {"Supports", model.Add<KARMPSupport>(name + ".support", {{"Target", about}})}});
    }
    /// An attribute of an entity with a value.
    template <class Attribute>
    Ref<Attribute> AddPart(const Ref<KARMPEntity>& owner, const std::string& id, const char* type,
                           const Ref<KARMPValue>& value)
    {
        return model.Add<Attribute>(NameOf(owner, id),
                                    {{"entityID", id}, {"type", type}, {"Values", value}});
    }
    template <class Attribute>
    Ref<Attribute> AddNumber(const Ref<KARMPEntity>& owner, const std::string& id,
                             Quantity::Enum quantity, double number = 0.0)
    {
        const auto value = model.Constant(NameOf(owner, id) + ".value", quantity, number);
        return AddPart<Attribute>(owner, id, "double", value);
    }
    /// A flag or a text, which documents of older versions do not keep without a quantity.
    template <class Value>
    Ref<KARMPOutput> AddFlag(const Ref<KARMPEntity>& owner, const std::string& id, const char* type,
                             Quantity::Enum quantity)
    {
        const auto value = model.Add<Value>(NameOf(owner, id) + ".value");
        value->SetPhysicalQuantity(quantity);
        return AddPart<KARMPOutput>(owner, id, type, value);
    }
    static std::string NameOf(const Ref<KARMPEntity>& owner, const std::string& id)
    {
        return kar::ToUtf8(owner->getEntityName()) + '.' + id;
    }
    Ref<KARMPAnalysisStep> AddStep(const char* name, double acceleration)
    {
        using P = KARMPParameter;
        const auto step = model.Add<KARMPAnalysisStep>(name);
        model.Set(
            step,
            {{"Parameters",
              {AddNumber<P>(step, "duration", Quantity::Time, 1.0),
               AddNumber<P>(step, "acceleration", Quantity::AngularAcceleration, acceleration)}}});
        return step;
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
            line << ',' << NumberAt(analysis, path);
        return KARString((line.str() + '\n').c_str());
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
    const auto again = RoundTrip(history.model, "time-history.xml");
    if (!again)
        return 1;
    // The outputs, as the document keeps them on a grid of 1e-12, are what the drive ends with.
    const auto analysis = again->Find<KARMPAnalysisCase>("Run");
    const double position = NumberAt(analysis, Path{"slider", "position"});
    const double error = position - MotionAt(history.angle, 0.0).slider.origin.real();
    std::cout << "At the end the slider stands at " << position << " m\n";
    return NumberAt(analysis, Path{"time"}) == 2.0 && std::abs(error) < 1e-12 ? 0 : 1;
}
