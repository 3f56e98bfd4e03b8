#include "KARMPModel.h"

#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPGenericFactory.h"
#include "KARMPItems.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARMPVariable.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <utility>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

QOBSharedHandle<KARMPWorld> NewWorld(std::string_view name)
{
    return KARMPWorld::create(QOBBasicWorld::create(kar::ToWide(name)));
}

// Unless it has one, a global gets the identifier that documents give it.
template <class T>
void IdentifyGlobal(const KARMPWorld& world,
                    KARStatus (KARMPWorld::*get)(QOBSharedHandle<T>&) const,
                    const wchar_t* identifier)
{
    QOBSharedHandle<T> global;
    (world.*get)(global);
    if (global && IdentifierIfGiven(*global) == nullptr)
        global->SetIdentifier(identifier);
}

void IdentifyGlobals(const KARMPWorld& world)
{
    IdentifyGlobal(world, &KARMPWorld::GetGlobalBody, L"GlobalBody");
    IdentifyGlobal(world, &KARMPWorld::GetGlobalAxisSystem, L"GlobalAxisSystem");
    IdentifyGlobal(world, &KARMPWorld::GetGlobalTime, L"GlobalTime");
}

// What stands under the basic world ends with it.
void PlaceAll(Core& core)
{
    const KARMPWorld& world = *core.World();
    const QOBSharedHandle<QOBBasicEntity> parent(world.getExtendible());
    core.ForEach(-1, [&](const Entity& entity) {
        if (!entity->getWorld())
            parent->addLogicalChild(entity);
    });
}

} // namespace

// A new world lists its globals.
Model::Model(std::string_view name, const ModelOptions& options, Where where)
    : m_core(std::make_unique<Core>(NewWorld(name)))
{
    m_core->Perform(
        where,
        [&](Edit& edit) {
            KARMPWorld& world = *m_core->World();
            IdentifyGlobals(world);
            PlaceAll(*m_core);
            return edit.Configure(options) && (!KARFailed(world.SetLengthUnit(KARMPUnit::Meter)) ||
                                               edit.Fail("the settings of the world failed"));
        });
}

Model::Model(const QOBSharedHandle<KARMPWorld>& world, Where where)
    : m_core(std::make_unique<Core>(world))
{
    m_core->Perform(
        where,
        [&](Edit& edit) {
            if (!world)
                return edit.Fail("there is no world");
            IdentifyGlobals(*world);
            if (KARFailed(documents::CompleteWorld(*world)))
                return edit.Fail("the globals of the world cannot be listed", KAROutOfMemory);
            PlaceAll(*m_core);
            return true;
        });
}

Model::Owned::Owned(std::unique_ptr<Core> core) noexcept : m_core(std::move(core)) {}
Model::Owned::Owned(Owned&& other) noexcept = default;
Model::Owned& Model::Owned::operator=(Owned&& other) noexcept = default;
Model::Owned::~Owned() = default;

Model::Model(Model&& other) noexcept = default;
Model& Model::operator=(Model&& other) noexcept = default;
Model::~Model() = default;

const QOBSharedHandle<KARMPWorld>& Model::World() const
{
    return m_core->World();
}

const std::vector<Problem>& Model::Problems() const
{
    return m_core->Problems();
}

void Model::ClearProblems()
{
    m_core->Problems().clear();
}

ModelOptions Model::Options() const
{
    return World() ? OptionsOf(*World()) : ModelOptions();
}

bool Model::SetOptions(const ModelOptions& options, Where where)
{
    return m_core->Perform(
        where, [&](Edit& edit) { return edit.Configure(options); });
}

Ref<KARMPBody> Model::Ground() const
{
    QOBSharedHandle<KARMPBody> body;
    if (!World())
        return {};
    World()->GetGroundBody(body);
    if (!body)
        World()->GetGlobalBody(body);
    return Ref<KARMPBody>(body);
}

Ref<KARMPVariable> Model::Time() const
{
    QOBSharedHandle<KARMPVariable> time;
    if (World())
        World()->GetGlobalTime(time);
    return Ref<KARMPVariable>(time);
}

namespace {

// A new entity with items set, of a class that fits.
bool MakeWith(Edit& edit, const QOBClassInfo& info, Fits fits, std::string_view identifier,
              Settings settings, Entity& entity)
{
    entity = edit.Create(info, identifier);
    if (entity && !fits(*entity))
        return edit.Fail("the factory makes a " + info.getName() + ", no subclass of it");
    return entity && edit.SetAll(entity, settings);
}

} // namespace

Model::Entity Model::AddEntity(const QOBClassInfo& info, bool (*fits)(const KARMPEntity&),
                               std::string_view identifier, Settings settings, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& entity) {
            return MakeWith(edit, info, fits, identifier, settings, entity);
        });
}

Model::Entity Model::AddSensor(const QOBClassInfo& info, bool (*fits)(const KARMPEntity&),
                               std::string_view identifier, Settings settings,
                               std::unique_ptr<KARIMPEntityLoader> (*load)(KARMPEntity&, void*),
                               void* fill, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& sensor) {
            if (!MakeWith(edit, info, fits, identifier, settings, sensor))
                return false;
            auto loader = load(*sensor, fill);
            if (!edit.Check(sensor->SetLoader(loader.get()), "the loader", *sensor))
                return false;
            static_cast<void>(loader.release()); // the sensor's
            return true;
        });
}

Ref<KARMPEntity> Model::Add(std::string_view className, std::string_view identifier, Where where)
{
    return Ref(m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& entity) {
            // The factory knows classes by name alone, so that one entity tells the record.
            const auto names = KARMPFactory::GetClassNames();
            const std::string nearest = NearestName(className, names);
            if (nearest != className && !ItemsOf(className).empty())
                return edit.Fail("a " + std::string(className) + BaseClassText);
            if (className.empty() || nearest != className)
                return edit.Fail("there is no class \"" + std::string(className) + '"' +
                                 (nearest.empty() ? nearest : "; near: \"" + nearest + '"'));
            Entity sample;
            if (KARFailed(KARMPFactory::Create(className, sample)) || !sample)
                return edit.Fail("a " + std::string(className) + " cannot be made");
            entity = edit.Create(sample->getClassInfo(), identifier);
            return static_cast<bool>(entity);
        }));
}

bool Model::Link(const Ref<KARMPEntity>& first, const Ref<KARMPEntity>& second,
                 std::string_view item, Where where)
{
    return m_core->Perform(
        where, [&](Edit& edit) { return edit.Link(first.Handle(), second.Handle(), item); });
}

bool Model::Unlink(const Ref<KARMPEntity>& first, const Ref<KARMPEntity>& second,
                   std::string_view item, Where where)
{
    return m_core->Perform(
        where, [&](Edit& edit) { return edit.Unlink(first.Handle(), second.Handle(), item); });
}

std::size_t Model::BeginEditing(Where where)
{
    return m_core->OpenBlock(where);
}

void Model::EndEditing(std::size_t begin, bool isKept, Where where)
{
    m_core->CloseBlock(begin, isKept, where);
}

bool Model::Rename(const Ref<KARMPEntity>& entity, std::string_view name, Where where)
{
    return m_core->Perform(
        where, [&](Edit& edit) { return edit.Rename(entity.Handle(), name); });
}

Model::Entity Model::FindEntity(bool (*fits)(const KARMPEntity&), std::string_view key) const
{
    if (KARMPEntity* const entity = m_core->FindByIdentifier(key);
        entity != nullptr && fits(*entity))
        return Entity(entity);
    auto found = m_core->FindByKey(key, fits);
    return found.size() == 1 ? std::move(found.front()) : Entity();
}

Model::Entity Model::GetEntity(bool (*fits)(const KARMPEntity&), const std::string& className,
                               std::string_view key, Where where, Outcome& problem) const
{
    auto found = m_core->FindByKey(key, fits);
    if (found.size() == 1)
        return std::move(found.front());
    const std::string quoted = '"' + std::string(key) + '"';
    const bool isAnyClass = className == KARMPEntity::ClassInfo().getName();
    std::string text;
    if (found.size() > 1) {
        text = NumberWord(found.size()) + ' ' + (isAnyClass ? "entities" : className) +
               " have the name " + quoted;
    } else {
        std::vector<std::string> names;
        m_core->ForEach(-1, [&](const Entity& entity) {
            if (!fits(*entity))
                return;
            names.push_back(kar::ToUtf8(entity->getStoredName().Copy()));
            if (const kar::SharedText* const identifier = IdentifierIfGiven(*entity))
                names.push_back(kar::ToUtf8(identifier->Copy()));
        });
        const std::string nearest = NearestName(key, names);
        text = "there is no " + (isAnyClass ? "entity" : className) + ' ' + quoted +
               (nearest.empty() ? nearest : "; near: \"" + nearest + '"');
    }
    problem = Outcome(Problem{std::move(text), KARFailure, where});
    return {};
}

void Model::Collect(int family, bool (*fits)(const KARMPEntity&),
                    void (*add)(void* list, Entity&& entity),
                    void (*reserve)(void* list, std::size_t count), void* list) const
{
    if (fits == nullptr)
        reserve(list, m_core->Count(static_cast<std::size_t>(family)));
    m_core->ForEach(family, [&](Entity&& entity) {
        if (fits == nullptr || fits(*entity))
            add(list, std::move(entity));
    });
}

} // namespace karmp::model
