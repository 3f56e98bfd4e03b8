#include "KARMPFamilies.h"
#include "QOBClassInfo.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using karmp::FamilyList;
using karmp::HoldSameFamilies;

TEST(Families, AreTheSameInAnyOrder)
{
    using Some = FamilyList<KARMPBody, KARMPJoint, KARMPShape>;
    EXPECT_TRUE(HoldSameFamilies(Some(), FamilyList<KARMPShape, KARMPBody, KARMPJoint>()));
    EXPECT_FALSE(HoldSameFamilies(Some(), FamilyList<KARMPShape, KARMPBody>()));
    EXPECT_FALSE(HoldSameFamilies(FamilyList<KARMPShape, KARMPBody>(), Some()));
    EXPECT_FALSE(HoldSameFamilies(Some(), FamilyList<KARMPShape, KARMPBody, KARMPValue>()));
    EXPECT_FALSE(HoldSameFamilies(Some(), FamilyList<KARMPShape, KARMPBody, KARMPBody>()));
}

TEST(Families, HaveARecordEachInTheOrderOfTheDocument)
{
    const auto& records = karmp::FamilyRecords();
    ASSERT_EQ(records.size(), 19U);
    EXPECT_EQ(records.front().element, L"Bodies");
    EXPECT_EQ(records.front().info->getName(), "KARMPBody");
    EXPECT_EQ(records.back().element, L"GenericEntities");
    EXPECT_EQ(records.back().info->getName(), "KARMPGenericEntity");
    EXPECT_EQ(karmp::RegistryElementName<KARMPAnalysisStep>(), L"AnalysisSteps");
    std::set<std::wstring_view> elements;
    std::set<const QOBClassInfo*> classes;
    for (const karmp::FamilyRecord& record : records) {
        elements.insert(record.element);
        classes.insert(record.info);
    }
    EXPECT_EQ(elements.size(), records.size());
    EXPECT_EQ(classes.size(), records.size());
}

} // namespace
