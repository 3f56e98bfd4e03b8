// The class Model: its settings and the calls that build and edit it.
#include "Arguments.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

namespace karmp::python {

namespace {

using model::Model;
using Where = model::Where;
using AnyRef = Ref<KARMPEntity>;
using Body = Ref<KARMPBody>;
using Geometry = Ref<KARMPGeometry>;
using Variable = Ref<KARMPVariable>;
using Quantity = KARMPPhysicalQuantity::Enum;
using Number = std::optional<double>;
using Point = std::optional<Numbers>;
using Solid = model::BodyOptions;
using Vector3 = Typed<"_Vector3">;
const py::none None;

// What calls give, in Python.
void Result(bool, ModelState&) {}
Typed<"_E"> Result(const Entity& made, ModelState& state)
{
    return Wrap(made, state);
}
template <class T>
Of<T> Result(const Ref<T>& made, ModelState& state)
{
    return Wrap(Entity(made.Handle()), state);
}
py::tuple Result(const model::Dependent& dependent, ModelState& state)
{
    return py::make_tuple(Result(dependent.entity, state), dependent.item,
                          Result(dependent.target, state));
}
template <class T>
py::list Result(const std::vector<T>& list, ModelState& state)
{
    py::list results;
    for (const T& each : list)
        results.append(Result(each, state));
    return results;
}
Typed<"dict[str, list[Any]]"> Result(const model::Deletion& deletion, ModelState& state)
{
    return py::dict("gone"_a = Result(deletion.gone, state),
                    "unlinked"_a = Result(deletion.unlinked, state),
                    "left_short"_a = Result(deletion.leftShort, state));
}
Vector3 Result(const KARMathVector& vector)
{
    return py::make_tuple(vector.GetX(), vector.GetY(), vector.GetZ());
}

void SetItems(const py::object& entity, const py::kwargs& items, const char* call)
{
    for (const auto& [key, value] : items) {
        PropertyOf(ClassOf(*ObjectOf(entity).entity), Utf8Of(key), PyExc_TypeError,
                   std::string(call) + " takes no");
        py::setattr(entity, key, value);
    }
}

// Binds a call that changes a model.
template <class R, class... A, class... Extra>
void Edit(ModelClass& of, const char* name, R (*call)(Model&, A...), const Extra&... extra)
{
    of.def(
        name,
        [name, call](ModelState& self, const A&... given) {
            (CheckOwn(self, given), ...);
            return Result(Do(
                              self, name, [&](Model& model) { return call(model, given...); }),
                          self);
        },
        extra...);
}

// Binds a call that makes an entity, with its items set by keyword: all of it or nothing.
template <class R, class... A, class... Extra>
void Make(ModelClass& of, const char* name, R (*call)(Model&, A...), const Extra&... extra)
{
    of.def(
        name,
        [name, call](ModelState& self, const A&... given, const py::kwargs& items) {
            (CheckOwn(self, given), ...);
            CallBlock block(self);
            const auto made =
                Result(Do(
                           self, name, [&](Model& model) { return call(model, given...); }),
                       self);
            SetItems(made, items, name);
            block.Keep();
            return made;
        },
        extra...);
}

// Binds a setting of the world.
template <class R, class A>
void Setting(ModelClass& of, const char* name, const char* doc, R (*get)(KARMPWorld&),
             KARStatus (*set)(KARMPWorld&, A))
{
    of.def_property(
        name, [get](ModelState& self) { return get(*self.model.World()); },
        [name, set](ModelState& self, const A& value) {
            if (const KARStatus status = set(*self.model.World(), value); KARFailed(status))
                RaiseError(std::string(name) + " is not set", status);
        },
        doc);
}

template <class T>
std::optional<T> Maybe(const Point& point)
{
    return point ? std::optional<T>(static_cast<T>(*point)) : std::nullopt;
}

// An entity by a derived class; raises for one of another class.
template <class T>
Ref<T> As(const AnyRef& entity)
{
    const auto found = entity.As<T>();
    if (!found)
        Raise(PyExc_TypeError,
              TitleOf(*entity) + " is no " + ClassNameOf(T::ClassInfo().getName()));
    return found;
}

Entity AddJoint(Model& model, Kind<KARMPJoint> kind, Text id, AnyRef parent, AnyRef child, Point at,
                Numbers axis, std::optional<Rows> frame)
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

Entity Couple(Model& model, Kind<KARMPCoupling> cls, Text id,
              Each<std::pair<Variable, double>> terms, double constant)
{
    std::vector<model::Term> sum;
    for (const auto& [variable, coefficient] : terms)
        sum.push_back({variable, coefficient});
    return model.AddCoupling(cls, id, sum, constant, Where::current());
}

void BindMakers(ModelClass& of)
{
    Make(
        of, "add",
        +[](Model& m, Kind<KARMPEntity> cls, Text id) {
            return m.Add(cls.of->info->getName(), id).Handle();
        },
        "cls"_a, "id"_a, "A new entity of a class; items are set by keyword, all or nothing.");
    Make(
        of, "add_body",
        +[](Model& m, Text id, Point at, Point towards, std::optional<Solid> solid) {
            Solid options = solid.value_or(Solid());
            options.at = Maybe<KARMathPoint>(at);
            options.towards = Maybe<KARMathPoint>(towards);
            return m.Body(id, options);
        },
        "id"_a, py::kw_only(), "at"_a = None, "towards"_a = None, "solid"_a = None,
        "A body with its origin at a point and its first axis towards another one, and with the "
        "mass of a solid.");
    Make(
        of, "add_planar_body",
        +[](Model& m, Text id, Point at, Point towards) {
            return m.PlanarBody(
                id, {.at = Maybe<KARMathPoint2D>(at), .towards = Maybe<KARMathPoint2D>(towards)});
        },
        "id"_a, py::kw_only(), "at"_a = None, "towards"_a = None,
        "A body in the plane z = 0, which comes with the first one.");
    Make(of, "add_rod", &AddRod, "id"_a, "mass"_a, "start"_a, "end"_a, "radius"_a = 0.0,
         "A round rod from one point to another, in the plane for points of two numbers.");
    Make(
        of, "add_frame",
        +[](Model& m, Text id, Body body, Rows position) { return m.Frame(id, body, position); },
        "id"_a, "body"_a, "position"_a,
        "An axis system of a body by its homogeneous matrix in the world.");
    Make(of, "add_point", &AddPoint, "id"_a, "body"_a, "at"_a, "A point of a body.");
    Make(of, "add_joint", &AddJoint, "kind"_a, "id"_a, "parent"_a, "child"_a, "at"_a = None,
         "axis"_a = py::make_tuple(0, 0, 1), "frame"_a = None,
         "A joint between two bodies, about or along an axis through a point, or between two "
         "geometries, with all that realises it.");
    Make(
        of, "variable",
        +[](Model& m, Text id, std::optional<Ref<KARMPJoint>> joint, double value) {
            return joint ? m.Variable(id, *joint, value)
                         : m.Variable(id, KARMPPhysicalQuantity::NoPhysicalQuantity, value);
        },
        "id"_a, "joint"_a = None, "value"_a = 0.0,
        "A variable, the next one of a joint in the order of its freedoms.");
    Make(
        of, "add_constant",
        +[](Model& m, Text id, Quantity quantity, double number) {
            return m.Constant(id, quantity, number);
        },
        "id"_a, "quantity"_a, "number"_a,
        "A number of a quantity, such as \"Length\", which entities may share.");
    Make(
        of, "add_expression",
        +[](Model& m, Text id, Quantity quantity, Text equation, Each<Variable> variables) {
            return m.Expression(id, quantity, equation, std::span<const Variable>(variables));
        },
        "id"_a, "quantity"_a, "equation"_a, "variables"_a = py::tuple(),
        "A value that follows an equation of its variables.");
    Make(
        of, "add_motor",
        +[](Model& m, Text id, Variable variable, Number position, Number velocity,
            Number acceleration, Number maximum) {
            return m.Motor(id, variable, {position, velocity, acceleration, maximum});
        },
        "id"_a, "variable"_a, py::kw_only(), "position"_a = None, "velocity"_a = None,
        "acceleration"_a = None, "maximum"_a = None,
        "A motor on a variable, which is controlled from then on.");
    Make(
        of, "connect",
        +[](Model& m, Kind<KARMPConnector> cls, Text id, Geometry first, Geometry second) {
            return m.AddConnector(cls, id, first, second, Where::current());
        },
        "cls"_a, "id"_a, "first"_a, "second"_a,
        "A connector, a spring for one, between geometries of two bodies.");
    Make(
        of, "attach",
        +[](Model& m, Kind<KARMPGeometry> cls, Text id, AnyRef body) {
            return m.AttachGeometry(cls, id, body, Where::current());
        },
        "cls"_a, "id"_a, "body"_a, "A geometry on a body.");
    Make(of, "couple", &Couple, "cls"_a, "id"_a, "terms"_a, "constant"_a = 0.0,
         "A coupling: the sum of coefficients times variables, plus the constant, is 0.");
}

void BindEdits(ModelClass& of)
{
    Edit(
        of, "link",
        +[](Model& m, AnyRef one, AnyRef other, Text item) { return m.Link(one, other, item); },
        "first"_a, "second"_a, "item"_a = "",
        "Links two entities, both ends; the item chooses where there are several links.");
    Edit(
        of, "unlink",
        +[](Model& m, AnyRef one, AnyRef other, Text item) { return m.Unlink(one, other, item); },
        "first"_a, "second"_a, "item"_a = "",
        "Takes the links between two entities away, both ends, or those of an item.");
    Edit(
        of, "rename", +[](Model& m, AnyRef entity, Text name) { return m.Rename(entity, name); },
        "entity"_a, "name"_a, "Gives an entity another name. Its identifier stays.");
    Edit(
        of, "delete",
        +[](Model& m, AnyRef entity, bool preview, bool withShort) {
            return m.Delete(entity, {.preview = preview, .withShort = withShort});
        },
        "entity"_a, py::kw_only(), "preview"_a = false, "with_short"_a = false,
        "Deletes an entity with what it owns. Returns what is gone, the references that were "
        "dropped and those whose entities lack something now; a preview only tells.");
    of.def(
        "dependents",
        [](ModelState & self, const AnyRef& entity) -> Typed<"list[tuple[Entity, str, Entity]]"> {
            CheckOwn(self, entity);
            return Result(self.model.Dependents(entity), self);
        },
        "entity"_a, "All references of other entities to one, with their items.");
    // What a block of edits in Python begins and ends by.
    of.def("_begin_editing", [](ModelState& self) {
        ++self.openBlocks;
        return self.model.BeginEditing();
    });
    of.def("_end_editing", [](ModelState& self, std::size_t begin, bool isKept) {
        self.model.EndEditing(begin, isKept);
        --self.openBlocks;
    });
}

void BindSettings(ModelClass& of)
{
    Setting(
        of, "gravity", "In m/s2 along the axes of the world.",
        +[](KARMPWorld& world) {
            KARMathVector gravity;
            world.GetGravity(gravity);
            return Result(gravity);
        },
        +[](KARMPWorld& world, Numbers gravity) { return world.SetGravity(gravity); });
    Setting(
        of, "linear_tolerance", "In m.",
        +[](KARMPWorld& world) { return world.GetLinearTolerance(); },
        +[](KARMPWorld& world, double value) { return world.SetLinearTolerance(value); });
    Setting(
        of, "angular_tolerance", "In rad.",
        +[](KARMPWorld& world) { return world.GetAngularTolerance(); },
        +[](KARMPWorld& world, double value) { return world.SetAngularTolerance(value); });
    of.def_property_readonly(
        "ground", [](ModelState& self) { return Result(self.model.Ground(), self); },
        "The body that everything stands on.");
    of.def_property_readonly(
        "planar_ground",
        [](ModelState& self) {
            const auto get = [](Model& model) { return model.PlanarGround(); };
            return Result(Do(self, "planar_ground", get), self);
        },
        "The planar frame, which is made with the first planar body.");
    of.def_property_readonly(
        "time", [](ModelState& self) { return Result(self.model.Time(), self); },
        "The world's time.");
    of.def_property_readonly(
        "name",
        [](ModelState& self) {
            const QOBSharedHandle<QOBBasicEntity> world(self.model.World()->getExtendible());
            return ToText(world->getEntityName());
        },
        "The name of the world, which documents do not hold.");
}

void BindSolids(py::module_& module)
{
    py::class_<Solid> solid(module, "Solid",
                            "A mass and how it is spread in the axes of a body. A sum is one solid "
                            "that is made of two.");
    Seal(solid);
    solid.def_readonly("mass", &Solid::mass, "In kg.");
    solid.def("__add__", [](const Solid& one, const Solid& other) { return Together(one, other); });
    const auto center = "center"_a = py::make_tuple(0, 0, 0);
    module.def(
        "box", [](double mass, Numbers edges, Numbers at) { return model::Box(mass, edges, at); },
        "mass"_a, "edges"_a, center, "A box by its edges along the body's axes.");
    module.def(
        "cylinder",
        [](double mass, double radius, double length, Numbers at) {
            return model::Cylinder(mass, radius, length, at);
        },
        "mass"_a, "radius"_a, "length"_a, center, "A cylinder along the body's third axis.");
    module.def(
        "ball",
        [](double mass, double radius, Numbers at) { return model::Ball(mass, radius, at); },
        "mass"_a, "radius"_a, center, "A ball.");
    module.def(
        "meeting_point",
        [](Numbers from, double distance, Numbers to, double other) -> Typed<"_Vector3 | None"> {
            const auto met = model::MeetingPoint(from, distance, to, other);
            return met ? Result(*met - KARMathPoint()) : py::object(None);
        },
        "start"_a, "distance"_a, "end"_a, "other_distance"_a,
        "The point of the plane z = 0 at given distances from two others, on the left of the way "
        "from the first to the second; None when they do not meet.");
}

} // namespace

const double* Numbers::Exactly(std::size_t count) const
{
    if (values.size() != count)
        Raise(PyExc_ValueError,
              std::to_string(count) + " numbers are needed, not " + std::to_string(values.size()));
    return values.data();
}

Numbers::operator KARMathPoint() const
{
    const double* const at = Exactly(3);
    return {at[0], at[1], at[2]};
}

Numbers::operator KARMathPoint2D() const
{
    const double* const at = Exactly(2);
    return {at[0], at[1]};
}

Rows::operator KARMathAxis() const
{
    const double* const entry = Exactly(16);
    const auto column = [entry](int at) {
        return KARMathVector(entry[at], entry[4 + at], entry[8 + at]);
    };
    return {KARMathPoint() + column(3), column(0), column(1), column(2)};
}

void BindModel(py::module_& module, ModelClass& of)
{
    BindSolids(module);
    of.def(py::init([](Text name, Numbers gravity, double linear, double angular) {
               auto made = std::make_shared<ModelState>(Model(name, {gravity, linear, angular}));
               Do(*made, "Model", [](Model&) { return true; });
               return made;
           }),
           "name"_a, py::kw_only(), "gravity"_a = py::make_tuple(0, 0, 0),
           "linear_tolerance"_a = 1e-6, "angular_tolerance"_a = 1e-9, "An empty model in metres.");
    BindSettings(of);
    BindMakers(of);
    BindEdits(of);
}

} // namespace karmp::python

bool pybind11::detail::type_caster<KARMPPhysicalQuantity::Enum>::load(handle source, bool)
{
    using namespace karmp;
    if (!isinstance<str>(source))
        return false;
    const auto& words = EnumTexts<KARMPPhysicalQuantity::Enum>::Rows;
    const std::wstring text = python::WideOf(source);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end())
        python::Raise(PyExc_ValueError,
                      "there is no quantity \"" + python::Utf8Of(source) + "\"; near: " +
                          kar::ToUtf8(NearestWord(text, {words.begin(), words.end()})));
    value = static_cast<KARMPPhysicalQuantity::Enum>(found - words.begin());
    return true;
}
