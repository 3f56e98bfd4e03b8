// Documents of many elements.
#include "KARMPDocumentReader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

using namespace karmp::documents;

namespace {

constexpr std::size_t ItemCount = 150000;

// Items with an attribute, a number, a text between elements and a group; one more after them.
std::string LargeText(const std::string& last)
{
    std::string text = "<KARMPDocument version=\"R2018.1\">\n<Items>\n";
    for (std::size_t number = 0; number < ItemCount; ++number) {
        const std::string digits = std::to_string(number);
        text +=
            "<Item id=\"item" + digits + "\"><Number>" + digits + ".5</Number> left &amp; right ";
        text += "<Group><X>1</X><![CDATA[<raw>]]><Y>-" + digits + "</Y></Group><Empty/></Item>\n";
    }
    return text + last + "</Items>\n</KARMPDocument>\n";
}

TEST(LargeDocuments, ComeBackWhole)
{
    const Document document = Document::ReadText(LargeText({}));
    ASSERT_TRUE(document.Messages().items.empty()) << Format(document.Messages().items.front());
    const KARMPDeserializer* items = nullptr;
    document.Root()->GetElement(L"Items", items);
    ASSERT_NE(items, nullptr);
    KARMPDeserializer::ElementVector list;
    items->AppendOrderedElements(list);
    ASSERT_EQ(list.size(), ItemCount);
    for (std::size_t number = 0; number < ItemCount; number += 777) {
        const KARMPDeserializer& item = *list[number];
        std::wstring text;
        EXPECT_EQ(item.GetAttribute(L"id", text), KARSuccess);
        EXPECT_EQ(text, L"item" + std::to_wstring(number));
        EXPECT_EQ(item.GetValue(text), KARSuccess);
        EXPECT_EQ(text, L"left & right");
        const KARMPDeserializer* child = nullptr;
        double value = 0.0;
        EXPECT_EQ(item.GetElement(L"Number", child, value), KARSuccess);
        EXPECT_EQ(value, static_cast<double>(number) + 0.5);
        const KARMPDeserializer* group = nullptr;
        EXPECT_EQ(item.GetElement(L"Group", group, text), KARSuccess);
        EXPECT_EQ(text, L"<raw>");
        int y = 0;
        EXPECT_EQ(group->GetElement(L"Y", child, y), KARSuccess);
        EXPECT_EQ(y, -static_cast<int>(number));
        EXPECT_TRUE(item.HasElement(L"Empty"));
    }
}

TEST(LargeDocuments, MessagesHaveTheirPositionBehindManyElements)
{
    const Document document = Document::ReadText(LargeText("<Item><A/>\n<A>&x;</A><A/></Item>\n"));
    ASSERT_EQ(document.Messages().items.size(), 1U);
    const Diagnostic& message = document.Messages().items.front();
    EXPECT_EQ(message.line, ItemCount + 4);
    EXPECT_EQ(message.column, 4U);
    EXPECT_EQ(message.path,
              "/KARMPDocument/Items/Item[" + std::to_string(ItemCount + 1) + "]/A[2]");
}

} // namespace
