#include "views/components/SettingRow.h"

#include "views/components/Parts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace velbrix {

SettingRow::SettingRow(const QString &title, const QString &description, QWidget *control, QWidget *parent)
    : QWidget(parent),
      _line(new QHBoxLayout(this)),
      _description(makeText(description, QStringLiteral("note"))),
      _note(makeText({}, QStringLiteral("note")))
{
    setMinimumHeight(44);
    _line->setContentsMargins(0, 10, 0, 10);
    _line->setSpacing(16);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    auto *name = makeText(title, QStringLiteral("body"));
    words->addWidget(name);
    words->addWidget(_description);
    words->addWidget(_note);
    _line->addLayout(words, 1);
    _description->setVisible(!description.isEmpty());
    _note->hide();
    if (!control)
        return;
    if (control->accessibleName().isEmpty())
        control->setAccessibleName(title);
    control->setAccessibleDescription(description);
    _line->addWidget(control, 0, Qt::AlignVCenter);
}

void SettingRow::setLeading(QWidget *widget)
{
    _line->insertWidget(0, widget, 0, Qt::AlignVCenter);
}

void SettingRow::setDescription(const QString &text)
{
    _description->setText(text);
    _description->setVisible(!text.isEmpty());
}

void SettingRow::setNote(const QString &text, const QString &role)
{
    _note->setText(text);
    setLook(_note, "role", role);
    _note->setVisible(!text.isEmpty());
}

} // namespace velbrix
