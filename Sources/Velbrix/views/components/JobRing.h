#pragma once

#include <QWidget>

namespace velbrix {

class Theme;

// A small ring that says that something is running behind a tab.
class JobRing final : public QWidget {
public:
    JobRing(const Theme &theme, const QString &what, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Theme &_theme;
};

} // namespace velbrix
