#pragma once

#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <vector>

class KARMPEntity;

namespace karmp {
struct Content;
struct Item;
} // namespace karmp

namespace karmp::documents {

/// Tells which entities are written by the lists of their contents alone: those of the library's
/// own classes whose bases all are. A caller's class that is derived from one may write in a way of
/// its own.
class WrittenClasses
{
public:
    /// The content of an entity that is written by it for documents of a version; null for another
    /// one, and where an item applies that the class's code writes.
    const Content* ContentOf(const KARMPEntity& entity, std::wstring_view version);

private:
    struct Class
    {
        const Content* content = nullptr;
        /// Items that the class's code writes.
        std::vector<const Item*> coded;
    };
    static Class Make(const KARMPEntity& entity);

    const std::type_info* m_lastType = nullptr;
    const Class* m_last = nullptr;
    std::unordered_map<const std::type_info*, Class> m_classes;
};

} // namespace karmp::documents
