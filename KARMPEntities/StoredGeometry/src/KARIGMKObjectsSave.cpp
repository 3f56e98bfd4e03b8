#include "KARIGMKObjectsSave.h"

#include "GMKWriter.h"

#include <new>
#include <unordered_set>

namespace {

using kar::GMKWriter;

/// The objects in the order of their records: each behind all that it refers to.
class RecordOrder
{
public:
    void Add(const KARIGMKObject* root)
    {
        std::vector<Visit> open{{root, false}};
        while (!open.empty()) {
            const Visit visit = open.back();
            open.pop_back();
            if (m_indices.contains(visit.object))
                continue;
            if (visit.referencesDone) {
                m_indices.emplace(visit.object, static_cast<std::uint32_t>(m_objects.size()));
                m_objects.push_back(visit.object);
                continue;
            }
            // No class with a stored form refers to itself in a circle; another one that does must
            // not keep this walk going.
            if (!m_opened.insert(visit.object).second)
                continue;
            open.push_back({visit.object, true});
            std::vector<const KARIGMKObject*> references;
            visit.object->GetReferences(references);
            for (auto it = references.rbegin(); it != references.rend(); ++it)
                open.push_back({*it, false});
        }
    }

    const std::vector<const KARIGMKObject*>& Objects() const { return m_objects; }
    const GMKWriter::Indices& Indices() const { return m_indices; }

private:
    struct Visit
    {
        const KARIGMKObject* object;
        bool referencesDone;
    };

    std::vector<const KARIGMKObject*> m_objects;
    GMKWriter::Indices m_indices;
    std::unordered_set<const KARIGMKObject*> m_opened;
};

bool WritePayload(KARMathStream& payload, const KARListPtrKARIGMKObject& list,
                  const RecordOrder& order)
{
    GMKWriter writer(payload, order.Indices());
    writer.Count(order.Objects().size());
    writer.Count(static_cast<std::size_t>(list.Size()));
    for (const KARIGMKObject* object : order.Objects())
        if (!object->Store(writer))
            return false;
    for (int i = 1; i <= list.Size(); ++i)
        writer.Reference(list[i]);
    return !writer.Failed();
}

} // namespace

KARStatus KARIGMKObjectsSave::Save(const KARListPtrKARIGMKObject& objects,
                                   KARListPtrKARIGMKObject* saved)
try {
    RecordOrder order;
    for (int i = 1; i <= objects.Size(); ++i) {
        if (objects[i] == nullptr)
            return KARFailure;
        order.Add(objects[i]);
    }
    KARMathStream payload;
    if (objects.Size() == 0 || !WritePayload(payload, objects, order))
        return KARFailure;
    kar::WriteBlock(m_stream, kar::ObjectBlock, payload.GetBytes());
    if (saved != nullptr)
        for (const KARIGMKObject* object : order.Objects())
            saved->Append(const_cast<KARIGMKObject*>(object));
    return KARSuccess;
} catch (const std::bad_alloc&) {
    return KAROutOfMemory;
}
