#include "GraphLooks.h"

#include <algorithm>
#include <array>

namespace karmp::tool {

namespace {

// Lower pairs are round or straight by their motion, contacts are trapezia, couplings have corners.
constexpr std::array Looks{JointLook{"KARMPRevolute", "ellipse", "#bbdefb"},
                           JointLook{"KARMPPrismatic", "box", "#c8e6c9"},
                           JointLook{"KARMPCylindrical", "cylinder", "#b2dfdb"},
                           JointLook{"KARMPSpherical", "egg", "#e1bee7"},
                           JointLook{"KARMPUniversal", "diamond", "#d1c4e9"},
                           JointLook{"KARMPPlanar", "parallelogram", "#dcedc8"},
                           JointLook{"KARMPRigid", "doubleoctagon", "#e0e0e0"},
                           JointLook{"KARMPScrew", "hexagon", "#ffe0b2"},
                           JointLook{"KARMPPointCurve", "trapezium", "#fff9c4"},
                           JointLook{"KARMPPointSurface", "invtrapezium", "#fff9c4"},
                           JointLook{"KARMPGear", "octagon", "#ffccbc"},
                           JointLook{"KARMPRack", "septagon", "#ffccbc"},
                           JointLook{"KARMPCable", "pentagon", "#ffccbc"}};

constexpr JointLook OtherLook{"", "box3d", "#f0f4c3"};

} // namespace

const JointLook& LookOf(std::string_view className)
{
    const auto* const found =
        std::find_if(Looks.begin(), Looks.end(),
                     [className](const JointLook& look) { return look.className == className; });
    return found != Looks.end() ? *found : OtherLook;
}

std::string QuotedText(std::string_view text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + '"';
}

std::string TaggedText(std::string_view text)
{
    std::string tagged;
    for (const char character : text) {
        switch (character) {
        case '&':
            tagged += "&amp;";
            break;
        case '<':
            tagged += "&lt;";
            break;
        case '>':
            tagged += "&gt;";
            break;
        case '"':
            tagged += "&quot;";
            break;
        case '\n':
            tagged += "<br/>";
            break;
        default:
            tagged += character;
        }
    }
    return tagged;
}

} // namespace karmp::tool
