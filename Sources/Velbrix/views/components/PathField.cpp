#include "views/components/PathField.h"

#include "views/ShownText.h"
#include "views/components/Parts.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString droppedFolder(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return {};
    const QString path = urls.first().toLocalFile();
    return QFileInfo(path).isDir() ? QDir::cleanPath(path) : QString();
}

} // namespace

PathField::PathField(const Theme &theme, const QString &name, const QString &panelTitle, QWidget *parent)
    : QFrame(parent),
      _panelTitle(panelTitle),
      _text(makeText({}, u"value"_s)),
      _reveal(makeButton(theme, {name + u"Reveal"_s, u"在文件夹中显示"_s, {}, u"plain"_s}))
{
    setObjectName(name);
    setProperty("role", u"path"_s);
    setAcceptDrops(true);
    _text->setWordWrap(false);
    _text->setMinimumWidth(60);
    auto *chooseButton = makeButton(theme, {name + u"Choose"_s, u"选择…"_s, {}, u"plain"_s});
    chooseButton->setAccessibleName(panelTitle); // there may be several on a page
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(12, 2, 4, 2);
    line->setSpacing(4);
    line->addWidget(_text, 1);
    line->addWidget(chooseButton);
    line->addWidget(_reveal);
    connect(chooseButton, &QPushButton::clicked, this, &PathField::choose);
    connect(_reveal, &QPushButton::clicked, this, [this] { Q_EMIT revealWanted(_path); });
}

void PathField::setPath(const QString &path)
{
    _path = path;
    _text->setToolTip(plainTip(path));
    _reveal->setVisible(!path.isEmpty());
    elide();
}

void PathField::dragEnterEvent(QDragEnterEvent *event)
{
    if (droppedFolder(event->mimeData()).isEmpty())
        return;
    setLook(this, "dropping", true);
    event->acceptProposedAction();
}

void PathField::dragLeaveEvent(QDragLeaveEvent *)
{
    setLook(this, "dropping", false);
}

void PathField::dropEvent(QDropEvent *event)
{
    setLook(this, "dropping", false);
    if (const QString folder = droppedFolder(event->mimeData()); !folder.isEmpty()) {
        event->acceptProposedAction();
        Q_EMIT wanted(folder);
    }
}

void PathField::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    elide();
}

void PathField::choose()
{
    auto *panel = new QFileDialog(this, _panelTitle, _path);
    panel->setObjectName(objectName() + u"Panel"_s);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setLabelText(QFileDialog::Accept, u"选择"_s);
    panel->setLabelText(QFileDialog::Reject, u"取消"_s);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel, &QFileDialog::fileSelected, this, &PathField::wanted);
    panel->open();
}

void PathField::elide()
{
    const QString whole = _path.isEmpty() ? u"还没有选择文件夹"_s : shownPath(_path);
    const QString shown = QFontMetrics(_text->font()).elidedText(whole, Qt::ElideMiddle, _text->width());
    if (_text->text() != shown)
        _text->setText(shown);
}

} // namespace velbrix
