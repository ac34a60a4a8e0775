// The pages, as HTML in UTF-8. A request says who reads, and at what place.

#pragma once

#include "html.h"
#include "maildir.h"
#include "server.h"

// A page around its content. The choice of a language leads to the same place again.
html framed(const request &asked, const html &title, const html &content);

html list_page(const request &asked, const letter_list &all);
html letter_page(const request &asked, const message &letter);
html compose_page(const request &asked, values typed, const std::string &complaint);

std::string percent_encoded(const std::string &text);
