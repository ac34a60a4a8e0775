// What each address of the site answers. No page leaves it without the headers that keep a browser from
// running what is not ours, and no form comes in that is not ours.

#pragma once

#include "maildir.h"
#include "server.h"

response answer(maildir &letters, const request &asked);
