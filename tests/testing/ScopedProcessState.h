// vn::testing::ScopedProcessState: one scope that gives a test the process-wide settings of a
// fresh process and puts them back afterwards, so that tests never leak settings into each
// other whatever order they run in.
//
// Covered: the VNUtilities switches (developer mode, Tolvar app), the application state and
// URL opener, the standard user defaults, the current locale, the main bundle's information
// dictionary and strings table, the shared log, the registered services, the main screen, the
// device's time zone (and the TZ variable it is read from) and the model's, and the MIME types
// file. Settings of areas that a
// partial build leaves out are skipped.
//
// On construction the settings that can be read are saved (switches, application state,
// locale, bundle information, screen, TZ) and, with Start::fresh, everything but the locale (which
// has no "unset" value to return to) is put to a fresh process's values. On destruction the saved
// settings come back and the others (user defaults, URL opener, bundle strings, log, services, time
// zones, MIME types file), which have no getter, go back to a fresh process's values. Use one per
// test, on the test's own thread; not safe against other threads changing the same settings
// meanwhile.
#pragma once

#include <memory>

namespace vn::testing {

class ScopedProcessState {
  public:
    enum class Start { fresh, asIs };

    explicit ScopedProcessState(Start start = Start::fresh);
    ~ScopedProcessState();
    ScopedProcessState(const ScopedProcessState&) = delete;
    ScopedProcessState& operator=(const ScopedProcessState&) = delete;

    // Puts every covered setting but the locale to a fresh process's value now.
    static void resetToFresh();
    // Turns the log's file on and its console off: the Tolvar app with logging enabled in the
    // user defaults.
    static void turnLogFileOn();

  private:
    struct Saved;
    std::unique_ptr<Saved> saved_;
};

}  // namespace vn::testing
