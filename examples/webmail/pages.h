// The pages, as HTML in UTF-8. A request says who reads, and at what place.

#pragma once

#include "compose.h"
#include "html.h"
#include "maildir.h"

html list_page(const request &asked, const letters &all);
html letter_page(const request &asked, const message &letter);
html compose_page(const request &asked, const draft &typed, const std::string &token,
                  const std::string &complaint);
html notice_page(const request &asked, const std::string &notice);

std::string percent_encoded(const std::string &text);
