// Start and stop. The start settles what all other modules read without a lock: the bundle root, the two
// locks, the local charset, the table of localisation directories and, last, the status word. The stop
// releases what they own.
//
// Invariant: runs while no other thread is inside the library, once a process. What has no room in its buffer
// is left out, never cut into something else.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/policy/bundle_message.h"

#include <prio.h>
#include <prrwlock.h>
#include <prsystem.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/utsname.h>

namespace zel {
namespace {

constexpr int lang_capacity = 128;
constexpr std::size_t key_capacity = 200;
constexpr int32_t max_i18n_dirs = 100;

struct L10nDirEntry {
    char *name;
};

char zel_root_path[path_capacity] = "";
L10nDirEntry zel_all_i18n_dirs[max_i18n_dirs] = {};
int32_t zel_all_i18n_dir_count = 0;

using open_directory = owned<PRDir, &PR_CloseDir>;

bool has_text(const char *text) {
    return text && *text;
}

// A root that is cut here leaves no room for the name of a bundle behind it, so that none is opened.
void set_root(char (&to)[path_capacity], const char *root) {
    std::snprintf(to, sizeof to, "%s", root);
}

void choose_root(const char *svrroot, const ZELConfig *config) {
    if (config && config->bundles_path)
        set_root(zel_root_path, config->bundles_path);
    else if (has_text(svrroot))
        set_root(zel_root_path, svrroot);
    else
        fail_assertion("svrroot && *svrroot", "init");
}

PRRWLock *create_lock() {
    PRRWLock *lock = PR_NewRWLock(PR_RWLOCK_RANK_NONE, nullptr);
    if (!lock)
        fail_assertion("lock", "init");
    return lock;
}

heap_string configured_local_charset(const char *root) {
    utsname os = {};
    uname(&os);
    const char *value = std::getenv("LANG");
    char lang[lang_capacity + 1];
    std::snprintf(lang, sizeof lang, "%s", value ? value : "C");
    char lang_on_os[key_capacity];
    std::snprintf(lang_on_os, sizeof lang_on_os, "%s|%s", os.sysname, lang);
    const char language[] = {lang[0], lang[0] ? lang[1] : '\0', '\0'};

    const owned_bundle bundle = open_encbylang(root);
    for (const char *key : {static_cast<const char *>(lang_on_os), static_cast<const char *>(lang), language})
        if (heap_string charset = utf8_message(bundle.get(), key))
            return charset;
    return nullptr;
}

bool is_directory(const char *path) {
    return open_directory(PR_OpenDir(path)) != nullptr;
}

// What has no memory or no room for its name is left out.
void add_directory(const char *parent, const char *name) {
    char path[path_capacity];
    const int length = std::snprintf(path, sizeof path, "%s%s", parent, name);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path || !is_directory(path))
        return;
    if (char *own_name = strdup(name))
        zel_all_i18n_dirs[zel_all_i18n_dir_count++].name = own_name;
}

} // namespace
} // namespace zel

using namespace zel;

void _setupLocalCharEncoding(const char *root) {
    set_root(bundles_path, root);
    const heap_string charset = configured_local_charset(root);
    const bool fits = charset && std::strlen(charset.get()) < charset_capacity;
    std::snprintf(encLocal, sizeof encLocal, "%s", fits ? charset.get() : ianaISO8859_1);
}

void init_Dirs(const char *svrroot) {
    zel_all_i18n_dir_count = 0;
    if (!svrroot)
        return;
    const char separator = PR_GetDirectorySeparator();
    char path[path_capacity];
    const int length = std::snprintf(path, sizeof path, "%s%c..%clib%chtml%c", svrroot, separator, separator,
                                     separator, separator);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path)
        return;
    const open_directory html(PR_OpenDir(path));
    if (!html)
        return;
    while (zel_all_i18n_dir_count < max_i18n_dirs) {
        const PRDirEntry *entry = PR_ReadDir(html.get(), PR_SKIP_BOTH);
        if (!entry)
            return;
        if (entry->name)
            add_directory(path, entry->name);
    }
}

void free_Dirs(void) {
    for (int32_t i = 0; i < zel_all_i18n_dir_count; ++i)
        const heap_string name(zel_all_i18n_dirs[i].name);
}

const char *check_l10n_dir(const char *name) {
    if (!name)
        return nullptr;
    for (int32_t i = 0; i < zel_all_i18n_dir_count; ++i)
        if (strcasecmp(zel_all_i18n_dirs[i].name, name) == 0)
            return zel_all_i18n_dirs[i].name;
    return nullptr;
}

int32_t ZEL_Initialize(const char *svrroot, const ZELConfig *config) {
    if (gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED)
        return 0;
    g_zelconf.pass_8bit = 0;
    choose_root(svrroot, config);
    encodingconverter_lock = create_lock();
    localconfig_lock = create_lock();
    _setupLocalCharEncoding(zel_root_path);
    init_Dirs(svrroot);
    if (!config || !config->no_atexit)
        std::atexit(ZEL_Terminate);
    if (config)
        g_zelconf.pass_8bit = config->pass_8bit;
    gf_ZELStatus = ZEL_STATUS_INITIALIZED;
    return 0;
}

void ZEL_Terminate(void) {
    terminate_encodingconverter();
    terminate_localconfig();
    free_Dirs();
}

void ZEL_Free(void *ptr) {
    std::free(ptr);
}
