#include "Subjects.h"

#include "EntityText.h"
#include "KARMPActuator.h"
#include "KARMPAttribute.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPConstraint.h"
#include "KARMPCoupling.h"
#include "KARMPGeometry.h"
#include "KARMPInteraction.h"
#include "KARMPShape.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"
#include "Output.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace karmp::tool {

namespace {

using Handle = QOBSharedHandle<KARMPEntity>;
using Handles = std::vector<Handle>;

// The class record of a collision layer does not tell its family.
template <class... T>
bool IsOneOf(const KARMPEntity& entity)
{
    return ((dynamic_cast<const T*>(&entity) != nullptr) || ...);
}

bool IsSubject(const KARMPEntity& entity)
{
    return IsOneOf<KARMPBody, KARMPJoint, KARMPConnector>(entity);
}

bool LeadsOn(const KARMPEntity& entity)
{
    return IsOneOf<KARMPActuator, KARMPVariable, KARMPConstraint, KARMPGeometry, KARMPShape,
                   KARMPInteraction>(entity);
}

// Parameters, states, outputs and parts.
bool IsOfEveryEntity(const ItemInfo& item)
{
    const auto rows = ItemsOf(KARMPEntity::ClassInfo());
    return std::any_of(rows.begin(), rows.end(),
                       [&item](const ItemInfo& row) { return row.path == item.path; });
}

bool IsCoupling(const Handle& entity)
{
    return entity->isDerivedFrom(KARMPCoupling::ClassInfo());
}

Handles WithoutCouplings(Handles subjects)
{
    if (!std::all_of(subjects.begin(), subjects.end(), IsCoupling))
        std::erase_if(subjects, IsCoupling);
    return subjects;
}

std::string SubjectTextOf(const KARMPEntity& entity)
{
    std::string text;
    if (IsOneOf<KARMPVariable, KARMPConstraint>(entity))
        for (const Handle& subject : SubjectsOf(entity))
            text += (text.empty() ? " of " : " and ") + TitleOf(*subject);
    return text;
}

void AppendRecords(const KARMPEntity& entity, std::vector<std::string>& texts)
{
    for (const ItemInfo& item : ItemsOf(entity.getClassInfo()))
        if (const int count = item.kind == ItemKind::Records ? item.Count(entity) : 0; count > 0)
            texts.push_back(Printable(item.path) + " (" + std::to_string(count) + ')');
}

} // namespace

void ForEachOwnTarget(const KARMPEntity& entity, const std::function<void(const Handle&)>& visit)
{
    ForEachTarget(
        entity,
        [&visit](const ItemInfo& item, const Handle& target) {
            if (!IsOneOf<KARMPValue, KARMPAttribute>(*target) && !IsOfEveryEntity(item))
                visit(target);
        });
}

std::vector<Handle> SubjectsOf(const KARMPEntity& entity)
{
    Handles subjects;
    std::unordered_set<const KARMPEntity*> passed{&entity};
    Handles front;
    const auto take = [&](const Handle& target, Handles& next) {
        if (!passed.insert(target.get()).second)
            return;
        if (IsSubject(*target))
            subjects.push_back(target);
        else if (LeadsOn(*target))
            next.push_back(target);
    };
    ForEachOwnTarget(entity, [&](const Handle& target) { take(target, front); });
    while (subjects.empty() && !front.empty()) {
        Handles next;
        for (const Handle& between : front)
            ForEachOwnTarget(*between, [&](const Handle& target) { take(target, next); });
        front = std::move(next);
    }
    return WithoutCouplings(std::move(subjects));
}

std::string TargetsText(const KARMPEntity& entity)
{
    constexpr std::size_t Most = 10;
    std::vector<std::string> texts;
    std::size_t count = 0;
    ForEachOwnTarget(entity, [&](const Handle& target) {
        if (count++ < Most)
            texts.push_back(TitleOf(*target) + SubjectTextOf(*target));
    });
    if (count > Most)
        texts.push_back("and " + std::to_string(count - Most) + " more");
    AppendRecords(entity, texts);
    std::string text;
    for (const std::string& part : texts)
        text += (text.empty() ? "" : ", ") + part;
    return text.empty() ? "no target" : text;
}

} // namespace karmp::tool
