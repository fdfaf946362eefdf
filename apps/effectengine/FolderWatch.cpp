// Events of inotify, and looks at the folder.
#include "effectengine/FolderWatch.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <iterator>
#include <utility>

namespace tool {

namespace fs = std::filesystem;

namespace {

using namespace std::chrono_literals;

constexpr auto kSettled = 2s; ///< how long a file stays the same that nobody is seen to write
constexpr auto kNextLook = 250ms;
constexpr auto kEvents =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

// Whether somebody has the file open for writing. Systems and users that may not know are told no.
bool isBeingWritten(const fs::path& file)
{
    const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    // A lease for reading is refused while the file is open for writing.
    const bool written = fcntl(descriptor, F_SETLEASE, F_RDLCK) != 0 && errno == EAGAIN;
    fcntl(descriptor, F_SETLEASE, F_UNLCK);
    close(descriptor);
    return written;
}

bool isOld(const FileVersion& version)
{
    return std::time(nullptr) - version.seconds > std::chrono::seconds(kSettled).count();
}

// Whether a file that has just appeared is complete from the start: another name for a file, or a link to
// one.
bool isSecondName(const fs::path& file)
{
    struct stat facts { };
    return lstat(file.c_str(), &facts) == 0 && (S_ISLNK(facts.st_mode) || facts.st_nlink > 1)
        && versionOf(file);
}

bool tellsNothing(const fs::path& folder)
{
    constexpr std::array<unsigned long, 6> kNetworks{NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, 0xFF534D42 /* CIFS */,
        0xFE534D42 /* SMB2 */, V9FS_MAGIC, FUSE_SUPER_MAGIC};
    struct statfs facts { };
    return statfs(folder.c_str(), &facts) == 0
        && std::ranges::find(kNetworks, (unsigned long)(facts.f_type) & 0xFFFFFFFF) != kNetworks.end();
}

} // namespace

std::optional<FileVersion> versionOf(const fs::path& file)
{
    struct stat facts { };
    if (stat(file.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return {};
    return FileVersion{.size = facts.st_size,
        .seconds = facts.st_mtim.tv_sec,
        .nanoseconds = facts.st_mtim.tv_nsec,
        .inode = facts.st_ino};
}

FolderWatch::FolderWatch(fs::path folder, FolderWatchOptions options)
    : folder_(std::move(folder)),
      options_(std::move(options))
{
    if (!fs::exists(folder_))
        throw ToolError(ExitCode::missingInput, "no such folder: " + folder_.string());
    if (!fs::is_directory(folder_))
        throw ToolError(ExitCode::usage, "is no folder: " + folder_.string());
    std::signal(SIGIO, SIG_IGN); // comes to those who have a lease when somebody begins to write
    if (!options_.poll) {
        if (tellsNothing(folder_))
            warn(folder_.string()
                + " is on a network, where changes by other machines are not told; --poll looks for them");
        events_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (events_ < 0)
            throw ToolError(ExitCode::unreadable,
                "cannot watch " + folder_.string() + ": " + std::strerror(errno) + "; --poll works without");
    }
    lookAgain();
}

FolderWatch::~FolderWatch()
{
    if (events_ >= 0)
        close(events_);
}

bool FolderWatch::belongs(const fs::path& directory) const
{
    std::error_code ignored;
    return directory.filename().native()[0] != '.' && !fs::equivalent(directory, options_.without, ignored);
}

void FolderWatch::watch(const fs::path& directory)
{
    if (options_.poll)
        return;
    const int number = inotify_add_watch(events_, directory.c_str(), kEvents);
    if (number >= 0) {
        directories_[number] = directory;
        return;
    }
    const std::string why = errno == ENOSPC
        ? "too many folders are watched; fs.inotify.max_user_watches allows more, and --poll works without"
        : std::strerror(errno);
    if (directory == folder_ || errno == ENOSPC)
        throw ToolError(ExitCode::unreadable, "cannot watch " + directory.string() + ": " + why);
    if (errno != ENOENT)
        warn("cannot watch " + directory.string() + ": " + why);
}

// Notes all files of a directory, and of those in it, and watches them; the watch comes first, so that
// nothing is missed in between.
void FolderWatch::look(const fs::path& directory)
{
    watch(directory);
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            if (options_.recursive && belongs(entry->path()))
                look(entry->path());
        } else if (const auto version = versionOf(entry->path())) {
            if (const auto told = told_.find(entry->path()); told == told_.end() || told->second != *version)
                found_.try_emplace(entry->path(), *version, Clock::now());
        }
    }
}

void FolderWatch::lookAgain()
{
    directories_.clear();
    if (!fs::is_directory(folder_))
        throw ToolError(ExitCode::missingInput, "the folder is gone: " + folder_.string());
    std::erase_if(told_, [](const auto& told) { return !versionOf(told.first); });
    look(folder_);
}

void FolderWatch::handle(const inotify_event& event)
{
    if (event.mask & IN_Q_OVERFLOW) {
        lookAgain();
        return;
    }
    const auto directory = directories_.find(event.wd);
    if (directory == directories_.end())
        return;
    if (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT)) {
        if (directory->second == folder_)
            throw ToolError(ExitCode::missingInput, "the folder is gone: " + folder_.string());
        if (event.mask & IN_MOVE_SELF) {
            if (fs::exists(directory->second)) // moved within the folder: it is known under its new name
                return;
            inotify_rm_watch(events_, event.wd);
        }
        directories_.erase(directory);
        return;
    }
    if (event.len == 0)
        return;
    const fs::path path = directory->second / event.name;
    if (event.mask & IN_ISDIR) {
        if (options_.recursive && belongs(path))
            look(path);
    } else if (!(event.mask & IN_CREATE) || isSecondName(path)) {
        complete_[path] = true;
        found_.erase(path);
    }
}

void FolderWatch::readEvents()
{
    alignas(inotify_event) std::array<char, 1 << 16> bytes;
    for (;;) {
        const ssize_t got = read(events_, bytes.data(), bytes.size());
        if (got <= 0)
            return;
        for (ssize_t at = 0; at < got;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(bytes.data() + at);
            handle(event);
            at += ssize_t(sizeof event + event.len);
        }
    }
}

// Whether a file that was found is complete. One that has changed since is found anew.
bool FolderWatch::isComplete(const fs::path& file, Found& found) const
{
    const FileVersion version = versionOf(file).value_or(FileVersion{});
    if (version != found.version) {
        found = {version, Clock::now()};
        return false;
    }
    const auto age = Clock::now() - found.since;
    const bool same = options_.poll ? age >= *options_.poll : age >= kSettled || isOld(version);
    return same && !isBeingWritten(file);
}

// Takes those of the files found that are complete, and forgets those that are gone.
void FolderWatch::settle()
{
    for (auto one = found_.begin(); one != found_.end();) {
        auto& [path, found] = *one;
        const bool complete = isComplete(path, found);
        if (complete) {
            complete_.try_emplace(path, false);
            if (options_.poll)
                told_[path] = found.version;
        }
        one = complete || !fs::exists(path) ? found_.erase(one) : std::next(one);
    }
}

// Sleeps until there may be something new, or a signal comes.
void FolderWatch::wait() const
{
    const auto time = options_.poll ? std::chrono::duration_cast<std::chrono::nanoseconds>(*options_.poll)
        : found_.empty()            ? 0ns
                                    : std::chrono::nanoseconds(kNextLook);
    const timespec limit{time / 1s, (time % 1s).count()};
    // A signal that comes before the wait begins ends it as well.
    sigset_t signals, before;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &before);
    pollfd descriptor{events_, POLLIN, 0};
    if (!stopAsked())
        ppoll(&descriptor, events_ >= 0 ? 1 : 0, time > 0ns ? &limit : nullptr, &before);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    stopIfAsked();
}

std::vector<FolderWatch::File> FolderWatch::next()
{
    for (;;) {
        stopIfAsked();
        if (!options_.poll)
            readEvents();
        settle();
        if (!complete_.empty())
            break;
        wait();
        if (options_.poll)
            lookAgain();
    }
    std::vector<File> files;
    for (const auto& [path, changed] : std::exchange(complete_, {}))
        files.push_back({path, changed});
    return files;
}

} // namespace tool
