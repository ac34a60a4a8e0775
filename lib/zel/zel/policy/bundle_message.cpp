// Bundles and texts are opened, read and let go in one call; ICU's strings become UTF-8 here.
//
// Invariant: whatever ICU lacks or fails at is a null, and never an error of the caller's.

#include "zel/policy/bundle_message.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/fixed_text.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/conversion/string_conversion.h"

#include <unicode/ustring.h>

namespace zel {

owned_bundle open_encbylang(const char *root) {
    char path[path_capacity];
    if (!join(path, {root, "/encbylang"}))
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    owned_bundle bundle(ures_open(path, "en", &status));
    return U_FAILURE(status) ? nullptr : std::move(bundle);
}

heap_string utf8_message(UResourceBundle *bundle, const char *key) {
    if (!bundle || !key)
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t units = 0;
    const UChar *text = ures_getStringByKey(bundle, key, &units, &status);
    if (U_FAILURE(status))
        return nullptr;
    const std::int32_t size = saturate(4 * static_cast<std::uint64_t>(units) + 1);
    heap_string message(static_cast<char *>(std::malloc(static_cast<std::size_t>(size))));
    if (!message)
        return nullptr;
    u_strToUTF8(message.get(), size, nullptr, text, units, &status);
    return U_FAILURE(status) ? nullptr : std::move(message);
}

} // namespace zel

using namespace zel;

char *resourceBundleGetUTF8Message(UResourceBundle *bundle, const char *key) {
    return utf8_message(bundle, key).release();
}

const char *ZEL_ServiceErrorStringInUTF8(int32_t code) {
    static char message[1024]; // its last byte is never written
    const heap_string text = local_to_local(service_errstr(code), encLocal, encUTF8);
    std::strncpy(message, text ? text.get() : "", sizeof message - 1);
    return message;
}
