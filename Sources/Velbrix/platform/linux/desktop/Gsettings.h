#pragma once

#include "foundation/ProcessRunner.h"

#include <QJsonObject>

namespace velbrix {

// One schema of GNOME's settings by the program gsettings. Values are the text
// that GLib writes and reads, so that whatever there was goes back unchanged.
class Gsettings {
public:
    // A schema that is not installed system-wide needs its folder.
    Gsettings(Clock &clock, QString schema, QString folder = {});

    // Empty where there is no such schema.
    QCoro::Task<Result<QStringList>> keys();
    // Of all its keys, by one program.
    QCoro::Task<Result<QJsonObject>> values();
    QCoro::Task<Result<QString>> value(const QString key);
    QCoro::Task<Result<void>> set(const QString key, const QString value);
    // Several at once, up to the first that fails.
    QCoro::Task<Result<QJsonObject>> values(const QStringList keys);
    QCoro::Task<Result<void>> set(const QJsonObject values);

    // Back to the desktop's default.
    QCoro::Task<Result<void>> reset(const QString key);

    static QString quoted(QString text);
    // The text of a value.
    static QString unquoted(const QString &value);

private:
    QCoro::Task<Result<QString>> run(const QString command, const QStringList arguments);

    ProcessRunner _programs;
    QString _schema;
    QString _folder;
};

} // namespace velbrix
