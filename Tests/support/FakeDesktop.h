#pragma once

#include "platform/DesktopPicture.h"
#include "platform/DesktopServices.h"
#include "platform/DesktopVisibility.h"
#include "platform/Displays.h"
#include "platform/DockPreference.h"
#include "platform/Symbols.h"
#include "support/AnswerTime.h"

#include <QJsonDocument>
#include <QPixmap>

namespace velbrix::test {

// A desktop with one picture: what was set last, or what was restored.
class FakeDesktopPicture final : public DesktopPicture {
public:
    explicit FakeDesktopPicture(Clock &clock) : _answer(clock) {}

    Result<QJsonObject> now = QJsonObject{{u"path"_s, u"/own/picture.png"_s}};
    Result<void> setAnswer;
    Result<QStringList> restoreAnswer;
    bool hasSpaces = false; // the test goes to another by changing `now`
    std::chrono::milliseconds delay{0};
    QStringList calls; // "current", "set PATH", "restore {compact json}"
    int overlaps = 0;  // calls that did not wait for the one before

    QCoro::Task<Result<QJsonObject>> current() override
    {
        co_await take(u"current"_s);
        co_return std::as_const(now);
    }
    QCoro::Task<Result<void>> set(const QString path) override
    {
        co_await take(u"set "_s + path);
        if (!QFileInfo::exists(path))
            co_return failure(u"无法读取图片："_s + path);
        if (setAnswer && now)
            now = QJsonObject{{u"path"_s, path}};
        co_return std::as_const(setAnswer);
    }
    bool hasHiddenPictures() const override { return hasSpaces; }
    Observation observePictures(std::function<void()> changed) override
    {
        return _observers.add(std::move(changed));
    }
    void show(const QJsonObject &other)
    {
        now = other;
        _observers.notify();
    }
    QCoro::Task<Result<QStringList>> restore(const QJsonObject picture) override
    {
        const QByteArray json = QJsonDocument(picture).toJson(QJsonDocument::Compact);
        co_await take(u"restore "_s + QString::fromUtf8(json));
        for (auto place = picture.begin(); restoreAnswer && now && place != picture.end(); ++place)
            now->insert(place.key(), *place);
        co_return std::as_const(restoreAnswer);
    }

private:
    QCoro::Task<> take(const QString call)
    {
        calls << call;
        overlaps += _running++ > 0 ? 1 : 0;
        co_await _answer.after(delay);
        --_running;
    }

    AnswerTime _answer;
    ObserverList<void()> _observers;
    int _running = 0;
};

class FakeDesktopServices final : public DesktopServices {
public:
    bool trayHost = true;
    bool reducedMotion = false;
    bool darkTheme = false;
    std::optional<QString> revealFailure;
    QStringList calls; // "accessory", "presence", "end", "activate", "beep", "reveal …", "open …"

    void setAccessoryPresence() override { calls << u"accessory"_s; }
    void resetPresence() override { calls << u"presence"_s; }
    void allowSystemToEnd() override { calls << u"end"_s; }
    void activate() override { calls << u"activate"_s; }
    void beep() override { calls << u"beep"_s; }
    Result<void> revealInFolder(const QString &path) override
    {
        calls << u"reveal "_s + path;
        if (revealFailure)
            return failure(*revealFailure);
        const QString folder = QFileInfo(path).absolutePath();
        if (!QFileInfo(folder).isDir())
            return failure(u"文件夹不存在："_s + folder);
        return {};
    }

    Result<void> openFile(const QString &path) override
    {
        calls << u"open "_s + path;
        return QFileInfo(path).isFile() ? Result<void>() : failure(u"文件不存在："_s + path);
    }

    bool hasTrayHost() const override { return trayHost; }
    bool prefersReducedMotion() const override { return reducedMotion; }
    bool prefersDarkTheme() const override { return darkTheme; }
    Observation observeTrayHost(std::function<void()> call) override { return _tray.add(std::move(call)); }
    Observation observeTheme(std::function<void()> call) override { return _theme.add(std::move(call)); }
    Observation observeUnhide(std::function<void()> call) override { return _unhide.add(std::move(call)); }
    Observation observeReopen(std::function<void()> call) override { return _reopen.add(std::move(call)); }

    void setTrayHost(bool present)
    {
        trayHost = present;
        _tray.notify();
    }
    void setDarkTheme(bool dark)
    {
        darkTheme = dark;
        _theme.notify();
    }
    void unhide() { _unhide.notify(); }
    // The user opens the running program again.
    void reopen() { _reopen.notify(); }

private:
    ObserverList<void()> _tray;
    ObserverList<void()> _theme;
    ObserverList<void()> _unhide;
    ObserverList<void()> _reopen;
};

// A desktop that the test covers and uncovers.
class FakeDesktopVisibility final : public DesktopVisibility {
public:
    VisibilityState now;

    bool isWatched() const { return !_observers.isEmpty(); }
    VisibilityState state() const override { return now; }
    Observation observe(std::function<void()> changed) override { return _observers.add(std::move(changed)); }

    void set(VisibilityState next)
    {
        now = std::move(next);
        _observers.notify();
    }

private:
    ObserverList<void()> _observers;
};

// Displays that the test plugs in and out.
class FakeDisplays final : public Displays {
public:
    QList<Display> list{{1, u"内建显示器"_s, true, QRect(0, 0, 1280, 800), QRect(0, 24, 1280, 776)}};

    QList<Display> displays() const override { return list; }
    Observation observe(std::function<void()> changed) override { return _observers.add(std::move(changed)); }

    void set(QList<Display> now)
    {
        list = std::move(now);
        _observers.notify();
    }

private:
    ObserverList<void()> _observers;
};

class FakeDockPreference final : public DockPreference {
public:
    explicit FakeDockPreference(Clock &clock) : _answer(clock) {}

    Result<bool> hides = false;
    std::optional<QString> failure; // of setAutoHide
    std::chrono::milliseconds delay{0};
    QStringList calls; // "autoHide", "set true"

    QCoro::Task<Result<bool>> autoHide() override
    {
        calls << u"autoHide"_s;
        co_await _answer.after(delay);
        co_return std::as_const(hides);
    }
    QCoro::Task<Result<void>> setAutoHide(bool hidden) override
    {
        calls << (hidden ? u"set true"_s : u"set false"_s);
        co_await _answer.after(delay);
        if (failure)
            co_return velbrix::failure(*failure);
        if (hides)
            hides = hidden;
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

// A black square for every name.
class FakeSymbols final : public Symbols {
public:
    QStringList unknown; // names without a picture

    QIcon icon(const QString &symbolName) const override
    {
        if (unknown.contains(symbolName))
            return {};
        QPixmap square(16, 16);
        square.fill(Qt::black);
        return QIcon(square);
    }
};

} // namespace velbrix::test
