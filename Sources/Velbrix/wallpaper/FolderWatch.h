#pragma once

#include "foundation/MainThreadRelay.h"

#include <QStringList>

#include <functional>
#include <memory>

class QThread;

namespace velbrix {

// Tells of what comes into folders, leaves them or changes its name there. A
// folder that cannot be watched is passed over, and one whose disk does not
// answer keeps only the watch's own thread waiting. Main thread.
class FolderWatch final {
public:
    // Not what lies in the folders' own folders. Also called when it begins.
    FolderWatch(QStringList folders, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;

private:
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    QThread *const _thread;
};

} // namespace velbrix
