// Any bytes as a document that is read from its records, from its nodes after all of them are
// filled, and from copies of these: all give the same world and the same failed checks.
#include "ReadingOutcome.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace karmp::documents;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string outcome = OutcomeOfReading(text, ReadFrom::Records, Limits::Tight());
    for (const ReadFrom other : {ReadFrom::Nodes, ReadFrom::Copies})
        if (OutcomeOfReading(text, other, Limits::Tight()) != outcome)
            std::abort();
    return 0;
}
