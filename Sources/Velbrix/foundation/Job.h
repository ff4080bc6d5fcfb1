#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace velbrix {

// What a tool does in the background, as those see it who know nothing else of
// the tool: the sidebar, the tray, the command line and the end of the program.
// Nothing is polled: the tool's own signals say when to look again.
class Job final : public QObject {
    Q_OBJECT

public:
    enum class Kind {
        work,
        recording // of what the user does; shown in red wherever it is shown
    };

    struct State {
        QString what = {};       // for the user; empty while there is nothing to show
        double progress = -1;    // 0…1; less when nobody knows
        bool isBusy = false;     // the program ends after it
        bool mustFinish = false; // however long that takes

        bool operator==(const State &) const = default;
    };

    // Both are called while the job lives. `cancel` must bear to be called at any
    // time; without one the job cannot be cancelled.
    explicit Job(std::function<State()> state, std::function<void()> cancel = {}, Kind kind = Kind::work);

    // Looks again after each of the signals.
    template <typename Sender, typename... Signals> void follow(const Sender &sender, Signals... signs)
    {
        (connect(&sender, signs, this, &Job::look), ...);
    }

    State state() const { return _state(); }
    bool isBusy() const { return state().isBusy; }
    Kind kind() const { return _kind; }
    // Ends it early, after the step that it is at.
    void cancel();

Q_SIGNALS:
    void changed();
    // It is busy now, and no more. Each comes after changed().
    void started();
    void finished();

private:
    void look();

    const std::function<State()> _state;
    const std::function<void()> _cancel;
    const Kind _kind;
    State _seen;
};

} // namespace velbrix
