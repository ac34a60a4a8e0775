// Text that people wrote: the translations in the message catalogues that Debian installs.
//
// Invariant: the catalogues are a fixed list, so that what else a machine has changes no row.

#pragma once

#include <string>
#include <vector>

namespace bench {

// Each line of 20 to 400 bytes that has a letter outside ASCII, in UTF-8, once, in an order made by chance.
std::vector<std::string> catalogue_lines(const std::string &language);

} // namespace bench
