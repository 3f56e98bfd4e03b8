#include "KARMPWrittenClasses.h"

#include "KARMPContentWalk.h"
#include "KARMPEntity.h"
#include "QOBClassInfo.h"

#include <algorithm>

namespace karmp::documents {

const Content* WrittenClasses::ContentOf(const KARMPEntity& entity, std::wstring_view version)
{
    const std::type_info& type = typeid(entity);
    if (&type != m_lastType) {
        const auto found = m_classes.find(&type);
        m_last = found != m_classes.end() ? &found->second
                                          : &m_classes.emplace(&type, Make(entity)).first->second;
        m_lastType = &type;
    }
    const auto applies = [&](const Item* item) {
        return item->ExistsAt(version) && (item->when == nullptr || item->when(&entity));
    };
    return std::any_of(m_last->coded.begin(), m_last->coded.end(), applies) ? nullptr
                                                                            : m_last->content;
}

WrittenClasses::Class WrittenClasses::Make(const KARMPEntity& entity)
{
    const QOBClassInfo& info = entity.getClassInfo();
    const std::type_info* const own = info.getOperations().copiedClass;
    const Content* const content = FindContent(info.getName());
    Class made;
    if (own == nullptr || *own != typeid(entity) || content == nullptr || content->element.empty())
        return made;
    for (const Content* part = content; part != nullptr;
         part = part->base != nullptr ? &part->base() : nullptr) {
        if (!part->isWrittenByList)
            return {};
        for (const Item& item : part->items)
            if (item.isCoded && item.isWritten)
                made.coded.push_back(&item);
    }
    made.content = content;
    return made;
}

} // namespace karmp::documents
