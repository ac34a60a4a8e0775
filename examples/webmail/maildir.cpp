#include "maildir.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

namespace {

// All of a file, or the head of its message, which ends at an empty line.
std::string read_file(const std::filesystem::path &path, std::size_t limit, bool is_head) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    for (char piece[8 << 10]; file && bytes.size() < limit;) {
        file.read(piece, sizeof piece);
        bytes.append(piece, static_cast<std::size_t>(file.gcount()));
        if (const std::size_t end = std::min(bytes.find("\n\n"), bytes.find("\n\r\n"));
            is_head && end < bytes.size())
            return bytes.substr(0, end + 1);
    }
    return bytes;
}

} // namespace

maildir::maildir(std::filesystem::path path) : path_(std::move(path)) {
    for (const char *directory : {"tmp", "new", "cur"})
        create_directories(path_ / directory);
}

// Links are not followed out of the Maildir. A letter that is moved meanwhile is met again where it went, and
// what stands under a name does not change.
std::shared_ptr<const letter_list> maildir::list() {
    const std::lock_guard guard(lock_);
    auto found = std::make_shared<letter_list>();
    for (const char *directory : {"new", "cur"})
        for (const auto &entry : std::filesystem::directory_iterator(path_ / directory)) {
            std::error_code error;
            const std::string file = entry.path().filename(), name = file.substr(0, file.find(":2,"));
            if (file[0] == '.' || entry.is_symlink(error) || !entry.is_regular_file(error))
                continue;
            letter seen = known_->count(name) ? known_->at(name) : letter{{}, "", entry.file_size(error), {}};
            if (!seen.head)
                seen.head = std::make_shared<summary>(read_message(read_file(entry, 256 << 10, true)).head);
            seen.file = entry.path();
            seen.flags = name == file ? "" : file.substr(name.size() + 3);
            if (!error)
                found->insert_or_assign(name, std::move(seen));
        }
    return known_ = found;
}

std::optional<std::string> maildir::read(const std::string &name) {
    auto all = (std::lock_guard(lock_), known_);
    if (!name.empty() && (!all->count(name) || !exists(all->at(name).file)))
        all = list();
    if (!all->count(name))
        return std::nullopt;
    auto [file, flags, size, head] = all->at(name);
    flags += flags.find('S') == std::string::npos ? "S" : "";
    std::sort(flags.begin(), flags.end());
    const std::filesystem::path seen = path_ / "cur" / (name + ":2," + flags);
    // Another reader may have been first; where nothing can be moved the letter is read where it is.
    const bool is_moved =
        renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, seen.c_str(), RENAME_NOREPLACE) == 0 || !exists(file);
    file = is_moved ? seen : file;
    return is_regular_file(symlink_status(file)) ? std::optional(read_file(file, 64 << 20, false))
                                                 : std::nullopt;
}

std::string maildir::deliver(const std::string &bytes) {
    std::string name = std::to_string(std::time(nullptr)) + '.' + secret() + ".webmail";
    const std::filesystem::path written = path_ / "tmp" / name;
    const std::unique_ptr<FILE, int (*)(FILE *)> file(fopen(written.c_str(), "wbx"), &fclose);
    if (!file || fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
        fflush(file.get()) != 0 || fsync(fileno(file.get())) != 0)
        throw std::runtime_error("cannot write " + written.string());
    rename(written, path_ / "new" / name);
    return name;
}
