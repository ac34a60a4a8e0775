// `zel convert`: files from one charset to another, in memory that does not grow with them.
//
//     file -> chunk -> ZEL_ConvertBuffer -> standard output
//                 \-> find_losses, where the output holds what stands for a lost character -> stderr
//
// Invariant: the output says what that of the files in one piece would. UTF-16 and UTF-32 get one mark in
// all.

#pragma once

#include <string>
#include <vector>

namespace tool {

void convert_files(const std::string &from_charset, const std::string &to_charset,
                   const std::vector<std::string> &files);

} // namespace tool
