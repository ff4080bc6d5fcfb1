#pragma once

#include "app/AppTab.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace velbrix {

class AppServices;

// A job that runs behind a tab.
struct TabJob {
    QString what;
    double progress = -1; // 0…1; less when nobody knows
};

// What runs behind the tabs. Nothing is stored or polled: a tool's own signals
// say when to ask it again.
class TabActivity final : public QObject {
    Q_OBJECT

public:
    using Answer = std::function<std::optional<TabJob>()>;
    using QObject::QObject;

    // The sender must outlive the answers.
    template <typename Sender, typename... Signals>
    void watch(AppTab tab, const Sender &sender, Answer answer, Signals... signs)
    {
        _answers.insert(tab, std::move(answer));
        (connect(&sender, signs, this, [this, tab] { Q_EMIT changed(tab); }), ...);
    }
    // Every tool that has long jobs.
    void watchTools(AppServices &services);

    std::optional<TabJob> job(AppTab tab) const;
    bool isWatched(AppTab tab) const { return _answers.contains(tab); }

Q_SIGNALS:
    void changed(velbrix::AppTab tab);

private:
    QHash<AppTab, Answer> _answers;
};

} // namespace velbrix
