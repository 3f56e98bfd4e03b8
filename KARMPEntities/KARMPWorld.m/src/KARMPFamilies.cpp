#include "KARMPFamilies.h"

#include "KARMPWorldFamilies.h"

const std::vector<karmp::FamilyRecord>& karmp::FamilyRecords()
{
    static const std::vector<FamilyRecord> records = [] {
        std::vector<FamilyRecord> made;
        ForEachRegistryElement([&made](auto element) {
            made.push_back({element.name, &decltype(element)::Type::ClassInfo()});
        });
        return made;
    }();
    return records;
}
