// The calls of a model that build, edit and set it.
#include "Calls.h"
#include "KARTextConversion.h"

namespace karmp::python {

namespace {

using model::Where;
using Body = Ref<KARMPBody>;
using Geometry = Ref<KARMPGeometry>;
using Variable = Ref<KARMPVariable>;
using Quantity = KARMPPhysicalQuantity::Enum;
using Solid = model::BodyOptions;
using Text = std::string;
template <class T>
using Maybe = std::optional<T>;

Entity AddJoint(Model& model, Kind<KARMPJoint> kind, Text id, AnyRef parent, AnyRef child,
                Maybe<Numbers> at, Numbers axis, Maybe<KARMathAxis> frame)
{
    const auto add = [&]<class T>(const Ref<T>& first, const auto&... where) {
        return model.AddJoint(kind, id, first, As<T>(child), where..., Where::current());
    };
    if (const auto geometry = parent.As<KARMPGeometry>())
        return add(geometry);
    const Numbers point = at.value_or(Numbers());
    if (const auto planar = parent.As<KARMPBody2D>())
        return add(planar, KARMathPoint2D(point));
    const auto body = As<KARMPBody>(parent);
    return frame ? add(body, *frame) : add(body, KARMathPoint(point), KARMathVector(axis));
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

// Raises a setting that the world refused.
bool Done(const char* name, KARStatus status)
{
    if (KARFailed(status))
        RaiseFailure(std::string(name) + " is not set", status);
    return true;
}

void BindMakers(py::module_& module)
{
    Bind(module, "add_rod", &AddRod);
    Bind(module, "add_point", &AddPoint);
    Bind(module, "add_joint", &AddJoint);
    Bind(
        module, "add",
        +[](Model& m, Kind<KARMPEntity> cls, Text id) { return m.Add(cls.info->getName(), id); });
    Bind(
        module, "add_body",
        +[](Model& m, Text id, Maybe<KARMathPoint> at, Maybe<KARMathPoint> towards,
            Maybe<Solid> solid) {
            Solid body = solid.value_or(Solid());
            body.at = at;
            body.towards = towards;
            return m.Body(id, body);
        });
    Bind(
        module, "add_planar_body",
        +[](Model& m, Text id, Maybe<KARMathPoint2D> at, Maybe<KARMathPoint2D> towards) {
            return m.PlanarBody(id, {.at = at, .towards = towards});
        });
    Bind(module, "add_frame", &Model::Frame);
    Bind(
        module, "variable", +[](Model& m, Text id, Maybe<Ref<KARMPJoint>> joint, double value) {
            return joint ? m.Variable(id, *joint, value)
                         : m.Variable(id, KARMPPhysicalQuantity::NoPhysicalQuantity, value);
        });
    Bind(module, "add_constant", &Model::Constant);
    Bind(
        module, "add_expression",
        +[](Model& m, Text id, Quantity quantity, Text equation, std::vector<Variable> variables) {
            return m.Expression(id, quantity, equation, std::span<const Variable>(variables));
        });
    Bind(module, "add_motor", &Model::Motor);
    Bind(
        module, "connect",
        +[](Model& m, Kind<KARMPConnector> cls, Text id, Geometry first, Geometry second) {
            return m.AddConnector(cls, id, first, second, Where::current());
        });
    Bind(
        module, "attach",
        +[](Model& m, Kind<KARMPGeometry> cls, Text id, AnyRef body) {
            return m.AttachGeometry(cls, id, body, Where::current());
        });
    Bind(
        module, "couple",
        +[](Model& m, Kind<KARMPCoupling> cls, Text id, std::vector<model::Term> terms,
            double constant) { return m.AddCoupling(cls, id, terms, constant, Where::current()); });
}

void BindChanges(py::module_& module)
{
    Bind(
        module, "link",
        +[](Model& m, AnyRef one, AnyRef other, Text item) { return m.Link(one, other, item); });
    Bind(
        module, "unlink",
        +[](Model& m, AnyRef one, AnyRef other, Text item) { return m.Unlink(one, other, item); });
    Bind(module, "rename", &Model::Rename);
    Bind(
        module, "delete",
        +[](Model& m, AnyRef entity, bool preview, bool withShort) {
            return m.Delete(entity, {.preview = preview, .withShort = withShort});
        });
    Bind(
        module, "dependents",
        +[](ModelState& self, AnyRef entity) { return self.model.Dependents(entity); });
    Bind(
        module, "begin_editing", +[](ModelState& self) {
            ++self.openBlocks;
            return self.model.BeginEditing();
        });
    Bind(
        module, "end_editing",
        +[](ModelState& self, std::size_t begin, bool isKept) {
            self.model.EndEditing(begin, isKept);
            return --self.openBlocks;
        });
    Bind(
        module, "set_gravity",
        +[](Model& m, KARMathVector gravity) {
            return Done("gravity", m.World()->SetGravity(gravity));
        });
    Bind(
        module, "set_linear_tolerance",
        +[](Model& m, double tolerance) {
            return Done("linear_tolerance", m.World()->SetLinearTolerance(tolerance));
        });
    Bind(
        module, "set_angular_tolerance", +[](Model& m, double tolerance) {
            return Done("angular_tolerance", m.World()->SetAngularTolerance(tolerance));
        });
}

void BindSettings(py::module_& module)
{
    Bind(
        module, "gravity",
        +[](ModelState& self) {
            KARMathVector gravity;
            self.model.World()->GetGravity(gravity);
            return gravity;
        });
    Bind(
        module, "linear_tolerance",
        +[](ModelState& self) { return self.model.World()->GetLinearTolerance(); });
    Bind(
        module, "angular_tolerance",
        +[](ModelState& self) { return self.model.World()->GetAngularTolerance(); });
    Bind(
        module, "find",
        +[](ModelState& self, Text key) { return self.model.Find<KARMPEntity>(key); });
    Bind(
        module, "ground", +[](ModelState& self) { return self.model.Ground(); });
    Bind(module, "planar_ground", &Model::PlanarGround);
    Bind(
        module, "time", +[](ModelState& self) { return self.model.Time(); });
    Bind(
        module, "name", +[](ModelState& self) {
            const QOBSharedHandle<QOBBasicEntity> world(self.model.World()->getExtendible());
            return std::wstring(world->getEntityName());
        });
}

void BindSolids(py::module_& module)
{
    py::class_<Solid> solid(module, "Solid",
                            "A mass and how it is spread in the axes of a body. A sum is one solid "
                            "that is made of two.");
    // A class that cannot be called has no objects but those that the module makes.
    reinterpret_cast<PyTypeObject*>(solid.ptr())->tp_new = nullptr;
    Bind(
        module, "mass", +[](Solid of) { return of.mass; });
    Bind(
        module, "together", +[](Solid one, Solid other) { return Together(one, other); });
    Bind(
        module, "box",
        +[](double mass, KARMathVector edges, KARMathPoint center) {
            return model::Box(mass, edges, center);
        });
    Bind(
        module, "cylinder",
        +[](double mass, double radius, double length, KARMathPoint center) {
            return model::Cylinder(mass, radius, length, center);
        });
    Bind(
        module, "ball", +[](double mass, double radius, KARMathPoint center) {
            return model::Ball(mass, radius, center);
        });
    Bind(
        module, "meeting_point",
        +[](KARMathPoint from, double distance, KARMathPoint to, double other) {
            const auto met = model::MeetingPoint(from, distance, to, other);
            return met ? Give(*met - KARMathPoint(), nullptr) : py::object(py::none());
        });
}

} // namespace

void BindEdits(py::module_& module)
{
    BindMakers(module);
    BindChanges(module);
    BindSettings(module);
    BindSolids(module);
}

} // namespace karmp::python
