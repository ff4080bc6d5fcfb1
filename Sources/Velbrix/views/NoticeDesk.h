#pragma once

#include "platform/HostFamily.h"
#include "views/components/NoticeSheet.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

namespace velbrix {

class PrivacyManager;
class Theme;

// Decides which notice lies over the window: the first of those that are
// wanted, in the order of their ranks.
class NoticeDesk final : public QObject {
public:
    NoticeDesk(PrivacyManager &privacy, const Theme &theme, HostFamily family, QWidget *surface);

    void reviewStatement();

private:
    // One kind of notice.
    struct Rank {
        std::function<QString()> wanted; // which one of the kind; empty: none
        std::function<void()> open;
    };

    void refresh();
    void openFirstLaunch();
    void openFeatureNotice();
    void openReview();
    NoticeSheet *open(NoticeSheet::Words words);
    void close();

    PrivacyManager &_privacy;
    const Theme &_theme;
    const HostFamily _family;
    QWidget *_surface;
    QPointer<NoticeSheet> _sheet;
    const QList<Rank> _ranks; // what comes first covers the others
    QString _shown;           // which notice the sheet is
    bool _isReviewing = false;
    QPointer<QWidget> _focusBefore;
};

} // namespace velbrix
