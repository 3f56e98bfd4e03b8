// The class Model: its settings, links, deletions and blocks of edits.
#include "Bindings.h"
#include "KARMPEntities.h"
#include "KARTextConversion.h"

namespace karmp::python {

namespace {

using py::literals::operator""_a;
using AnyRef = model::Ref<KARMPEntity>;

AnyRef RefOf(const py::object& object, const State& state)
{
    return AnyRef(EntityIn(object, state));
}

KARMathVector VectorOf(py::handle value, const char* what)
{
    const auto numbers = NumbersOf(value, 3, what);
    return {numbers[0], numbers[1], numbers[2]};
}

State Make(const py::object& name, const py::object& gravity, double linearTolerance,
           double angularTolerance)
{
    auto made = std::make_shared<ModelState>(
        model::Model(Utf8Of(name), {.gravity = VectorOf(gravity, "gravity"),
                                    .linearTolerance = linearTolerance,
                                    .angularTolerance = angularTolerance}));
    Do(made, "Model", [](model::Model&) { return true; });
    return made;
}

void Link(const State& self, const py::object& first, const py::object& second,
          const std::string& item, bool isLinked)
{
    const AnyRef one = RefOf(first, self);
    const AnyRef other = RefOf(second, self);
    Do(self, "link", [&](model::Model& model) {
        return isLinked ? model.Link(one, other, item) : model.Unlink(one, other, item);
    });
}

py::list Told(const std::vector<model::Dependent>& dependents, const State& state)
{
    py::list list;
    for (const model::Dependent& dependent : dependents)
        list.append(py::make_tuple(Wrap(dependent.entity.Handle(), state), dependent.item,
                                   Wrap(dependent.target.Handle(), state)));
    return list;
}

py::object Delete(const State& self, const py::object& entity, bool isPreview, bool withShort)
{
    const AnyRef ref = RefOf(entity, self);
    const auto deletion = Do(self, "delete", [&](model::Model& model) {
        return model.Delete(ref, {.preview = isPreview, .withShort = withShort});
    });
    py::list gone;
    for (const AnyRef& each : deletion.gone)
        gone.append(Wrap(each.Handle(), self));
    return py::dict("gone"_a = gone, "unlinked"_a = Told(deletion.unlinked, self),
                    "left_short"_a = Told(deletion.leftShort, self));
}

/// A block of edits as a context.
struct Editing : Held
{
    explicit Editing(State of) : state(std::move(of)) {}
    /// What was entered and not left is kept.
    ~Editing()
    {
        while (!begins.empty())
            End(true);
    }
    Editing(const Editing&) = delete;
    Editing& operator=(const Editing&) = delete;
    void End(bool isKept)
    {
        state->model.EndEditing(begins.back(), isKept);
        begins.pop_back();
        --state->openBlocks;
    }

    State state;
    std::vector<std::size_t> begins;
};
using Block = std::shared_ptr<Editing>;

Block Enter(const Block& self)
{
    CheckFree(*self->state);
    self->begins.push_back(self->state->model.BeginEditing());
    ++self->state->openBlocks;
    return self;
}

bool Exit(const Block& self, const py::object& type, const py::object&, const py::object&)
{
    if (self->begins.empty())
        RaiseError("the block of edits is not open", KARFailure);
    CheckFree(*self->state);
    self->End(type.is_none());
    return false;
}

template <class Get, class Set>
void AddSetting(ModelClass& of, const char* name, const char* doc, Get get, Set set)
{
    of.def_property(
        name,
        [get](const State& self) {
            CheckFree(*self);
            return get(*self->model.World());
        },
        [set, name](const State& self, const py::object& value) {
            const auto number = set(value);
            CheckFree(*self);
            const KARStatus status = number(*self->model.World());
            if (KARFailed(status))
                RaiseError(std::string(name) + " is not set", status);
        },
        doc);
}

void BindSettings(ModelClass& of)
{
    AddSetting(
        of, "gravity", "In m/s2 along the axes of the world.",
        [](const KARMPWorld& world) {
            KARMathVector gravity;
            world.GetGravity(gravity);
            return py::make_tuple(gravity.GetX(), gravity.GetY(), gravity.GetZ());
        },
        [](const py::object& value) {
            return [gravity = VectorOf(value, "gravity")](KARMPWorld& world) {
                return world.SetGravity(gravity);
            };
        });
    AddSetting(
        of, "linear_tolerance", "In m.",
        [](const KARMPWorld& world) { return world.GetLinearTolerance(); },
        [](const py::object& value) {
            return [number = value.cast<double>()](KARMPWorld& world) {
                return world.SetLinearTolerance(number);
            };
        });
    AddSetting(
        of, "angular_tolerance", "In rad.",
        [](const KARMPWorld& world) { return world.GetAngularTolerance(); },
        [](const py::object& value) {
            return [number = value.cast<double>()](KARMPWorld& world) {
                return world.SetAngularTolerance(number);
            };
        });
    of.def_property_readonly(
        "ground",
        [](const State& self) {
            CheckFree(*self);
            return Wrap(Entity(self->model.Ground().Handle()), self);
        },
        "The body that everything stands on.");
    of.def_property_readonly(
        "time",
        [](const State& self) {
            CheckFree(*self);
            return Wrap(Entity(self->model.Time().Handle()), self);
        },
        "The world's time.");
    of.def_property_readonly(
        "name",
        [](const State& self) {
            CheckFree(*self);
            const QOBSharedHandle<QOBBasicEntity> world(self->model.World()->getExtendible());
            return ToText(world->getEntityName());
        },
        "The name of the world, which documents do not hold.");
    of.def("__repr__", [](const State& self) {
        return py::str("<karmp.Model of {} bodies and {} joints>")
            .format(self->model.World()->Count<KARMPBody>(),
                    self->model.World()->Count<KARMPJoint>());
    });
}

} // namespace

void BindModel(ModelClass& of)
{
    of.def(py::init(&Make), "name"_a, py::kw_only(), "gravity"_a = py::make_tuple(0, 0, 0),
           "linear_tolerance"_a = 1e-6, "angular_tolerance"_a = 1e-9, "An empty model in metres.");
    BindSettings(of);
    of.def(
        "link",
        [](const State& self, const py::object& first, const py::object& second,
           const std::string& item) { Link(self, first, second, item, true); },
        "first"_a, "second"_a, "item"_a = "",
        "Links two entities, both ends; the item chooses where there are several links.");
    of.def(
        "unlink",
        [](const State& self, const py::object& first, const py::object& second,
           const std::string& item) { Link(self, first, second, item, false); },
        "first"_a, "second"_a, "item"_a = "",
        "Takes the links between two entities away, both ends, or those of an item.");
    of.def(
        "rename",
        [](const State& self, const py::object& entity, const py::object& name) {
            const AnyRef ref = RefOf(entity, self);
            const std::string text = Utf8Of(name);
            Do(self, "rename", [&](model::Model& model) { return model.Rename(ref, text); });
        },
        "entity"_a, "name"_a, "Gives an entity another name. Its identifier stays.");
    of.def("delete", &Delete, "entity"_a, py::kw_only(), "preview"_a = false,
           "with_short"_a = false,
           "Deletes an entity with what it owns. Returns what is gone, the references that were "
           "dropped and those whose entities lack something now; a preview only tells.");
    of.def(
        "dependents",
        [](const State& self, const py::object& entity) {
            const AnyRef ref = RefOf(entity, self);
            return Told(self->model.Dependents(ref), self);
        },
        "entity"_a, "All references of other entities to one, with their items.");

    py::class_<Editing, Block> editing(of, "Editing", "A block of edits: all of them or none.");
    Seal(editing);
    editing.def("__enter__", &Enter).def("__exit__", &Exit);
    of.def(
        "editing", [](const State& self) { return std::make_shared<Editing>(self); },
        "A context in which an exception undoes all that was done, in reverse order.");
}

} // namespace karmp::python
