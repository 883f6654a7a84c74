#include "platform/windows/utf8_locale.h"

Utf8Locale::Utf8Locale() = default;
Utf8Locale::~Utf8Locale() = default;
