// What classes write by code, compared in their elements.
#include "KARMPBody.h"
#include "KARMPClassItems.h"
#include "KARMPEntityElement.h"
#include "KARMPTestFixture.h"

#include <gtest/gtest.h>

namespace karmp::documents {

namespace {

/// A body that writes a reference and a number within an element of its own, or no element.
class WritingBody : public KARMPBody
{
public:
    static QOBSharedHandle<KARMPBody> create(std::wstring reference, double number)
    {
        auto* const body = new WritingBody;
        const QOBSharedHandle<KARMPBody> handle(body);
        body->m_reference = std::move(reference);
        body->m_number = number;
        return handle;
    }
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        if (m_reference.empty())
            return KARSuccess;
        KARMPSerializer* element = nullptr;
        KARMPSerializer* list = nullptr;
        KARMPSerializer* entry = nullptr;
        KARMPSerializer* number = nullptr;
        serializer->AddElement(L"Body", element);
        element->AddAttribute(L"is_fixed", std::wstring_view(m_reference));
        element->AddElement(L"Uses", list);
        list->AddElement(L"Use", entry);
        entry->AddAttribute(L"id", std::wstring_view(m_reference));
        entry->AddAttribute(L"name", std::wstring_view(L"name of " + m_reference));
        return list->AddElement(L"Number", number, m_number);
    }

private:
    std::wstring m_reference;
    double m_number = 0.0;
};

class EntityElements : public KARMPTestFixture
{
protected:
    std::vector<std::wstring> Compare(const QOBSharedHandle<KARMPBody>& before,
                                      const QOBSharedHandle<KARMPBody>& after,
                                      const DifferenceOptions& options = {})
    {
        std::vector<std::wstring> paths;
        const auto note = [&](std::wstring&& path, Value&&, Value&&) {
            paths.push_back(std::move(path));
        };
        const auto areSame = [](const std::wstring& left, const std::wstring& right) {
            return left == L"A1" && right == L"B1";
        };
        ElementComparison(ClassItems(KARMPBody::ClassInfo()), options, note, areSame)
            .Compare(*before, *after);
        return paths;
    }
};

TEST_F(EntityElements, AreEqualWhenTheyReferToCorrespondingEntities)
{
    EXPECT_TRUE(Compare(WritingBody::create(L"A1", 1.0), WritingBody::create(L"B1", 1.0)).empty());
    EXPECT_EQ(Compare(WritingBody::create(L"A1", 1.0), WritingBody::create(L"A1", 1.0)),
              std::vector<std::wstring>{L"Uses/Use/id"});
}

TEST_F(EntityElements, DifferInNumbersByTheTolerance)
{
    const auto before = WritingBody::create(L"A1", 1.0);
    const auto after = WritingBody::create(L"B1", 1.5);
    EXPECT_EQ(Compare(before, after), std::vector<std::wstring>{L"Uses/Number"});
    EXPECT_TRUE(Compare(before, after, {.tolerance = 0.5}).empty());
}

TEST_F(EntityElements, OfWhichOneIsMissingDifferAsAWhole)
{
    const auto before = WritingBody::create(L"A1", 1.0);
    const auto none = WritingBody::create({}, 1.0);
    EXPECT_EQ(Compare(before, none), std::vector<std::wstring>{L""});
    EXPECT_TRUE(Compare(none, none).empty());
}

} // namespace

} // namespace karmp::documents
