// The extension module karmp._karmp: what it has of models and documents.
#include "Calls.h"
#include "GraphText.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"

#include <chrono>
#include <thread>

namespace karmp::python {

namespace {

using model::Where;
using Body = model::Ref<KARMPBody>;
using Geometry = model::Ref<KARMPGeometry>;
using std::filesystem::path;
using Quantity = KARMPPhysicalQuantity::Enum;
using Solid = model::BodyOptions;
using Text = std::string;
using Variable = model::Ref<KARMPVariable>;
template <class T>
using Maybe = std::optional<T>;

State NewModel(const py::args& given)
{
    const auto made = std::make_shared<ModelState>(
        Model(Taken<Text>(given[0]), Taken<model::ModelOptions>(given[1])));
    return Do(*made, "Model", [&] { return made; });
}

Entity AddJoint(Model& model, const QOBClassInfo& kind, Text id, AnyRef parent, AnyRef child,
                Maybe<Numbers> at, Numbers axis, Maybe<Numbers> frame)
{
    const auto add = [&]<class T>(const model::Ref<T>& first, const auto&... where) {
        return model.AddJoint(kind, id, first, As<T>(child), where..., Where::current());
    };
    if (const auto geometry = parent.As<KARMPGeometry>())
        return add(geometry);
    const Numbers point = at.value_or(Numbers());
    if (const auto planar = parent.As<KARMPBody2D>())
        return add(planar, KARMathPoint2D(point));
    const auto body = As<KARMPBody>(parent);
    return frame ? add(body, KARMathAxis(*frame))
                 : add(body, KARMathPoint(point), KARMathVector(axis));
}

Body AddRod(Model& model, Text id, double mass, Numbers start, Numbers end, double radius)
{
    if (start.values.size() == 2)
        return model.PlanarBody(id, model::Rod(mass, KARMathPoint2D(start), KARMathPoint2D(end)));
    return model.Body(id, model::Rod(mass, KARMathPoint(start), KARMathPoint(end), radius));
}

Geometry AddPoint(Model& model, Text id, Body body, Numbers at)
{
    if (const auto planar = body.As<KARMPBody2D>())
        return model.Point(id, planar, KARMathPoint2D(at));
    return model.Point(id, body, KARMathPoint(at));
}

void BindMakers(const Functions& calls)
{
    calls["add"] = [](Model& m, const QOBClassInfo& cls, Text id) {
        return m.Add(cls.getName(), id);
    };
    calls["add_body"] = [](Model& m, Text id, Maybe<KARMathPoint> at, Maybe<KARMathPoint> towards,
                           Maybe<Solid> solid) {
        Solid body = solid.value_or(Solid());
        body.at = at;
        body.towards = towards;
        return m.Body(id, body);
    };
    calls["add_planar_body"] = &Model::PlanarBody;
    calls["add_rod"] = &AddRod;
    calls["add_frame"] = &Model::Frame;
    calls["add_point"] = &AddPoint;
    calls["add_joint"] = &AddJoint;
    calls["variable"] = [](Model& m, Text id, Maybe<model::Ref<KARMPJoint>> joint, double value) {
        return joint ? m.Variable(id, *joint, value)
                     : m.Variable(id, KARMPPhysicalQuantity::NoPhysicalQuantity, value);
    };
    calls["add_constant"] = &Model::Constant;
    calls["add_expression"] = [](Model& m, Text id, Quantity quantity, Text equation,
                                 std::vector<Variable> of) {
        return m.Expression(id, quantity, equation, std::span<const Variable>(of));
    };
    calls["add_motor"] = &Model::Motor;
    calls["connect"] = [](Model& m, const QOBClassInfo& cls, Text id, Geometry one,
                          Geometry other) {
        return m.AddConnector(cls, id, one, other, Where::current());
    };
    calls["attach"] = [](Model& m, const QOBClassInfo& cls, Text id, AnyRef body) {
        return m.AttachGeometry(cls, id, body, Where::current());
    };
    calls["couple"] = &Model::AddCoupling;
    calls["box"] = &model::Box;
    calls["cylinder"] = &model::Cylinder;
    calls["ball"] = &model::Ball;
    calls["together"] = &model::Together;
    calls["mass"] = [](Solid solid) { return solid.mass; };
    calls["meeting_point"] = &model::MeetingPoint;
}

// A block ends whatever else is done with its model, once that is done.
std::size_t EndEditing(const State& state, std::size_t begin, bool isKept)
{
    ModelState& of = *state;
    while (of.isBusy) {
        const Unlocked unlocked;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    --of.openBlocks;
    return Do(of, "editing", [&] {
        of.model.EndEditing(begin, isKept);
        return of.openBlocks;
    });
}

void BindEditsAndSettings(const Functions& calls)
{
    calls["link"] = &Model::Link;
    calls["unlink"] = &Model::Unlink;
    calls["rename"] = &Model::Rename;
    calls["delete"] = [](Model& m, AnyRef entity, bool preview, bool withShort) {
        return m.Delete(entity, {.preview = preview, .withShort = withShort});
    };
    calls["begin_editing"] = [](ModelState& of) {
        const std::size_t begin = Do(of, "editing", [&] { return of.model.BeginEditing(); });
        ++of.openBlocks;
        return begin;
    };
    calls["end_editing"] = &EndEditing;
    calls["options"] = [](ModelState& of) { return of.model.Options(); };
    calls["set_options"] = &Model::SetOptions;
    calls["ground"] = [](ModelState& of) { return of.model.Ground(); };
    calls["planar_ground"] = &Model::PlanarGround;
    calls["time"] = [](ModelState& of) { return of.model.Time(); };
    calls["name"] = [](ModelState& of) {
        const QOBSharedHandle<QOBBasicEntity> world(of.model.World()->getExtendible());
        return std::wstring(world->getEntityName());
    };
    calls["find"] = [](ModelState& of, Text key) { return of.model.Find<KARMPEntity>(key); };
    calls["dependents"] = [](ModelState& of, AnyRef entity) { return of.model.Dependents(entity); };
    calls["model"] = [](EntityObject& of) { return of.state; };
}

py::object Differences(ModelState& first, ModelState& second, double tolerance, double floor)
{
    const auto found = Alone(first, second, [&] {
        return first.model.Diff(second.model, {.tolerance = tolerance, .floor = floor});
    });
    py::list list;
    for (const documents::Difference& one : found) {
        ModelState& ofTarget = one.kind == documents::DifferenceKind::LinkGained ? second : first;
        list.append(py::make_tuple(documents::DifferenceText(one.kind), ToText(one.item),
                                   one.before ? Wrap(one.before, first) : Wrap(one.after, second),
                                   Give(one.oldValue, &first), Give(one.newValue, &second),
                                   Wrap(one.target, ofTarget)));
    }
    return list;
}

void BindDocuments(const Functions& calls)
{
    calls["load"] = [](path file) { return model::Load(file); };
    calls["loads"] = [](std::vector<unsigned char> text, Text name) {
        return model::LoadText(Text(text.begin(), text.end()), name);
    };
    calls["check"] = [](path file) { return documents::CheckFile(file).items; };
    calls["save"] = &Model::Save;
    calls["text"] = &Model::Text;
    calls["check_model"] = [](const Model& m) { return m.Check().items; };
    calls["clone"] = &Model::Clone;
    calls["extract"] = &Model::Extract;
    calls["findings"] = [](ModelState& of) { return of.findings; };
    calls["diff"] = &Differences;
    // Pictures, as the tool makes them of a document.
    calls["graph_text"] = [](ModelState& of, Text title) {
        tool::GraphContents contents;
        contents.title = title;
        return tool::GraphText(*of.model.World(), contents);
    };
    calls["view_page"] = [](ModelState& of, Text title) {
        return tool::ViewPage(tool::SceneJson(tool::CollectScene(*of.model.World(), title)));
    };
}

} // namespace

} // namespace karmp::python

PYBIND11_MODULE(_karmp, module)
{
    using namespace karmp::python;
    module.doc() = "The extension module of the package karmp.";
    BindClasses(module);
    Unlocked::WaitForAllAtExit();
    py::class_<ModelState, State>(module, "Model",
                                  "A mechanism: a world, and the calls that build and edit it.")
        .def(py::init(&NewModel));
    py::class_<Solid> solid(module, "Solid",
                            "A mass and how it is spread in the axes of a body. A sum is one solid "
                            "that is made of two.");
    // A class that cannot be called has no objects but those that the module makes.
    reinterpret_cast<PyTypeObject*>(solid.ptr())->tp_new = nullptr;
    const Functions calls{module};
    BindItems(calls);
    BindMakers(calls);
    BindEditsAndSettings(calls);
    BindDocuments(calls);
}
