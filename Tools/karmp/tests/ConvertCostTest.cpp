// What a conversion costs.
#include "KARMPBody.h"
#include "KARMPDocuments.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "ToolFixture.h"

#include <string>

#include <sys/resource.h>

namespace karmp::tool {

namespace {

class ConvertCost : public Tool
{
protected:
    /// The worlds that a command reads and writes, one a line.
    std::string WorldsOf(const std::string& arguments) const
    {
        const std::string calls = File("calls");
        fs::remove(calls);
        // The library that notes them comes before the runtime of an instrumented build.
        const Outcome outcome =
            Run(arguments, "ASAN_OPTIONS=verify_asan_link_order=0 "
                           "KARMP_WORLD_CALLS=" +
                               calls + " LD_PRELOAD=" KARMP_WORLD_CALLS_LIBRARY);
        EXPECT_EQ(outcome.output, "");
        return ReadFile(calls);
    }

    /// The most memory that a command holds, in bytes.
    static std::size_t PeakOf(const std::string& arguments)
    {
        const std::string line = std::string("exec " KARMP_TOOL " ") + arguments + " >/dev/null";
        const pid_t process = ::fork();
        if (process == 0) {
            ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
            ::_exit(127);
        }
        int status = -1;
        rusage used{};
        EXPECT_EQ(::wait4(process, &status, 0, &used), process);
        EXPECT_EQ(status, 0) << arguments;
        return static_cast<std::size_t>(used.ru_maxrss) * 1024;
    }

    /// A document of many bodies.
    std::string WriteLargeDocument() const
    {
        const auto world = KARMPWorld::create(QOBBasicWorld::create(L"Large"));
        for (int number = 0; number < 20'000; ++number)
            world->Add(KARMPBody::create(L"Body " + std::to_wstring(number)));
        const std::string file = File("large.xml");
        EXPECT_TRUE(documents::SaveFile(world, file).items.empty());
        return file;
    }
};

TEST_F(ConvertCost, IsOneLoadAndOneSave)
{
    const std::string file = Write("in.xml", CleanDocument());
    EXPECT_EQ(WorldsOf("convert " + file + ' ' + File("out.xml")), "read\nwritten\n");
    // A dry run makes the document as well, for what the save tells of.
    EXPECT_EQ(WorldsOf("convert --dry-run " + file + ' ' + File("other.xml")), "read\nwritten\n");
    // The notes have a second load.
    EXPECT_EQ(WorldsOf("diff --quiet --reloaded " + file), "read\nwritten\nread\n");
}

TEST_F(ConvertCost, IsNoMoreMemoryThanALoadTakes)
{
    if (KARMP_TOOL_IS_SANITIZED)
        GTEST_SKIP() << "Sanitizers keep memory that was freed";
    const std::string file = WriteLargeDocument();
    const std::size_t load = PeakOf("info " + file);
    EXPECT_GT(load, 3 * fs::file_size(file)); // so that the program itself hardly counts
    EXPECT_LT(PeakOf("convert " + file + ' ' + File("out.xml")), load + load / 5);
    EXPECT_GT(PeakOf("diff " + file + ' ' + file), load + load / 5);
}

} // namespace

} // namespace karmp::tool
