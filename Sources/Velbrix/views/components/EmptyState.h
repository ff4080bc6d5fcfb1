#pragma once

#include <QWidget>

namespace velbrix {

class Theme;

// Nothing here: why, what to do about it, and a button that does it.
class EmptyState final : public QWidget {
    Q_OBJECT

public:
    struct Words {
        QString symbol;
        QString title;
        QString advice;
        QString action; // no button when empty
    };

    EmptyState(const Theme &theme, const QString &name, const Words &words, QWidget *parent = nullptr);

Q_SIGNALS:
    void acted();
};

} // namespace velbrix
