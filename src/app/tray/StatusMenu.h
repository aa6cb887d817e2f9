#pragma once

#include <QMenu>

#include <functional>
#include <memory>

namespace vellumine {

/// What the status item's menu does.
struct StatusMenuActions {
    std::function<void()> openWindow;
    std::function<void()> openPreferences;
    std::function<void()> openWebsite;
    std::function<void()> quit;
};

/// A menu of the status item, in the colours of our windows.
[[nodiscard]] std::unique_ptr<QMenu> makeStatusMenu(const StatusMenuActions& actions);

} // namespace vellumine
