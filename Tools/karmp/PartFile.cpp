#include "PartFile.h"

#include "ChildProcess.h"
#include "KAR3DMeshRep.h"
#include "KAR3DRepWalk.h"
#include "KARSceneGraphBlocks.h"
#include "Loading.h"
#include "PartImport.h"
#include "ToolLimits.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace karmp::tool {

namespace {

namespace fs = std::filesystem;

// The first byte that the process writes, before the block or the text.
constexpr char BlockFollows = 'B';
constexpr char ReasonFollows = 'R';

struct FreeBlock
{
    void operator()(void* block) const { std::free(block); }
};

// Sanitizers take addresses in terabytes.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define KARMP_HAS_SANITIZER 1
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#        define KARMP_HAS_SANITIZER 1
#    endif
#endif

void LimitProcess()
{
#ifndef KARMP_HAS_SANITIZER
    const rlimit bytes{MemoryForParts, MemoryForParts};
    ::setrlimit(RLIMIT_AS, &bytes);
#endif
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

void WriteAll(int pipe, const void* bytes, std::size_t size)
{
    for (const auto* next = static_cast<const char*>(bytes); size > 0;) {
        const ssize_t count = ::write(pipe, next, size);
        if (count < 0 && errno != EINTR)
            ::_exit(1);
        if (count > 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        }
    }
}

// Reads the file and writes its scene graph, or why there is none.
void Import(const std::string& file, double scale, int pipe)
{
    const KAR3DRepOwner<KAR3DRep> rep = ImportPart(file, scale);
    void* bytes = nullptr;
    std::size_t size = 0;
    KARWriteCgr(rep.get(), bytes, size, KARSettingCgr{}, nullptr, 0);
    const std::unique_ptr<void, FreeBlock> block(bytes);
    if (block == nullptr)
        throw std::bad_alloc();
    WriteAll(pipe, &BlockFollows, 1);
    WriteAll(pipe, block.get(), size);
}

[[noreturn]] void RunImport(const std::string& file, double scale, int pipe)
{
    LimitProcess();
    std::string reason(1, ReasonFollows);
    try {
        Import(file, scale, pipe);
        ::_exit(0);
    } catch (const std::bad_alloc&) {
        reason += "it takes too much memory";
    } catch (const std::exception& exception) {
        reason += exception.what();
    } catch (...) {
        reason += "it is damaged";
    }
    WriteAll(pipe, reason.data(), reason.size());
    ::_exit(0);
}

// Why a file cannot be a part; empty when it can.
std::string Refusal(const fs::path& file)
{
    const std::string ending = EndingOf(file.string());
    if (ending != ".stl" && ending != ".obj" && ending != ".ply" && ending != ".gltf" &&
        ending != ".glb")
        return "its name ends with none of .stl, .obj, .ply, .gltf and .glb";
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status))
        return "there is no such file";
    if (!fs::is_regular_file(status))
        return "it is no file";
    const auto size = fs::file_size(file, error);
    if (error || ::access(file.c_str(), R_OK) != 0)
        return std::strerror(errno);
    if (size == 0)
        return "it is empty";
    if (size > LargestPart)
        return "it has more than " + std::to_string(LargestPart) + " bytes";
    return {};
}

// Runs the import in a process; gives the error, or none with what the process wrote.
std::string ImportApart(const std::string& file, double scale, std::string& output)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::string("cannot make a pipe: ") + std::strerror(errno);
    const Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    const pid_t process = ::fork();
    if (process < 0)
        return std::string("cannot start a process: ") + std::strerror(errno);
    if (process == 0)
        RunImport(file, scale, writer.Get());
    writer.Close();

    Child child(process);
    const Clock::time_point end = Clock::now() + std::chrono::seconds(SecondsForParts);
    const Reading reading = ReadPipe(reader.Get(), end, LargestSceneGraph, output);
    if (reading == Reading::TooLarge)
        return "it is too large";
    if (reading == Reading::Failed)
        return std::string("cannot read from a pipe: ") + std::strerror(errno);
    const std::optional<int> status =
        reading == Reading::Done ? child.Wait(end) : std::optional<int>();
    if (!status)
        return "it takes longer than " + std::to_string(SecondsForParts) + " s to read";
    if (*status != 0)
        return "it is damaged; its reader " + EndText(*status);
    return {};
}

} // namespace

Part ReadPart(const std::string& file, double scale)
{
    Part part;
    part.error = Refusal(file);
    std::string output;
    if (part.error.empty())
        part.error = ImportApart(file, scale, output);
    if (!part.error.empty())
        return part;
    if (output.starts_with(ReasonFollows)) {
        part.error = output.substr(1);
        return part;
    }
    if (output.starts_with(BlockFollows))
        part.rep.reset(KARReadCgr(output.data() + 1, output.size() - 1));
    if (!part.rep) {
        part.error = "it is damaged";
        return part;
    }
    KARForEach3DRep(*part.rep, [&part](const KAR3DRepPlace& place) {
        if (const auto* const mesh = dynamic_cast<const KAR3DMeshRep*>(place.rep)) {
            part.vertices += mesh->GetVertices().size();
            part.triangles += mesh->GetTriangles().size();
        }
    });
    return part;
}

} // namespace karmp::tool
