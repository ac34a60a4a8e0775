// What each address of the site answers, and what never leaves it: pages without the headers that keep a
// browser from running what is not ours, and letters from forms that are not ours.

#pragma once

#include "compose.h"
#include "maildir.h"
#include "server.h"

class site {
public:
    // Hosts are the names that browsers know the site by; without any, every name will do.
    site(const std::string &directory, std::vector<std::string> hosts)
        : letters_(directory), hosts_(std::move(hosts)), token_(secret()) {}

    response answer(const request &asked);

private:
    response find(const request &asked);
    response send(const request &asked);
    response show(const request &asked);

    maildir letters_;
    const std::vector<std::string> hosts_;
    const std::string token_; // in our forms alone
};
