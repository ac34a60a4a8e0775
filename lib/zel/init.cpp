// Start and stop. The start settles what all other modules read without a lock: the bundle root, the two
// locks, the local charset, the table of localisation directories and, last, the status word. The stop
// releases what they own.
//
// Invariant: runs while no other thread is inside the library, once a process. What has no room in its buffer
// is left out, never cut into something else.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/fixed_text.h"
#include "zel/base/frame.h"
#include "zel/base/input.h"
#include "zel/policy/bundle_message.h"

#include <prio.h>
#include <prrwlock.h>
#include <prsystem.h>

#include <cstdlib>
#include <cstring>
#include <string_view>
#include <strings.h>
#include <sys/utsname.h>

namespace zel {
namespace {

constexpr std::size_t max_lang = 128;
constexpr std::size_t locale_key_capacity = 200;
constexpr int32_t max_i18n_dirs = 100;

struct L10nDirEntry {
    char *name;
};

char zel_root_path[path_capacity] = "";
L10nDirEntry zel_all_i18n_dirs[max_i18n_dirs] = {};
int32_t zel_all_i18n_dir_count = 0;

using open_directory = owned<PRDir, &PR_CloseDir>;

// A root that is cut here leaves no room for the name of a bundle behind it, so that none is opened.
void set_root(char (&to)[path_capacity], std::string_view root) {
    join(to, {root.substr(0, path_capacity - 1)});
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

// The bundle may know LANG on this operating system, LANG on any, or its language.
heap_string configured_local_charset(const char *root) {
    const char *value = std::getenv("LANG");
    const std::string_view lang = std::string_view(value ? value : "C").substr(0, max_lang);
    utsname os = {};
    uname(&os);
    char lang_on_os[locale_key_capacity], any_os[max_lang + 1], language[3];
    join(lang_on_os, {os.sysname, "|", lang});
    join(any_os, {lang});
    join(language, {lang.substr(0, 2)});

    const owned_bundle bundle = open_encbylang(root);
    for (const char *key : {&lang_on_os[0], &any_os[0], &language[0]})
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
    if (!join(path, {parent, name}) || !is_directory(path))
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
    if (!charset || !join(encLocal, {charset.get()}))
        join(encLocal, {ianaISO8859_1});
}

void init_Dirs(const char *svrroot) {
    zel_all_i18n_dir_count = 0;
    if (!svrroot)
        return;
    const char separator_byte = PR_GetDirectorySeparator();
    const std::string_view separator(&separator_byte, 1);
    char path[path_capacity];
    if (!join(path, {svrroot, separator, "..", separator, "lib", separator, "html", separator}))
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
