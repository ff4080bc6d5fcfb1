#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace velbrix {

class Theme;

// A folder: shown, chosen in the system's panel or dropped, opened in the
// file manager.
class PathField final : public QFrame {
    Q_OBJECT

public:
    PathField(const Theme &theme, const QString &name, const QString &panelTitle, QWidget *parent = nullptr);

    // Empty while there is none yet.
    void setPath(const QString &path);
    QString path() const { return _path; }
    // Opens the system's panel.
    void choose();

Q_SIGNALS:
    void wanted(const QString &folder);
    void revealWanted(const QString &folder);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void elide();

    QString _panelTitle;
    QString _path;
    QLabel *_text;
    QPushButton *_reveal;
};

} // namespace velbrix
