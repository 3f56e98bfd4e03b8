// A struct that another source has under the same name, and one that does no harm.
#include "reading.h"

namespace {

struct SampleShared
{
    int other;
    double value;
};

struct SampleOfFirst
{
    int value;
};

} // namespace

extern const Reader FirstReaders[];
const Reader FirstReaders[] = {&Read<&SampleShared::value>, &Read<&SampleOfFirst::value>};
