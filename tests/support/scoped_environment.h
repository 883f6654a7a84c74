#ifndef TESTS_SUPPORT_SCOPED_ENVIRONMENT_H
#define TESTS_SUPPORT_SCOPED_ENVIRONMENT_H

#include <cstdlib>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Sets or unsets one environment variable for a scope.
class ScopedEnvironment {
  public:
    ScopedEnvironment(std::string name, const std::optional<std::string> &value) : name_(std::move(name)) {
        if (const char *old = std::getenv(name_.c_str())) old_ = old;
        Apply(value);
    }
    ~ScopedEnvironment() { Apply(old_); }
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;

  private:
    void Apply(const std::optional<std::string> &value) const {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> old_;
};

// Names and values of environment variables.
using EnvironmentValues = std::vector<std::pair<std::string, std::string>>;

// The same for several variables at once.
class ScopedEnvironmentValues {
  public:
    explicit ScopedEnvironmentValues(const EnvironmentValues &values) {
        for (const auto &[name, value] : values)
            scopes_.emplace_back(name, value);
    }

  private:
    std::list<ScopedEnvironment> scopes_;
};

#endif
