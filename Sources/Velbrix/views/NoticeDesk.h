#pragma once

#include "views/components/NoticeSheet.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace velbrix {

class PrivacyManager;
class Theme;

// Decides which notice lies over the window: first the statement of the first
// launch, then what a feature asks, then the statement opened for review.
class NoticeDesk final : public QObject {
public:
    NoticeDesk(PrivacyManager &privacy, const Theme &theme, QWidget *surface);

    void reviewStatement();

private:
    void refresh();
    void openFirstLaunch();
    void openFeatureNotice();
    void openReview();
    NoticeSheet *open(const NoticeSheet::Words &words);
    void close();

    PrivacyManager &_privacy;
    const Theme &_theme;
    QWidget *_surface;
    QPointer<NoticeSheet> _sheet;
    QString _shown; // which notice the sheet is
    bool _isReviewing = false;
    QPointer<QWidget> _focusBefore;
};

} // namespace velbrix
