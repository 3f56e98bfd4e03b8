// What saving and loading tell of how far they are.
#include "KARMPBody.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

using namespace karmp::documents;

namespace {

constexpr std::size_t BodyCount = 1000;
// The bodies, and what a new world lists.
constexpr std::size_t EntityCount = BodyCount + 3;

class Progress : public ::testing::Test
{
protected:
    Progress()
    {
        for (std::size_t number = 0; number < BodyCount; ++number)
            m_world->Add<KARMPBody>(KARMPBody::create(L"Body"));
    }

    ProgressFunction Noting()
    {
        return [this](std::size_t done, std::size_t of) { m_calls.emplace_back(done, of); };
    }

    /// The calls are those of one run over all entities, and not many.
    void ExpectOneRun() const
    {
        ASSERT_GT(m_calls.size(), 50U);
        EXPECT_LT(m_calls.size(), 300U);
        EXPECT_EQ(m_calls.front().first, 0U);
        EXPECT_EQ(m_calls.back().first, EntityCount);
        for (std::size_t index = 0; index < m_calls.size(); ++index) {
            ASSERT_EQ(m_calls[index].second, EntityCount);
            if (index > 0) {
                ASSERT_GE(m_calls[index].first, m_calls[index - 1].first);
                // None of the passes is left out, and the last call brings no jump.
                ASSERT_LE(m_calls[index].first, m_calls[index - 1].first + EntityCount / 50);
            }
        }
    }

    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    std::vector<std::pair<std::size_t, std::size_t>> m_calls;
};

TEST_F(Progress, OfASaveCountsTheEntitiesWritten)
{
    SaveOptions options;
    options.progress = Noting();
    std::string text;
    ASSERT_FALSE(SaveText(m_world, text, options).HasErrors());
    ExpectOneRun();
}

TEST_F(Progress, OfALoadCountsTheEntitiesCheckedAndRead)
{
    std::string text;
    ASSERT_FALSE(SaveText(m_world, text).HasErrors());
    for (const CheckLevel level : {CheckLevel::None, CheckLevel::Form, CheckLevel::Mechanism}) {
        m_calls.clear();
        LoadOptions options;
        options.check = level;
        options.progress = Noting();
        ASSERT_TRUE(LoadText(text, "text", options).world);
        ExpectOneRun();
    }
}

TEST_F(Progress, OfAnEmptyWorldIsABeginAndAnEnd)
{
    LoadOptions options;
    options.progress = Noting();
    ASSERT_TRUE(LoadText("<KARMPDocument><World/></KARMPDocument>", "text", options).world);
    EXPECT_EQ(m_calls, (std::vector<std::pair<std::size_t, std::size_t>>(2, {0, 0})));
}

TEST_F(Progress, OfATextWithoutATreeIsSilent)
{
    LoadOptions options;
    options.progress = Noting();
    EXPECT_FALSE(LoadText("<Other/>", "text", options).world);
    EXPECT_TRUE(m_calls.empty());
}

} // namespace
