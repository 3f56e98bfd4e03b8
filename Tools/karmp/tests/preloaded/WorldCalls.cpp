// Loaded before the libraries of a program, notes each world that it reads or writes in the file
// that the environment names, and lets the completion of a world fail if the environment says so.
#include "KARMPWorld.h"

#include <cstdlib>
#include <fstream>

#include <dlfcn.h>

namespace {

void Note(const char* call)
{
    if (const char* const path = std::getenv("KARMP_WORLD_CALLS"))
        std::ofstream(path, std::ios::app) << call << '\n';
}

// The function of the library that the one here stands before.
template <class Function>
Function Next(const char* symbol)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, symbol));
}

} // namespace

KARStatus KARMPWorld::Deserialize(const KARMPDeserializer* deserializer)
{
    using Function = KARStatus (*)(KARMPWorld*, const KARMPDeserializer*);
    Note("read");
    return Next<Function>("_ZN10KARMPWorld11DeserializeEPK17KARMPDeserializer")(this, deserializer);
}

KARStatus KARMPWorld::Serialize(KARMPSerializer* serializer) const
{
    using Function = KARStatus (*)(const KARMPWorld*, KARMPSerializer*);
    Note("written");
    return Next<Function>("_ZNK10KARMPWorld9SerializeEP15KARMPSerializer")(this, serializer);
}

namespace karmp::documents {

__attribute__((visibility("default"))) KARStatus CompleteWorld(KARMPWorld& world)
{
    using Function = KARStatus (*)(KARMPWorld&);
    if (std::getenv("KARMP_COMPLETION_FAILS") != nullptr)
        return KAROutOfMemory;
    return Next<Function>("_ZN5karmp9documents13CompleteWorldER10KARMPWorld")(world);
}

} // namespace karmp::documents
