// What a thread reads, and the brackets around it.
#include "KARMPReadingPlace.h"

#include "KARMPDeserializer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

class BracketedNode final : public KARMPDeserializer
{
public:
    BracketedNode(std::vector<std::wstring>& events, std::wstring name)
        : m_events(events), m_name(std::move(name))
    {}
    std::wstring Location() const override { return {}; }
    void BeginReading() const noexcept override { m_events.push_back(L"begin " + m_name); }
    void EndReading() const noexcept override { m_events.push_back(L"end " + m_name); }

private:
    std::vector<std::wstring>& m_events;
    std::wstring m_name;
};

TEST(ReadingPlace, NamesTheInnermostNodeAndBracketsTheReading)
{
    std::vector<std::wstring> events;
    const BracketedNode outer(events, L"outer");
    const BracketedNode inner(events, L"inner");
    EXPECT_EQ(KARMPReadingPlace::Current(), nullptr);
    {
        const KARMPReadingPlace first(&outer);
        EXPECT_EQ(KARMPReadingPlace::Current(), &outer);
        {
            const KARMPReadingPlace second(&inner);
            EXPECT_EQ(KARMPReadingPlace::Current(), &inner);
            const KARMPReadingPlace none(nullptr);
            EXPECT_EQ(KARMPReadingPlace::Current(), nullptr);
        }
        EXPECT_EQ(KARMPReadingPlace::Current(), &outer);
    }
    EXPECT_EQ(KARMPReadingPlace::Current(), nullptr);
    EXPECT_EQ(events, (std::vector<std::wstring>{L"begin outer", L"begin inner", L"end inner",
                                                 L"end outer"}));
}

} // namespace
