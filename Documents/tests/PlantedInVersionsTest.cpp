// Mistakes that people make, one a document, in the text of a document and in documents of older
// versions.
#include "PlantedTesting.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

namespace {

constexpr const char* Winch = "winch";

const std::vector<Planted> Mistakes{
    // Syntax
    {Winch, "</Globals>", "</^globals>", "syntax", "<Globals> is open"},
    {Winch, "  </Joints>\n", "", "syntax", "<Joints> is open", "</^World>"},
    {Winch, " </World>\n", "", "syntax", "<World> is open", "</^KARMPDocument>"},
    {Winch, "</KARMPDocument>\n", "", "syntax", "cut off", " </World>^"},
    {Winch, "</KARMPDocument>\n", "</KARMPDocument>\n<^World/>\n", "syntax", ""},
    {Winch, "</KARMPDocument>\n", "</KARMPDocument>\n^The end\n", "syntax", ""},
    {Winch, R"(<Boolean id="Locked" name)", "<Boolean id=^Locked name", "syntax", ""},
    {Winch, R"(<Boolean id="Locked" name="Locked")", R"(<Boolean id="Locked name="^Locked")",
     "syntax", "quotation mark"},
    {Winch, R"(<Boolean id="Locked" name)", R"(<Boolean id="Locked"^name)", "syntax", ""},
    {Winch, R"(<Boolean id="Locked" name)", R"(<Boolean id "^Locked" name)", "syntax", ""},
    {Winch, R"(<Boolean id="Locked" name)", R"(<^ Boolean id="Locked" name)", "syntax", ""},
    {Winch, R"(<String id="Label" name="Label")", R"(<String id="Label" name="a ^< b")", "syntax",
     "unescaped"},
    {Winch, "<Value>winch<", "<Value>a <^ b<", "syntax", ""},
    {Winch, "<Value>winch<", "<Value>winch ^& rope<", "reference", R"("&" is no reference)"},
    {Winch, "<Value>winch<", "<Value>^&nbsp;<", "reference", "&nbsp;"},
    {Winch, "<Value>winch<", "<Value>^&#0;<", "reference", "&#0;"},
    {Winch, "<Value>winch<", "<Value>^&#x110000;<", "reference", "&#x110000;"},
    {Winch, "<Value>winch<", "<Value>&#x00000000000000000000000000000000000000041;^&#000000;<",
     "reference", "\"&#000000;\""},
    {Winch, "<Value>winch<", "<Value>caf^\351<", "encoding", "UTF-8"},
    {Winch, "<Value>winch<", "<Value>win^\014ch<", "encoding", "control character"},
    {Winch, "<Value>winch<", "<Value><![CDATA[winch<", "syntax", "<Value> is open",
     "</KARMPDocument>^"},
    {Winch, "<DebugEntities>", "<!-- <DebugEntities>", "syntax", "cut off", "</KARMPDocument>^"},
    {Winch, "  <DebugEntities>\n", "  <?page\n", "syntax", "cut off", "</KARMPDocument>^"},
    {Winch, R"(<?xml version="1.0" encoding="UTF-8"?>)",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE ^KARMPDocument>", "doctype", ""},
    {Winch, R"(<?xml version="1.0" encoding="UTF-8"?>)",
     R"(<?xml version="1.0" ^encoding="UTF-16"?>)", "encoding", "UTF-16"},
    {Winch, R"(<?xml version="1.0" encoding="UTF-8"?>)",
     R"(<?xml ^version="2.0" encoding="UTF-8"?>)", "syntax", "2.0"},
    {Winch, nullptr, "<^Mechanism/>", "wrong-root", "KARMPDocument"},
    {Winch, nullptr, "", "empty", "empty"},
    {Winch, nullptr, R"(<^KARMPDocument version="R2018.1"/>)", "missing-element", "World", nullptr,
     "failed"},
    // Columns behind characters of several bytes
    {Winch, R"(<Boolean id="Locked" name="Locked" isActive="yes">)",
     "<Boolean id=\"Locked\" name=\"T\303\274rriegel \342\206\222 zu\" ^isActive=\"Yes\">",
     "invalid-value", R"(did you mean "yes"?)"},
    {Winch, R"(<Boolean id="Locked" name="Locked" isActive="yes"><Value>FALSE<)",
     "<Boolean id=\"Locked\" name=\"\360\237\224\222 Schlo\303\237\" "
     "isActive=\"yes\"><Value>^nein<",
     "invalid-value", "FALSE or TRUE"},
    {Winch, R"(<Boolean id="Locked" name="Locked" isActive="yes"><Value>FALSE<)",
     "<Boolean id=\"Locked\" name=\"\360\237\224\222 Schlo\303\237\" "
     "isActive=\"yes\"><Value>FALSE</^Wert><",
     "syntax", "<Value> is open"},
    {Winch, R"(<String id="Label" name="Label" isActive="yes"><Value>winch</Value>)",
     "<String id=\"Label\" name=\"Label\" "
     "isActive=\"yes\"><Value>Gr\303\274\303\237e</Value><^Werte/>",
     "unknown-element", "Werte"},
    {Winch, R"(<String id="Label" name="Label" isActive="yes"><Value>winch<)",
     "<String id=\"Label\" "
     "name=\"B\303\274gel\"\011^kind=\"\303\244\"\011isActive=\"yes\"><Value>winch<",
     "unknown-attribute", "kind"},
    // Documents of older versions
    {"slider-crank@R2016.0", "    </Weight>\n", "    </Weight>\n<^OutOfWorld>false</OutOfWorld>",
     "other-version", "OutOfWorld"},
    {"slider-crank@R2016.1", "<OutOfWorld>false</OutOfWorld>", "", "missing-element", "OutOfWorld",
     R"(<^Body id="Crank")"},
    {"slider-crank@R2015x.0", "<PhysicalQuantity>7</PhysicalQuantity>",
     "<PhysicalQuantity>7</PhysicalQuantity><^Type>0</Type>", "other-version", "Type"},
    {"slider-crank@R2016.0", "<Type>0<", "<Type>^3<", "unknown-number",
     "from 0 to 2 was expected, for Free, Constant or Controlled"},
    {"slider-crank@R2016.1", "<Type>0<", "<Type>^Free<", "invalid-value", "Free"},
    {"slider-crank@R2017.0", "<Type>Free<", "<Type>^0<", "invalid-value",
     "Free, Constant or Controlled"},
    {"slider-crank@R2017.0", "<PhysicalQuantity>Angle<", "<PhysicalQuantity>^7<", "invalid-value",
     "7"},
    {"slider-crank@R2017.1", R"(isActive="yes" is_fixed="yes")",
     R"(^isActive="Yes" is_fixed="yes")", "invalid-value", R"(did you mean "yes"?)"},
    {"slider-crank@R2017.1", R"(bodyOrientation="In")", R"(^bodyOrientation="IN")", "invalid-value",
     R"(did you mean "In"?)"},
    {"slider-crank@R2018.0", "<Mass>0.5<", "<Mass>^-0.5<", "negative-mass", "-0.5"},
    {"motor-drive@R2016.0", "<PhysicalQuantity>16<", "<PhysicalQuantity>^Torque<", "invalid-value",
     "Torque"},
    {"motor-drive@R2016.0", "<PhysicalQuantity>14<", "<PhysicalQuantity>16<", "wrong-quantity",
     "Force was expected", R"(<^MaxForce id="Reach motor.maximum")"},
    {"motor-drive@R2017.1", "<PhysicalQuantity>16<", "<PhysicalQuantity>^Torque<", "invalid-value",
     "Torque"},
    {"motor-drive@R2017.1", "<PhysicalQuantity>14<", "<PhysicalQuantity>16<", "wrong-quantity",
     "Force was expected", R"(<^MaxForce id="Reach motor.maximum")"},
    {"motor-drive@R2018.0", "<PhysicalQuantity>Torque<", "<PhysicalQuantity>^16<", "invalid-value",
     "16"},
    {"motor-drive@R2017.0", "<Var0>0<", "<Var0>^3<", "mapping-range", "position 3"},
    {"collision@R2016.1", "<RuleType>CollisionReaction<", "<RuleType>^Reaction<", "invalid-value",
     "Reaction"},
    {"collision@R2015x.0", "<radius>0.04<", "<radius>^-0.04<", "no-size", "a positive number"},
    {"seven-body-planar@R2016.0", R"(is_fixed2D="yes")", R"(is_fixed2D="no")", "floating-chain",
     R"("Frame")", R"(<^Body2D id="Frame")"},
    {"slider-crank@R2016.1", R"(version="R2016.1")", R"(^version="R2016_1")", "unknown-version",
     R"(did you mean "R2016.1"?)"},
    {"slider-crank@R2015x.0", R"(version="R2015x.0")", R"(^version="R2015.0")", "unknown-version",
     R"(did you mean "R2015x.0"?)"},
    {"slider-crank@R2017.0", R"(version="R2017.0")", R"(^version="r2017.0")", "unknown-version",
     R"(did you mean "R2017.0"?)"},
    {"slider-crank@R2018.0", R"(version="R2018.0")", R"(^version="2018.0")", "unknown-version",
     R"(did you mean "R2018.0"?)"},
};

// Mistakes that are the same in several versions.
std::vector<Planted> AllMistakes()
{
    std::vector<Planted> all = Mistakes;
    for (const std::string_view version : {"R2015x.0", "R2016.0", "R2016.1", "R2017.0"}) {
        const std::string document = "slider-crank@" + std::string(version);
        all.push_back({document, R"(<Body id="Rod" name="Rod" is_fixed="no">)",
                       R"(<Body id="Rod" name="Rod" ^isActive="yes" is_fixed="no">)",
                       "other-version", "isActive"});
        all.push_back({document, R"(<Body id="Rod" name="Rod"/>)",
                       R"(<Body id="Rod" name="Rod" ^bodyOrientation="In"/>)", "other-version",
                       "bodyOrientation"});
        if (version == "R2017.0")
            break;
        all.push_back(
            {document, "<PhysicalQuantity>7<", "<PhysicalQuantity>^77<", "unknown-number", "77"});
        all.push_back({document, "<PhysicalQuantity>7<", "<PhysicalQuantity>^Angle<",
                       "invalid-value", "Angle"});
        all.push_back({document, R"(minvalue="0" maxvalue="0")", R"(^minvalue="2" maxvalue="1")",
                       "reversed-limits", "2 is above the upper one, 1"});
        all.push_back({document, R"(value="0.5" minvalue="0" maxvalue="0")",
                       R"(^value="0.5" minvalue="1" maxvalue="2")", "outside-limits",
                       "below the lower limit 1"});
        all.push_back({document, R"(value="0.5" minvalue="0" maxvalue="0")",
                       R"(^value="0.5" minvalue="0" maxvalue="0.25")", "outside-limits",
                       "above the upper limit 0.25"});
        all.push_back({document, R"(value="0.5" minvalue="0")", R"(^value="0.5rad" minvalue="0")",
                       "invalid-value", "0.5 is read"});
    }
    return all;
}

} // namespace

const std::vector<Planted>& MistakesInVersions()
{
    static const std::vector<Planted> all = AllMistakes();
    return all;
}

namespace {

TEST(PlantedMistakes, InTextsAndOlderVersionsAreFoundWhereTheyStand)
{
    ExpectFindings(MistakesInVersions());
}

} // namespace

} // namespace karmp::documents
