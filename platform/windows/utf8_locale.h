#ifndef PLATFORM_WINDOWS_UTF8_LOCALE_H
#define PLATFORM_WINDOWS_UTF8_LOCALE_H

/* For a scope, gives the calling thread a locale of UTF-8: some libraries take wide names of files and spell
 * them by the locale, which in a host that has never set one knows nothing beyond ASCII. The locale of the
 * process and of other threads stays. Does nothing on Windows, or where there is no such locale. */
class Utf8Locale {
  public:
    Utf8Locale();
    ~Utf8Locale();
    Utf8Locale(const Utf8Locale &) = delete;
    Utf8Locale &operator=(const Utf8Locale &) = delete;

  private:
    void *own_ = nullptr;
    void *previous_ = nullptr;
};

#endif
