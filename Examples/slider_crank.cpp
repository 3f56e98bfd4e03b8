// A slider-crank, which stands upright: gravity acts along -y.
#include "SliderCrank.h"

int main()
{
    karmp::model::Model model("Slider-crank", {.gravity = {0.0, -9.81, 0.0}});
    AddSliderCrank(model, 0.5);
    return RoundTrip(model, "slider-crank.xml", [](const karmp::model::Model& again) {
        const auto slider = again.Find<KARMPBody>("Slider");
        std::cout << "The slider stands at x = " << PositionOf(slider).GetVector().GetX()
                  << " m after loading slider-crank.xml\n";
        return true;
    });
}
