// Exercises the settings file FILE, which holds about as much as a user's:
//   settingswrite compare FILE ROUNDS  writes FILE and, with the same bytes, FILE.bare; prints both times in
//   ms settingswrite burst FILE CHANGES   makes changes for 150 ms, 50 ms apart in groups, and runs for a
//   second settingswrite quit FILE            makes a change and ends settingswrite churn FILE counts "churn"
//   up in FILE and prints each count that is safe, until killed
#include "foundation/JsonSettingsFile.h"
#include "foundation/SettingsStore.h"
#include "foundation/SystemClock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QThreadPool>
#include <QTimer>

#include <time.h>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace velbrix;

namespace {

QJsonObject usualSettings()
{
    QJsonObject values;
    for (int i = 0; i < 80; ++i)
        values.insert(u"Velbrix_Example_key%1"_s.arg(i), i % 2 == 0 ? QJsonValue(i) : QJsonValue(u"设置"_s));
    values.insert(u"Velbrix_Example_text"_s, QString(4096, u'x'));
    return values;
}

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double monotonicSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

int compare(const QString &path, int rounds)
{
    JsonSettingsFile file(path);
    QJsonObject values = usualSettings();
    for (int round = 0; round < rounds; ++round) {
        values.insert(u"Velbrix_Example_key0"_s, round);
        QElapsedTimer timer;
        timer.start();
        if (!file.save(values, {u"Velbrix_Example_key0"_s}))
            return 1;
        const double ours = milliseconds(timer);
        QThreadPool::globalInstance()->waitForDone(); // the folder's way to the disk

        const QByteArray bytes = QJsonDocument(values).toJson(QJsonDocument::Indented);
        timer.restart();
        QSaveFile bare(path + u".bare"_s);
        if (!bare.open(QIODevice::WriteOnly) || bare.write(bytes) != bytes.size() || !bare.commit())
            return 1;
        std::printf("%.4f %.4f\n", ours, milliseconds(timer));
    }
    return 0;
}

int burst(const QString &path, int changes)
{
    SystemClock clock;
    SettingsStore store(std::make_unique<JsonSettingsFile>(path), clock);
    QTimer groups;
    groups.setTimerType(Qt::PreciseTimer);
    int group = 0;
    QObject::connect(&groups, &QTimer::timeout, [&] {
        for (int i = 0; i < changes / 3; ++i)
            store.set(u"Velbrix_Example_key%1"_s.arg(i % 80), group * changes + i);
        if (group == 0)
            std::printf("%.4f\n", monotonicSeconds());
        if (++group == 3)
            groups.stop();
    });
    groups.start(50);
    QTimer::singleShot(1000, qApp, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

int quit(const QString &path)
{
    SystemClock clock;
    SettingsStore store(std::make_unique<JsonSettingsFile>(path), clock);
    store.set(u"Velbrix_Example_last"_s, true);
    return 0;
}

int churn(const QString &path)
{
    SystemClock clock;
    SettingsStore store(std::make_unique<JsonSettingsFile>(path), clock);
    for (int count = store.integer(u"churn"_s).value_or(0) + 1;; ++count) {
        store.set(u"churn"_s, count);
        if (!store.flush())
            return 1;
        std::printf("%d\n", count);
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const QString mode = words.value(1);
    const QString path = words.value(2);
    if (mode == u"compare" && words.size() == 4)
        return compare(path, words[3].toInt());
    if (mode == u"burst" && words.size() == 4)
        return burst(path, words[3].toInt());
    if (mode == u"quit" && words.size() == 3)
        return quit(path);
    if (mode == u"churn" && words.size() == 3)
        return churn(path);
    std::fputs("usage: settingswrite compare FILE ROUNDS | burst FILE CHANGES | quit FILE | churn FILE\n",
               stderr);
    return 2;
}
