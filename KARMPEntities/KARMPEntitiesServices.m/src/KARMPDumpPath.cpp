#include "KARMPDumpPath.h"

#include "KARProcessServices.h"

const char* const karmp::DumpPath = KARGetEnv("MP_DUMP_PATH");
