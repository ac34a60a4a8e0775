// A Maildir: its letters, and delivery. A letter is known by its name without flags. Nobody hands in a path:
// names are looked up among those that the directories list, and nothing but plain files in them is opened.

#pragma once

#include "message.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

struct letter {
    std::filesystem::path file;
    std::string flags; // in the order of their letters
    std::uintmax_t size;
    std::shared_ptr<const summary> head;
};

using letter_list = std::map<std::string, letter>; // by name

// Its functions throw std::runtime_error where the file system does not let them.
class maildir {
public:
    // Makes the directories where there are none.
    explicit maildir(std::filesystem::path path);

    // Reads the heads of letters that have come since the last call.
    std::shared_ptr<const letter_list> list();

    // The bytes of a letter that is listed, which counts as seen then.
    std::optional<std::string> read(const std::string &name);

    // Gives the name of the letter.
    std::string deliver(const std::string &bytes);

private:
    const std::filesystem::path path_;
    std::mutex lock_; // guards the list
    std::shared_ptr<const letter_list> known_ = std::make_shared<letter_list>();
};
