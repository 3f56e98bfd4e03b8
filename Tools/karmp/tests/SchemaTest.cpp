// The command that prints what documents hold.
#include "ToolFixture.h"

#include <string>

namespace karmp::tool {

namespace {

TEST_F(Tool, PrintsTheSchemaInEachLanguage)
{
    const Outcome compact = Run("schema");
    EXPECT_EQ(compact.code, 0);
    ExpectContains(compact.output, "element KARMPDocument {");
    EXPECT_EQ(Run("schema --rnc").output, compact.output);
    ExpectContains(Run("schema --rng").output, "<element name=\"KARMPDocument\">");
    ExpectContains(Run("schema --xsd").output, "<xs:element name=\"KARMPDocument\">");
}

TEST_F(Tool, PrintsTheSchemaOfAVersion)
{
    ExpectContains(Run("schema --for R2017.0").output, "string \"R2017.0\"");
    const Outcome unknown = Run("schema --for R1999.0");
    EXPECT_EQ(unknown.code, 64);
    ExpectContains(unknown.output, "R1999.0");
    ExpectContains(unknown.output, "R2018.1");
}

TEST_F(Tool, PrintsOneClassForAReader)
{
    const Outcome body = Run("schema --text Body");
    EXPECT_EQ(body.code, 0);
    ExpectContains(body.output, "Mass: number (Mass), expected. The mass.");
    EXPECT_EQ(Run("schema --text 3DRep").output, Run("schema --text Rep3D").output);
    const Outcome unknown = Run("schema --text Wheel");
    EXPECT_EQ(unknown.code, 64);
    ExpectContains(unknown.output, "Wheel");
}

TEST_F(Tool, PrintsTheReferenceOfTheFormat)
{
    const Outcome reference = Run("schema --reference");
    EXPECT_EQ(reference.code, 0);
    ExpectContains(reference.output, "# The format of documents\n");
}

TEST_F(Tool, PrintsOneFormOfTheSchemaAtATime)
{
    EXPECT_EQ(Run("schema --rng --xsd").code, 64);
}

} // namespace

} // namespace karmp::tool
