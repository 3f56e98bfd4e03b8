// What a thread reads, and the brackets around it.
#include "KARMPReadingPlace.h"

#include "KARMPNodeSource.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

class NotingSource final : public karmp::NodeSource
{
public:
    void BeginReading(const KARMPDeserializer& node) noexcept override { Note(L"begin ", node); }
    void EndReading(const KARMPDeserializer& node) noexcept override { Note(L"end ", node); }

    std::vector<std::wstring> events;

private:
    void Note(std::wstring event, const KARMPDeserializer& node)
    {
        events.push_back(std::move(event.append(node.Id())));
    }
};

class SourcedNode final : public KARMPDeserializer
{
public:
    SourcedNode(karmp::NodeSource& source, std::wstring_view name)
        : KARMPDeserializer(karmp::NodeText::Name(name), karmp::NodeText::CurrentVersion(), source)
    {}
    std::wstring Location() const override { return {}; }
};

TEST(ReadingPlace, NamesTheInnermostNodeAndBracketsTheReading)
{
    NotingSource source;
    const SourcedNode outer(source, L"outer");
    const SourcedNode inner(source, L"inner");
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
    EXPECT_EQ(source.events, (std::vector<std::wstring>{L"begin outer", L"begin inner",
                                                        L"end inner", L"end outer"}));
}

TEST(ReadingPlace, IsCompleteFromTheCallToTheEndOfTheReading)
{
    NotingSource source;
    const SourcedNode node(source, L"node");
    KARMPReadingPlace::Complete();
    EXPECT_FALSE(KARMPReadingPlace::IsComplete());
    {
        const KARMPReadingPlace outer(&node);
        EXPECT_FALSE(KARMPReadingPlace::IsComplete());
        {
            const KARMPReadingPlace inner(&node);
            KARMPReadingPlace::Complete();
            EXPECT_TRUE(KARMPReadingPlace::IsComplete());
        }
        EXPECT_FALSE(KARMPReadingPlace::IsComplete());
    }
    const KARMPReadingPlace next(&node);
    EXPECT_FALSE(KARMPReadingPlace::IsComplete());
}

} // namespace
