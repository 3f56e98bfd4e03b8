#include "KARMPReadingPlace.h"

#include "KARMPNodeSource.h"

#include <utility>

namespace {

thread_local KARMPReadingPlace* innermost = nullptr;

} // namespace

KARMPReadingPlace::KARMPReadingPlace(const KARMPDeserializer* node) noexcept
    : m_node(node), m_outer(std::exchange(innermost, this))
{
    if (m_node != nullptr)
        karmp::NodeBuilder::BeginReading(*m_node);
}

KARMPReadingPlace::~KARMPReadingPlace()
{
    if (m_node != nullptr)
        karmp::NodeBuilder::EndReading(*m_node);
    innermost = m_outer;
}

const KARMPDeserializer* KARMPReadingPlace::Current() noexcept
{
    return innermost != nullptr ? innermost->m_node : nullptr;
}

void KARMPReadingPlace::Complete() noexcept
{
    if (innermost != nullptr)
        innermost->m_isComplete = true;
}

bool KARMPReadingPlace::IsComplete() noexcept
{
    return innermost != nullptr && innermost->m_isComplete;
}
