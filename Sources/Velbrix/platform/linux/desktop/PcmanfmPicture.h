#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/DesktopPicture.h"
#include "platform/linux/desktop/Desktop.h"

namespace velbrix {

// The desktop of pcmanfm, which also keeps the root window's picture. It takes
// orders for its first monitor only, and shows them at once.
class PcmanfmPicture final : public DesktopPicture {
public:
    // Without a running desktop the order goes into its configuration, for the
    // next time: pcmanfm would otherwise start and stay.
    explicit PcmanfmPicture(const PictureRequest &request);

    QCoro::Task<Result<QJsonObject>> current() override;
    QCoro::Task<Result<void>> set(const QString path) override;
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override;

private:
    QCoro::Task<Result<void>> order(const QString path, const QString mode);

    ProcessRunner _programs;
    std::shared_ptr<const DesktopSession> _session;
    QString _profile;
    bool _isRunning;
};

// Under which the pcmanfm of that process keeps its settings.
QString pcmanfmProfile(quint32 process);

} // namespace velbrix
