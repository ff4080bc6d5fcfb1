#pragma once

#include "platform/DesktopPicture.h"

namespace velbrix {

// The picture of the X server's root window, for sessions in which no program
// keeps it. The former one's pixels are kept as a file in the folder, since
// nothing else is left of it once another takes its place.
class RootPicture final : public DesktopPicture {
public:
    explicit RootPicture(QString folder);

    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;

private:
    QString _folder;
};

} // namespace velbrix
