#include "platform/windows/utf8_locale.h"

#include <locale.h>

Utf8Locale::Utf8Locale() : own_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (own_ != nullptr) previous_ = uselocale(static_cast<locale_t>(own_));
}

Utf8Locale::~Utf8Locale() {
    if (own_ == nullptr) return;
    uselocale(static_cast<locale_t>(previous_));
    freelocale(static_cast<locale_t>(own_));
}
