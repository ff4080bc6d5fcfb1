#pragma once

#include <QWidget>

#include <functional>

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
        QString unit;                           // "分钟"
        std::function<QString(int)> words = {}; // in place of number and unit
    };

    ValueSlider(const QString &name, const Range &range, QWidget *parent = nullptr);

    void setValue(int value);
    int value() const;

Q_SIGNALS:
    void wanted(int value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QString words(int value) const;

    Range _range;
    QSlider *_slider;
    QLabel *_text;
};

} // namespace velbrix
