#pragma once

#include <clocale>
#include <string>

namespace corvane::ui {

// Switches the C library's locale for one test and restores the previous one afterwards.
class LocaleGuard {
  public:
    explicit LocaleGuard(const char* name) : previous_(std::setlocale(LC_ALL, nullptr)) {
        active_ = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~LocaleGuard() { std::setlocale(LC_ALL, previous_.c_str()); }
    LocaleGuard(const LocaleGuard&) = delete;
    LocaleGuard& operator=(const LocaleGuard&) = delete;

    bool active() const { return active_; }

  private:
    std::string previous_;
    bool active_ = false;
};

}  // namespace corvane::ui
