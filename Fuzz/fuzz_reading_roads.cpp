// Any bytes as a document that is read from its records, and from its nodes after all of them are
// filled: both give the same world and the same failed checks.
#include "ReadingOutcome.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace karmp::documents;
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (OutcomeOfReading(text, ReadFrom::Records, Limits::Tight()) !=
        OutcomeOfReading(text, ReadFrom::Nodes, Limits::Tight()))
        std::abort();
    return 0;
}
