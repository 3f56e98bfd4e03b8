// The scan of the form against the check that tells what is amiss: the one is content just where
// the other finds nothing.
#include "KARMPFormScan.h"

#include "KARMPDocumentChecker.h"
#include "KARMPDocumentSource.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

using namespace karmp::documents;

namespace {

std::vector<std::string> Examples()
{
    std::vector<std::filesystem::path> paths{KARMP_EVERY_CLASS};
    for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS))
        if (entry.path().extension() == ".xml")
            paths.push_back(entry.path());
    std::vector<std::string> texts;
    for (const std::filesystem::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

// The messages of a check that is told whether the entities have their form.
std::string Messages(const Document& document, CheckLevel level, bool hasForm)
{
    Diagnostics found;
    karmp::documents::Messages messages(found, {}, Limits().diagnostics);
    DocumentChecker(*document.Root(), messages, level, hasForm).Run();
    std::string text;
    for (const Diagnostic& item : found.items)
        text += Format(item) + '\n';
    return text;
}

bool IsContent(const std::string& text, CheckLevel level)
{
    const Document document = Document::ReadText(text);
    return FormScan(DocumentSource::Of(*document.Root()), level).Run();
}

// What is wrong with the answers of the scan to a document; false for one without a tree.
struct Comparison
{
    explicit Comparison(const std::string& text)
    {
        const Document document = Document::ReadText(text);
        isRead = document.Root() != nullptr;
        for (const CheckLevel level : {CheckLevel::Form, CheckLevel::Mechanism}) {
            if (!isRead)
                continue;
            const std::string whole = Messages(Document::ReadText(text), level, false);
            const bool isContent = IsContent(text, level);
            if (isContent) {
                EXPECT_EQ(Messages(Document::ReadText(text), level, true), whole);
            } else if (level == CheckLevel::Form) {
                isAmiss = true;
                isFalseAlarm = whole.empty();
            }
        }
    }

    bool isRead = false;
    bool isAmiss = false;
    bool isFalseAlarm = false;
};

TEST(FormScan, IsContentWithWhatTheCheckFindsNothingIn)
{
    for (const std::string& text : Examples()) {
        const Comparison comparison(text);
        EXPECT_TRUE(comparison.isRead);
        EXPECT_FALSE(comparison.isFalseAlarm) << text.substr(0, 500);
    }
}

/// Makes small changes of the kind that people make when they edit a document.
class Changes
{
public:
    std::string Changed(std::string text)
    {
        for (std::size_t count = 1 + Below(2); count > 0; --count)
            Change(text);
        return text;
    }

private:
    std::size_t Below(std::size_t count) { return m_random() % count; }

    void Change(std::string& text)
    {
        constexpr std::string_view bytes = "0 9.,-xe<1>&;T\"";
        const std::size_t at = Below(text.size() - 1);
        const std::size_t line = text.find('\n', at);
        const std::size_t end = text.find('\n', line + 1);
        switch (Below(6)) {
        case 0:
            text[at] = bytes[Below(bytes.size())];
            return;
        case 1:
            text.insert(at, 1, bytes[Below(bytes.size())]);
            return;
        case 2:
            if (end != text.npos)
                text.erase(line, end - line);
            return;
        case 3:
            if (end != text.npos)
                text.insert(line, text.substr(line, end - line));
            return;
        default:
            Copy(text, Below(2) == 0 ? " id=\"" : ">");
        }
    }
    // Puts a text behind one mark in place of one behind another.
    void Copy(std::string& text, std::string_view mark)
    {
        const std::size_t from = text.find(mark, Below(text.size()));
        const std::size_t to = text.find(mark, Below(text.size()));
        if (from == text.npos || to == text.npos)
            return;
        const auto end = [&](std::size_t begin) {
            return std::min(text.find_first_of("\"<", begin + mark.size()), text.size());
        };
        const std::string copy = text.substr(from, end(from) - from);
        text.replace(to, end(to) - to, copy);
    }

    std::mt19937 m_random{11};
};

TEST(FormScan, AgreesWithTheCheckOnChangedDocuments)
{
    constexpr int times = 60;
    Changes changes;
    int read = 0;
    int amiss = 0;
    int falseAlarms = 0;
    for (const std::string& text : Examples()) {
        for (int time = 0; time < times; ++time) {
            const std::string changed = changes.Changed(text);
            const Comparison comparison(changed);
            ASSERT_FALSE(HasFailure()) << changed;
            read += comparison.isRead ? 1 : 0;
            amiss += comparison.isAmiss ? 1 : 0;
            falseAlarms += comparison.isFalseAlarm ? 1 : 0;
        }
    }
    EXPECT_GT(amiss, read / 5);
    EXPECT_LT(amiss, read - read / 10);
    EXPECT_LT(falseAlarms, read / 50);
    RecordProperty("read", read);
    RecordProperty("amiss", amiss);
    RecordProperty("falseAlarms", falseAlarms);
}

} // namespace
