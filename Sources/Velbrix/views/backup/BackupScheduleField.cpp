#include "views/backup/BackupScheduleField.h"

#include "views/components/Parts.h"
#include "views/components/SegmentedChoice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QTimeEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int fieldWidth = 72;
constexpr int lastDayOfEveryMonth = 28;

QSpinBox *makeNumber(const QString &name, const QString &title, int most, int value)
{
    auto *field = new QSpinBox;
    field->setObjectName(name);
    field->setAccessibleName(title);
    field->setRange(1, most);
    field->setValue(value);
    field->setSuffix(u' ' + title);
    makeNumberField(*field, fieldWidth);
    return field;
}

} // namespace

BackupScheduleField::BackupScheduleField(const BackupScheduleTime &schedule, QWidget *parent)
    : QWidget(parent),
      _kind(new SegmentedChoice(u"scheduleKind"_s, {u"每天"_s, u"每月"_s, u"每年"_s})),
      _month(makeNumber(u"scheduleMonth"_s, u"月"_s, 12, schedule.month)),
      _day(makeNumber(u"scheduleDay"_s, u"日"_s, 31, schedule.dayOfMonth)),
      _time(new QTimeEdit(QTime(schedule.hour, schedule.minute))),
      _hint(makeText(u"每月的 29、30、31 日按 28 日运行，这样每个月都有这一天。"_s, u"note"_s))
{
    _kind->setAccessibleName(u"运行频率"_s);
    _time->setObjectName(u"scheduleTime"_s);
    _time->setAccessibleName(u"运行时间"_s);
    _time->setDisplayFormat(u"HH:mm"_s);
    makeNumberField(*_time, fieldWidth);
    _hint->setObjectName(u"scheduleHint"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    auto *line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(_kind);
    line->addStretch(1);
    line->addWidget(_month);
    line->addWidget(_day);
    line->addWidget(_time);
    rows->addLayout(line);
    rows->addWidget(_hint);
    _kind->setCurrent(static_cast<int>(schedule.kind));
    showKind(_kind->current());
    connect(_kind, &SegmentedChoice::wanted, this, [this](int index) { showKind(index); });
    connect(_day, &QSpinBox::valueChanged, this, [this] { showHint(); });
}

BackupScheduleTime BackupScheduleField::schedule() const
{
    return {static_cast<BackupScheduleKind>(_kind->current()), _time->time().hour(), _time->time().minute(),
            _day->value(), _month->value()};
}

void BackupScheduleField::showKind(int index)
{
    const auto kind = static_cast<BackupScheduleKind>(index);
    _month->setVisible(kind == BackupScheduleKind::yearly);
    _day->setVisible(kind != BackupScheduleKind::daily);
    showHint();
}

void BackupScheduleField::showHint()
{
    _hint->setVisible(!_day->isHidden() && _day->value() > lastDayOfEveryMonth);
}

} // namespace velbrix
