#pragma once

#include "maintenance/backup/BackupTask.h"

#include <QWidget>

class QLabel;
class QSpinBox;
class QTimeEdit;

namespace velbrix {

class SegmentedChoice;

// When a task runs: every day, month or year, and at what time.
class BackupScheduleField final : public QWidget {
public:
    explicit BackupScheduleField(const BackupScheduleTime &schedule, QWidget *parent = nullptr);

    BackupScheduleTime schedule() const;

private:
    void showKind(int index);
    void showHint();

    SegmentedChoice *_kind;
    QSpinBox *_month;
    QSpinBox *_day;
    QTimeEdit *_time;
    QLabel *_hint;
};

} // namespace velbrix
