// Files: replaced as a whole or not at all, and what cannot be read or written is reported.
#include "KARMPDocumentReader.h"
#include "KARMPDocumentWriter.h"
#include "KARMPWholeFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace karmp::documents;
namespace fs = std::filesystem;

namespace {

// Whom permissions bind, for as long as it lives: root becomes another user, who owns the folder.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const fs::path& folder)
        : m_changed(::geteuid() == 0 &&
                    ::chown(folder.c_str(), Nobody, static_cast<gid_t>(-1)) == 0 &&
                    ::seteuid(Nobody) == 0)
    {}
    ~OrdinaryUser()
    {
        if (m_changed && ::seteuid(0) != 0)
            ADD_FAILURE() << "the user did not come back";
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t Nobody = 65534;
    bool m_changed;
};

class DocumentFile : public ::testing::Test
{
protected:
    DocumentFile()
    {
        std::string name = (fs::temp_directory_path() / "karmp-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
        KARMPSerializer* child = nullptr;
        m_root.AddElement(L"World", child);
        EXPECT_FALSE(m_root.RenderXml(m_text).HasErrors());
    }
    ~DocumentFile() override
    {
        std::error_code error;
        fs::permissions(m_folder, fs::perms::owner_all, error);
        fs::remove_all(m_folder, error);
    }

    fs::path Path(const std::string& name = "a.xml") const { return m_folder / name; }
    std::size_t FileCount() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }
    static std::string Content(const fs::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static void Write(const fs::path& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    static mode_t PermissionsOf(const fs::path& path)
    {
        struct stat status
        {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    void ExpectSaved(const fs::path& path)
    {
        const Diagnostics diagnostics = m_root.SaveXml(path);
        for (const Diagnostic& item : diagnostics.items)
            ADD_FAILURE() << Format(item);
        EXPECT_EQ(Content(path), m_text);
    }
    void ExpectNotSaved(const fs::path& path)
    {
        const Diagnostics diagnostics = m_root.SaveXml(path);
        ASSERT_EQ(diagnostics.items.size(), 1U);
        EXPECT_EQ(diagnostics.items[0].code, Code::CannotWrite);
        EXPECT_EQ(diagnostics.items[0].file, path.string());
        EXPECT_GT(diagnostics.items[0].text.size(), std::string("cannot write the file: ").size());
    }
    static void ExpectNotRead(const fs::path& path, Code code, const Limits& limits = {})
    {
        const Document document = Document::ReadFile(path, limits);
        EXPECT_EQ(document.Root(), nullptr);
        ASSERT_EQ(document.Messages().items.size(), 1U);
        EXPECT_EQ(CodeText(document.Messages().items[0].code), CodeText(code));
        EXPECT_EQ(document.Messages().items[0].file, path.string());
    }

    fs::path m_folder;
    KARMPDocumentWriter m_root;
    std::string m_text;
};

} // namespace

TEST_F(DocumentFile, IsWrittenAndReadBack)
{
    ExpectSaved(Path());
    const Document document = Document::ReadFile(Path());
    ASSERT_NE(document.Root(), nullptr);
    EXPECT_TRUE(document.Root()->HasElement(L"World"));
    EXPECT_TRUE(document.Messages().items.empty());
    EXPECT_EQ(document.Name(), Path().string());
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, OfAnyContentIsWrittenWhole)
{
    Write(Path(), "old");
    EXPECT_TRUE(WriteWholeFile(Path(), "new").items.empty());
    EXPECT_EQ(Content(Path()), "new");
    EXPECT_EQ(FileCount(), 1U);
    for (const fs::path& path : {fs::path("/dev/full"), Path("missing/a.txt"), m_folder}) {
        const Diagnostics diagnostics = WriteWholeFile(path, "new");
        ASSERT_EQ(diagnostics.items.size(), 1U) << path;
        EXPECT_EQ(diagnostics.items[0].code, Code::CannotWrite);
        EXPECT_EQ(diagnostics.items[0].file, path.string());
    }
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, ReplacesAnOldOneAndKeepsItsPermissions)
{
    Write(Path(), std::string(100'000, 'x'));
    ASSERT_EQ(::chmod(Path().c_str(), 0640), 0);
    ExpectSaved(Path());
    EXPECT_EQ(PermissionsOf(Path()), 0640U);
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, ANewOneHasThePermissionsOfTheProcess)
{
    const mode_t mask = ::umask(027);
    ExpectSaved(Path());
    ::umask(mask);
    EXPECT_EQ(PermissionsOf(Path()), 0640U);
}

TEST_F(DocumentFile, ACopyHasTheContentAndThePermissionsWhateverItReplaces)
{
    Write(Path(), "secret");
    ASSERT_EQ(::chmod(Path().c_str(), 0600), 0);
    for (const mode_t old : {0U, 0644U}) {
        if (old != 0) {
            Write(Path("copy"), "old");
            ASSERT_EQ(::chmod(Path("copy").c_str(), old), 0);
        }
        EXPECT_FALSE(CopyWholeFile(Path(), Path("copy")).HasErrors());
        EXPECT_EQ(Content(Path("copy")), "secret");
        EXPECT_EQ(PermissionsOf(Path("copy")), 0600U);
    }
    EXPECT_EQ(FileCount(), 2U);
}

TEST_F(DocumentFile, ACopyThatFailsTellsWhichFileIsAtFault)
{
    Write(Path(), "text");
    const Diagnostics unread = CopyWholeFile(Path("missing"), Path("copy"));
    ASSERT_NE(unread.Find(Code::CannotOpen), nullptr);
    EXPECT_EQ(unread.items[0].file, Path("missing").string());
    const Diagnostics unwritten = CopyWholeFile(Path(), Path("missing") / "copy");
    ASSERT_NE(unwritten.Find(Code::CannotWrite), nullptr);
    EXPECT_EQ(unwritten.items[0].file, (Path("missing") / "copy").string());
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, AnEmptyNameIsToldAsOne)
{
    const Diagnostics diagnostics = WriteWholeFile("", "text");
    ASSERT_EQ(diagnostics.items.size(), 1U);
    EXPECT_EQ(Format(diagnostics.items[0]),
              "error: cannot write a file without a name [cannot-write]");
}

TEST_F(DocumentFile, AReaderOfTheOldOneKeepsIt)
{
    Write(Path(), "old");
    std::ifstream old(Path());
    ExpectSaved(Path());
    const std::string content{std::istreambuf_iterator<char>(old), {}};
    EXPECT_EQ(content, "old");
}

TEST_F(DocumentFile, ALinkStaysAndItsTargetIsReplaced)
{
    Write(Path("target.xml"), "old");
    fs::create_symlink("target.xml", Path());
    ExpectSaved(Path());
    EXPECT_TRUE(fs::is_symlink(Path()));
    EXPECT_EQ(Content(Path("target.xml")), m_text);
    fs::create_symlink("new.xml", Path("dangling.xml"));
    ExpectSaved(Path("dangling.xml"));
    EXPECT_EQ(Content(Path("new.xml")), m_text);
}

TEST_F(DocumentFile, AMissingFolderAndAFolderOfTheNameAreErrors)
{
    ExpectNotSaved(Path("missing") / "a.xml");
    fs::create_directory(Path());
    ExpectNotSaved(Path());
    ExpectNotSaved("");
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, ANameOfTheGreatestLengthCanBeSaved)
{
    ExpectSaved(Path(std::string(255, 'a')));
    ExpectNotSaved(Path(std::string(256, 'a')));
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, TheOldOneSurvivesAFullDisk)
{
    Write(Path(), "old");
    struct rlimit before
    {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 20;
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const Diagnostics diagnostics = m_root.SaveXml(Path());
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_NE(diagnostics.Find(Code::CannotWrite), nullptr);
    EXPECT_EQ(Content(Path()), "old");
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, TheOldOneSurvivesATreeThatCannotBeWritten)
{
    Write(Path(), "old");
    KARMPSerializer* child = nullptr;
    m_root.AddElement(L"no name", child);
    EXPECT_NE(m_root.SaveXml(Path()).Find(Code::InvalidName), nullptr);
    EXPECT_EQ(m_root.Save(Path().c_str()), KARFailure);
    EXPECT_EQ(m_root.Save(nullptr), KARFailure);
    EXPECT_EQ(Content(Path()), "old");
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(DocumentFile, TheOldOneSurvivesAFolderOrFileThatMustNotBeWritten)
{
    const OrdinaryUser user(m_folder);
    if (::geteuid() == 0)
        GTEST_SKIP() << "permissions do not bind this user";
    Write(Path(), "old");
    fs::permissions(Path(), fs::perms::owner_read);
    ExpectNotSaved(Path());
    fs::permissions(Path(), fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(m_folder, fs::perms::owner_read | fs::perms::owner_exec);
    ExpectNotSaved(Path());
    fs::permissions(m_folder, fs::perms::owner_all);
    EXPECT_EQ(Content(Path()), "old");
    EXPECT_EQ(FileCount(), 1U);
    fs::permissions(Path(), fs::perms::none);
    ExpectNotRead(Path(), Code::CannotOpen);
}

TEST_F(DocumentFile, ADeviceIsWrittenDirectly)
{
    if (fs::exists("/dev/full"))
        ExpectNotSaved("/dev/full");
    EXPECT_TRUE(m_root.SaveXml("/dev/null").items.empty());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(DocumentFile, WhatCannotBeReadIsReported)
{
    ExpectNotRead(Path("missing.xml"), Code::CannotOpen);
    ExpectNotRead(m_folder, Code::CannotRead);
    Write(Path(), "");
    ExpectNotRead(Path(), Code::Empty);
    ExpectNotRead("/dev/null", Code::Empty);
    ExpectNotRead("/dev/zero", Code::Encoding);
    Write(Path(), m_text);
    Limits limits;
    limits.bytes = m_text.size();
    EXPECT_NE(Document::ReadFile(Path(), limits).Root(), nullptr);
    --limits.bytes;
    ExpectNotRead(Path(), Code::TooLarge, limits);
}

TEST_F(DocumentFile, APipeIsReadToItsEnd)
{
    const std::string text(300'000, ' ');
    ASSERT_EQ(::mkfifo(Path().c_str(), 0600), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        std::ofstream(Path()) << m_text << text;
        ::_exit(0);
    }
    const Document document = Document::ReadFile(Path());
    EXPECT_NE(document.Root(), nullptr);
}
