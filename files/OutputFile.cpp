#include <files/OutputFile.hpp>

#include <files/Errors.hpp>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace orlix::files
{

namespace
{

namespace fs = std::filesystem;

/// Where a signal finds the file that it must remove; empty if there is none.
char unfinished[PATH_MAX] = "";

/// Removes the unfinished file, and lets the signal do what it does.
void removeUnfinished(int signal)
{
    removeUnfinishedFile();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// The file behind a link.
fs::path resolve(const fs::path& path)
{
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(path, error);
    return error ? path : resolved;
}

} // namespace

void removeUnfinishedFile()
{
    if (unfinished[0] != '\0') {
        ::unlink(unfinished);
    }
}

OutputFile::OutputFile(const fs::path& target)
    : target_{resolve(target)}, path_{(target_.parent_path() / ".orlix-XXXXXX").string()}
{
    const int file = ::mkstemp(path_.data());
    if (file < 0) {
        throw FileError{target.string() + ": it cannot be written (" + std::strerror(errno) + ")"};
    }
    ::close(file);
    std::strncpy(unfinished, path_.c_str(), sizeof unfinished - 1);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct ::sigaction old = {};
        ::sigaction(signal, nullptr, &old);
        if (old.sa_handler == SIG_DFL) { // not ignored, as nohup wants it, nor seen to by the program
            std::signal(signal, removeUnfinished);
        }
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error like others
}

OutputFile::~OutputFile()
{
    std::error_code ignored;
    fs::remove(path_, ignored);
    unfinished[0] = '\0';
}

void OutputFile::keep() const
{
    std::error_code error;
    const auto old = fs::status(target_, error);
    const ::mode_t mask = ::umask(0);
    ::umask(mask);
    fs::permissions(path_, fs::exists(old) ? old.permissions() : fs::perms{0666u & ~mask}, error);
    fs::rename(path_, target_, error);
    if (error) {
        throw FileError{target_.string() + ": " + error.message()};
    }
}

void checkOutputPath(const std::string& path)
{
    std::error_code error;
    const fs::path folder = fs::absolute(path).parent_path();
    if (!fs::is_directory(folder, error)) {
        throw FileError{
            path + ": " +
            (error == std::errc::permission_denied ? error.message() : "there is no folder " + folder.string())};
    }
    const auto status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError{path + ": it is no regular file"};
    }
    const std::string target = fs::exists(status) ? path : folder.string();
    if (::access(target.c_str(), W_OK) != 0) {
        throw FileError{path + ": it cannot be written (" + std::strerror(errno) + ")"};
    }
}

void writeText(const std::string& path, const std::string& text)
{
    const OutputFile file{path};
    errno = 0;
    std::ofstream stream{file.getPath(), std::ios::binary};
    stream << text;
    stream.close();
    if (!stream) {
        throw FileError{path + ": it cannot be written (" + std::strerror(errno) + ")"};
    }
    file.keep();
}

} // namespace orlix::files
