// The commands that edit a document: set, delete and rename.
#include "Commands.h"
#include "Differences.h"
#include "EntityText.h"
#include "KARMPEntity.h"
#include "KARMPModel.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Output.h"
#include "TextValues.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using model::Model;
using model::Ref;

/// What a deletion leaves short.
using LeftShort = std::vector<model::Dependent>;
/// What a command does to a model; an exit code.
using Work = std::function<int(Model&, LeftShort&)>;

int Refuse(const model::Problem& problem)
{
    std::cerr << "karmp: " << Printable(problem.text) << '\n';
    return WrongArguments;
}

// The entity that a key names; false, with the reason told, when there is not one.
Ref<KARMPEntity> EntityNamed(const Model& edited, const std::string& key)
{
    const auto entity = edited.Get<KARMPEntity>(key);
    if (!entity)
        Refuse(entity.Error());
    return entity.ValueOr(nullptr);
}

void PrintLeftShort(const LeftShort& leftShort)
{
    for (const model::Dependent& left : leftShort)
        std::cerr << "karmp: " << TitleOf(*left.entity) << " lacks something: its " << left.item
                  << " lost " << TitleOf(*left.target.Handle()) << '\n';
}

// What an edit did, as further members of a JSON object.
std::string JsonOf(const std::vector<documents::Difference>& changes, const LeftShort& leftShort)
{
    std::ostringstream json;
    json << ",\n  \"changes\": ";
    PrintJson(json, changes);
    json << ",\n  \"short\": " << JsonList(leftShort, [](const model::Dependent& left) {
        return LinkJson(left.entity.Handle(), left.item, left.target.Handle());
    });
    return json.str();
}

// Loads, edits and writes, onto the document itself unless there is another output, and tells what
// the edits changed.
int EditDocument(const EditOptions& options, const Work& work)
{
    WriteOptions how = options.writing;
    if (how.output.empty())
        how.output = options.file;
    Writing writing(options.file, how);
    const auto loaded = writing.Load();
    if (!loaded || !writing.MayWrite(loaded->diagnostics, loaded->version))
        return Unreadable;
    Model edited(loaded->world);
    if (!edited.Problems().empty()) {
        Refuse(edited.Problems().front());
        return Unreadable;
    }
    const auto before = edited.Clone();
    if (!before) {
        before.Report();
        return Unreadable;
    }
    LeftShort leftShort;
    if (const int code = work(edited, leftShort); code != Clean)
        return code;
    const auto changes = before->Diff(edited);
    documents::SaveOptions save = model::Exactly();
    save.version = loaded->version;
    const Losses losses = LossesOf(*loaded, save.version);
    const int written = writing.Write(loaded->world, save);
    if (written == Unreadable)
        return Unreadable;
    if (!options.writing.json) {
        PrintText(writing.ReportStream(), changes, false, changes.size());
        PrintLeftShort(leftShort);
    }
    return std::max(written, writing.ReportLosses(*loaded, losses, JsonOf(changes, leftShort)));
}

const ItemInfo* ItemAt(const KARMPEntity& entity, std::string_view path)
{
    return FindItem(entity.getClassInfo(), kar::ToWide(path));
}

// An item by its name or path, which may have the "@" of an attribute as the schema has; null
// without one.
const ItemInfo* ItemNamed(const KARMPEntity& entity, std::string name)
{
    if (const std::size_t mark = name.rfind('/') + 1; mark < name.size() && name[mark] == '@')
        name.erase(mark, 1);
    return ItemAt(entity, name);
}

// The sentence for an item that there is not, or that is a part of one.
model::Problem NoItem(const Model& edited, const Ref<KARMPEntity>& entity, const std::string& name)
{
    model::Problem problem = edited.Get(entity, name).Error();
    const ItemInfo* const whole = ItemAt(*entity, name.substr(0, name.rfind('/')));
    if (whole != nullptr)
        problem.text = '"' + name + "\" is a part of \"" + kar::ToUtf8(whole->path) +
                       "\", which is set as a whole";
    problem.text += "; 'karmp schema --text " + ClassOf(*entity) + "' lists what can be set";
    return problem;
}

// Stores the value of an assignment, ITEM=VALUE; an exit code.
int Assign(Model& edited, const Ref<KARMPEntity>& entity, const std::string& assignment)
{
    const std::size_t sign = assignment.find('=');
    const std::string name = assignment.substr(0, sign);
    const ItemInfo* const item = ItemNamed(*entity, name);
    if (item == nullptr)
        return Refuse(NoItem(edited, entity, name));
    const auto value = ValueOfText(edited, *item, assignment.substr(sign + 1));
    if (!value)
        return Refuse(value.Error());
    const bool isSet = edited.Set(entity, kar::ToUtf8(item->path), *value);
    return isSet ? int{Clean} : Refuse(edited.Problems().back());
}

} // namespace

int RunSet(const EditOptions& options)
{
    return EditDocument(
        options,
        [&](Model& edited, LeftShort&) -> int {
            const auto entity = EntityNamed(edited, options.entity);
            if (!entity)
                return WrongArguments;
            for (const std::string& assignment : options.assignments)
                if (const int code = Assign(edited, entity, assignment); code != Clean)
                    return code;
            return Clean;
        });
}

int RunDelete(const EditOptions& options)
{
    return EditDocument(
        options,
        [&](Model& edited, LeftShort& leftShort) -> int {
            model::RefList<KARMPEntity> doomed;
            for (const std::string& key : options.entities) {
                doomed.push_back(EntityNamed(edited, key));
                if (!doomed.back())
                    return WrongArguments;
            }
            auto deletion = edited.Delete(doomed, {.withShort = options.withShort});
            if (!deletion)
                return Refuse(edited.Problems().back());
            leftShort = std::move(deletion.leftShort);
            return Clean;
        });
}

int RunRename(const EditOptions& options)
{
    return EditDocument(
        options,
        [&](Model& edited, LeftShort&) -> int {
            const auto entity = EntityNamed(edited, options.entity);
            if (!entity)
                return WrongArguments;
            return edited.Rename(entity, options.name) ? int{Clean}
                                                       : Refuse(edited.Problems().back());
        });
}

} // namespace karmp::tool
