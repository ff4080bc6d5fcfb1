#pragma once

#include "foundation/SettingsBackend.h"

#include <QString>

namespace velbrix {

// Settings as one JSON file, private to the user. A kill or a power cut during
// a write leaves the file as it was before that write.
class JsonSettingsFile final : public SettingsBackend {
public:
    explicit JsonSettingsFile(QString path);

    // A file that is not a JSON object is kept under a name ending in
    // ".damaged". One that cannot be opened stays where it is, and nothing is
    // saved over it.
    QJsonObject load() override;
    QString loadProblem() const override { return _problem; }
    void tidy() override;
    Result<void> save(const QJsonObject &all, const QStringList &changed) override;

private:
    const QString _path;
    QString _problem;
    bool _isOutOfReach = false;
};

} // namespace velbrix
