// The commands that edit a document: set, delete and rename.
#include "Commands.h"
#include "Differences.h"
#include "EntityText.h"
#include "KARMPEntity.h"
#include "KARMPModel.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"
#include "TextValues.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>

namespace karmp::tool {

namespace {

using model::Model;
using model::Ref;

/// What a command does to a model; an exit code.
using Work = std::function<int(Model&)>;

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

// Loads, edits and writes, onto the document itself unless there is another output, and tells what
// the edits changed.
int EditDocument(const EditOptions& options, const Work& work)
{
    WriteOptions writing = options.writing;
    if (writing.output.empty())
        writing.output = options.file;
    const auto loaded = LoadWorld(options.file);
    if (!loaded || !MayWrite(options.file, writing, loaded->diagnostics))
        return Unreadable;
    Model edited(loaded->world);
    const auto before = edited.Clone();
    if (!before)
        return before.Report() + 1;
    if (const int code = work(edited); code != Clean)
        return code;
    const auto changes = before->Diff(edited);
    std::ostringstream json;
    json << ", \"changes\": ";
    PrintJson(json, changes);
    if (!writing.json)
        PrintText(ReportStream(writing), changes, false, changes.size());
    documents::SaveOptions save = model::Exactly();
    save.version = loaded->version;
    const Losses losses = LossesOf(*loaded, save.version);
    const int written = WriteDocument(loaded->world, writing, save);
    if (written == Unreadable)
        return Unreadable;
    return std::max(written, ReportLosses(options.file, writing, *loaded, losses, json.str()));
}

// Stores the value of an assignment, ITEM=VALUE; an exit code.
int Assign(Model& edited, const Ref<KARMPEntity>& entity, const std::string& assignment)
{
    const std::size_t sign = assignment.find('=');
    const std::string item = assignment.substr(0, sign);
    if (const auto known = edited.Get(entity, item); !known)
        return Refuse(known.Error());
    const auto value =
        ValueOfText(edited, *FindItem(entity->getClassInfo(), kar::ToWide(std::string_view(item))),
                    assignment.substr(sign + 1));
    if (!value)
        return Refuse(value.Error());
    return edited.Set(entity, item, *value) ? int{Clean} : Refuse(edited.Problems().back());
}

} // namespace

int RunSet(const EditOptions& options)
{
    return EditDocument(
        options,
        [&](Model& edited) -> int {
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
        [&](Model& edited) -> int {
            model::RefList<KARMPEntity> doomed;
            for (const std::string& key : options.entities) {
                doomed.push_back(EntityNamed(edited, key));
                if (!doomed.back())
                    return WrongArguments;
            }
            const auto deletion = edited.Delete(doomed, {.withShort = options.withShort});
            if (!deletion)
                return Refuse(edited.Problems().back());
            for (const model::Dependent& left : deletion.leftShort)
                std::cerr << "karmp: " << TitleOf(*left.entity) << " lacks something: its "
                          << left.item << " lost " << TitleOf(*left.target.Handle()) << '\n';
            return Clean;
        });
}

int RunRename(const EditOptions& options)
{
    return EditDocument(
        options,
        [&](Model& edited) -> int {
            const auto entity = EntityNamed(edited, options.entity);
            if (!entity)
                return WrongArguments;
            return edited.Rename(entity, options.name) ? int{Clean}
                                                       : Refuse(edited.Problems().back());
        });
}

} // namespace karmp::tool
