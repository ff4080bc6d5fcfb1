#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace velbrix {

// A whole number in a range, shown with its unit. ←/→ change it by one, a
// double click takes it back to its default.
class ValueSlider final : public QWidget {
    Q_OBJECT

public:
    struct Range {
        int least = 0;
        int most = 100;
        int standard = 0;
        QString unit; // "分钟"
    };

    ValueSlider(const QString &name, const Range &range, QWidget *parent = nullptr);

    void setValue(int value);
    int value() const;

Q_SIGNALS:
    void wanted(int value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Range _range;
    QSlider *_slider;
    QLabel *_text;
};

} // namespace velbrix
