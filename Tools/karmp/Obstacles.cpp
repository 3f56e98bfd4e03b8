#include "Obstacles.h"

#include "Loading.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace karmp::tool {

namespace {

namespace fs = std::filesystem;

std::string TextOf(int error)
{
    return std::generic_category().message(error);
}

// Why no file can be made in a folder; 0 when one can.
int ObstacleInside(const fs::path& folder)
{
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

// Why documents::WriteWholeFile would not write a file; empty when it would.
std::string ObstacleToFile(const fs::path& file)
{
    const std::string unwritable = "cannot write the file: ";
    struct stat old
    {};
    const bool exists = ::stat(file.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode))
        return unwritable + TextOf(EISDIR);
    if (exists ? ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0 : errno != ENOENT)
        return unwritable + TextOf(errno);
    if (exists && !S_ISREG(old.st_mode))
        return {};
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(fs::absolute(file), error).parent_path();
    const int obstacle = error ? error.value() : ObstacleInside(folder);
    return obstacle == 0 ? std::string()
                         : "cannot create a file in the folder: " + TextOf(obstacle);
}

} // namespace

bool CanWriteFiles(const std::vector<std::string>& files)
{
    documents::Diagnostics messages;
    for (const std::string& file : files)
        if (std::string obstacle = ObstacleToFile(file); !obstacle.empty()) {
            messages.items.push_back({documents::Severity::Error,
                                      documents::Code::CannotWrite,
                                      file,
                                      0,
                                      0,
                                      {},
                                      std::move(obstacle)});
            break;
        }
    PrintMessages(messages, true);
    return messages.items.empty();
}

std::string ObstacleToFolder(const fs::path& folder)
{
    std::error_code error;
    fs::path there = fs::absolute(folder, error).lexically_normal();
    while (there.has_relative_path() && !fs::exists(fs::symlink_status(there, error)))
        there = there.parent_path();
    const int obstacle = fs::is_directory(there, error) ? ObstacleInside(there) : ENOTDIR;
    return obstacle == 0 ? std::string() : TextOf(obstacle);
}

} // namespace karmp::tool
