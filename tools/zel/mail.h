// What a message is made of, on the wire and back: `zel decode-header` and its relatives. Without a language
// the readers and writers for mail at large do the work, with one those that keep to its rules.
//
// What goes out on the wire with CR LF is written with the line feed that files here have.

#pragma once

#include <string>
#include <vector>

namespace tool {

using texts = std::vector<std::string>; // empty: the lines of standard input

void decode_headers(const std::string &language, const std::string &to_charset, const texts &values);
void encode_headers(const std::string &language, const texts &values);
void decode_parameters(const std::string &to_charset, const texts &values);
void encode_parameters(const std::string &language, const std::string &name, const texts &values);
void decode_body(const std::string &language, const std::string &from_charset, const std::string &to_charset);
void encode_body(const std::string &language);
void decode_mailboxes(const std::string &to_charset, const texts &names);
void encode_mailboxes(const texts &names);
void write_vcards(const std::string &language, const texts &values);

} // namespace tool
