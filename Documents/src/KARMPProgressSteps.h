#pragma once

#include "KARMPDocuments.h"

#include <cstddef>

namespace karmp::documents {

/// Counts the steps of a work and calls a function some hundred times at most.
class ProgressSteps
{
public:
    /// Begins a work that passes over each entity so many times. An empty function is never called;
    /// another one must live until the work ends.
    void Begin(const ProgressFunction& function, std::size_t entities, std::size_t passes);
    /// One entity was passed over.
    void Step()
    {
        if (m_untilCall != 0 && --m_untilCall == 0)
            Call();
    }
    /// All is done: the last call.
    void End();

private:
    void Call();

    const ProgressFunction* m_function = nullptr;
    std::size_t m_entities = 0;
    std::size_t m_passes = 1;
    std::size_t m_done = 0;
    std::size_t m_stride = 0;
    /// Steps until the function is called; 0 when it is not called any more.
    std::size_t m_untilCall = 0;
};

/// The number of entities of a document.
std::size_t CountEntities(const KARMPDocumentReader& root);

} // namespace karmp::documents
