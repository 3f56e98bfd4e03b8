// Calls of a model that make entities with all that belongs to them.
#include "Bindings.h"
#include "KARMPEntities.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPNearestWord.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <array>

namespace karmp::python {

namespace {

using py::literals::operator""_a;
using model::Model;
using model::Ref;

KARMathPoint PointOf(py::handle value, const char* what)
{
    const auto numbers = NumbersOf(value, 3, what);
    return {numbers[0], numbers[1], numbers[2]};
}

KARMathPoint2D PlanarPointOf(py::handle value, const char* what)
{
    const auto numbers = NumbersOf(value, 2, what);
    return {numbers[0], numbers[1]};
}

/// A block of edits within one call, undone unless it is kept.
class CallBlock
{
public:
    explicit CallBlock(const State& state) : m_state(state)
    {
        CheckFree(*state);
        m_begin = state->model.BeginEditing();
        ++state->openBlocks;
    }
    ~CallBlock()
    {
        m_state->model.EndEditing(m_begin, m_isKept);
        --m_state->openBlocks;
    }
    CallBlock(const CallBlock&) = delete;
    CallBlock& operator=(const CallBlock&) = delete;
    void Keep() { m_isKept = true; }

private:
    const State& m_state;
    std::size_t m_begin = 0;
    bool m_isKept = false;
};

// The record of a class that is derived from T.
template <class T>
const QOBClassInfo& InfoOf(const py::object& type)
{
    const EntityClass& of = ClassOf(type);
    if (!of.info->isDerivedFrom(T::ClassInfo()))
        Raise(PyExc_TypeError,
              "karmp." + of.name + " is no " + ClassNameOf(T::ClassInfo().getName()));
    return *of.info;
}

// What `make` makes, with items set by keyword: all of it or nothing.
template <class Make>
py::object MakeWith(const State& self, const char* what, const py::kwargs& items, Make make)
{
    CallBlock block(self);
    const Entity made(Do(self, what, [&](Model& model) { return Entity(make(model)); }));
    const py::object object = Wrap(made, self);
    for (const auto& [key, value] : items) {
        const EntityClass& of = ClassOf(*made);
        const std::string name = Utf8Of(key);
        if (FindProperty(of, name) == nullptr) {
            std::vector<std::string> names;
            for (const Property* const property : of.properties)
                names.push_back(property->name);
            Raise(PyExc_TypeError,
                  std::string(what) + " takes no \"" + name + '"' + NearText(name, names));
        }
        py::setattr(object, key, value);
    }
    block.Keep();
    return object;
}

py::object Add(const State& self, const py::object& type, const py::object& identifier,
               const py::kwargs& items)
{
    const std::string name = ClassOf(type).info->getName();
    const std::string key = Utf8Of(identifier);
    return MakeWith(self, "add", items,
                    [&](Model& model) { return model.Add(name, key).Handle(); });
}

template <class Options, class Point>
Options OptionsOf(const py::object& at, const py::object& towards, Point point)
{
    Options options;
    if (!at.is_none())
        options.at = point(at, "at");
    if (!towards.is_none())
        options.towards = point(towards, "towards");
    return options;
}

py::object AddBody(const State& self, const py::object& identifier, const py::object& at,
                   const py::object& towards, const py::kwargs& items)
{
    const auto options = OptionsOf<model::BodyOptions>(at, towards, &PointOf);
    const std::string key = Utf8Of(identifier);
    return MakeWith(self, "add_body", items,
                    [&](Model& model) { return model.Body(key, options).Handle(); });
}

py::object AddPlanarBody(const State& self, const py::object& identifier, const py::object& at,
                         const py::object& towards, const py::kwargs& items)
{
    const auto options = OptionsOf<model::PlanarBodyOptions>(at, towards, &PlanarPointOf);
    const std::string key = Utf8Of(identifier);
    return MakeWith(self, "add_planar_body", items,
                    [&](Model& model) { return model.PlanarBody(key, options).Handle(); });
}

py::object AddRod(const State& self, const py::object& identifier, double mass,
                  const py::object& from, const py::object& to, double radius,
                  const py::kwargs& items)
{
    const std::string key = Utf8Of(identifier);
    if (NumbersOf(from).size() == 2) {
        const auto rod = model::Rod(mass, PlanarPointOf(from, "start"), PlanarPointOf(to, "end"));
        return MakeWith(self, "add_rod", items,
                        [&](Model& model) { return model.PlanarBody(key, rod).Handle(); });
    }
    const auto rod = model::Rod(mass, PointOf(from, "start"), PointOf(to, "end"), radius);
    return MakeWith(self, "add_rod", items,
                    [&](Model& model) { return model.Body(key, rod).Handle(); });
}

// Origin and directions of the columns of a homogeneous matrix.
KARMathAxis FrameOf(const py::object& matrix)
{
    const auto rows = NumbersOf(matrix, 16, "a frame");
    const auto column = [&rows](std::size_t index) {
        return std::array{rows[index], rows[4 + index], rows[8 + index]};
    };
    const auto direction = [&column](std::size_t index) {
        const auto numbers = column(index);
        return KARMathVector(numbers[0], numbers[1], numbers[2]);
    };
    const auto origin = column(3);
    return {KARMathPoint(origin[0], origin[1], origin[2]), direction(0), direction(1),
            direction(2)};
}

py::object AddFrame(const State& self, const py::object& identifier, const py::object& body,
                    const py::object& position, const py::kwargs& items)
{
    const auto carrier = RefIn<KARMPBody>(body, self);
    const KARMathAxis frame = FrameOf(position);
    const std::string key = Utf8Of(identifier);
    return MakeWith(self, "add_frame", items,
                    [&](Model& model) { return model.Frame(key, carrier, frame).Handle(); });
}

py::object AddPoint(const State& self, const py::object& identifier, const py::object& body,
                    const py::object& at, const py::kwargs& items)
{
    const auto carrier = RefIn<KARMPBody>(body, self);
    const auto planar = carrier.As<KARMPBody2D>();
    const std::string key = Utf8Of(identifier);
    const auto make = [&](Model& model) {
        return planar ? Entity(model.Point(key, planar, PlanarPointOf(at, "at")).Handle())
                      : Entity(model.Point(key, carrier, PointOf(at, "at")).Handle());
    };
    return MakeWith(self, "add_point", items, make);
}

py::object AddJoint(const State& self, const py::object& kind, const py::object& identifier,
                    const py::object& parent, const py::object& child, const py::object& at,
                    const py::object& axis, const py::object& frame, const py::kwargs& items)
{
    const QOBClassInfo& info = InfoOf<KARMPJoint>(kind);
    const std::string key = Utf8Of(identifier);
    const Ref<KARMPEntity> one(EntityIn(parent, self));
    const Ref<KARMPEntity> other(EntityIn(child, self));
    const auto make = [&](Model& model) -> Entity {
        if (one.As<KARMPGeometry>())
            return model.AddJoint(info, key, RefIn<KARMPGeometry>(parent, self),
                                  RefIn<KARMPGeometry>(child, self), model::Where::current());
        if (one.As<KARMPBody2D>())
            return model.AddJoint(info, key, RefIn<KARMPBody2D>(parent, self),
                                  RefIn<KARMPBody2D>(child, self), PlanarPointOf(at, "at"),
                                  model::Where::current());
        const auto body = RefIn<KARMPBody>(parent, self);
        const auto moved = RefIn<KARMPBody>(child, self);
        if (!frame.is_none())
            return model.AddJoint(info, key, body, moved, FrameOf(frame), model::Where::current());
        const KARMathPoint point = PointOf(axis, "axis");
        return model.AddJoint(info, key, body, moved, PointOf(at, "at"), point - KARMathPoint(),
                              model::Where::current());
    };
    return MakeWith(self, "add_joint", items, make);
}

py::object AddVariable(const State& self, const py::object& identifier, const py::object& joint,
                       double value, const py::kwargs& items)
{
    const auto of = joint.is_none() ? Ref<KARMPJoint>() : RefIn<KARMPJoint>(joint, self);
    const std::string key = Utf8Of(identifier);
    const auto make = [&](Model& model) {
        return of ? model.Variable(key, of, value).Handle()
                  : model.Variable(key, KARMPPhysicalQuantity::NoPhysicalQuantity, value).Handle();
    };
    return MakeWith(self, "variable", items, make);
}

py::object Couple(const State& self, const py::object& type, const py::object& identifier,
                  const py::dict& terms, double constant, const py::kwargs& items)
{
    std::vector<model::Term> list;
    for (const auto& [variable, coefficient] : terms)
        list.push_back({RefIn<KARMPVariable>(variable, self), coefficient.cast<double>()});
    const QOBClassInfo& info = InfoOf<KARMPCoupling>(type);
    const std::string key = Utf8Of(identifier);
    return MakeWith(self, "couple", items, [&](Model& model) {
        return model.AddCoupling(info, key, list, constant, model::Where::current());
    });
}

KARMPPhysicalQuantity::Enum QuantityOf(const py::object& word)
{
    const auto& words = EnumTexts<KARMPPhysicalQuantity::Enum>::Rows;
    const std::wstring text = WideOf(word);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end()) {
        const std::wstring_view near = NearestWord(text, {words.begin(), words.end()});
        Raise(PyExc_ValueError, "there is no quantity \"" + Utf8Of(word) + '"' +
                                    (near.empty() ? "" : "; near: " + Utf8Of(ToText(near))));
    }
    return static_cast<KARMPPhysicalQuantity::Enum>(found - words.begin());
}

py::object AddConstant(const State& self, const py::object& identifier, const py::object& quantity,
                       double number, const py::kwargs& items)
{
    const std::string key = Utf8Of(identifier);
    const auto meant = QuantityOf(quantity);
    return MakeWith(self, "add_constant", items,
                    [&](Model& model) { return model.Constant(key, meant, number).Handle(); });
}

py::object AddExpression(const State& self, const py::object& identifier,
                         const py::object& quantity, const py::object& equation,
                         const py::iterable& variables, const py::kwargs& items)
{
    const std::string key = Utf8Of(identifier);
    const std::string text = Utf8Of(equation);
    const auto meant = QuantityOf(quantity);
    model::RefList<KARMPVariable> list;
    for (const py::handle variable : py::list(variables))
        list.push_back(RefIn<KARMPVariable>(variable, self));
    return MakeWith(self, "add_expression", items, [&](Model& model) {
        return model.Expression(key, meant, text, list).Handle();
    });
}

py::object AddMotor(const State& self, const py::object& identifier, const py::object& variable,
                    const std::optional<double>& position, const std::optional<double>& velocity,
                    const std::optional<double>& acceleration, const std::optional<double>& maximum,
                    const py::kwargs& items)
{
    const std::string key = Utf8Of(identifier);
    const auto driven = RefIn<KARMPVariable>(variable, self);
    return MakeWith(self, "add_motor", items, [&](Model& model) {
        return model.Motor(key, driven, {position, velocity, acceleration, maximum}).Handle();
    });
}

py::object Connect(const State& self, const py::object& type, const py::object& identifier,
                   const py::object& first, const py::object& second, const py::kwargs& items)
{
    const QOBClassInfo& info = InfoOf<KARMPConnector>(type);
    const std::string key = Utf8Of(identifier);
    const auto one = RefIn<KARMPGeometry>(first, self);
    const auto other = RefIn<KARMPGeometry>(second, self);
    return MakeWith(self, "connect", items, [&](Model& model) {
        return model.AddConnector(info, key, one, other, model::Where::current());
    });
}

py::object Attach(const State& self, const py::object& type, const py::object& identifier,
                  const py::object& body, const py::kwargs& items)
{
    const QOBClassInfo& info = InfoOf<KARMPGeometry>(type);
    const std::string key = Utf8Of(identifier);
    const Ref<KARMPEntity> carrier(EntityIn(body, self));
    return MakeWith(self, "attach", items, [&](Model& model) {
        return model.AttachGeometry(info, key, carrier, model::Where::current());
    });
}

py::object MeetingPoint(const py::object& from, double distance, const py::object& to,
                        double otherDistance)
{
    const auto met =
        model::MeetingPoint(PointOf(from, "start"), distance, PointOf(to, "end"), otherDistance);
    return met ? py::object(py::make_tuple(met->GetX(), met->GetY(), met->GetZ()))
               : py::object(py::none());
}

} // namespace

void BindBuilding(py::module_& module, ModelClass& of)
{
    const auto none = py::none();
    of.def("add", &Add, "cls"_a, "id"_a,
           "A new entity of a class; items are set by keyword, all or nothing.");
    of.def("add_body", &AddBody, "id"_a, py::kw_only(), "at"_a = none, "towards"_a = none,
           "A body with its origin at a point and its first axis towards another one.");
    of.def("add_planar_body", &AddPlanarBody, "id"_a, py::kw_only(), "at"_a = none,
           "towards"_a = none, "A body in the plane z = 0, which comes with the first one.");
    of.def("add_rod", &AddRod, "id"_a, "mass"_a, "start"_a, "end"_a, "radius"_a = 0.0,
           "A round rod from one point to another, in the plane for points of two numbers.");
    of.def("add_frame", &AddFrame, "id"_a, "body"_a, "position"_a,
           "An axis system of a body by its homogeneous matrix in the world.");
    of.def("add_point", &AddPoint, "id"_a, "body"_a, "at"_a, "A point of a body.");
    of.def("add_joint", &AddJoint, "kind"_a, "id"_a, "parent"_a, "child"_a, "at"_a = none,
           "axis"_a = py::make_tuple(0, 0, 1), "frame"_a = none,
           "A joint between two bodies, about or along an axis through a point, or between two "
           "geometries, with all that realises it.");
    of.def("variable", &AddVariable, "id"_a, "joint"_a = none, "value"_a = 0.0,
           "A variable, the next one of a joint in the order of its freedoms.");
    of.def("add_constant", &AddConstant, "id"_a, "quantity"_a, "number"_a,
           "A number of a quantity, such as \"Length\", which entities may share.");
    of.def("add_expression", &AddExpression, "id"_a, "quantity"_a, "equation"_a,
           "variables"_a = py::tuple(), "A value that follows an equation of its variables.");
    of.def("add_motor", &AddMotor, "id"_a, "variable"_a, py::kw_only(), "position"_a = none,
           "velocity"_a = none, "acceleration"_a = none, "maximum"_a = none,
           "A motor on a variable, which is controlled from then on.");
    of.def("connect", &Connect, "cls"_a, "id"_a, "first"_a, "second"_a,
           "A connector, a spring for one, between geometries of two bodies.");
    of.def("attach", &Attach, "cls"_a, "id"_a, "body"_a, "A geometry on a body.");
    of.def("couple", &Couple, "cls"_a, "id"_a, "terms"_a, "constant"_a = 0.0,
           "A coupling: the sum of coefficients times variables, plus the constant, is 0.");
    of.def_property_readonly(
        "planar_ground",
        [](const State& self) {
            return Wrap(
                Entity(Do(self, "planar_ground", [](Model& model) { return model.PlanarGround(); })
                           .Handle()),
                self);
        },
        "The planar frame, which is made with the first planar body.");
    module.def("meeting_point", &MeetingPoint, "start"_a, "distance"_a, "end"_a, "other_distance"_a,
               "The point of the plane z = 0 at given distances from two others, on the left of "
               "the way from the first to the second; None when they do not meet.");
}

} // namespace karmp::python
