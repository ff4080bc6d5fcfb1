#pragma once

#include "foundation/Clock.h"
#include "views/ViewContext.h"

#include <QWidget>

#include <memory>

class QLabel;
class QPushButton;

namespace velbrix {

class ElidedLabel;
class PreviewStage;

// The video that is picked in the folder, before anything is changed: how it
// would look on the display it is for, and the button that puts it there.
class PickedVideo final : public QWidget {
    Q_OBJECT

public:
    explicit PickedVideo(const ViewContext &context, QWidget *parent = nullptr);
    ~PickedVideo() override;

    // It moves, unless the system asks for less motion.
    void pick(const QString &path);
    // Plays what is picked on the display that it is for.
    void apply();

private:
    void followPreview();
    void togglePreview();
    void show();
    void showPicture();
    QString problem() const;
    void comeIntoView();

    ViewContext _context;
    QString _path;             // empty: none
    bool _isAnswerDue = false; // to what the user has just done here
    PreviewStage *_stage;
    ElidedLabel *_name;
    QLabel *_note;
    QLabel *_problem;
    QPushButton *_apply;
    std::unique_ptr<Alarm> _move;
};

} // namespace velbrix
