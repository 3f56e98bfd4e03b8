// Loads a document and walks the world's bodies with what is linked to them.
#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <iostream>

namespace {

// A document in memory stands for a file.
constexpr const char* Text = R"(<?xml version="1.0" encoding="UTF-8"?>
<KARMPDocument version="R2018.1">
 <World linear_tolerance="0.001" angular_tolerance="1e-09">
  <Variables>
   <Variable id="v1" name="Angle" isActive="yes">
    <Value><HasValue>true</HasValue><Value>0.3</Value></Value>
    <MaxValue><HasMaxValue>false</HasMaxValue></MaxValue>
    <MinValue><HasMinValue>false</HasMinValue></MinValue>
    <MaxLimitRestitution><HasMaxLimitRestitution>false</HasMaxLimitRestitution></MaxLimitRestitution>
    <MinLimitRestitution><HasMinLimitRestitution>false</HasMinLimitRestitution></MinLimitRestitution>
    <PhysicalQuantity>Angle</PhysicalQuantity>
    <Type>Free</Type>
   </Variable>
  </Variables>
  <Values>
   <Constant id="c1" name="Damping" isActive="yes"><Value>0.05</Value></Constant>
   <Boolean id="b1" name="Visible" isActive="yes"><Value>TRUE</Value></Boolean>
  </Values>
 </World>
</KARMPDocument>
)";

} // namespace

int main(int argc, char** argv)
{
    const auto loaded = argc > 1 ? karmp::documents::LoadFile(argv[1])
                                 : karmp::documents::LoadText(Text, "built in");
    for (const auto& message : loaded.diagnostics.items)
        std::cerr << karmp::documents::Format(message) << '\n';
    if (!loaded.world)
        return 1;
    const KARMPWorld& world = *loaded.world;

    // Registries are walked by index.
    for (int index = 0; index < world.Count<KARMPBody>(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (world.Get<KARMPBody>(index, body) != KARSuccess)
            continue;
        std::cout << "Body " << kar::ToUtf8(body->getEntityName()) << ": "
                  << body->GetGeometryCount() << " geometries, " << body->GetLinkedJointCount()
                  << " joints\n";
    }
    for (int index = 0; index < world.Count<KARMPVariable>(); ++index) {
        QOBSharedHandle<KARMPVariable> variable;
        double value = 0.0;
        if (world.Get<KARMPVariable>(index, variable) == KARSuccess &&
            variable->GetValue(value) == KARSuccess)
            std::cout << "Variable " << kar::ToUtf8(variable->getEntityName()) << " = " << value
                      << '\n';
    }
    for (int index = 0; index < world.Count<KARMPValue>(); ++index) {
        QOBSharedHandle<KARMPValue> value;
        if (world.Get<KARMPValue>(index, value) == KARSuccess)
            std::cout << value->getClassName() << ' ' << kar::ToUtf8(value->getEntityName())
                      << '\n';
    }
    return 0;
}
