#pragma once

#include <QFrame>
#include <QStringList>

class QButtonGroup;

namespace velbrix {

// One of a few values, all visible. The arrow keys move through them; the
// user's choice only asks, setCurrent() shows what holds.
class SegmentedChoice final : public QFrame {
    Q_OBJECT

public:
    SegmentedChoice(const QString &name, const QStringList &texts, QWidget *parent = nullptr);

    void setCurrent(int index);
    int current() const;

Q_SIGNALS:
    void wanted(int index);

protected:
    void changeEvent(QEvent *event) override;

private:
    QButtonGroup *_group;
};

} // namespace velbrix
