#pragma once

#include <QPointer>
#include <QWidget>

class QProgressBar;
class QPushButton;

namespace velbrix {

class ElidedLabel;
class Theme;

// Work that is being done: what, how far, and a way to stop it.
class JobBar final : public QWidget {
    Q_OBJECT

public:
    JobBar(const Theme &theme, const QString &name, QWidget *parent = nullptr);

    // With a total of 0 nobody knows how far it is.
    void setJob(const QString &text, int done, int total);
    void setCancellable(bool cancellable);

    // Shows that the job runs. A button that starts jobs is switched off as
    // long as one runs; if the keyboard is at it, the focus waits at the cancel
    // button meanwhile instead of getting lost.
    void setRunning(bool runs, const QList<QWidget *> &starters);

Q_SIGNALS:
    void cancelled();

private:
    ElidedLabel *_text;
    QProgressBar *_progress;
    QPushButton *_cancel;
    QPointer<QWidget> _focusBefore;
};

} // namespace velbrix
