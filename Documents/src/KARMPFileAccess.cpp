#include "KARMPFileAccess.h"

#include "KARMPDocumentLimits.h"
#include "KARMPWholeFile.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <limits>
#include <new>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace karmp::documents {

namespace {

namespace fs = std::filesystem;

std::string SystemText(int error)
{
    return std::generic_category().message(error);
}

/// An open file; it is closed with the object, and removed while it has a temporary name.
class File
{
public:
    explicit File(int descriptor) : m_descriptor(descriptor) {}
    ~File()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        if (!m_temporary.empty())
            ::unlink(m_temporary.c_str());
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int Get() const { return m_descriptor; }
    bool IsOpen() const { return m_descriptor >= 0; }
    void SetTemporary(std::string name) { m_temporary = std::move(name); }
    bool Close() { return ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
    std::string m_temporary;
};

int Open(const char* path, int flags, mode_t mode = 0)
{
    int descriptor = -1;
    do {
        descriptor = ::open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool WriteAll(int descriptor, std::string_view bytes)
{
    constexpr std::size_t chunk = 1U << 30U;
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), std::min(bytes.size(), chunk));
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool CannotWrite(Messages& messages, const std::string& what, int error)
{
    messages.Error(Code::CannotWrite, what + ": " + SystemText(error));
    return false;
}

bool CannotRead(Messages& messages, Code code, const std::string& what)
{
    messages.Error(code, what);
    return false;
}

// A name in the folder of `target` that no other writer uses.
std::string TemporaryName(const fs::path& target)
{
    constexpr std::size_t longest = 200;
    std::random_device device;
    const std::string file = target.filename().string().substr(0, longest);
    const std::string number = std::to_string(::getpid()) + '-' + std::to_string(device());
    return (target.parent_path() / ('.' + file + '.' + number + ".tmp")).string();
}

// The file to write: for a symbolic link the file that it refers to, so that the link itself stays.
fs::path TargetOf(const fs::path& path)
{
    std::error_code error;
    if (!fs::is_symlink(path, error))
        return path;
    fs::path target = fs::canonical(path, error);
    if (error) {
        target = fs::read_symlink(path, error);
        target = target.is_absolute() ? target : path.parent_path() / target;
    }
    return target;
}

bool WriteDirectly(const fs::path& path, std::string_view bytes, Messages& messages)
{
    File file(Open(path.c_str(), O_WRONLY));
    if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close())
        return CannotWrite(messages, "cannot write the file", errno);
    return true;
}

// The new name is on the disk when the folder is. A folder that cannot be synchronised, as on some
// file systems, is no error: the content is written.
void SynchroniseFolder(const fs::path& target)
{
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    const File file(Open(folder.c_str(), O_RDONLY | O_DIRECTORY));
    if (file.IsOpen())
        ::fsync(file.Get());
}

// The permissions are those of `model`; without one those that the process gives.
bool Replace(const fs::path& target, const struct stat* model, std::string_view bytes,
             Messages& messages)
{
    constexpr mode_t everybody = 0666;
    constexpr mode_t owner = 0600;
    constexpr mode_t permissions = 0777;
    const std::string temporary = TemporaryName(target);
    File file(Open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW,
                   model != nullptr ? owner : everybody));
    if (!file.IsOpen())
        return CannotWrite(messages, "cannot create a file in the folder", errno);
    file.SetTemporary(temporary);
    if (model != nullptr) {
        // Only privileged users may change the owner: the content matters more than the owner.
        if (::fchown(file.Get(), model->st_uid, model->st_gid) != 0 &&
            ::fchown(file.Get(), static_cast<uid_t>(-1), model->st_gid) != 0)
            errno = 0;
        if (::fchmod(file.Get(), model->st_mode & permissions) != 0)
            return CannotWrite(messages, "cannot keep the permissions of the file", errno);
    }
    if (!WriteAll(file.Get(), bytes) || ::fsync(file.Get()) != 0 || !file.Close())
        return CannotWrite(messages, "cannot write the file", errno);
    if (::rename(temporary.c_str(), target.c_str()) != 0)
        return CannotWrite(messages, "cannot replace the file", errno);
    file.SetTemporary({});
    SynchroniseFolder(target);
    return true;
}

// The permissions are those of `model`; without one those of the file that is replaced.
bool Write(const fs::path& path, std::string_view bytes, Messages& messages,
           const struct stat* model = nullptr)
{
    if (path.empty()) {
        messages.Error(Code::CannotWrite, "cannot write a file without a name");
        return false;
    }
    const fs::path target = TargetOf(path);
    struct stat old
    {};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT)
        return CannotWrite(messages, "cannot write the file", errno);
    if (!exists)
        return Replace(target, model, bytes, messages);
    if (S_ISDIR(old.st_mode))
        return CannotWrite(messages, "cannot write the file", EISDIR);
    if (!S_ISREG(old.st_mode))
        return WriteDirectly(target, bytes, messages);
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        return CannotWrite(messages, "cannot write the file", errno);
    return Replace(target, model != nullptr ? model : &old, bytes, messages);
}

// The messages of what is done to a file; an exception is an error.
template <class Work>
Diagnostics Guarded(const fs::path& path, const std::string& what, const Work& work)
{
    Diagnostics diagnostics;
    Messages messages(diagnostics, path.string(), Limits().diagnostics);
    try {
        work(messages);
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, what + ": an allocation failed");
    } catch (const std::exception& exception) {
        messages.Error(Code::CannotWrite, what + ": " + exception.what());
    }
    return diagnostics;
}

} // namespace

bool ReadWholeFile(const fs::path& path, std::size_t limit, std::string& bytes, Messages& messages)
{
    File file(Open(path.c_str(), O_RDONLY));
    struct stat status
    {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0)
        return CannotRead(messages, Code::CannotOpen, "cannot open the file: " + SystemText(errno));
    if (S_ISDIR(status.st_mode))
        return CannotRead(messages, Code::CannotRead, "cannot read the file: it is a folder");
    const bool regular = S_ISREG(status.st_mode);
    const std::string tooLarge =
        "the document is larger than the limit of " + std::to_string(limit) + " bytes";
    if (regular && static_cast<std::uintmax_t>(status.st_size) > limit)
        return CannotRead(messages, Code::TooLarge, tooLarge);
    constexpr std::size_t first = 1U << 16U;
    bytes.resize(regular ? static_cast<std::size_t>(status.st_size) + 1 : first);
    std::size_t done = 0;
    for (;;) {
        const ssize_t got = ::read(file.Get(), bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            return CannotRead(messages, Code::CannotRead,
                              "cannot read the file: " + SystemText(errno));
        }
        if (got == 0)
            break;
        // A stream without end, such as a device, mostly holds null bytes: no document.
        if (!regular &&
            std::string_view(bytes).substr(done, static_cast<std::size_t>(got)).find('\0') !=
                std::string_view::npos) {
            done += static_cast<std::size_t>(got);
            break;
        }
        done += static_cast<std::size_t>(got);
        if (done > limit)
            return CannotRead(messages, Code::TooLarge, tooLarge);
        if (done == bytes.size())
            bytes.resize(bytes.size() * 2);
    }
    bytes.resize(done);
    return true;
}

Diagnostics WriteWholeFile(const fs::path& path, std::string_view bytes)
{
    return Guarded(
        path, "cannot write the file", [&](Messages& messages) { Write(path, bytes, messages); });
}

Diagnostics CopyWholeFile(const fs::path& from, const fs::path& to)
{
    struct stat model
    {};
    std::string bytes;
    Diagnostics diagnostics = Guarded(from, "cannot copy the file", [&](Messages& messages) {
        constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
        if (ReadWholeFile(from, any, bytes, messages) && ::stat(from.c_str(), &model) != 0)
            CannotRead(messages, Code::CannotOpen, "cannot open the file: " + SystemText(errno));
    });
    if (!diagnostics.HasErrors())
        diagnostics = Guarded(to, "cannot write the file",
                              [&](Messages& messages) { Write(to, bytes, messages, &model); });
    return diagnostics;
}

} // namespace karmp::documents
