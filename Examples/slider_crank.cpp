// A slider-crank, which stands upright: gravity acts along -y.
#include "SliderCrank.h"

int main()
{
    MechanismBuilder mechanism(L"Slider-crank", {0.0, -9.81, 0.0});
    AddSliderCrank(mechanism, 0.5);
    if (!IsQuiet(karmp::documents::SaveFile(mechanism.World(), "slider-crank.xml")))
        return 1;
    const auto loaded = karmp::documents::LoadFile("slider-crank.xml");
    if (!IsQuiet(loaded.diagnostics) || !loaded.world)
        return 1;
    const auto slider = FindByName<KARMPBody>(*loaded.world, L"Slider");
    std::cout << "The slider stands at x = " << PositionOf(*slider).GetVector().GetX()
              << " m after loading slider-crank.xml\n";
    return 0;
}
