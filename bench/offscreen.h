#pragma once
// An application without a screen: whatever draws letters needs one.

namespace nmr::bench {

/// @tparam Application QGuiApplication, or QApplication for widgets
template <class Application>
class Offscreen {
public:
    Offscreen() = default;

private:
    int count_ = 3; // which the application goes on looking at, as at the words
    char name_[12] = "nmr1d-bench", option_[10] = "-platform", platform_[10] = "offscreen";
    char* arguments_[4] = {name_, option_, platform_, nullptr};
    const Application application_{count_, arguments_};
};

} // namespace nmr::bench
