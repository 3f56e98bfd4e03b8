#include "KARMPProgressSteps.h"

#include "KARMPDocumentSchema.h"
#include "KARMPNodeQueries.h"

#include <algorithm>

namespace karmp::documents {

void ProgressSteps::Begin(const ProgressFunction& function, std::size_t entities,
                          std::size_t passes)
{
    constexpr std::size_t mostCalls = 200;
    if (!function)
        return;
    m_function = &function;
    m_entities = entities;
    m_passes = passes;
    m_done = 0;
    m_stride = entities * passes / mostCalls + 1;
    m_untilCall = m_stride;
    function(0, entities);
}

// What is read once more after an error is not counted again.
void ProgressSteps::Call()
{
    m_done += m_stride;
    const std::size_t entities = m_done / m_passes;
    if (entities >= m_entities)
        return;
    m_untilCall = m_stride;
    (*m_function)(entities, m_entities);
}

void ProgressSteps::End()
{
    if (m_function != nullptr)
        (*m_function)(m_entities, m_entities);
    m_function = nullptr;
    m_untilCall = 0;
}

std::size_t CountEntities(const KARMPDocumentReader& root)
{
    const KARMPDeserializer* const world = First(root, L"World");
    if (world == nullptr)
        return 0;
    KARMPDeserializer::ElementVector entities;
    for (const Family& family : Families())
        if (const KARMPDeserializer* const list = First(*world, family.element))
            list->AppendOrderedElements(entities);
    return entities.size();
}

} // namespace karmp::documents
