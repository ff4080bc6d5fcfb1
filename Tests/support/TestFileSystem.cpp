// File systems for tests: TestFileSystem folding|decomposing|small|hanging FOLDER MOUNTPOINT [OPTION …].
// Shows what is in the folder as a disk does that takes names in other letter case or another
// normal form for one ("folding", as APFS does), lists them decomposed as well ("decomposing", as
// HFS+ does), has room for 8 MiB ("small"), or answers nobody while there is a file FOLDER.hangs
// ("hanging"). The options are libfuse's. Goes on in the background once it is mounted.

#define FUSE_USE_VERSION 31
#include <fuse.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

std::string_view kind;
std::string root;

std::string key(const std::string &name)
{
    return QString::fromStdString(name)
        .normalized(QString::NormalizationForm_D)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_D)
        .toStdString();
}

std::string stored(const std::string &name)
{
    return kind == "decomposing"
               ? QString::fromStdString(name).normalized(QString::NormalizationForm_D).toStdString()
               : name;
}

// The entry's name in the folder, or that under which it would be made.
std::string entry(const std::string &folder, const std::string &name)
{
    std::string found = stored(name);
    if (DIR *const open = ::opendir(folder.c_str())) {
        while (const dirent *each = ::readdir(open)) {
            if (key(each->d_name) == key(name))
                found = each->d_name;
        }
        ::closedir(open);
    }
    return found;
}

void answerInTime()
{
    while (kind == "hanging" && ::access((root + ".hangs").c_str(), F_OK) == 0)
        ::usleep(20'000);
}

std::string real(const char *path)
{
    answerInTime();
    std::string at = root;
    for (const QByteArray &name : QByteArray(path).split('/')) {
        if (!name.isEmpty())
            at += '/' + entry(at, name.toStdString());
    }
    return at;
}

int answer(long result)
{
    return result < 0 ? -errno : static_cast<int>(result);
}

void *begin(fuse_conn_info *, fuse_config *config)
{
    config->use_ino = 1;
    // A name that was not there may be there under another spelling a moment later.
    config->entry_timeout = config->attr_timeout = config->negative_timeout = 0;
    return nullptr;
}

int list(const char *path, void *buffer, fuse_fill_dir_t fill, off_t, fuse_file_info *, fuse_readdir_flags)
{
    DIR *const open = ::opendir(real(path).c_str());
    if (!open)
        return -errno;
    while (const dirent *each = ::readdir(open)) {
        struct stat facts{};
        facts.st_ino = each->d_ino;
        facts.st_mode = static_cast<mode_t>(DTTOIF(each->d_type));
        fill(buffer, each->d_name, &facts, 0, fuse_fill_dir_flags{});
    }
    ::closedir(open);
    return 0;
}

int opened(const char *path, fuse_file_info *file, int flags, mode_t mode)
{
    const int descriptor = ::open(real(path).c_str(), flags, mode);
    file->fh = static_cast<uint64_t>(descriptor);
    file->direct_io = kind == "hanging"; // nothing is read from memory
    return descriptor < 0 ? -errno : 0;
}

fuse_operations operations()
{
    fuse_operations made{};
    made.init = begin;
    made.readdir = list;
    made.getattr = [](const char *path, struct stat *facts, fuse_file_info *) {
        return answer(::lstat(real(path).c_str(), facts));
    };
    made.mkdir = [](const char *path, mode_t mode) { return answer(::mkdir(real(path).c_str(), mode)); };
    made.rmdir = [](const char *path) { return answer(::rmdir(real(path).c_str())); };
    made.unlink = [](const char *path) { return answer(::unlink(real(path).c_str())); };
    // Onto another spelling of itself nothing happens, as Linux has it.
    made.rename = [](const char *from, const char *to, unsigned) {
        return answer(::rename(real(from).c_str(), real(to).c_str()));
    };
    made.chmod = [](const char *path, mode_t mode, fuse_file_info *) {
        return answer(::chmod(real(path).c_str(), mode));
    };
    made.truncate = [](const char *path, off_t size, fuse_file_info *) {
        return answer(::truncate(real(path).c_str(), size));
    };
    made.utimens = [](const char *path, const timespec times[2], fuse_file_info *) {
        return answer(::utimensat(AT_FDCWD, real(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
    };
    made.open = [](const char *path, fuse_file_info *file) { return opened(path, file, file->flags, 0); };
    made.create = [](const char *path, mode_t mode, fuse_file_info *file) {
        return opened(path, file, file->flags, mode);
    };
    made.read = [](const char *, char *buffer, size_t size, off_t at, fuse_file_info *file) {
        answerInTime();
        return answer(::pread(static_cast<int>(file->fh), buffer, size, at));
    };
    made.write = [](const char *, const char *buffer, size_t size, off_t at, fuse_file_info *file) {
        return answer(::pwrite(static_cast<int>(file->fh), buffer, size, at));
    };
    made.release = [](const char *, fuse_file_info *file) {
        return answer(::close(static_cast<int>(file->fh)));
    };
    made.statfs = [](const char *, struct statvfs *facts) {
        const int result = answer(::statvfs(root.c_str(), facts));
        facts->f_bavail = kind == "small" ? (8 << 20) / facts->f_frsize : facts->f_bavail;
        return result;
    };
    return made;
}

} // namespace

int main(int count, char **words)
{
    if (count < 4)
        return 2;
    kind = words[1];
    root = words[2];
    words[2] = words[0];
    const fuse_operations made = operations();
    return fuse_main(count - 2, words + 2, &made, nullptr);
}
