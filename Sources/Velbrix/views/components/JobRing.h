#pragma once

#include <QWidget>

namespace velbrix {

class Theme;

// A small ring that says that something is running behind a tab: a red one
// with a dot for a recording, one that fills for a job.
class JobRing final : public QWidget {
public:
    enum class Look { recording, progress };

    JobRing(const Theme &theme, const QString &what, Look look = Look::recording, QWidget *parent = nullptr);

    void setJob(const QString &what, double progress); // 0…1; less when nobody knows

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintRecording(QPainter &painter) const;
    void paintProgress(QPainter &painter) const;

    const Theme &_theme;
    Look _look;
    double _progress = -1;
};

} // namespace velbrix
