// A struct that another source has under the same name, and one that does no harm.
#include "reading.h"

namespace {

struct SampleShared
{
    double value;
};

struct SampleOfSecond
{
    int value;
};

} // namespace

extern const Reader SecondReaders[];
const Reader SecondReaders[] = {&Read<&SampleShared::value>, &Read<&SampleOfSecond::value>};
